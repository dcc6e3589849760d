# Shared by the platform tests that talk to a system service (sourced): a private bus that
# stands in for the system bus (never the machine's own), and python3-dbusmock's services
# on it. Skips (77) where dbusmock is missing. Cleans up on exit.

# Debian's own Python, which python3-dbusmock is installed for.
py=/usr/bin/python3
[ -x "$py" ] || py=python3
for tool in dbus-daemon dbus-send "$py"; do
    command -v "$tool" >/dev/null || { echo "privatebus.sh: $tool is missing (scripts/deps installs it)"; exit 1; }
done
"$py" -c 'import dbusmock' 2>/dev/null || { echo "privatebus.sh: python3-dbusmock is missing: skipped"; exit 77; }
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
# The same private bus stands in for the session bus too (the notification service's).
export DBUS_SESSION_BUS_ADDRESS="$DBUS_SYSTEM_BUS_ADDRESS"
for _ in $(seq 1 50); do [ -S "$work/bus" ] && break; sleep 0.1; done

start_mock() { # TEMPLATE BUS_NAME [--session]: the mocked service, once its name is on the bus
    "$py" -m dbusmock "${3:---system}" --template "$1" >"$work/$1.log" 2>&1 &
    pids+=($!)
    for _ in $(seq 1 100); do
        dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
            "string:$2" 2>/dev/null | grep -q 'boolean true' && return 0
        sleep 0.1
    done
    echo "privatebus.sh: $2 did not come up"
    cat "$work/$1.log"
    exit 1
}
