#!/usr/bin/env bash
# Runs the clock setter's test against python3-dbusmock's timedated on a private bus that
# stands in for the system bus (never the machine's own), without the right to set the
# clock: once with the time service and once without it. Skips (77) without dbusmock.
# Usage: timedated.sh PROGRAM
set -euo pipefail
program="$1"
# Debian's own Python, which python3-dbusmock is installed for.
py=/usr/bin/python3
[ -x "$py" ] || py=python3
for tool in dbus-daemon dbus-send setpriv "$py"; do
    command -v "$tool" >/dev/null || { echo "timedated.sh: $tool is missing (scripts/deps installs it)"; exit 1; }
done
"$py" -c 'import dbusmock' 2>/dev/null || { echo "timedated.sh: python3-dbusmock is missing: skipped"; exit 77; }
work=$(mktemp -d)
pids=()
cleanup() {
    for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
dbus-daemon --session --nofork --address="unix:path=$work/bus" >/dev/null 2>&1 &
pids+=($!)
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$work/bus"
for _ in $(seq 1 50); do [ -S "$work/bus" ] && break; sleep 0.1; done

run() { # TW_TIMEDATED value
    TW_TIMEDATED="$1" setpriv --bounding-set -sys_time --inh-caps -sys_time -- "$program"
}
# Without the time service first.
run 0
"$py" -m dbusmock --system --template timedated >"$work/mock.log" 2>&1 &
pids+=($!)
for _ in $(seq 1 100); do
    dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
        string:org.freedesktop.timedate1 2>/dev/null | grep -q 'boolean true' && break
    sleep 0.1
done
run 1
