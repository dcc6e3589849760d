#!/usr/bin/env bash
# Runs the dial-up test against python3-dbusmock's NetworkManager on a private bus that
# stands in for the system bus (never the machine's own): without NetworkManager, with an
# Ethernet connection active, and with a mobile broadband (gsm) one. Skips (77) without dbusmock.
# Usage: networkmanager.sh PROGRAM
set -euo pipefail
program="$1"
source "$(dirname "$0")/privatebus.sh"

TW_DIALUP_EXPECT=0 "$program"
start_mock networkmanager org.freedesktop.NetworkManager
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
