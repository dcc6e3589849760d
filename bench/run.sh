#!/usr/bin/env bash
# Measures Tarrowind's run-time figures and prints a table of targets against results.
#
#   1. Idle cost side by side with the peer `xclock -update 1`, each under its own Xvfb at the
#      same time: wake-ups a second of each, and the CPU time of each plus its X server
#   2. Peak resident memory (VmHWM from /proc/PID/status), and the peer's
#   3. Time from the start of the process to the main window being shown
#   4. How far after each true second the seconds box changes (bench_tick)
#
# Usage: bench/run.sh [--idle SECONDS] [--settle SECONDS] [--tick SECONDS] [--starts N]
#                     [--build-dir DIR]
#
# Every program is run under a virtual X server (xvfb-run) and without the capability to
# set the computer's clock (setpriv). The program runs from a temporary copy with its own
# temporary settings, data and runtime folders, so the user's own files are not touched.
set -euo pipefail

readonly SCREEN="-screen 0 1024x600x24"
readonly TITLE_PREFIX='"Tarrowind --'
readonly SPLASH_TITLE='"Tarrowind"'
readonly CAP_SYS_TIME_BIT=25
# Targets.
readonly TARGET_WAKEUPS=2.5
readonly TARGET_IDLE_RATIO=0.75
readonly TARGET_HWM_MB=60
readonly TARGET_START_S=2.2
readonly TARGET_TICK_MS=20

die() {
    echo "run.sh: error: $*" >&2
    exit 1
}
note() { echo "run.sh: $*" >&2; }

# Floating-point arithmetic and comparisons.
calc() { awk "BEGIN { printf \"%.${1}f\", $2 }"; }
le() { awk -v a="$1" -v b="$2" 'BEGIN { exit !(a <= b) }'; }

