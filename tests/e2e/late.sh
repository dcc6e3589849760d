#!/usr/bin/env bash
# The real program under a faked clock: an alarm due in the minute the program starts
# rings, once; and an alarm whose minute the clock jumps over rings at once, late, once.
# Usage: late.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
e2e_init "$1" "$2"
log="$work/program/Logs/20261116.log"

e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
Audible=0
[Alarms]
Count=1
Message%201=At the start
Expire%201=10:15
AlarmSet%201=True
INI
e2e_run '
e2e_start "2026-11-16 10:14:59"
e2e_wait_title "Tarrowind Alarm" 20 || exit $?
sleep 2
e2e_stop'
check "the alarm due as the program starts rings once, on time" \
    '[ "$(grep -c "\"EA\"" "$log")" -eq 1 ] && grep -q "\"10:15\",\"EA\",0,\"Alarm Expired for \",\"At the start\",\"\"" "$log"'
grep -c '"EA"' "$log" >/dev/null || cat -A "$log"
rm -f "$log"

e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
Audible=0
[Alarms]
Count=2
Message%201=Jumped over
Expire%201=10:30
AlarmSet%201=True
Message%202=Still to come
Expire%202=12:00
AlarmSet%202=True
INI
echo "@2026-11-16 10:00:00" >"$work/faketime"
e2e_run '
LD_PRELOAD=$FAKETIME_LIB FAKETIME_TIMESTAMP_FILE="$WORK/faketime" FAKETIME_NO_CACHE=1 \
    FAKETIME_DONT_FAKE_MONOTONIC=1 "$WORK/program/tarrowind" &
pid=$!
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
sleep 1
# The clock jumps seventy minutes forward, over 10:30.
echo "@2026-11-16 11:10:00" >"$WORK/faketime"
e2e_wait_title "Tarrowind Alarm" 20 || exit $?
sleep 2
e2e_stop'
check "the jumped-over alarm rings once, late, and says so" \
    '[ "$(grep -c "\"EA\"" "$log")" -eq 1 ] && grep -Eq "\"11:1[0-9]\",\"EA\",0,\"Alarm Expired for \",\"Jumped over\",\", rang 4[0-9] minutes late\"" "$log"'
check "the alarm still to come has not rung" '! grep -q "Still to come" "$log"'
check "the exit is logged while alarms are set" 'tail -n 1 "$log" | grep -q "\"EX\",0,\"Exit program\""'
[ "$failed" -eq 0 ] || { echo "log was:"; cat -A "$log" 2>/dev/null || echo "(no log file)"; }
e2e_summary e2e_late
