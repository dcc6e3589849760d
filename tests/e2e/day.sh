#!/usr/bin/env bash
# A whole day of the real program, sixty times faster than real time: thirty alarms of
# every kind (clock-time alarms, some in the same minute, interval timers that repeat, and
# safety check alarms that ask for a location) ring through the day and are answered by a
# script as an operator would. Afterwards the logs must show every due alarm ringing once,
# in its own minute and never late, each answer re-arming it as the program defines, and
# the program's resident memory must stay flat.
#
# The faked clock starts ten minutes before hour TW_DAY_FROM (default 0) of 16 November and
# runs TW_DAY_HOURS hours (default 24) from that hour and six minutes more. scripts/test runs
# the day as two halves side by side, each a program of its own: from 23:50 the day before to
# 12:06, and from 11:50 to 00:06 the next day, so the day changes under a running program at
# the start of the one and at the end of the other. The clock-time alarms keep their times of
# day (so that across the two halves each rings as in one whole day); the timers' first
# expiries are counted from the hour the run starts at, so that the timers run in each half.
# At x60 a simulated minute lasts one real second: a half takes about 12.5 minutes, a whole
# day about 24.5.
#
# Usage: day.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
for tool in xdotool python3 timeout; do
    command -v "$tool" >/dev/null || { echo "e2e: $tool is missing (scripts/deps installs it)"; exit 1; }
