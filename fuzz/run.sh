#!/usr/bin/env bash
# Builds the libFuzzer programs with clang in their own build folder and runs them on their
# seed corpora.
#
#   fuzz/run.sh [SECONDS] [BUILD_FOLDER]
#       Runs every program for SECONDS (default 20) of wall time; scripts/test does this.
#   fuzz/run.sh --runs N [--build BUILD_FOLDER] [TARGET...]
#       Runs each program for N executions (-runs=N), one after the other; a safety limit
#       of --max-time SECONDS (default 21600) ends a run that takes longer.
#   fuzz/run.sh --long SECONDS [--build BUILD_FOLDER] [TARGET...]
#       Runs each program for SECONDS of wall time.
#   --leaks-at-end (with --runs or --long)
#       Checks for leaks once, when each run ends, instead of after every input that made
#       more allocations than it freed (libFuzzer's -detect_leaks=0; LeakSanitizer still
#       checks at exit and fails the run). A leak found so has no input of its own to
#       reproduce it. The settings program runs about fourteen times faster so: Qt keeps the
#       settings files it has read in a cache, most inputs leave it larger than they found
#       it, and each of those costs a scan of the whole heap.
#   fuzz/run.sh --merge [--build BUILD_FOLDER] [TARGET...]
#       Folds what earlier runs found into the seeds kept in the repository: libFuzzer's
#       -merge=1 adds to fuzz/corpus/<name>/ only those inputs of BUILD_FOLDER/fuzz-corpus/<name>/
#       that reach code the seeds do not (named by their SHA-1). It counts branches reached,
#       not how often (-use_counters=0), which keeps the seeds few; the whole corpus of the
#       runs stays in the build folder. It fails when the seeds then take more than 400 KB
#       together; delete the largest new ones and merge again.
#       --merge may follow --runs or --long to merge right after the runs.
#
# TARGET is a program's name with or without "fuzz_" (rtfreader, logline, sntpreply,
# settings); without one, every program runs. BUILD_FOLDER defaults to build-fuzz beside this
# folder. New inputs that libFuzzer finds go to BUILD_FOLDER/fuzz-corpus/<name>, never into
# the seeds under fuzz/corpus/ except through --merge; a crash, a leak or a hang leaves its
# input in BUILD_FOLDER/fuzz-artifacts/ and makes the script fail. Each run's output is also
# kept in BUILD_FOLDER/fuzz-logs/<name>.log; the script ends each run with its executions,
# wall time, executions per second, coverage (cov, ft) and corpus size. A long run's output
# goes to the log only. The seeds of the time server reply program are made by
# fuzz/sntp-seeds.sh; docs/FUZZING.md has the results of the long runs.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(dirname "$here")"
build="$root/build-fuzz"
seconds=20
runs=""
max_time=21600
long=0
merge=0
leaks_at_end=0
fuzz=1
targets=()

usage() {
    sed -n '2,/^set -euo/p' "${BASH_SOURCE[0]}" | sed -e '/^set -euo/d' -e 's/^# \{0,1\}//' >&2
    exit 2
}
whole() { [[ "$2" =~ ^[0-9]+$ ]] || { echo "fuzz/run.sh: $1 needs a whole number, not '$2'" >&2; exit 2; }; }

