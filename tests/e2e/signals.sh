#!/usr/bin/env bash
# A signal ends the real program promptly. During the splash it ends without bringing up the
# main window or touching the settings file; once running it saves, logs the exit and ends.
# Usage: signals.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
e2e_init "$1" "$2"
ini="$work/config/Tarrowind 2.ini"

for sig in TERM INT HUP; do
    e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
Audible=0
[Alarms]
Count=1
Message%201=Convoy
Expire%201=11:00
AlarmSet%201=True
INI
    cp "$ini" "$work/before.ini"
    rm -rf "$work/program/Logs"
    e2e_run "
e2e_start '2026-11-16 10:14:00'
sleep 0.7
kill -$sig \"\$pid\"
# A loaded machine (the sanitizer build beside other tests) can take seconds to reach the
# event loop that acts on the signal; a program that ignored it would still be running.
for _ in \$(seq 1 100); do kill -0 \"\$pid\" 2>/dev/null || break; sleep 0.1; done
if kill -0 \"\$pid\" 2>/dev/null; then echo 'e2e: still running 10 s after SIG$sig'; kill -KILL \"\$pid\"; exit 7; fi
wait \"\$pid\" || true
if xwininfo -root -tree 2>/dev/null | grep -q 'Tarrowind --'; then echo 'e2e: the main window came up'; exit 8; fi
exit 0" && ended=1 || ended=0
    check "SIG$sig during the splash ends the program at once without its main window" '[ "$ended" -eq 1 ]'
    check "SIG$sig during the splash leaves the settings file as it was" 'cmp -s "$ini" "$work/before.ini"'
    check "SIG$sig during the splash writes no log" '[ ! -e "$work/program/Logs/20261116.log" ]'
done

e2e_run '
e2e_start "2026-11-16 10:14:00"
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
kill -TERM "$pid"
for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
if kill -0 "$pid" 2>/dev/null; then echo "e2e: still running 10 s after SIGTERM"; kill -KILL "$pid"; exit 7; fi' && ended=1 || ended=0
check "SIGTERM while running ends the program at once" '[ "$ended" -eq 1 ]'
check "SIGTERM while running saves the settings" 'grep -q "^Zone=" "$ini"'
check "SIGTERM while running logs the exit" 'tail -n 1 "$work/program/Logs/20261116.log" | grep -q "\"EX\",0,\"Exit program\""'
e2e_summary e2e_signals
