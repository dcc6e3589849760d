#!/usr/bin/env bash
# Builds the libFuzzer programs with clang in their own build folder and runs each for a
# bounded time on its seed corpus.
#
#   fuzz/run.sh [SECONDS] [BUILD_FOLDER]
#
# SECONDS is each program's run time (default 20). BUILD_FOLDER defaults to build-fuzz
# beside this folder. New inputs that libFuzzer finds go to BUILD_FOLDER/fuzz-corpus/<name>,
# never into the seeds under fuzz/corpus/; a crash, a leak or a hang leaves its input in
# BUILD_FOLDER/fuzz-artifacts/ and makes the script fail.
set -euo pipefail

seconds="${1:-20}"
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(dirname "$here")"
build="${2:-$root/build-fuzz}"

[[ "$seconds" =~ ^[0-9]+$ ]] || { echo "fuzz/run.sh: SECONDS must be a whole number" >&2; exit 2; }
for tool in clang clang++; do
    command -v "$tool" >/dev/null || { echo "fuzz/run.sh: $tool is missing (scripts/deps installs it)" >&2; exit 1; }
done

# Debug keeps the Q_ASSERT checks of the Qt headers; -O1 keeps the runs quick.
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
    -DTW_FUZZ=ON -DTW_BUILD_TESTS=OFF -DTW_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" --target fuzz

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$here/lsan.supp:print_suppressions=0}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
mkdir -p "$build/fuzz-artifacts"

failed=()
for source in "$here"/fuzz_*.cpp; do
    name="$(basename "$source" .cpp)"
    program="$build/fuzz/$name"
    if [ ! -x "$program" ]; then
        echo "fuzz/run.sh: $name is not built (not in fuzz/CMakeLists.txt); skipped"
        continue
    fi
    short="${name#fuzz_}"
    work="$build/fuzz-corpus/$short"
    mkdir -p "$work"
    args=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -max_len=16384 -print_final_stats=1
          -artifact_prefix="$build/fuzz-artifacts/$name-")
    [ -f "$here/$short.dict" ] && args+=(-dict="$here/$short.dict")
    seeds=()
    [ -d "$here/corpus/$short" ] && seeds+=("$here/corpus/$short")
    echo "== $name for $seconds s"
    if ! "$program" "${args[@]}" "$work" "${seeds[@]}"; then
        failed+=("$name")
    fi
done

if [ ${#failed[@]} -ne 0 ]; then
    echo "fuzz/run.sh: failed: ${failed[*]}; inputs in $build/fuzz-artifacts/" >&2
    exit 1
fi
echo "fuzz/run.sh: no crash, leak or hang found"
