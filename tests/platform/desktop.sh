#!/usr/bin/env bash
# Runs the desktop services' test against python3-dbusmock's logind and notification daemon
# on a private bus that stands in for the system and session buses (never the machine's
# own): once without the services and once with them. Skips (77) without dbusmock.
# Usage: desktop.sh PROGRAM
set -euo pipefail
program="$1"
source "$(dirname "$0")/privatebus.sh"
TW_SERVICES=0 "$program"
start_mock logind org.freedesktop.login1
start_mock notification_daemon org.freedesktop.Notifications --session
TW_SERVICES=1 "$program"
