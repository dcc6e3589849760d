#!/usr/bin/env bash
# Runs the clock setter's test against python3-dbusmock's timedated on a private bus that
# stands in for the system bus (never the machine's own), without the right to set the
# clock: once with the time service and once without it. Skips (77) without dbusmock.
# Usage: timedated.sh PROGRAM
set -euo pipefail
program="$1"
command -v setpriv >/dev/null || { echo "timedated.sh: setpriv is missing (scripts/deps installs it)"; exit 1; }
source "$(dirname "$0")/privatebus.sh"

run() { # TW_TIMEDATED value
    TW_TIMEDATED="$1" setpriv --bounding-set -sys_time --inh-caps -sys_time -- "$program"
}
# Without the time service first.
run 0
start_mock timedated org.freedesktop.timedate1
run 1