if [ $# -eq 0 ] || [[ "$1" != -* ]]; then
    # The bounded form: [SECONDS] [BUILD_FOLDER].
    [ $# -le 2 ] || usage
    seconds="${1:-20}"
    whole SECONDS "$seconds"
    [ $# -lt 2 ] || build="$2"
else
    fuzz=0
    while [ $# -gt 0 ]; do
        case "$1" in
            --runs) [ $# -ge 2 ] || usage; whole --runs "$2"; runs="$2"; fuzz=1; shift 2 ;;
            --long) [ $# -ge 2 ] || usage; whole --long "$2"; seconds="$2"; long=1; fuzz=1; shift 2 ;;
            --max-time) [ $# -ge 2 ] || usage; whole --max-time "$2"; max_time="$2"; shift 2 ;;
            --build) [ $# -ge 2 ] || usage; build="$2"; shift 2 ;;
            --merge) merge=1; shift ;;
            --leaks-at-end) leaks_at_end=1; shift ;;
            -h|--help) usage ;;
            -*) echo "fuzz/run.sh: unknown option $1" >&2; usage ;;
            *) targets+=("${1#fuzz_}"); shift ;;
        esac
    done
    [ $fuzz -eq 1 ] || [ $merge -eq 1 ] || usage
    [ -z "$runs" ] || [ $long -eq 0 ] || { echo "fuzz/run.sh: --runs and --long exclude each other" >&2; exit 2; }
    [ $leaks_at_end -eq 0 ] || [ -n "$runs" ] || [ $long -eq 1 ] || { echo "fuzz/run.sh: --leaks-at-end goes with --runs or --long" >&2; exit 2; }
fi
build="$(mkdir -p "$build" && cd "$build" && pwd)"

for tool in clang clang++; do
    command -v "$tool" >/dev/null || { echo "fuzz/run.sh: $tool is missing (scripts/deps installs it)" >&2; exit 1; }
done

names=()
for source in "$here"/fuzz_*.cpp; do
    names+=("$(basename "$source" .cpp)")
done
for target in "${targets[@]}"; do
    [ -f "$here/fuzz_$target.cpp" ] || { echo "fuzz/run.sh: no fuzz program '$target' (${names[*]})" >&2; exit 2; }
