#!/usr/bin/env bash
# Runs a test program against a real time server: Debian's chronyd, taken out of its
# package into the build tree (never installed as a service), serving its own clock
# ("local stratum 8") on 127.0.0.1 at a free port, with -x so that it never touches the
# computer's clock. The program finds the server in TW_NTP_SITE. Skips (77) where the
# package cannot be had or the server cannot start.
# Usage: chrony.sh BUILD_DIR PROGRAM [ARGUMENTS...]
set -euo pipefail
build="$1"
program="$2"
store="$build/chrony"
chronyd="$store/root/usr/sbin/chronyd"
if [ ! -x "$chronyd" ]; then
    mkdir -p "$store"
    (cd "$store" && apt-get download chrony >/dev/null 2>&1) || { echo "chrony.sh: chrony could not be downloaded: skipped"; exit 77; }
    dpkg-deb -x "$store"/chrony_*.deb "$store/root"
fi
work=$(mktemp -d)
pid=""
cleanup() {
    [ -n "$pid" ] && kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
port=$(python3 -c 'import socket; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
cat >"$work/chrony.conf" <<CONF
port $port
bindaddress 127.0.0.1
allow 127.0.0.1
local stratum 8
cmdport 0
pidfile $work/chronyd.pid
driftfile $work/drift
CONF
user=()
[ "$(id -u)" -eq 0 ] && user=(-u root)
"$chronyd" -x -d -f "$work/chrony.conf" "${user[@]}" >"$work/log" 2>&1 &
pid=$!
for _ in $(seq 1 50); do
    grep -q "Disabled control of system clock" "$work/log" 2>/dev/null && break
    kill -0 "$pid" 2>/dev/null || { echo "chrony.sh: chronyd did not start: skipped"; cat "$work/log"; exit 77; }
    sleep 0.1
done
sleep 0.5
shift 2
TW_NTP_SITE="127.0.0.1:$port" "$program" "$@"
