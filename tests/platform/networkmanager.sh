#!/usr/bin/env bash
# Runs the dial-up test against python3-dbusmock's NetworkManager on a private bus that
# stands in for the system bus (never the machine's own): without NetworkManager, with an
# Ethernet connection active, and with a mobile broadband (gsm) one. Skips (77) without dbusmock.
# Usage: networkmanager.sh PROGRAM
set -euo pipefail
program="$1"
py=/usr/bin/python3
[ -x "$py" ] || py=python3
"$py" -c 'import dbusmock' 2>/dev/null || { echo "networkmanager.sh: python3-dbusmock is missing: skipped"; exit 77; }
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

TW_DIALUP_EXPECT=0 "$program"
"$py" -m dbusmock --system --template networkmanager >"$work/mock.log" 2>&1 &
pids+=($!)
for _ in $(seq 1 100); do
    dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
        string:org.freedesktop.NetworkManager 2>/dev/null | grep -q 'boolean true' && break
    sleep 0.1
done
activate() { # NAME TYPE: an active connection of that type
    "$py" - "$1" "$2" <<'PY'
import sys
import dbus
bus = dbus.SystemBus()
manager = bus.get_object('org.freedesktop.NetworkManager', '/org/freedesktop/NetworkManager')
mock = dbus.Interface(manager, 'org.freedesktop.DBus.Mock')
path = '/org/freedesktop/NetworkManager/ActiveConnection/' + sys.argv[1]
mock.AddObject(path, 'org.freedesktop.NetworkManager.Connection.Active',
               {'Type': sys.argv[2], 'State': dbus.UInt32(2)}, [])
active = dbus.Interface(manager, 'org.freedesktop.DBus.Properties').Get(
    'org.freedesktop.NetworkManager', 'ActiveConnections')
active.append(dbus.ObjectPath(path))
mock.SetProperty('/org/freedesktop/NetworkManager', 'org.freedesktop.NetworkManager', 'ActiveConnections',
                 dbus.Array(active, signature='o'))
PY
}
activate wired 802-3-ethernet
TW_DIALUP_EXPECT=0 "$program"
activate mobile gsm
TW_DIALUP_EXPECT=1 "$program"