# Fails unless this process has lost CAP_SYS_TIME from its bounding set.
check_no_sys_time() {
    local bnd
    bnd=$(awk '/^CapBnd:/ { print $2 }' /proc/self/status)
    if (((16#$bnd >> CAP_SYS_TIME_BIT) & 1)); then
        die "refusing to run: CAP_SYS_TIME is still in the bounding set"
    fi
}

# Nanoseconds on the CPU, summed over the process's current threads.
cpu_ns() { { cat /proc/"$1"/task/*/schedstat 2>/dev/null || true; } | awk '{ s += $1 } END { printf "%d", s }'; }
status_kb() { awk -v key="$2:" '$1 == key { print $2 }' "/proc/$1/status"; }
# Wake-ups of a process: the times its threads went to sleep of their own accord (voluntary
# context switches), summed over the threads. A thread that wakes, works and sleeps again
# counts once; being pre-empted by another process on a busy machine does not count.
wakeups() {
    { cat /proc/"$1"/task/*/status 2>/dev/null || true; } |
        awk '$1 == "voluntary_ctxt_switches:" { s += $2 } END { printf "%d", s }'
}

# ---------------------------------------------------------------------------------------
# Idle part: runs inside xvfb-run, next to the X server it started, with either the program
# or the peer. Waits SETTLE seconds, then counts the wake-ups and the CPU time of the process
# and of its X server over IDLE seconds; writes "key=value" lines to RESULTS.
# ---------------------------------------------------------------------------------------
idle_inner() {
    local kind=$1 program=$2 sound=$3 results=$4 settle=$5 idle=$6
    check_no_sys_time
    : >"$results"
    local xserver
    # xvfb-run starts the X server and this script as its two children.
    xserver=$(pgrep -P "$PPID" -x Xvfb | head -n 1)
    [[ -n $xserver ]] || die "idle: the X server of this run was not found"

    pid="" base=""
    # shellcheck disable=SC2317 # called by the trap
    idle_cleanup() {
        if [[ -n $pid ]] && kill -0 "$pid" 2>/dev/null; then
            kill -TERM "$pid" 2>/dev/null || true
            sleep 1
            kill -KILL "$pid" 2>/dev/null || true
        fi
        [[ -z $base ]] || rm -rf "$base"
    }
    trap idle_cleanup EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM

    base=$(mktemp -d "${TMPDIR:-/tmp}/tw-bench-idle.XXXXXX")
    mkdir -p "$base/app" "$base/config" "$base/data" "$base/cache"
    install -d -m 700 "$base/runtime"
    if [[ $kind == program ]]; then
        cp "$program" "$base/app/tarrowind"
        cp "$sound" "$base/app/DefaultAlarm.Wav"
        set -- "$base/app/tarrowind"
    else
        set -- xclock -update 1
    fi
    env -u QT_QPA_PLATFORM LANG=en_US.UTF-8 LC_ALL= HOME="$base" \
        XDG_CONFIG_HOME="$base/config" XDG_DATA_HOME="$base/data" \
        XDG_CACHE_HOME="$base/cache" XDG_RUNTIME_DIR="$base/runtime" \
        "$@" >"$base/stdout.txt" 2>"$base/stderr.txt" &
    pid=$!
    sleep "$settle" &
    wait $!
    kill -0 "$pid" 2>/dev/null || die "idle: $kind ended during the settling time"
    local w0 w1 p0 p1 x0 x1 k0 k1
    w0=$EPOCHREALTIME
    p0=$(cpu_ns "$pid") k0=$(wakeups "$pid") x0=$(cpu_ns "$xserver")
    sleep "$idle" &
    wait $!
    p1=$(cpu_ns "$pid") k1=$(wakeups "$pid") x1=$(cpu_ns "$xserver")
    w1=$EPOCHREALTIME
    local wall
    wall=$(calc 3 "$w1 - $w0")
    {
        echo "wall_s=$wall"
        echo "wakeups_per_s=$(calc 2 "($k1 - $k0) / $wall")"
        echo "cpu_ms=$(calc 1 "($p1 - $p0) / 1e6")"
        echo "x_cpu_ms=$(calc 1 "($x1 - $x0) / 1e6")"
        echo "cpu_percent=$(calc 4 "($p1 - $p0) / 1e9 / $wall * 100")"
        echo "threads=$(status_kb "$pid" Threads)"
        echo "vmhwm_kb=$(status_kb "$pid" VmHWM)"
        echo "vmrss_kb=$(status_kb "$pid" VmRSS)"
    } >>"$results"
}

# Waits for the next top-level window to be mapped, reading the X server's notices from fd 3
# as they come (no polling, which would compete with the program for the CPU). Sets
# `mapped_at` ($EPOCHREALTIME of the notice) and `mapped_name` (the window's title, quoted as
# xwininfo prints it). Gives up when process PID ends or LIMIT seconds have passed since T0.
next_mapped() { # PID T0 LIMIT WHAT
    local line="" id="" rc
    while :; do
        rc=0
        read -r -t 0.2 line <&3 || rc=$?
        if ((rc > 128)); then # no notice yet
            kill -0 "$1" 2>/dev/null || die "$4 ended before its window appeared"
            le "$(calc 3 "$EPOCHREALTIME - $2")" "$3" || die "no window of $4 after $3 s"
            continue
        fi
        ((rc == 0)) || die "the X event listener (xev) ended unexpectedly"
        [[ $line == MapNotify* ]] || continue
        mapped_at=$EPOCHREALTIME
        read -r -t 2 line <&3 || die "unexpected output from xev after a MapNotify"
        id=$(sed -n 's/.* window \(0x[0-9a-fA-F]*\), override.*/\1/p' <<<"$line")
        [[ -n $id ]] || continue
        mapped_name=$(xwininfo -id "$id" 2>/dev/null) || continue
        mapped_name=${mapped_name#*Window id: "$id" }
        mapped_name=${mapped_name%%$'\n'*}
        return 0
    done
}

# ---------------------------------------------------------------------------------------
# Inner part: runs inside xvfb-run (DISPLAY is set), launches the program, measures it and
# writes "key=value" lines to the results file.
# ---------------------------------------------------------------------------------------
inner() {
    local program=$1 sound=$2 results=$3 starts=$4
    local start_timeout=30 stop_timeout=15
    check_no_sys_time
    : >"$results"

    pid="" base="" xev_pid=""
    # shellcheck disable=SC2317 # called by the trap
    inner_cleanup() {
        if [[ -n $pid ]] && kill -0 "$pid" 2>/dev/null; then
            kill -TERM "$pid" 2>/dev/null || true
            local i
            for ((i = 0; i < 30; i++)); do
                kill -0 "$pid" 2>/dev/null || break
                sleep 0.1
            done
            kill -KILL "$pid" 2>/dev/null || true
        fi
        if [[ -n $base ]]; then
            rm -rf "$base"
        fi
        if [[ -n $xev_pid ]]; then
            kill "$xev_pid" 2>/dev/null || true
        fi
    }
    trap inner_cleanup EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM

    # Listen to the X server's notices of top-level windows being mapped.
    exec 3< <(exec stdbuf -oL xev -root -event substructure)
    xev_pid=$!
    sleep 1 # let xev connect and select its input before the first start
    kill -0 "$xev_pid" 2>/dev/null || die "xev could not listen to the X server"

    local run
    for ((run = 1; run <= starts; run++)); do
        # A fresh copy and fresh folders for every start: no settings, no logs.
        base=$(mktemp -d "${TMPDIR:-/tmp}/tw-bench-run.XXXXXX")
        mkdir -p "$base/app" "$base/config" "$base/data" "$base/cache"
        install -d -m 700 "$base/runtime"
        cp "$program" "$base/app/tarrowind"
        cp "$sound" "$base/app/DefaultAlarm.Wav"

        local t0 t1
        t0=$EPOCHREALTIME
        env -u QT_QPA_PLATFORM LANG=en_US.UTF-8 LC_ALL= HOME="$base" \
            XDG_CONFIG_HOME="$base/config" XDG_DATA_HOME="$base/data" \
            XDG_CACHE_HOME="$base/cache" XDG_RUNTIME_DIR="$base/runtime" \
            "$base/app/tarrowind" >"$base/stdout.txt" 2>"$base/stderr.txt" &
        pid=$!

        # Wait for the main window to be mapped, noting when the splash is.
        local splash_s=""
        while next_mapped "$pid" "$t0" "$start_timeout" "the program (run $run)"; do
            [[ $mapped_name == "$TITLE_PREFIX"* ]] && break
            if [[ -z $splash_s && $mapped_name == "$SPLASH_TITLE" ]]; then
                splash_s=$(calc 3 "$mapped_at - $t0")
            fi
        done
        t1=$mapped_at
        local start_s
        start_s=$(calc 3 "$t1 - $t0")
        echo "start_s_$run=$start_s" >>"$results"
        echo "splash_s_$run=${splash_s:-none}" >>"$results"
        note "run $run: splash seen after ${splash_s:-(never)} s, main window shown after $start_s s"

        # Ask the program to end and wait for it.
        kill -TERM "$pid"
        local waited=0
        while kill -0 "$pid" 2>/dev/null && ((waited < stop_timeout * 10)); do
            sleep 0.1
            waited=$((waited + 1))
        done
        if kill -0 "$pid" 2>/dev/null; then
            kill -KILL "$pid" 2>/dev/null || true
            wait "$pid" 2>/dev/null || true
            pid=""
            die "the program did not end within $stop_timeout s of SIGTERM (run $run)"
        fi
        local status=0
        wait "$pid" || status=$?
        pid=""
        echo "exit_status_$run=$status" >>"$results"
        if [[ -f "$base/config/Tarrowind 2.ini" ]]; then
            echo "settings_saved_$run=yes" >>"$results"
        else
            echo "settings_saved_$run=no" >>"$results"
        fi
        if [[ -s "$base/stderr.txt" ]]; then
            note "run $run wrote to stderr:"
            sed 's/^/  | /' "$base/stderr.txt" >&2
        fi
        rm -rf "$base"
        base=""
    done

    # The peer: xclock, from its launch to its window being mapped, the same number of times.
    for ((run = 1; run <= starts; run++)); do
        local p0
        p0=$EPOCHREALTIME
        xclock -update 1 >/dev/null 2>&1 &
        pid=$!
        while next_mapped "$pid" "$p0" "$start_timeout" "xclock (run $run)"; do
            [[ $mapped_name == '"xclock"'* ]] && break
        done
        local p1=$mapped_at
        echo "peer_start_s_$run=$(calc 3 "$p1 - $p0")" >>"$results"
        kill -TERM "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
        pid=""
    done
}

if [[ ${1:-} == __idle ]]; then
    shift
    idle_inner "$@"
    exit 0
fi
if [[ ${1:-} == __inner ]]; then
    shift
    inner "$@"
    exit 0
fi

# ---------------------------------------------------------------------------------------
# Outer part.
# ---------------------------------------------------------------------------------------
script=$(readlink -f "${BASH_SOURCE[0]}")
root=$(dirname "$(dirname "$script")")
build_dir="$root/build-bench"
idle=60
# The seconds box lays out each of its sixty texts once, in the first minute.
settle=70
tick=30
starts=5

usage() {
    sed -n '2,13p' "$script" | sed 's/^# \{0,1\}//'
}

while (($#)); do
    case $1 in
    --idle) idle=${2:?--idle needs a number of seconds}; shift 2 ;;
    --settle) settle=${2:?--settle needs a number of seconds}; shift 2 ;;
    --tick) tick=${2:?--tick needs a number of seconds}; shift 2 ;;
    --starts) starts=${2:?--starts needs a number}; shift 2 ;;
    --build-dir) build_dir=${2:?--build-dir needs a folder}; shift 2 ;;
    -h | --help) usage; exit 0 ;;
    *) usage >&2; die "unknown argument: $1" ;;
    esac
