#!/usr/bin/env bash
# The real program killed outright (SIGKILL) again and again during a busy minute: seven
# alarms ring at 10:15, their windows open, each rings into the log, the quarter-hour save
# runs, and the test answers some of the windows (each answer is one more log line). Other
# rounds kill it while it starts, or a moment after a SIGTERM has started its last save.
# After every kill:
#   - every log file holds only whole lines of the log's form, ends with a line end, and
#     still holds, unchanged, every byte it held before (the log only grows);
#   - the settings file is the old version or a new one, each whole: it parses, keeps every
#     key the last version had and every alarm; nothing else is left beside it but a stale
#     lock or a finished copy of the store's own;
#   - the next start comes up with its main window (checked by the round after).
# A last clean round shows that every alarm still rings and that a normal exit still saves.
# Finally the checker is run on doctored copies of the files (a torn last line, a torn line
# followed by a whole one, a changed old line, a settings file cut short, a stray half
# copy), each of which it must reject, so that the rounds could have caught a failure.
# The delays come from a fixed seed (CRASH_SEED) and are printed, so a failing round can be
# tried again; CRASH_ROUNDS sets the number of killed rounds.
# Usage: crash.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
for tool in python3 xdotool; do
    command -v "$tool" >/dev/null || { echo "e2e: $tool is missing (scripts/deps installs it)"; exit 1; }
done
e2e_init "$1" "$2"
export CRASH_SEED=${CRASH_SEED:-16112026} CRASH_ROUNDS=${CRASH_ROUNDS:-24}

# Seven alarms due at 10:15 (five at a clock time, two safety timers) and one due later.
# Each clock alarm repeats, so that answering its window resets it to the same time and
# the next round has the same busy minute.
e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
Audible=0
[Alarms]
Count=8
Message%201=Convoy 12 departs
Expire%201=10:15
AlarmSet%201=True
Repeat%201=1
Message%202=Gate 4 closes
Expire%202=10:15
AlarmSet%202=True
Repeat%202=1
Message%203=Crew 7 safety check
TypeTimer%203=True
Interval%203=00:15
Expire%203=10:15
AlarmSet%203=True
Repeat%203=1
Safety%203=1
Message%204=Later one
Expire%204=10:16
AlarmSet%204=True
Repeat%204=1
Message%205=Pump 3 reading
Expire%205=10:15
AlarmSet%205=True
Repeat%205=1
Message%206=Diver 2 surfaces
Expire%206=10:15
AlarmSet%206=True
Repeat%206=1
Message%207=Shift change
Expire%207=10:15
AlarmSet%207=True
Repeat%207=1
Message%208=Crew 9 safety check
TypeTimer%208=True
Interval%208=00:30
Expire%208=10:15
AlarmSet%208=True
Repeat%208=1
Safety%208=1
INI
mkdir -p "$work/state/prev" "$work/state/mid"
cp "$work/config/Tarrowind 2.ini" "$work/state/original.ini"
cp "$work/config/Tarrowind 2.ini" "$work/state/prev/"
: >"$work/results"

# The checks of the files, run after every kill (and by the self-check on doctored copies).
cat >"$work/check.py" <<'PYTHON'
import os, re, shutil, sys, tempfile

LINE = re.compile(rb'^"(\d\d/\d\d/\d{4})","(\d\d:\d\d)","(ST|EX|SA|CA|EA|NT)",(-?\d+),"([^"]*)","([^"]*)","([^"]*)"$')
SAVE_COPY = re.compile(r'^Tarrowind 2\.ini\.[A-Za-z0-9]{6}$')
ALARM_FIELDS = ['Message', 'TypeTimer', 'Expire', 'Interval', 'Repeat', 'AlarmSet', 'AudioPath', 'Safety',
                'LastPosition']


