#!/usr/bin/env bash
# Makes the seeds of the time server reply fuzzer (fuzz/corpus/sntpreply/) from a real time
# server: Debian's chronyd, taken out of its package into a temporary folder (never installed
# as a service), answering on 127.0.0.1 with -x so that it never touches the computer's clock.
# It records chronyd's replies to requests of versions 4, 3 and 2 while it serves its own
# clock, and its reply while it has no time source (not synchronised). chronyd drops the
# requests it rate-limits instead of answering them, so the kiss-of-death replies are written
# in the form other servers send them: leap 3, stratum 0, the code as reference identifier and
# the request's transmit time as originate, receive and transmit time.
#
#   fuzz/sntp-seeds.sh [OUTPUT_FOLDER]     (default fuzz/corpus/sntpreply)
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
out="${1:-$here/corpus/sntpreply}"
mkdir -p "$out"
work="$(mktemp -d)"
pid=""
cleanup() {
    if [ -n "$pid" ]; then
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT

(cd "$work" && timeout 120 apt-get download chrony >/dev/null 2>&1) || { echo "sntp-seeds.sh: chrony could not be downloaded" >&2; exit 1; }
dpkg-deb -x "$work"/chrony_*.deb "$work/root"
chronyd="$work/root/usr/sbin/chronyd"

# start_chronyd CONFIG_LINES...: starts chronyd on a free loopback port and sets $port.
start_chronyd() {
    port=$(python3 -c 'import socket; s=socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
    {
        echo "port $port"
        echo "bindaddress 127.0.0.1"
        echo "allow 127.0.0.1"
        echo "cmdport 0"
        echo "pidfile $work/chronyd.pid"
        printf '%s\n' "$@"
    } >"$work/chrony.conf"
    local user=()
    [ "$(id -u)" -eq 0 ] && user=(-u root)
    "$chronyd" -x -d -f "$work/chrony.conf" "${user[@]}" >"$work/log" 2>&1 &
    pid=$!
    for _ in $(seq 1 50); do
        grep -q "Disabled control of system clock" "$work/log" 2>/dev/null && break
        kill -0 "$pid" 2>/dev/null || { echo "sntp-seeds.sh: chronyd did not start" >&2; cat "$work/log" >&2; exit 1; }
        sleep 0.1
    done
    sleep 0.5
}

stop_chronyd() {
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    pid=""
}

# ask VERSION FILE: sends one request of that version and writes the reply to FILE.
ask() {
    timeout 10 python3 - "$port" "$1" "$2" <<'PY'
import socket, struct, sys
port, version, path = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
s.settimeout(2)
transmit = 0xEBA1B2C3_12345678 + version
s.sendto(bytes([(version << 3) | 3]) + bytes(39) + struct.pack(">Q", transmit), ("127.0.0.1", port))
reply, _ = s.recvfrom(1024)
open(path, "wb").write(reply)
PY
}

start_chronyd "local stratum 8"
ask 4 "$out/chronyd-v4.bin"
ask 3 "$out/chronyd-v3.bin"
ask 2 "$out/chronyd-v2.bin"
stop_chronyd

start_chronyd ""
ask 4 "$out/chronyd-unsynchronised.bin"
stop_chronyd

for code in RATE DENY RSTR; do
    python3 - "$code" "$out/kiss-$(echo "$code" | tr 'A-Z' 'a-z').bin" <<'PY'
import struct, sys
code, path = sys.argv[1].encode(), sys.argv[2]
transmit = 0xEBA1B2C3_9ABCDEF0
packet = bytes([(3 << 6) | (4 << 3) | 4, 0, 6, 0xEC]) + bytes(8) + code + bytes(8)
packet += struct.pack(">QQQ", transmit, transmit, transmit)
open(path, "wb").write(packet)
PY
done
ls -l "$out"
