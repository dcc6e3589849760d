#!/usr/bin/env bash
# Starts the real program under Xvfb and faketime with a prepared settings file (logging
# on, all events), waits for the main window, ends it with SIGTERM, then checks the "ST"
# line of the day's log and that the settings file holds every key.
# The program runs without the right to set the computer's clock.
# Usage: startup.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail

program=$1
sound=$2
for tool in xvfb-run setpriv xwininfo; do
    command -v "$tool" >/dev/null || { echo "e2e: $tool is missing (scripts/deps installs it)"; exit 1; }
done
FAKETIME_LIB=$(find /usr/lib -name libfaketime.so.1 -path '*faketime*' 2>/dev/null | head -n 1)
[ -n "$FAKETIME_LIB" ] || { echo "e2e: libfaketime is missing (scripts/deps installs faketime)"; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/program" "$work/config" "$work/data" "$work/runtime" "$work/cwd"
chmod 700 "$work/runtime"
# A copy of the program in a folder of its own, so that its Logs folder is the test's.
cp "$program" "$sound" "$work/program/"
cat >"$work/config/Tarrowind 2.ini" <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
INI

cat >"$work/inner.sh" <<'INNER'
set -u
# The clock may not be set from here: CAP_SYS_TIME (bit 25) is out of the bounding set.
bounding=$(awk '/^CapBnd/ {print $2}' /proc/self/status)
if (( (16#$bounding >> 25) & 1 )); then echo "e2e: CAP_SYS_TIME is still in the bounding set"; exit 3; fi
cd "$WORK/cwd"
# libfaketime is preloaded directly (the faketime command would fork and stand between
# this script and the program). Only the wall clock is faked; timers keep the real one.
LD_PRELOAD=$FAKETIME_LIB FAKETIME='@2026-11-16 10:00:05' FAKETIME_DONT_FAKE_MONOTONIC=1 \
    "$WORK/program/tarrowind" &
pid=$!
title='Tarrowind --Monday November 16,2026 [Standard Time]'
for _ in $(seq 1 200); do
    if xwininfo -root -tree 2>/dev/null | grep -qF "$title"; then
        sleep 1
        kill -TERM "$pid"
        wait "$pid"
        exit $?
    fi
    kill -0 "$pid" 2>/dev/null || { echo "e2e: the program ended before its window appeared"; exit 4; }
    sleep 0.1
done
echo "e2e: no window titled '$title' within 20 s"
xwininfo -root -tree | grep -i tarrowind || true
kill -KILL "$pid"
exit 5
INNER

export WORK=$work FAKETIME_LIB XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_RUNTIME_DIR=$work/runtime
export LANG=en_US.UTF-8 TZ=UTC
setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "-screen 0 1024x600x24" bash "$work/inner.sh"

passed=0
failed=0
check() {
    if eval "$2"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $1"; fi
}

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

echo "e2e_startup: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