def parse_ini(data):
    """The settings as {(section, key): value}, or a reason why they are not whole."""
    if not data:
        return None, 'it is empty'
    if not data.endswith(b'\n'):
        return None, 'it does not end with a line end'
    if b'\0' in data:
        return None, 'it holds a NUL byte'
    try:
        text = data.decode('utf-8')
    except UnicodeDecodeError:
        return None, 'it is not UTF-8'
    values, section = {}, 'General'
    for number, line in enumerate(text.split('\n')[:-1], 1):
        line = line.rstrip('\r')
        if not line.strip():
            continue
        if line.startswith('[') and line.endswith(']'):
            section = line[1:-1]
        elif '=' in line:
            key, value = line.split('=', 1)
            values[(section, key.strip())] = value.strip()
        else:
            return None, 'line %d is neither a section nor a key: %r' % (number, line)
    return values, None


def alarms_of(values):
    count = values.get(('Alarms', 'Count'))
    return count, [values.get(('Alarms', 'Message%%20%d' % n)) for n in range(1, int(count or 0) + 1)]


def check_settings(path, prev_path, original_path, problems, what='the settings file'):
    """Returns 'old' or 'new'; adds to problems what makes the file not whole."""
    try:
        data = open(path, 'rb').read()
    except OSError as error:
        problems.append('%s cannot be read: %s' % (what, error))
        return None
    values, reason = parse_ini(data)
    if values is None:
        problems.append('%s is not whole: %s' % (what, reason))
        return None
    prev = open(prev_path, 'rb').read() if os.path.exists(prev_path) else None
    if prev is not None and data == prev:
        return 'old'
    original, _ = parse_ini(open(original_path, 'rb').read())
    count, messages = alarms_of(original)
    if alarms_of(values) != (count, messages):
        problems.append('%s lost alarms: Count=%s %s, expected Count=%s %s'
                        % (what, alarms_of(values)[0], alarms_of(values)[1], count, messages))
    for n in range(1, int(count) + 1):
        if values.get(('Alarms', 'AlarmSet%%20%d' % n)) != 'True':
            problems.append('%s: alarm %d is no longer set' % (what, n))
    # The program writes every field of every alarm; a file it wrote lacks none.
    if prev is not None and ('Alarms', 'LastPosition%201') in parse_ini(prev)[0]:
        for n in range(1, int(count) + 1):
            for field in ALARM_FIELDS:
                if ('Alarms', '%s%%20%d' % (field, n)) not in values:
                    problems.append('%s lacks %s of alarm %d' % (what, field, n))
    if prev is not None:
        lost = sorted(set(parse_ini(prev)[0]) - set(values))
        if lost:
            problems.append('%s lacks %d keys of the version before, e.g. %s' % (what, len(lost), lost[:3]))
    return 'new'


def check_logs(log_dir, state, problems):
    lines = 0
    names = sorted(os.listdir(log_dir)) if os.path.isdir(log_dir) else []
    for name in names:
        if not re.fullmatch(r'\d{8}\.log', name):
            problems.append('a stray file in the log folder: %s' % name)
            continue
        data = open(os.path.join(log_dir, name), 'rb').read()
        day = '%s/%s/%s' % (name[4:6], name[6:8], name[0:4])
        if data and not data.endswith(b'\r\n'):
            problems.append('%s does not end with a line end: ...%r' % (name, data[-40:]))
        pieces = data.split(b'\r\n') if data else []
        if pieces and pieces[-1] == b'':
            pieces.pop()
        for number, line in enumerate(pieces, 1):
            match = LINE.match(line)
            if not match or b'\r' in line or b'\n' in line:
                problems.append('%s line %d is not a whole entry: %r' % (name, number, line))
            elif match.group(1).decode() != day:
                problems.append('%s line %d has the date %s' % (name, number, match.group(1).decode()))
            lines += 1
        for folder in ('prev', 'mid'):
            before = os.path.join(state, folder, name)
            if os.path.exists(before):
                old = open(before, 'rb').read()
                if not data.startswith(old):
                    at = next((i for i in range(min(len(old), len(data))) if old[i] != data[i]), min(len(old), len(data)))
                    problems.append('%s changed what it held %s (at byte %d of %d: %r)'
                                    % (name, 'before the round' if folder == 'prev' else 'just before the kill',
                                       at, len(old), old[max(0, at - 20):at + 20]))
    for name in os.listdir(os.path.join(state, 'prev')):
        if name.endswith('.log') and name not in names:
            problems.append('%s is gone' % name)
    return lines