done
if [ ${#targets[@]} -ne 0 ]; then
    names=()
    for target in "${targets[@]}"; do names+=("fuzz_$target"); done
fi

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
# Debug keeps the Q_ASSERT checks of the Qt headers; -O1 keeps the runs quick.
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
    -DTW_FUZZ=ON -DTW_BUILD_TESTS=OFF -DTW_BUILD_BENCH=OFF "${launcher[@]}" >/dev/null
cmake --build "$build" --target "${names[@]}"

export QT_QPA_PLATFORM=offscreen
# A long run keeps two frames of each allocation's stack: where it was made and its caller.
# Deeper stacks pass through Qt's frames, which keep no frame pointer, and come out different
# almost every time; the sanitizer stores each one, and that store's growth slows a long run
# to a crawl (the settings program fell from 2,700 to 700 executions a second within 14
# minutes, its memory grew to 1.5 GB). Two frames are exact, and they are what the leak
# suppressions match; a crash's input is kept, to be run again with whole stacks.
asan=detect_leaks=1:abort_on_error=1
[ -z "$runs" ] && [ $long -eq 0 ] || asan+=:malloc_context_size=2
export ASAN_OPTIONS="${ASAN_OPTIONS:-$asan}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$here/lsan.supp:print_suppressions=0}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
# The settings program writes and reads back a settings file for every input, and the store
# pushes each write to the disk: on a memory file system it runs about eight times faster.
if [ -z "${TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi
mkdir -p "$build/fuzz-artifacts" "$build/fuzz-logs"

# summary NAME LOG SECONDS: one line of what a run did, from libFuzzer's last status line
# ("#N DONE cov: C ft: F corp: U/Sb ...") and its final statistics.
summary() {
    local name="$1" log="$2" took="$3" last execs rate
    last="$(grep -a -E '^#[0-9]+[[:space:]]+(DONE|pulse|NEW|REDUCE|INITED)' "$log" | tail -n 1 || true)"
    execs="$(grep -a -o 'stat::number_of_executed_units:[[:space:]]*[0-9]*' "$log" | tail -n 1 | grep -o '[0-9]*$' || true)"
    rate="$(grep -a -o 'stat::average_exec_per_sec:[[:space:]]*[0-9]*' "$log" | tail -n 1 | grep -o '[0-9]*$' || true)"
    local cov ft corp
    cov="$(grep -o 'cov: [0-9]*' <<<"$last" | grep -o '[0-9]*$' || true)"
    ft="$(grep -o 'ft: [0-9]*' <<<"$last" | grep -o '[0-9]*$' || true)"
    corp="$(grep -o 'corp: [0-9]*/[0-9]*[bKkM]*b\{0,1\}' <<<"$last" | sed 's/corp: //' || true)"
    echo "== $name: ${execs:-?} executions in ${took} s (${rate:-?} exec/s), cov ${cov:-?}, ft ${ft:-?}, corpus ${corp:-?}"
}

failed=()
if [ $fuzz -eq 1 ]; then
    for name in "${names[@]}"; do
        program="$build/fuzz/$name"
        if [ ! -x "$program" ]; then
            echo "fuzz/run.sh: $name is not built (not in fuzz/CMakeLists.txt); skipped"
            continue
        fi
        short="${name#fuzz_}"
        work="$build/fuzz-corpus/$short"
        log="$build/fuzz-logs/$name.log"
        mkdir -p "$work"
        args=(-timeout=10 -rss_limit_mb=4096 -max_len=16384 -print_final_stats=1
              -artifact_prefix="$build/fuzz-artifacts/$name-")
        if [ -n "$runs" ]; then
            args+=(-runs="$runs" -max_total_time="$max_time")
            echo "== $name for $runs executions (at most $max_time s); output in $log"
        else
            args+=(-max_total_time="$seconds")
            echo "== $name for $seconds s"
        fi
        [ -f "$here/$short.dict" ] && args+=(-dict="$here/$short.dict")
        [ $leaks_at_end -eq 0 ] || args+=(-detect_leaks=0)
        seeds=()
        [ -d "$here/corpus/$short" ] && seeds+=("$here/corpus/$short")
        start=$(date +%s)
        status=0
        if [ -n "$runs" ] || [ $long -eq 1 ]; then
            "$program" "${args[@]}" "$work" "${seeds[@]}" >"$log" 2>&1 || status=$?
            [ $status -eq 0 ] || tail -n 60 "$log"
        else
            "$program" "${args[@]}" "$work" "${seeds[@]}" 2>&1 | tee "$log" || status=${PIPESTATUS[0]}
        fi
        summary "$name" "$log" "$(($(date +%s) - start))"
        [ $status -eq 0 ] || failed+=("$name")
    done
fi

if [ $merge -eq 1 ] && [ ${#failed[@]} -eq 0 ]; then
    for name in "${names[@]}"; do
        short="${name#fuzz_}"
        found="$build/fuzz-corpus/$short"
        if [ ! -d "$found" ] || [ -z "$(ls -A "$found")" ]; then
            echo "fuzz/run.sh: nothing found for $name yet; run it first"
            continue
        fi
        mkdir -p "$here/corpus/$short"
        before=$(ls "$here/corpus/$short" | wc -l)
        echo "== merging $found into fuzz/corpus/$short"
        "$build/fuzz/$name" -merge=1 -use_counters=0 -timeout=10 -rss_limit_mb=4096 -max_len=16384 \
            -artifact_prefix="$build/fuzz-artifacts/$name-" "$here/corpus/$short" "$found" \
            >"$build/fuzz-logs/$name-merge.log" 2>&1 || { tail -n 30 "$build/fuzz-logs/$name-merge.log"; failed+=("$name (merge)"); continue; }
        echo "fuzz/run.sh: $name: $(($(ls "$here/corpus/$short" | wc -l) - before)) inputs added to fuzz/corpus/$short"
    done
    kb=$(find "$here/corpus" -type f -printf '%s\n' | awk '{ s += $1 } END { print int(s / 1024) }')
    echo "fuzz/run.sh: the seeds take $kb KB"
    if [ "$kb" -gt 400 ]; then
        echo "fuzz/run.sh: the seeds under fuzz/corpus/ take more than 400 KB; remove the largest new ones" >&2
        exit 1
    fi
fi

if [ ${#failed[@]} -ne 0 ]; then
    echo "fuzz/run.sh: failed: ${failed[*]}; inputs in $build/fuzz-artifacts/" >&2
    exit 1
fi
[ $fuzz -eq 0 ] || echo "fuzz/run.sh: no crash, leak or hang found"
