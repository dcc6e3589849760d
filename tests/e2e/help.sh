#!/usr/bin/env bash
# The real program, started from a folder of its own that holds no "Help.RTF": F1 (the help
# picture's key) shows the user guide installed beside the program, found whatever the
# current folder; Ctrl+F1 (the help document of the current folder, read by its bare name)
# says "Can't open ..." in a message box.
# Usage: help.sh PATH/TO/tarrowind PATH/TO/DefaultAlarm.Wav PATH/TO/Help.RTF
set -euo pipefail
source "$(dirname "$0")/lib.sh"
command -v xdotool >/dev/null || { echo "help.sh: xdotool is missing (scripts/deps installs it)"; exit 1; }
e2e_init "$1" "$2"
cp "$3" "$work/program/"
e2e_settings <<'INI'
[General]
LogOn=0
INI

e2e_run '
[ ! -e Help.RTF ] || { echo "the current folder must not hold Help.RTF"; exit 6; }
e2e_start "2026-11-16 10:00:05"
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
main=$(xdotool search --name "^Tarrowind --" | head -n 1)
before=$(e2e_count_title "Tarrowind")
xdotool windowfocus --sync "$main" key F1
e2e_wait_title "Tarrowind Help" 10 || exit 11
echo "help window shown" >"$WORK/help-shown"
xdotool windowfocus --sync "$main" key ctrl+F1
# The message box carries the program'"'"'s title alone.
e2e_wait_title "Tarrowind" 10 $((before + 1)) || exit 12
echo "message shown" >"$WORK/message-shown"
e2e_stop'

check "F1 shows the installed guide from another folder" '[ -e "$work/help-shown" ]'
check "Ctrl+F1 says the bare-named document cannot be opened" '[ -e "$work/message-shown" ]'
e2e_summary e2e_help