done
for n in "$idle" "$settle" "$tick" "$starts"; do
    [[ $n =~ ^[1-9][0-9]*$ ]] || die "not a positive whole number: $n"
done

for tool in cmake ninja xvfb-run xwininfo xev xclock stdbuf setpriv timeout awk pgrep; do
    command -v "$tool" >/dev/null || die "$tool not found (xwininfo, xev: x11-utils; xclock: x11-apps; xvfb-run: xvfb)"
done

# Build (Release) if needed; ninja rebuilds only what changed.
if [[ ! -f "$build_dir/CMakeCache.txt" ]]; then
    note "configuring $build_dir"
    cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTW_BUILD_TESTS=OFF \
        -DTW_BUILD_BENCH=ON >/dev/null || die "cmake configure failed"
fi
build_type=$(awk -F= '/^CMAKE_BUILD_TYPE:/ { print $2 }' "$build_dir/CMakeCache.txt")
[[ $build_type == Release ]] || note "warning: $build_dir is a '$build_type' build, not Release"
note "building in $build_dir"
cmake --build "$build_dir" --target tarrowind bench_tick DefaultAlarmSound >/dev/null ||
    die "build failed (run: cmake --build $build_dir)"

program="$build_dir/src/tarrowind"
sound="$build_dir/src/DefaultAlarm.Wav"
bench_tick="$build_dir/bench/bench_tick"
for f in "$program" "$sound" "$bench_tick"; do
    [[ -f $f ]] || die "missing after build: $f"
