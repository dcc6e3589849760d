#!/usr/bin/env bash
# Starts the real program a few seconds before 10:15 with two set alarms due at 10:15 (a
# clock-time alarm and a safety timer) and one due later, logging on with all events; checks
# that two alarm windows appear, that the log holds their "EA" lines in alarm order, and that
# the exit by a signal while alarms are set is logged.
# Usage: alarms.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
e2e_init "$1" "$2"
e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
Audible=0
[Alarms]
Count=3
Message%201=Convoy 12 departs
Expire%201=10:15
AlarmSet%201=True
Message%202=Later one
Expire%202=10:16
AlarmSet%202=True
Message%203=Crew 7 safety check
TypeTimer%203=True
Interval%203=00:15
Expire%203=10:15
AlarmSet%203=True
Repeat%203=1
Safety%203=1
INI

e2e_run '
e2e_start "2026-11-16 10:14:54"
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
e2e_wait_title "Tarrowind Alarm" 20 2 || exit $?
sleep 1
[ "$(xwininfo -root -tree | grep -cF "\"Tarrowind Alarm\"")" -eq 2 ] || { echo "e2e: not exactly two alarm windows"; exit 6; }
e2e_stop'

log="$work/program/Logs/20261116.log"
expected=$(printf '%s\r\n' \
    '"11/16/2026","10:14","ST",0,"Start program","",""' \
    '"11/16/2026","10:15","EA",0,"Alarm Expired for ","Convoy 12 departs",""' \
    '"11/16/2026","10:15","EA",1,"Alarm Expired for ","Crew 7 safety check",""' \
    '"11/16/2026","10:15","EX",0,"Exit program","",""'; printf _)
actual=$(cat "$log" 2>/dev/null; printf _)
check "the log holds the start, the two EA lines in alarm order and the exit" '[ "$actual" = "$expected" ]'
[ "$actual" = "$expected" ] || { echo "log was:"; cat -A "$log" 2>/dev/null || echo "(no log file)"; }
ini="$work/config/Tarrowind 2.ini"
check "the alarms are still set after the program ended" \
    'grep -q "^AlarmSet%201=True" "$ini" && grep -q "^AlarmSet%203=True" "$ini"'
e2e_summary e2e_alarms
