#!/usr/bin/env python3
"""Splits the CPU time of running processes between the two halves of each second.

    bench/tick_split.py SECONDS PID [PID...]

Reads /proc/PID/task/*/schedstat at .250 and .750 of every wall-clock second for SECONDS
seconds and prints, for each process, the mean CPU time (microseconds) spent between .250
and .750 (the program's .500 tick, which changes nothing on screen) and between .750 and
.250 (the .000 tick, which shows the new second). Give it a program and its X server, and
xclock and its X server, each under its own Xvfb, to see where each one's idle cost goes.
"""
import glob
import sys
import time


def cpu_ns(pid):
    total = 0
    for path in glob.glob(f"/proc/{pid}/task/*/schedstat"):
        try:
            with open(path) as f:
                total += int(f.read().split()[0])
        except (OSError, ValueError, IndexError):
            pass  # a thread that ended meanwhile
    return total


def sleep_until(fraction):
    now = time.time()
    target = int(now) + fraction
    if target <= now:
        target += 1
    time.sleep(target - now)


def main():
    if len(sys.argv) < 3 or not sys.argv[1].isdigit():
        sys.exit(__doc__)
    seconds = int(sys.argv[1])
    pids = [int(p) for p in sys.argv[2:]]
    halves = {pid: [0, 0] for pid in pids}
    sleep_until(0.25)
    last = {pid: cpu_ns(pid) for pid in pids}
    for _ in range(seconds):
        for half, fraction in enumerate((0.75, 0.25)):
            sleep_until(fraction)
            for pid in pids:
                now = cpu_ns(pid)
                halves[pid][half] += now - last[pid]
                last[pid] = now
    for pid in pids:
        half, whole = (ns / seconds / 1000 for ns in halves[pid])
        print(f"pid {pid}: .500 tick {half:.1f} us, .000 tick {whole:.1f} us, "
              f"a second {half + whole:.1f} us")


if __name__ == "__main__":
    main()