done
hours=${TW_DAY_HOURS:-24}
[[ "$hours" =~ ^[0-9]{1,2}$ ]] && hours=$((10#$hours)) && [ "$hours" -ge 1 ] && [ "$hours" -le 48 ] ||
    { echo "e2e: TW_DAY_HOURS must be a whole number of hours from 1 to 48"; exit 1; }
from=${TW_DAY_FROM:-0}
[[ "$from" =~ ^[0-9]{1,2}$ ]] && from=$((10#$from)) && [ "$from" -le 23 ] ||
    { echo "e2e: TW_DAY_FROM must be a whole hour from 0 to 23"; exit 1; }
e2e_init "$1" "$2"
export TW_DAY_HOURS=$hours
# The program starts ten minutes before the hour; its title names the day it starts on.
start=$(date -u -d "2026-11-16 00:00:00 UTC + $from hours - 10 minutes" '+%Y-%m-%d %H:%M:%S')
export TW_DAY_START=$start
TW_DAY_TITLE="Tarrowind --$(LC_ALL=C date -u -d "$start UTC" '+%A %B %-d,%Y') [Standard Time]"
export TW_DAY_TITLE
echo "simulated from $start to $(date -u -d "$start UTC + $hours hours + 16 minutes" '+%Y-%m-%d %H:%M:%S')"

# The alarms: message | timer | expiry (a timer's first) | interval | retain | safety.
# Messages are unique: the log names an alarm by its message. No alarm falls due in the ten
# minutes before midnight or noon, while the program starts. A timer's first expiry is given
# from midnight and moved on by TW_DAY_FROM hours.
while IFS='|' read -r message timer expire interval retain safety; do
    if [ "$timer" = True ]; then
        h=$(( (10#${expire%:*} + from) % 24 ))
        expire=$(printf '%02d:%s' "$h" "${expire#*:}")
    fi
    echo "$message|$timer|$expire|$interval|$retain|$safety"
done >"$work/alarms.txt" <<'TABLE'
Gate opens|False|00:00|00:00|1|0
Night patrol out|False|00:00|00:00|0|0
Last round|False|00:03|00:00|1|0
Pump check|False|00:30|00:00|1|0
Fuel delivery|False|01:15|00:00|0|0
Shift change A|False|06:00|00:00|1|0
Shift change B|False|06:00|00:00|0|0
Radio test|False|06:00|00:00|1|0
Lunch relief|False|12:30|00:00|0|0
Weather report|False|12:30|00:00|1|0
Evening muster|False|18:45|00:00|1|0
Lights out|False|23:44|00:00|0|0
Generator log|True|00:05|00:17|1|0
Water sample|True|00:10|00:23|1|0
Tank level|True|00:20|00:45|1|0
Hourly report|True|01:00|01:00|1|0
Battery swap|True|01:30|02:30|1|0
Filter change|True|04:00|05:00|1|0
Tea break|True|01:40|03:00|0|0
Drain valve|True|00:02|00:20|1|0
Meter reading|True|00:50|04:00|1|0
Compressor|True|00:15|00:30|1|0
Crew 1 safety check|True|00:15|00:15|1|1
Crew 2 safety check|True|00:15|00:15|1|1
Crew 3 safety check|True|00:25|00:30|1|1
Crew 4 safety check|True|00:45|01:00|1|1
Crew 5 safety check|True|01:05|02:00|1|1
Lone worker check|True|00:12|00:20|1|1
Diver check|True|00:08|00:10|1|1
Line crew check|True|01:50|00:45|1|1
TABLE
{
    printf '[General]\nLogOn=1\nLogSafetyOnly=False\nAudible=0\nDefaultInterval=00:15\n[Alarms]\n'
    printf 'Count=%s\n' "$(wc -l <"$work/alarms.txt")"
    n=0
    while IFS='|' read -r message timer expire interval retain safety; do
        n=$((n + 1))
        printf 'Message%%20%d=%s\nTypeTimer%%20%d=%s\nExpire%%20%d=%s\nInterval%%20%d=%s\n' \
            "$n" "$message" "$n" "$timer" "$n" "$expire" "$n" "$interval"
        printf 'Repeat%%20%d=%s\nAlarmSet%%20%d=True\nSafety%%20%d=%s\n' "$n" "$retain" "$n" "$n" "$safety"
    done <"$work/alarms.txt"
} | e2e_settings

# Every clock of the program runs at x60, the monotonic one too, so that its half-second
# tick, Qt's timers and the alarm windows' blinking and flashing all run as they would in a
# real day, only sixty times faster: the program sees each simulated second and handles each
# minute at the tick that first sees it. libfaketime divides the timeouts of poll() (which
# Qt's event loop waits in, through GLib) by the rate whether or not the monotonic clock is
# faked; with the monotonic clock left real (as lib.sh does for its short tests) each timer
# wait would become a series of ever shorter polls ending in a spin, which costs more CPU
# than the faster timers do. At this rate any pause of the program longer than a real second
# makes an alarm ring a minute late, and the test fails on that.
#
# Resident memory under the sanitizer: its quarantine holds freed memory back from reuse, up
# to 256 MB by default, which shows as steady growth for hours, and it stores the stack of
# every allocation and free, a store that grows with each new path through the event loop
# (about 2 MB a simulated hour here, even with ten frames). A quarantine of 8 MB fills
# within minutes, and without allocation stacks (reports keep the stack of the bad access)
# what grows after the first hour is the program's own. A build without the sanitizer
# ignores these options.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}quarantine_size_mb=8:malloc_context_size=0:allocator_release_to_os_interval_ms=500"
e2e_run '
start_us=${EPOCHREALTIME/./}
LD_PRELOAD=$FAKETIME_LIB FAKETIME="@$TW_DAY_START x60" "$WORK/program/tarrowind" &
pid=$!
trap '\''if [ -n "${pid:-}" ] && kill -0 "$pid" 2>/dev/null; then kill -KILL "$pid"; fi'\'' EXIT
e2e_wait_title "$TW_DAY_TITLE" 30 || exit $?
# Simulated seconds from the start: the ten minutes before the hour, the day, six minutes.
end_us=$(( start_us + (600 + TW_DAY_HOURS * 3600 + 360) * 1000000 / 60 ))
next_sample_us=$(( start_us + 600 * 1000000 / 60 ))
hour=0
declare -A first_seen=() answered_at=()
typed=0
while :; do
    now_us=${EPOCHREALTIME/./}
    [ "$now_us" -ge "$end_us" ] && break
    kill -0 "$pid" 2>/dev/null || { echo "e2e: the program ended early"; pid=; exit 4; }
    # Resident memory once every simulated hour, from the first whole hour on.
    if [ "$now_us" -ge "$next_sample_us" ]; then
        echo "$hour $(awk '\''/^VmRSS:/ {print $2}'\'' "/proc/$pid/status")" >>"$WORK/rss.txt"
        hour=$((hour + 1))
        next_sample_us=$(( next_sample_us + 3600 * 1000000 / 60 ))
    fi
    for wid in $(xdotool search --onlyvisible --name "^Tarrowind Alarm\$" 2>/dev/null || true); do
        [ -n "${first_seen[$wid]:-}" ] || first_seen[$wid]=$now_us
        # A window answered a moment ago may still be closing; one still open after three
        # real seconds (three simulated minutes) did not get the keys and is answered again.
        if [ -n "${answered_at[$wid]:-}" ] && [ $(( now_us - answered_at[$wid] )) -lt 3000000 ]; then
            continue
        fi
        typed=$((typed + 1))
        # The focus lands on the first control that takes it: the location box of a safety
        # alarm, else the reset button of a retained alarm, else the stop button. Return then
        # presses the window'\''s default button: reset for a retained alarm (with the location
        # typed), stop for one that is not retained. The location has no blank (a blank would
        # press a focused button); Ctrl+A replaces what an earlier try left in the box. The
        # keys go through XTEST to the focused window, each command on its own: chained after
        # windowfocus they would be sent as synthetic events, which Qt ignores (and a newline
        # typed is not Return).
        if timeout 5 xdotool windowfocus --sync "$wid" >/dev/null 2>&1; then
            sleep 0.2
            timeout 5 xdotool key ctrl+a >/dev/null 2>&1 &&
                timeout 5 xdotool type --delay 1 "Grid-$typed" >/dev/null 2>&1 &&
                timeout 5 xdotool key Return >/dev/null 2>&1 || true
        fi
        answered_at[$wid]=${EPOCHREALTIME/./}
        echo "$wid Grid-$typed" >>"$WORK/answers.txt"
    done
    sleep 0.5
done
# The windows still open at the end were seen too.
for wid in $(xdotool search --onlyvisible --name "^Tarrowind Alarm\$" 2>/dev/null || true); do
    [ -n "${first_seen[$wid]:-}" ] || first_seen[$wid]=end
done
echo "${#first_seen[@]}" >"$WORK/windows.txt"
read -r -a stat <"/proc/$pid/stat"
echo "$(( (stat[13] + stat[14]) / $(getconf CLK_TCK) ))" >"$WORK/cpu.txt"
kill -TERM "$pid"
for _ in $(seq 1 300); do
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
done
if kill -0 "$pid" 2>/dev/null; then
    echo "e2e: the program did not end within 30 s of SIGTERM"
    exit 7
fi
wait "$pid"
status=$?
pid=
[ "$status" -eq 0 ] || { echo "e2e: the program ended with status $status after SIGTERM"; exit 8; }
' || { check "the day ran and the program ended cleanly" false; }

logs=$(cat "$work/data/Tarrowind/LogFolder" 2>/dev/null || echo "$work/program/Logs")
echo "CPU time of the program: $(cat "$work/cpu.txt" 2>/dev/null || echo '?') s"

# The expected rings, replayed from the alarms as set and the answers the log records.
checker=$(cat <<'PY'
import csv, glob, os, re, sys
from datetime import datetime, timedelta

table, logs, ini, windows = sys.argv[1:5]
MIN = timedelta(minutes=1)
alarms = []
for line in open(table):
    if line.strip():
        message, timer, expire, interval, retain, safety = line.rstrip("\n").split("|")
        alarms.append(dict(message=message, timer=timer == "True", expire=expire,
                           interval=interval, retain=retain == "1", safety=safety == "1"))
rows = []
for name in sorted(glob.glob(os.path.join(logs, "*.log"))):
    with open(name, newline="", encoding="utf-8", errors="replace") as f:
        for r in csv.reader(f):
            if len(r) != 7:
                continue
            at = datetime.strptime(r[0] + " " + r[1], "%m/%d/%Y %H:%M")
            rows.append(dict(at=at, code=r[2], safety=r[3], action=r[4], message=r[5], detail=r[6]))
failures = []
def fail(text):
    failures.append(text)
if not rows or rows[0]["code"] != "ST":
    print("FAIL: the logs do not begin with the start of the program"); sys.exit(1)
start = rows[0]["at"]
ends = [r for r in rows if r["code"] == "EX"]
if not ends:
    fail("no exit (EX) logged")
end = ends[-1]["at"] if ends else rows[-1]["at"]
if ends and ends[-1] is not rows[-1]:
    fail("entries after the exit")
late = [r for r in rows if "late" in r["detail"]]
for r in late:
    fail("late ring: %s %s%s" % (r["at"], r["message"], r["detail"]))
known = {a["message"] for a in alarms}
for r in rows:
    if r["code"] in ("EA", "SA") and r["message"] not in known:
        fail("entry for an unknown alarm: %s %s %s" % (r["at"], r["code"], r["message"]))

def hhmm(t):
    return t.strftime("%H:%M")
def next_at(expire, after):  # the first time after `after` that the clock reads `expire`
    h, m = map(int, expire.split(":"))
    t = after.replace(hour=h, minute=m)
    return t if t > after else t + timedelta(days=1)
def minutes(interval):
    h, m = map(int, interval.split(":"))
    return timedelta(hours=h, minutes=m)

ANSWER_LIMIT = 5 * MIN  # the operator answers within a few simulated minutes
total_rings = 0
positions = {}
for a in alarms:
    events = [r for r in rows if r["message"] == a["message"] and r["code"] in ("EA", "SA")]
    due, i, rings = next_at(a["expire"], start), 0, 0
    while due is not None and due <= end:
        ea = events[i] if i < len(events) else None
        if ea is None or ea["at"] > due or ea["code"] != "EA":
            if due < end:  # a ring due in the exit's own minute may come after the signal
                fail("%s: due at %s, did not ring then" % (a["message"], due))
            break
        if ea["at"] < due:
            fail("%s: rang at %s, before it was due at %s" % (a["message"], ea["at"], due))
            break
        i, rings = i + 1, rings + 1
        sa = events[i] if i < len(events) else None
        if sa is None or sa["code"] != "SA":
            if due < end - ANSWER_LIMIT:
                fail("%s: the ring at %s was not answered" % (a["message"], due))
            break
        i += 1
        if sa["at"] - ea["at"] > ANSWER_LIMIT:
            fail("%s: the ring at %s was answered only at %s" % (a["message"], due, sa["at"]))
        if not a["retain"]:
            # Not retained: the answer is "Stop", which deletes the alarm.
            if sa["action"] != "Alarm acknowledged, terminated for  " or sa["detail"] != "":
                fail("%s: answered at %s with %r %r, not stopped" % (a["message"], sa["at"], sa["action"], sa["detail"]))
            due = None
            continue
        m = re.fullmatch(r", expires at (\d\d:\d\d)(?:, (.*))?", sa["detail"])
        if sa["action"] != "Alarm acknowleged, reset for " or not m:
            fail("%s: answered at %s with %r %r, not reset" % (a["message"], sa["at"], sa["action"], sa["detail"]))
            break
        if a["safety"]:
            if not m.group(2) or not re.fullmatch(r"Grid-\d+", m.group(2)):
                fail("%s: the check at %s logged the location %r" % (a["message"], sa["at"], m.group(2)))
            positions[a["message"]] = (sa["at"], m.group(2))
        elif m.group(2) is not None:
            fail("%s: a location logged for an alarm that is no safety check" % a["message"])
        # A reset timer runs its interval again from the minute of the answer; a clock-time
        # alarm rings at its time of day again, the next day.
        if a["timer"]:
            due = sa["at"] + minutes(a["interval"])
        else:
            due = next_at(a["expire"], due)
        if m.group(1) != hhmm(due):
            fail("%s: reset at %s to expire at %s, expected %s" % (a["message"], sa["at"], m.group(1), hhmm(due)))
            break
    for r in events[i:]:
        fail("%s: unexpected %s entry at %s %s" % (a["message"], r["code"], r["at"], r["detail"]))
    total_rings += rings
    print("  %-20s rang %3d times" % (a["message"], rings))
ea_rows = [r for r in rows if r["code"] == "EA"]
print("%d rings from %s to %s, %d answers" % (len(ea_rows), start, end, sum(r["code"] == "SA" for r in rows)))
# Every ring opened a window that the operator saw (a ring in the exit's own minute may
# have opened its window after the last look).
seen = int(open(windows).read()) if os.path.exists(windows) else -1
at_end = sum(r["at"] == end for r in ea_rows)
if not len(ea_rows) - at_end <= seen <= len(ea_rows):
    fail("%d alarm windows seen for %d rings" % (seen, len(ea_rows)))
# The quarter-hourly saves and the last save keep each safety alarm's last position.
text = open(ini, encoding="utf-8", errors="replace").read()
stopped = sum(1 for a in alarms if not a["retain"] and any(r["message"] == a["message"] and r["code"] == "SA" for r in rows))
count = re.search(r"^Count=(\d+)$", text, re.M)
if not count or int(count.group(1)) != len(alarms) - stopped:
    fail("the settings keep %s alarms, expected %d" % (count and count.group(1), len(alarms) - stopped))
# Keys of numbers above the count are left over from before a delete: they are not read.
stored = {n: m for n, m in re.findall(r"^Message%20(\d+)=(.*)$", text, re.M) if count and int(n) <= int(count.group(1))}
for number, message in stored.items():
    if message in positions:
        at, location = positions[message]
        lp = re.search(r"^LastPosition%20" + number + r"=(.*)$", text, re.M)
        wanted = {hhmm(at) + " " + location, hhmm(at + MIN) + " " + location}
        if not lp or lp.group(1) not in wanted:
            fail("%s: last position %r, expected %s" % (message, lp and lp.group(1), " or ".join(sorted(wanted))))
for message in positions:
    if message not in stored.values():
        fail("%s: not kept in the settings" % message)
for f in failures[:40]:
    print("FAIL:", f)
if len(failures) > 40:
    print("... %d failures in all" % len(failures))
sys.exit(1 if failures else 0)
PY
)
if python3 -c "$checker" "$work/alarms.txt" "$logs" "$work/config/Tarrowind 2.ini" "$work/windows.txt"; then
    check "every due alarm rang once, on time, and was answered as the program defines" true
else
    check "every due alarm rang once, on time, and was answered as the program defines" false
    for f in "$logs"/*.log; do echo "== $f"; cat "$f"; done 2>/dev/null | tail -n 60
fi

# Resident memory. The first hour's sample is the base: by then every kind of alarm window
# has opened, fonts and styles are loaded and the allocator's pools are warm. A steady
# program then stays within a few MB of it: over a whole day under the sanitizer (with the
# options above) the samples rose 3 MB from a base of 100 MB and were flat from the fourth
# hour on, over each half run side by side they rose 3.5 and 4.3 MB in twelve hours; a plain
# build of 40 MB moved by less than 1 MB. The bound, 10 % of the base and
# at least 8 MB, is what a leak on the scale of what the day repeats most (a thousand alarm
# windows, fourteen hundred minutes' work) would exceed; a leak of a few bytes a minute it
# cannot see. A run of one hour has only the base and no later sample to judge.
echo "VmRSS (kB) by simulated hour, from the first whole hour:"
awk '{printf "h%s=%s ", $1, $2} END {print ""}' "$work/rss.txt" 2>/dev/null || true
samples=$(wc -l <"$work/rss.txt" 2>/dev/null || echo 0)
if [ "$hours" -eq 1 ]; then
    echo "one hour: too short to judge the memory"
elif [ "$samples" -ge 3 ]; then
    base=$(awk '$1 == 1 {print $2}' "$work/rss.txt")
    top=$(awk '$1 >= 1 {if ($2 > m) m = $2} END {print m}' "$work/rss.txt")
    bound=$(( base / 10 > 8192 ? base / 10 : 8192 ))
    echo "growth after the first hour: $(( top - base )) kB (bound $bound kB)"
    check "resident memory stays flat" '[ $(( top - base )) -le "$bound" ]'
else
    check "resident memory was sampled" false
fi
e2e_summary e2e_day
