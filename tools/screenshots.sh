#!/usr/bin/env bash
# Retakes the screenshots in docs/screenshots/ from a fresh build of the program, under a
# virtual X server, with a fixed date and a prepared settings file.
# Usage: tools/screenshots.sh [BUILD_DIR]   (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
out=$(pwd)/docs/screenshots
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/program" "$work/config" "$work/runtime" "$out"
chmod 700 "$work/runtime"
build=$(cd "$build" && pwd)
cp "$build/src/tarrowind" "$build/src/DefaultAlarm.Wav" "$work/program/"
cat >"$work/config/Tarrowind 2.ini" <<'INI'
[General]
Zone=4
LogOn=1
LogSafetyOnly=False
UTCRule=0
[Alarms]
Count=3
Message%201=Crew 7 check-in
Expire%201=10:45
AlarmSet%201=True
Safety%201=1
Message%202=Convoy departs
Expire%202=11:30
AlarmSet%202=False
Message%203=Shift change
Expire%203=14:00
AlarmSet%203=True
INI
faketime_lib=$(find /usr/lib -name libfaketime.so.1 -path '*faketime*' | head -n 1)
cat >"$work/inner.sh" <<INNER
set -eu
cd "$work"
# A window manager draws the title bar, which carries the date line.
openbox >/dev/null 2>&1 &
sleep 1
LD_PRELOAD=$faketime_lib FAKETIME='@2026-11-16 10:21:37' FAKETIME_DONT_FAKE_MONOTONIC=1 "$work/program/tarrowind" &
pid=\$!
for _ in \$(seq 1 100); do
    id=\$(xwininfo -root -tree | awk '/"Tarrowind --/ {print \$1; exit}')
    [ -n "\$id" ] && break
    sleep 0.1
done
sleep 1
import -frame -window "\$id" "$out/main-window.png"
"$build/tools/tw_screenshots" "$out"
kill -TERM \$pid
wait \$pid
INNER
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_RUNTIME_DIR=$work/runtime LANG=en_US.UTF-8 TZ=UTC
setpriv --bounding-set -sys_time --inh-caps -sys_time -- \
    xvfb-run -a -s "-screen 0 1024x600x24" bash "$work/inner.sh"
# The printed table, as a picture of its page.
pdftoppm -png -r 70 -singlefile "$out/sun-table-printed.pdf" "$out/sun-table-printed"
rm -f "$out/sun-table-printed.pdf"
echo "screenshots written to $out"