def check_all(root, final=False):
    """Checks the files under root (the test's folder layout); returns (problems, summary)."""
    problems, notes = [], []
    state = os.path.join(root, 'state')
    config = os.path.join(root, 'config')
    ini = os.path.join(config, 'Tarrowind 2.ini')
    log_dir = os.path.join(root, 'program', 'Logs')
    note = os.path.join(root, 'data', 'Tarrowind', 'LogFolder')
    if os.path.exists(note):
        content = open(note, 'rb').read()
        if content != (log_dir + '\n').encode():
            problems.append('the log folder note is not whole: %r' % content)
    lines = check_logs(log_dir, state, problems)
    version = check_settings(ini, os.path.join(state, 'prev', 'Tarrowind 2.ini'),
                             os.path.join(state, 'original.ini'), problems)
    for name in sorted(os.listdir(config)):
        if name == 'Tarrowind 2.ini':
            continue
        if name == 'Tarrowind 2.ini.lock':
            # A kill during a save leaves the store's lock; the next save finds it stale.
            if final:
                problems.append('the lock of the settings file is still there after a normal exit')
            else:
                notes.append('stale lock')
        elif SAVE_COPY.match(name):
            # The store names its finished copy just before renaming it over the file: a kill
            # between the two leaves a whole copy, which nothing reads.
            check_settings(os.path.join(config, name), os.path.join(state, 'prev', 'Tarrowind 2.ini'),
                           os.path.join(state, 'original.ini'), problems, 'the leftover copy ' + name)
            notes.append('leftover copy ' + name)
        else:
            problems.append('a stray file beside the settings: %s' % name)
    summary = '%d log lines, settings %s%s' % (lines, version, ''.join(', ' + n for n in notes))
    return problems, summary


def remember(root):
    """The files as they are now become the version the next round compares with."""
    state = os.path.join(root, 'state')
    for folder in ('prev', 'mid'):
        shutil.rmtree(os.path.join(state, folder))
        os.mkdir(os.path.join(state, folder))
    log_dir = os.path.join(root, 'program', 'Logs')
    if os.path.isdir(log_dir):
        for name in os.listdir(log_dir):
            shutil.copy(os.path.join(log_dir, name), os.path.join(state, 'prev', name))
    ini = os.path.join(root, 'config', 'Tarrowind 2.ini')
    if os.path.exists(ini):
        shutil.copy(ini, os.path.join(state, 'prev', 'Tarrowind 2.ini'))


def snapshot(root):
    """The log files as they are a moment before a kill."""
    log_dir = os.path.join(root, 'program', 'Logs')
    if os.path.isdir(log_dir):
        for name in os.listdir(log_dir):
            shutil.copy(os.path.join(log_dir, name), os.path.join(root, 'state', 'mid', name))


