#!/usr/bin/env bash
# Starts the real program under Xvfb and faketime with a prepared settings file (logging
# on, all events), waits for the main window, ends it with SIGTERM, then checks the "ST"
# line of the day's log and that the settings file holds every key.
# Usage: startup.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
e2e_init "$1" "$2"
e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
INI

e2e_run '
e2e_start "2026-11-16 10:00:05"
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
sleep 1
e2e_stop'

log="$work/program/Logs/20261116.log"
expected=$(printf '"11/16/2026","10:00","ST",0,"Start program","",""\r\n_')
actual=$(cat "$log" 2>/dev/null; printf _)
check "the day's log holds exactly the ST line" '[ "$actual" = "$expected" ]'
[ "$actual" = "$expected" ] || { echo "log was:"; cat -A "$log" 2>/dev/null || echo "(no log file)"; }

ini="$work/config/Tarrowind 2.ini"
for key in Sound StartWithWindows Zone Audible AutoSync AutoSyncHrs SyncSite LastSync InetMinOffset DayLight \
    DefaultInterval LogOn LogSafetyOnly Connection UTCRule ForeColor BackColor Name Bold Size Italic \
    LatDeg LatMin LongDeg LongMin Count; do
    check "settings key $key" 'grep -q "^$key=" "$ini"'
done
check "logging switches written back" 'grep -q "^LogOn=1" "$ini" && grep -q "^LogSafetyOnly=False" "$ini"'
check "sound found and left on" 'grep -q "^Audible=1" "$ini"'
e2e_summary e2e_startup
