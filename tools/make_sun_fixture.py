#!/usr/bin/python3
"""Writes tests/data/sun/ephem.tsv: reference sunrise and sunset times from PyEphem.

Needs Debian's python3-ephem (run it with the system interpreter, /usr/bin/python3).
The cases are drawn with a fixed seed, so running it again gives the same file.

Each case: a date in 1998-2030, a latitude north (mostly up to 65 degrees, a few hundred
above), a longitude 80..180 degrees west, and the whole zone offset round(longitude / 15)
(hours to add to local clock time to get UT). The horizon is the sun's upper limb with
standard refraction: horizon -0:34 with no atmosphere model (pressure 0) and use_center=False.
Only events within the local day [date 00:00, date+1 00:00), local = UT - zoneHours, count;
times are local "HH:MM" rounded to the nearest minute ("24:00" possible).
"""

import datetime
import math
import os
import random
import signal
import sys

import ephem

SEED = 20240917
CASES = 12000
HIGH_SHARE = 0.05  # share of cases above 65 degrees
EDGE_CASES = 400  # extra cases above 65 degrees within a few days of a polar day/night edge

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "tests", "data", "sun", "ephem.tsv")


def draw(rng):
    first = datetime.date(1998, 1, 1).toordinal()
    last = datetime.date(2030, 12, 31).toordinal()
    date = datetime.date.fromordinal(rng.randint(first, last))
    if rng.random() < HIGH_SHARE:
        lat_deg, lat_min = rng.randint(65, 80), rng.randint(0, 59)
        if lat_deg == 65 and lat_min == 0:
            lat_min = 1
    else:
        lat_deg, lat_min = rng.randint(20, 64), rng.randint(0, 59)
    lon_deg, lon_min = rng.randint(80, 180), rng.randint(0, 59)
    zone = int(math.floor((lon_deg + lon_min / 60.0) / 15.0 + 0.5))
    return date, lat_deg, lat_min, lon_deg, lon_min, zone