def self_check(root):
    """Doctored copies of the real files, each of which the checks must reject."""
    def copy_of_root():
        copy = tempfile.mkdtemp(dir=root)
        for part in ('config', 'data', os.path.join('program', 'Logs'), 'state'):
            shutil.copytree(os.path.join(root, part), os.path.join(copy, part))
        # The version before is the real one as it is now.
        remember(copy)
        with open(os.path.join(copy, 'data', 'Tarrowind', 'LogFolder'), 'w') as note:
            note.write(os.path.join(copy, 'program', 'Logs') + '\n')
        return copy

    def log_of(copy):
        log_dir = os.path.join(copy, 'program', 'Logs')
        return os.path.join(log_dir, sorted(os.listdir(log_dir))[0])

    def ini_of(copy):
        return os.path.join(copy, 'config', 'Tarrowind 2.ini')

    def torn_last_line(copy):
        data = open(log_of(copy), 'rb').read()
        open(log_of(copy), 'wb').write(data[:-12])

    def torn_then_whole(copy):
        # What a write cut short and the next start's entry on a line of its own leave.
        data = open(log_of(copy), 'rb').read()
        last = data[:-2].rsplit(b'\r\n', 1)[-1]
        open(log_of(copy), 'ab').write(last[:25] + b'\r\n' + last + b'\r\n')

    def changed_old_line(copy):
        data = bytearray(open(log_of(copy), 'rb').read())
        at = data.index(b'Start program')
        data[at] = ord('s')
        open(log_of(copy), 'wb').write(bytes(data))

    def lost_last_lines(copy):
        data = open(log_of(copy), 'rb').read()
        open(log_of(copy), 'wb').write(b'\r\n'.join(data.split(b'\r\n')[:2]) + b'\r\n')

    def settings_cut_half(copy):
        data = open(ini_of(copy), 'rb').read()
        open(ini_of(copy), 'wb').write(data[:len(data) // 2])

    def settings_cut_at_line(copy):
        lines = open(ini_of(copy), 'rb').read().split(b'\n')
        open(ini_of(copy), 'wb').write(b'\n'.join(lines[:len(lines) * 2 // 3]) + b'\n')

    def settings_cut_last_byte(copy):
        data = open(ini_of(copy), 'rb').read()
        open(ini_of(copy), 'wb').write(data[:-1])

    def settings_alarm_cut(copy):
        # A whole-looking file in which the alarms section ends early.
        data = open(ini_of(copy), 'rb').read().decode()
        kept = [line for line in data.split('\n') if not line.startswith('Message%208=')]
        open(ini_of(copy), 'wb').write('\n'.join(kept).encode())

    def half_copy_beside(copy):
        data = open(ini_of(copy), 'rb').read()
        open(os.path.join(copy, 'config', 'Tarrowind 2.ini.Ab12Cd'), 'wb').write(data[:len(data) // 3])

    def stray_temp_beside(copy):
        open(os.path.join(copy, 'config', 'Tarrowind 2.ini.tmp'), 'wb').write(b'[General]\n')

    def lock_left(copy):
        open(os.path.join(copy, 'config', 'Tarrowind 2.ini.lock'), 'wb').write(b'1\ntarrowind\n')

    cases = [
        ('a log whose last line is torn', torn_last_line, 'does not end with a line end', False),
        ('a torn line followed by a whole one', torn_then_whole, 'is not a whole entry', False),
        ('a log line changed after it was written', changed_old_line, 'changed what it held', False),
        ('a log that lost its last lines', lost_last_lines, 'changed what it held', False),
        ('a settings file cut in half', settings_cut_half, 'settings file', False),
        ('a settings file cut at a line end', settings_cut_at_line, 'lacks', False),
        ('a settings file without its last line end', settings_cut_last_byte, 'does not end with a line end', False),
        ('a settings file that lost an alarm', settings_alarm_cut, 'lost alarms', False),
        ('a half copy beside the settings', half_copy_beside, 'leftover copy', False),
        ('a stray file beside the settings', stray_temp_beside, 'stray file', False),
        ('a lock left after a normal exit', lock_left, 'lock', True),
    ]
    results = []
    pristine = copy_of_root()
    problems, _ = check_all(pristine)
    results.append(('ok' if not problems else 'FAIL',
                    'self-check: the undoctored files pass the checks %s' % problems))
    for description, doctor, expected, final in cases:
        copy = copy_of_root()
        doctor(copy)
        problems, _ = check_all(copy, final)
        caught = any(expected in problem for problem in problems)
        results.append(('ok' if caught else 'FAIL', 'self-check: the checks reject %s%s'
                        % (description, '' if caught else ' (they said: %s)' % problems)))
        shutil.rmtree(copy)
    shutil.rmtree(pristine)
    return results


if __name__ == '__main__':
    command, root = sys.argv[1], sys.argv[2]
    if command == 'snapshot':
        snapshot(root)
    elif command in ('round', 'final'):
        problems, summary = check_all(root, command == 'final')
        remember(root)
        print(summary)
        for problem in problems:
            print('  ' + problem)
        sys.exit(1 if problems else 0)
    elif command == 'self-check':
        try:
            results = self_check(root)
        except (OSError, IndexError, ValueError) as error:
            results = [('FAIL', 'self-check: the real files to doctor are there (%s)' % error)]
        for verdict, text in results:
            print('%s\t%s' % (verdict, text))
PYTHON

inner=$(
    cat <<'INNER'
title="Tarrowind --Monday November 16,2026 [Standard Time]"
due=7 # alarms due at 10:15
result() { printf '%s\t%s\n' "$1" "$2" >>"$WORK/results"; [ "$1" = ok ] || echo "FAIL: $2"; }
now_ms() { local t=${EPOCHREALTIME/[.,]/}; echo $((10#$t / 1000)); }
sleep_until() { # MS on the real clock
    local d=$(($1 - $(now_ms)))
    if ((d > 0)); then sleep "$((d / 1000)).$(printf '%03d' $((d % 1000)))"; fi
}
# Each start is five seconds before 10:15 on the faked clock: 10:15:00 comes at $zero.
start() {
    LD_PRELOAD=$FAKETIME_LIB FAKETIME="@2026-11-16 10:14:55" FAKETIME_DONT_FAKE_MONOTONIC=1 \
        "$WORK/program/tarrowind" &
    pid=$!
    started=$(now_ms)
    zero=$((started + 5000))
    main_at=""
}
wait_main() { # waits up to 30 s for the main window; sets main_at
    for _ in $(seq 1 600); do
        if [ "$(e2e_count_title "$title")" -ge 1 ]; then main_at=$(now_ms); return 0; fi
        kill -0 "$pid" 2>/dev/null || return 1
        sleep 0.05
    done
    return 1
}
kill_now() {
    kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}
windows_gone() { # the X server drops a killed program's windows
    for _ in $(seq 1 100); do
        [ "$(e2e_count_title "$title")" -eq 0 ] && [ "$(e2e_count_title "Tarrowind Alarm")" -eq 0 ] && return 0
        sleep 0.05
    done
    echo "e2e: windows of the killed program are still there"
}
# Answers the alarm windows as they come (Enter: reset to the same time, one more log line).
answer_windows() {
    for _ in $(seq 1 100); do
        kill -0 "$pid" 2>/dev/null || return 0
        for w in $(xdotool search --name '^Tarrowind Alarm$' 2>/dev/null); do
            timeout 2 xdotool windowfocus --sync "$w" key Return 2>/dev/null || true
        done
        sleep 0.1
    done
}
check_round() { # ROUND DESCRIPTION
    local out rc=0
    out=$(python3 "$WORK/check.py" round "$WORK") || rc=$?
    echo "    $out" | head -n 1
    if [ "$rc" -eq 0 ]; then
        result ok "round $1: the log and the settings are whole after $2"
    else
        result FAIL "round $1: the log and the settings are whole after $2: ${out//$'\n'/;}"
    fi
}
started_fine() { # ROUND
    if wait_main; then
        result ok "round $1: the program starts and shows its main window"
    else
        result FAIL "round $1: the program starts and shows its main window"
    fi
}
log_lines() { cat "$WORK"/program/Logs/*.log 2>/dev/null | grep -c "$1" || true; }

RANDOM=$CRASH_SEED
echo "seed $CRASH_SEED, $CRASH_ROUNDS rounds; delays in ms from 10:15:00 on the faked clock"
for round in $(seq 1 "$CRASH_ROUNDS"); do
    case $((round % 4)) in
    1) # killed while starting: the splash, reading the settings, the start line
        delay=$((RANDOM % 3000 - 5000))
        start
        sleep_until $((zero + delay))
        kill_now
        printf 'round %2d (start-up):    SIGKILL at %+5d ms\n' "$round" "$delay"
        what="a kill during the start" ;;
    0) # a SIGTERM starts the last save; SIGKILL follows within a few milliseconds
        delay=$((RANDOM % 3500 - 2000)) pause=$((RANDOM % 8000))
        exits=$(log_lines '"EX"')
        start
        started_fine "$round"
        sleep_until $((zero + delay))
        before=$(stat -c %i "$WORK/config/Tarrowind 2.ini")
        # The two signals from one process, the pause measured in microseconds.
        python3 -c 'import os, sys, time
pid, pause = int(sys.argv[1]), int(sys.argv[2]) / 1e6
os.kill(pid, 15)
time.sleep(pause)
os.kill(pid, 9)' "$pid" "$pause" 2>/dev/null || true
        kill_now
        after=$(stat -c %i "$WORK/config/Tarrowind 2.ini" 2>/dev/null || echo none)
        printf 'round %2d (last save):   SIGTERM at %+5d ms, SIGKILL %4d us later (exit %s, settings %s)\n' \
            "$round" "$delay" "$pause" "$([ "$(log_lines '"EX"')" -gt "$exits" ] && echo logged || echo "not logged")" \
            "$([ "$before" = "$after" ] && echo "not saved" || echo saved)"
        what="a kill during the exit" ;;
    *) # the busy minute: at 10:15:00 the alarms ring, each window opens and each alarm is
        # logged, then the quarter-hour save; then the answers, one log line each
        if ((round % 4 == 2)); then delay=$((RANDOM % 500 - 100)); else delay=$((RANDOM % 2600 + 400)); fi
        eas=$(log_lines '"EA"')
        start
        started_fine "$round"
        answer_windows &
        answering=$!
        sleep_until $((zero + delay - 150))
        python3 "$WORK/check.py" snapshot "$WORK"
        sleep_until $((zero + delay))
        kill_now
        wait "$answering" 2>/dev/null || true
        rang=$(($(log_lines '"EA"') - eas))
        printf 'round %2d (busy minute): SIGKILL at %+5d ms (%d alarms had rung)\n' "$round" "$delay" "$rang"
        # Well after 10:15 and after the start, every alarm due had rung: they were all there.
        if [ -n "$main_at" ] && ((zero + delay >= main_at + 2000 && delay >= 2000)); then
            if [ "$rang" -ge "$due" ]; then
                result ok "round $round: all $due alarms rang before the kill"
            else
                result FAIL "round $round: all $due alarms rang before the kill (only $rang)"
            fi
        fi
        what="a kill in the busy minute" ;;
    esac
    windows_gone
    check_round "$round" "$what"
done

# A last start on the same folders: every alarm is still there and rings, and a normal
# exit still saves (a lock left by a kill does not stop it) and logs the exit.
echo "last round: a normal start and exit"
start
started_fine last
for _ in $(seq 1 300); do
    [ "$(e2e_count_title "Tarrowind Alarm")" -ge "$due" ] && break
    sleep 0.05
done
windows=$(e2e_count_title "Tarrowind Alarm")
if [ "$windows" -eq "$due" ]; then
    result ok "last round: all $due alarms due ring after the kills"
else
    result FAIL "last round: all $due alarms due ring after the kills ($windows windows)"
fi
before=$(stat -c %i "$WORK/config/Tarrowind 2.ini")
kill -TERM "$pid"
for _ in $(seq 1 150); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
if kill -0 "$pid" 2>/dev/null; then
    result FAIL "last round: SIGTERM ends the program within 15 s"
    kill_now
else
    wait "$pid" || true
    result ok "last round: SIGTERM ends the program within 15 s"
fi
if [ "$(stat -c %i "$WORK/config/Tarrowind 2.ini")" != "$before" ]; then
    result ok "last round: the exit saves the settings"
else
    result FAIL "last round: the exit saves the settings"
fi
if tail -n 1 "$WORK/program/Logs/20261116.log" | grep -q '"EX",0,"Exit program"'; then
    result ok "last round: the exit is logged"
else
    result FAIL "last round: the exit is logged"
fi
out=$(python3 "$WORK/check.py" final "$WORK") && rc=0 || rc=$?
echo "    $out" | head -n 1
if [ "$rc" -eq 0 ]; then
    result ok "last round: the log and the settings are whole, no lock left"
else
    result FAIL "last round: the log and the settings are whole, no lock left: ${out//$'\n'/;}"
fi
INNER
)

e2e_run "$inner" && ran=1 || ran=0
check "the rounds ran to their end" '[ "$ran" -eq 1 ]'
rounds_checked=$(grep -c "^ok	round .*: the log and the settings are whole" "$work/results" || true)
check "at least 20 kills were checked" '[ "$rounds_checked" -ge 20 ] || [ "$CRASH_ROUNDS" -lt 20 ]'

# The checks must be able to fail: run them on doctored copies of the files as they are now.
python3 "$work/check.py" self-check "$work" >>"$work/results"

while IFS=$'\t' read -r verdict text; do
    check "$text" '[ "$verdict" = ok ]'
done <"$work/results"
[ "$failed" -eq 0 ] || { echo "log was:"; cat -A "$work/program/Logs/"*.log 2>/dev/null | tail -n 40; }
e2e_summary e2e_crash