done

work=$(mktemp -d "${TMPDIR:-/tmp}/tw-bench.XXXXXX")
# Every temporary file of the run (xvfb-run's too) goes under $work, removed at the end.
mkdir "$work/tmp"
export TMPDIR="$work/tmp"
child="" idle_pid=""
# shellcheck disable=SC2317 # called by the traps
cleanup() {
    if [[ -n $idle_pid ]]; then
        kill -TERM "$idle_pid" 2>/dev/null || true
        wait "$idle_pid" 2>/dev/null || true
    fi
    if [[ -n $child ]]; then
        kill -TERM "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Runs a step in the background and waits for it, so that an interruption is acted on at
# once (bash runs a trap only after a foreground command has ended).
step() {
    "$@" &
    child=$!
    local rc=0
    wait "$child" || rc=$?
    child=""
    return "$rc"
}

# 1-2: idle, side by side with the peer. Both run at the same time, each under its own X
# server, so that both see the same machine; the peer starts 3 s later (two xvfb-run -a
# starting together could pick the same display) and settles 3 s less.
note "measuring idle cost side by side with xclock -update 1: $settle s to settle, $idle s measured"
idle_program="$work/idle-program.txt" idle_peer="$work/idle-peer.txt"
timeout --kill-after=10 $((settle + idle + 60)) setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "$SCREEN" bash "$script" __idle program "$program" "$sound" "$idle_program" $((settle + 3)) "$idle" &
idle_pid=$!
sleep 3
step timeout --kill-after=10 $((settle + idle + 60)) setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "$SCREEN" bash "$script" __idle peer "" "" "$idle_peer" "$settle" "$idle" ||
    die "the peer's idle measurement failed (status $?)"
wait "$idle_pid" || die "the program's idle measurement failed (status $?)"
idle_pid=""

# 3: start-up of the real program.
results="$work/program.txt"
note "measuring the program: $starts start(s)"
step timeout --kill-after=10 $((starts * 60 + 60)) \
    setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "$SCREEN" bash "$script" __inner "$program" "$sound" "$results" "$starts" ||
    die "the program measurement failed (status $?)"

# 4: the seconds box.
tick_out="$work/tick.txt"
mkdir -p "$work/tick/config" "$work/tick/data"
install -d -m 700 "$work/tick/runtime"
note "measuring the seconds box for $tick s"
tick_status=0
step timeout --kill-after=10 $((tick + 60)) \
    env -u QT_QPA_PLATFORM LANG=en_US.UTF-8 LC_ALL= HOME="$work/tick" XDG_CONFIG_HOME="$work/tick/config" \
    XDG_DATA_HOME="$work/tick/data" XDG_RUNTIME_DIR="$work/tick/runtime" \
    setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "$SCREEN" "$bench_tick" "$tick" >"$tick_out" || tick_status=$?
((tick_status == 0 || tick_status == 1)) || die "bench_tick failed (status $tick_status)"
[[ $tick_status == 0 ]] || note "warning: bench_tick reported a problem (status 1), see wrong_second"

get() { awk -F= -v k="$2" '$1 == k { print $2; exit }' "$1"; }

# Start-up times: median and worst of the starts.
mapfile -t start_times < <(for ((i = 1; i <= starts; i++)); do get "$results" "start_s_$i"; done | sort -n)
mapfile -t splash_times < <(for ((i = 1; i <= starts; i++)); do get "$results" "splash_s_$i"; done | sort -n)
start_median=${start_times[$(((starts - 1) / 2))]}
start_max=${start_times[$((starts - 1))]}
mapfile -t peer_start_times < <(for ((i = 1; i <= starts; i++)); do get "$results" "peer_start_s_$i"; done | sort -n)
peer_start_median=${peer_start_times[$(((starts - 1) / 2))]}
wake=$(get "$idle_program" wakeups_per_s)
peer_wake=$(get "$idle_peer" wakeups_per_s)
cost=$(calc 1 "$(get "$idle_program" cpu_ms) + $(get "$idle_program" x_cpu_ms)")
peer_cost=$(calc 1 "$(get "$idle_peer" cpu_ms) + $(get "$idle_peer" x_cpu_ms)")
idle_ratio=$(awk -v a="$cost" -v b="$peer_cost" 'BEGIN { if (b > 0) printf "%.2f", a / b; else print "inf" }')
hwm_kb=$(get "$idle_program" vmhwm_kb)
hwm_mb=$(calc 1 "$hwm_kb / 1024")
peer_hwm_mb=$(calc 1 "$(get "$idle_peer" vmhwm_kb) / 1024")
rss_mb=$(calc 1 "$(get "$idle_program" vmrss_kb) / 1024")
tick_median=$(get "$tick_out" median_ms)
tick_p95=$(get "$tick_out" p95_ms)
tick_max=$(get "$tick_out" max_ms)
tick_min=$(get "$tick_out" min_ms)

verdict() { if le "$1" "$2"; then echo PASS; else echo MISS; fi; }
abs() { awk -v a="$1" 'BEGIN { print (a < 0 ? -a : a) }'; }
tick_worst=$(abs "$tick_max")
if le "$tick_worst" "$(abs "$tick_min")"; then tick_worst=$(abs "$tick_min"); fi

echo
echo "Tarrowind benchmarks  ($(date '+%Y-%m-%d %H:%M'), $(nproc) cores, $(awk -F': ' '/^model name/ { print $2; exit }' /proc/cpuinfo), Qt $(get "$tick_out" qt_version))"
printf '%-34s %-12s %-52s %s\n' "Benchmark" "Target" "Measured" "Result"
printf '%-34s %-12s %-52s %s\n' "Idle wake-ups a second ($idle s)" "<= ${TARGET_WAKEUPS}" \
    "$wake (xclock: $peer_wake; ratio $(calc 2 "$wake / $peer_wake"))" "$(verdict "$wake" "$TARGET_WAKEUPS")"
printf '%-34s %-12s %-52s %s\n' "Idle CPU + X server, to xclock's" "<= ${TARGET_IDLE_RATIO}" \
    "$idle_ratio ($cost ms against $peer_cost ms)" "$(verdict "$idle_ratio" "$TARGET_IDLE_RATIO")"
printf '%-34s %-12s %-52s %s\n' "Peak resident memory (VmHWM)" "<= ${TARGET_HWM_MB} MB" \
    "$hwm_mb MB (xclock: $peer_hwm_mb MB; ratio $(calc 2 "$hwm_mb / $peer_hwm_mb"))" "$(verdict "$hwm_mb" "$TARGET_HWM_MB")"
printf '%-34s %-12s %-52s %s\n' "Start to main window ($starts starts)" "<= ${TARGET_START_S} s" \
    "median $start_median s, max $start_max s (xclock: $peer_start_median s)" "$(verdict "$start_max" "$TARGET_START_S")"
printf '%-34s %-12s %-52s %s\n' "Seconds box lag ($(get "$tick_out" count) changes)" "<= ${TARGET_TICK_MS} ms" \
    "median $tick_median, p95 $tick_p95, max $tick_max ms" "$(verdict "$tick_worst" "$TARGET_TICK_MS")"
echo
echo "Idle: Tarrowind $(get "$idle_program" cpu_ms) ms + X server $(get "$idle_program" x_cpu_ms) ms" \
    "($(get "$idle_program" cpu_percent) % of a core); xclock $(get "$idle_peer" cpu_ms) ms + X server" \
    "$(get "$idle_peer" x_cpu_ms) ms ($(get "$idle_peer" cpu_percent) % of a core); over $(get "$idle_program" wall_s) s."
echo "Details: start times ${start_times[*]} s (xclock: ${peer_start_times[*]} s; ratio of medians $(calc 1 "$start_median / $peer_start_median")); splash mapped after ${splash_times[*]} s; threads $(get "$idle_program" threads);" \
    "exit status on SIGTERM $(get "$results" exit_status_1), settings saved $(get "$results" settings_saved_1);" \
    "seconds box min lag $tick_min ms, wrong second $(get "$tick_out" wrong_second);" \
    "bench_tick load+show $(get "$tick_out" load_and_show_ms) ms."
