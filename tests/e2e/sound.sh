#!/usr/bin/env bash
# An expiring alarm really produces its tone: the real program runs against a private
# PulseAudio server whose null sink is recorded; an alarm due at 10:15 rings, and the
# recording must hold the default chime (notes at 784 and 1046 Hz). Skipped (exit 77), not
# failed, only where PulseAudio cannot start.
# Usage: sound.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav
set -euo pipefail
here=$(dirname "$0")
source "$here/lib.sh"
source "$here/pulse.sh"
e2e_init "$1" "$2"
status=0
pulse_start "$work/pulse" || status=$?
if [ "$status" -eq 2 ]; then
    echo "SKIP: PulseAudio cannot start here: $PULSE_SKIP_REASON"
    exit 77
fi
[ "$status" -eq 0 ] || { echo "e2e: PulseAudio did not start (status $status)"; exit 1; }
trap 'pulse_stop; rm -rf "$work"' EXIT

e2e_settings <<'INI'
[General]
Audible=1
[Alarms]
Count=1
Message%201=Convoy 12 departs
Expire%201=10:15
AlarmSet%201=True
INI

pulse_record_start "$work/heard.wav"
e2e_run '
e2e_start "2026-11-16 10:14:56"
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
e2e_wait_title "Tarrowind Alarm" 20 || exit $?
# The window plays the sound every two seconds: wait for two plays.
sleep 5
e2e_stop'
pulse_record_stop
echo "recorded: $(pulse_measure "$work/heard.wav")"
check "the alarm's tone was heard" 'pulse_tone_heard "$work/heard.wav" 700 1100'
e2e_summary e2e_sound