def clock(ut, start):
    """Local "HH:MM" of the UT event, minutes since the local day's start, rounded."""
    minutes = int(math.floor((ut - start) * 1440.0 + 0.5))
    return "%02d:%02d" % (minutes // 60, minutes % 60)


class Stuck(Exception):
    """ephem's Newton iteration for a rising or setting did not converge (seen near polar edges)."""


def on_alarm(signum, frame):
    raise Stuck()


def events(obs, sun, start, end, rising):
    """(first event in the window or None, number of events in the window, exception kind)."""
    find = obs.next_rising if rising else obs.next_setting
    first, count, t = None, 0, start
    while True:
        try:
            signal.setitimer(signal.ITIMER_REAL, 2.0)
            try:
                when = find(sun, start=t, use_center=False)
            finally:
                signal.setitimer(signal.ITIMER_REAL, 0)
        except ephem.NeverUpError:
            return first, count, "down" if count == 0 else None
        except ephem.AlwaysUpError:
            return first, count, "up" if count == 0 else None
        if when >= end or when < t or count >= 3:  # guard against ephem stepping backwards
            return first, count, None
        if first is None:
            first = when
        count += 1
        t = ephem.Date(when + ephem.minute)


def sampled_crossings(obs, sun, start, end):
    """Risings and settings seen by 5-minute altitude samples (a cross-check of ephem)."""
    ups, downs, prev = 0, 0, None
    for i in range(0, 24 * 12 + 1):
        obs.date = ephem.Date(start + i * 5 * ephem.minute)
        sun.compute(obs)
        above = sun.alt + sun.radius > obs.horizon
        if prev is not None and above != prev:
            if above:
                ups += 1
            else:
                downs += 1
        prev = above
    return ups, downs


def observer(lat_deg, lat_min, lon_deg, lon_min):
    obs = ephem.Observer()
    obs.lat = str(lat_deg + lat_min / 60.0)
    obs.lon = str(-(lon_deg + lon_min / 60.0))
    obs.elevation = 0
    obs.pressure = 0
    obs.horizon = "-0:34"
    return obs


def day_window(date, zone):
    start = ephem.Date(ephem.Date(date.strftime("%Y/%m/%d")) + zone * ephem.hour)
    return start, ephem.Date(start + 1)


def kinds(obs, sun, date, zone):
    """A coarse label of the day: which events fall in it, or which circumpolar kind."""
    start, end = day_window(date, zone)
    rise, _, rexc = events(obs, sun, start, end, True)
    sset, _, sexc = events(obs, sun, start, end, False)
    return (rise is not None, sset is not None, rexc, sexc)


def draw_edge(rng, sun):
    """A high-latitude case within a few days of a change of the day's kind."""
    while True:
        lat_deg, lat_min = rng.randint(66, 80), rng.randint(0, 59)
        lon_deg, lon_min = rng.randint(80, 180), rng.randint(0, 59)
        zone = int(math.floor((lon_deg + lon_min / 60.0) / 15.0 + 0.5))
        year = rng.randint(1998, 2030)
        month, day = rng.choice([(2, 1), (6, 22), (8, 1), (12, 22)])
        obs = observer(lat_deg, lat_min, lon_deg, lon_min)
        date = datetime.date(year, month, day)
        try:
            before = kinds(obs, sun, date, zone)
        except Stuck:
            continue
        for _ in range(120):
            date += datetime.timedelta(days=1)
            try:
                now = kinds(obs, sun, date, zone)
            except Stuck:
                break
            if now != before:
                date += datetime.timedelta(days=rng.randint(-2, 2))
                if date.year > 2030:
                    break
                return date, lat_deg, lat_min, lon_deg, lon_min, zone
            before = now


def main():
    rng = random.Random(SEED)
    sun = ephem.Sun()
    stats = {"cases": 0, "high": 0, "double": 0, "none": 0, "upall": 0, "downall": 0, "checked": 0, "edge": EDGE_CASES, "dropped": 0}
    disagreements = 0
    rows = []
    signal.signal(signal.SIGALRM, on_alarm)
    cases = [draw(rng) for _ in range(CASES)] + [draw_edge(rng, sun) for _ in range(EDGE_CASES)]
    for date, lat_deg, lat_min, lon_deg, lon_min, zone in cases:
        obs = observer(lat_deg, lat_min, lon_deg, lon_min)
        start, end = day_window(date, zone)
        try:
            rise, nrise, rexc = events(obs, sun, start, end, True)
            sset, nset, sexc = events(obs, sun, start, end, False)
        except Stuck:  # leave the case out: no trustworthy reference
            stats["dropped"] += 1
            print("ephem did not converge, case dropped:", date, lat_deg, lat_min, lon_deg, lon_min,
                  zone, file=sys.stderr)
            continue
        if rise is None and sset is None:
            if "down" in (rexc, sexc):
                kind = "Down all day"
            elif "up" in (rexc, sexc):
                kind = "Up all day"
            else:  # no event in the day and no exception: decide by the altitude at local noon
                obs.date = ephem.Date(start + 0.5)
                sun.compute(obs)
                kind = "Up all day" if sun.alt + sun.radius > obs.horizon else "Down all day"
            rise_text = set_text = kind
        else:
            rise_text = clock(rise, start) if rise is not None else "None"
            set_text = clock(sset, start) if sset is not None else "None"
        # Cross-check ephem's answer against plain altitude sampling where it matters.
        lat = lat_deg + lat_min / 60.0
        if lat > 60 or len(rows) % 10 == 0:
            stats["checked"] += 1
            ups, downs = sampled_crossings(obs, sun, start, end)
            if (ups > 0) != (nrise > 0) or (downs > 0) != (nset > 0):
                # ephem raised a circumpolar error although the day has a crossing: leave it out.
                disagreements += 1
                print("sampling disagrees, case dropped:", date, lat_deg, lat_min, lon_deg, lon_min,
                      zone, rise_text, set_text, ups, downs, file=sys.stderr)
                continue
        stats["cases"] += 1
        if rise_text == "Up all day":
            stats["upall"] += 1
        elif rise_text == "Down all day":
            stats["downall"] += 1
        elif "None" in (rise_text, set_text):
            stats["none"] += 1
        if nrise > 1 or nset > 1:
            stats["double"] += 1
        if lat > 65:
            stats["high"] += 1
        rows.append("%s\t%d\t%d\t%d\t%d\t%d\t%s\t%s" % (date.isoformat(), lat_deg, lat_min, lon_deg,
                                                       lon_min, zone, rise_text, set_text))
    with open(OUT, "w", encoding="ascii", newline="\n") as out:
        out.write("date\tlatDeg\tlatMin\tlongDeg\tlongMin\tzoneHours\trise\tset\n")
        out.write("\n".join(rows) + "\n")
    print("ephem %s, %s" % (ephem.__version__, stats))
    print("cases where 5-minute sampling disagrees with ephem about an event: %d" % disagreements)


if __name__ == "__main__":
    main()
