#!/usr/bin/env bash
# The real program synchronises with a real time server (chronyd, started by chrony.sh,
# which gives its address in TW_NTP_SITE). The program's clock is faked 7 minutes behind
# the server's and automatic sync is on, with the last sync long past: the start-up runs a
# sync, which records 7 in "InetMinOffset". The program may not set the clock (no
# CAP_SYS_TIME, and no time service on its private system bus), so the computer's clock is
# never touched: the seconds it cannot set are passed over.
# Usage: chrony.sh BUILD_DIR bash sync.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
source "$(dirname "$0")/lib.sh"
[ -n "${TW_NTP_SITE:-}" ] || { echo "sync.sh: no time server (run through chrony.sh): skipped"; exit 77; }
e2e_init "$1" "$2"
e2e_settings <<INI
[General]
AutoSync=-1
AutoSyncHrs=24
SyncSite=$TW_NTP_SITE
LastSync=2000-01-01 00:00:00
INI

e2e_run '
title="Tarrowind --$(LC_ALL=C date -d "-7 min" "+%A %B %d,%Y") [Standard Time]"
LD_PRELOAD=$FAKETIME_LIB FAKETIME="-7m" FAKETIME_DONT_FAKE_MONOTONIC=1 "$WORK/program/tarrowind" 2>"$WORK/stderr" &
pid=$!
e2e_wait_title "$title" 20 || exit $?
sleep 3
e2e_stop'

ini="$work/config/Tarrowind 2.ini"
check "the Internet minute offset is 7" 'grep -q "^InetMinOffset=7$" "$ini"'
# The last sync is the server's time, today's real date and time (within a minute).
last=$(sed -n 's/^LastSync=//p' "$ini")
now=$(date +%s)
then_=$(date -d "$last" +%s 2>/dev/null || echo 0)
check "the last sync is the server's time" '[ $((now - then_)) -ge 0 ] && [ $((now - then_)) -lt 60 ]'
check "automatic sync stays on" 'grep -q "^AutoSync=-1$" "$ini"'
check "nothing went wrong" '! grep -q "tarrowind:" "$work/stderr"'
[ "$failed" -eq 0 ] || { echo "settings were:"; cat "$ini"; echo "stderr was:"; cat "$work/stderr"; }
e2e_summary e2e_sync
