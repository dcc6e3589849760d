#!/usr/bin/env bash
# Measures the Internet time sync against a real time server on this machine: Debian's
# chronyd, started by tests/sync/chrony.sh (taken out of its package into the build tree,
# never installed, never touching the computer's clock). Side by side in the same run, a
# peer: the simplest SNTP client there is, a few lines of Python with one UDP socket. Prints
# the figures and their ratios to the peer's.
#
# Usage: bench/sync.sh [RUNS] [BUILD_DIR]   (defaults: 50, build-bench)
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-50}
build=${2:-build-bench}
if [ ! -f "$build/build.ninja" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTW_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" --target bench_sync >/dev/null
results=$(mktemp)
trap 'rm -f "$results"' EXIT

# Runs inside chrony.sh, with TW_NTP_SITE set: first the peer, then the program's own.
cat >"$results.inner" <<'INNER'
set -euo pipefail
runs=$1 program=$2
python3 - "$TW_NTP_SITE" "$runs" <<'PY'
import socket, statistics, struct, sys, time
host, port = sys.argv[1].rsplit(":", 1)
runs = int(sys.argv[2])
NTP = 2208988800
def ntp(ns):
    return ((ns // 1_000_000_000 + NTP) << 32) | (((ns % 1_000_000_000) << 32) // 1_000_000_000)
def ms(t):
    return ((t >> 32) - NTP) * 1000 + (t & 0xFFFFFFFF) * 1000 / 2**32
offsets, times = [], []
for _ in range(runs):
    s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    s.settimeout(5)
    start = time.perf_counter_ns()
    t1 = time.time_ns()
    packet = bytearray(48)
    packet[0] = (4 << 3) | 3
    packet[40:48] = struct.pack("!Q", ntp(t1))
    s.sendto(packet, (host, int(port)))
    reply = s.recv(512)
    t4 = time.time_ns()
    times.append((time.perf_counter_ns() - start) / 1e6)
    t2, t3 = struct.unpack("!QQ", reply[32:48])
    offsets.append(abs(((ms(t2) - t1 / 1e6) + (ms(t3) - t4 / 1e6)) / 2))
    s.close()
print(f"peer_offset_abs_ms_median={statistics.median(offsets):.3f}")
print(f"peer_query_ms_median={statistics.median(times):.3f}")
PY
QT_QPA_PLATFORM=offscreen "$program" "$runs"
INNER
tests/sync/chrony.sh "$build" bash "$results.inner" "$runs" "$build/bench/bench_sync" >"$results"
rm -f "$results.inner"
get() { sed -n "s/^$1=//p" "$results"; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }'; }
echo "Internet time sync against chronyd on 127.0.0.1 ($runs runs each)"
printf '%-34s %10s %10s %8s %s\n' figure Tarrowind peer ratio target
printf '%-34s %10s %10s %8s %s\n' "|offset| median, ms" "$(get offset_abs_ms_median)" \
    "$(get peer_offset_abs_ms_median)" "-" "<= 1 ms"
printf '%-34s %10s %10s %8s %s\n' "one query, median ms" "$(get query_ms_median)" \
    "$(get peer_query_ms_median)" "$(ratio "$(get query_ms_median)" "$(get peer_query_ms_median)")" "-"
printf '%-34s %10s %10s %8s %s\n' "sync run to \"Time set\", median ms" "$(get run_ms_median)" \
    "$(get peer_query_ms_median)" "$(ratio "$(get run_ms_median)" "$(get peer_query_ms_median)")" "<= 100 ms"
echo "worst: |offset| $(get offset_abs_ms_worst) ms, query $(get query_ms_worst) ms, run $(get run_ms_worst) ms"
