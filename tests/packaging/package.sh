#!/usr/bin/env bash
# Builds the Debian package from the build folder, unpacks it into a temporary folder (it is
# never installed), and checks it: its Depends come from the program's libraries, every file
# is in its FHS place under one application id, the desktop entry and the AppStream file are
# valid, and the program as installed finds its sound and its guide from another folder and
# keeps its logs in the user's data folder, its own folder being read-only.
# Usage: package.sh BUILD_DIR
set -euo pipefail
build="$1"
source "$(dirname "$0")/../e2e/lib.sh"
for tool in cpack dpkg-deb dpkg-shlibdeps desktop-file-validate appstreamcli xdotool; do
    command -v "$tool" >/dev/null || { echo "package.sh: $tool is missing (scripts/deps installs it)"; exit 1; }
done
e2e_init "$build/src/tarrowind" "$build/src/DefaultAlarm.Wav" # folders and fakes; the copies go unused
out="$work/out"
root="$work/root"
(cd "$build" && cpack -G DEB -B "$out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$out"/tarrowind_2.0.0_*.deb)
dpkg-deb -x "$deb" "$root"

contents=$(dpkg-deb -c "$deb")
check "the package lists the program under /usr/bin" '[[ $contents == *" ./usr/bin/tarrowind"* ]]'
depends=$(dpkg-deb -f "$deb" Depends)
check "Depends is worked out from the program (Qt widgets, multimedia, C library)" \
    '[[ $depends == *libqt6widgets6* && $depends == *libqt6multimedia6* && $depends == *libc6* ]]'
id=org.tarrowind.Tarrowind
for f in usr/bin/tarrowind usr/share/tarrowind/DefaultAlarm.Wav usr/share/tarrowind/Help.RTF \
    usr/share/applications/$id.desktop usr/share/metainfo/$id.metainfo.xml \
    usr/share/icons/hicolor/scalable/apps/$id.svg usr/share/icons/hicolor/48x48/apps/$id.png; do
    check "the package holds $f" '[ -f "$root/$f" ]'
done
check "the desktop entry is valid" 'desktop-file-validate "$root/usr/share/applications/$id.desktop"'
check "the AppStream file is valid" 'appstreamcli validate --no-net "$root/usr/share/metainfo/$id.metainfo.xml" >/dev/null'
check "the 48x48 icon is 48 by 48" 'file "$root/usr/share/icons/hicolor/48x48/apps/$id.png" | grep -q "48 x 48"'

# The program as installed: its folder read-only, started from elsewhere.
chmod a-w "$root/usr/bin"
export TW_ROOT="$root"
e2e_settings <<'INI'
[General]
LogOn=1
LogSafetyOnly=False
INI
# Without the right to set the clock, and without root's right to write where it may not.
E2E_DROP_CAPS=dac_override e2e_run '
LD_PRELOAD=$FAKETIME_LIB FAKETIME="@2026-11-16 10:00:05" FAKETIME_DONT_FAKE_MONOTONIC=1 "$TW_ROOT/usr/bin/tarrowind" &
pid=$!
e2e_wait_title "Tarrowind --Monday November 16,2026 [Standard Time]" 20 || exit $?
main=$(xdotool search --name "^Tarrowind --" | head -n 1)
xdotool windowfocus --sync "$main" key F1
e2e_wait_title "Tarrowind Help" 10 && touch "$WORK/help-shown"
e2e_stop' || true
chmod u+w "$root/usr/bin"
check "the guide is found from another folder" '[ -e "$work/help-shown" ]'
check "the sound is found (sound stays on)" 'grep -q "^Audible=1" "$work/config/Tarrowind 2.ini"'
check "the logs are in the user's data folder" '[ -f "$work/data/Tarrowind/Logs/20261116.log" ]'
e2e_summary package
