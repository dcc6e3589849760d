#!/usr/bin/env bash
# The include check passes on the tree as it is and fails on each kind of wrong include:
# a subsystem using the shell, a logic file using a widget header, a circle of folders.
set -euo pipefail
check="$1"
src="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fresh() {
    rm -rf "$work/src"
    cp -r "$src" "$work/src"
}
expect_finding() {
    local what="$1" pattern="$2"
    if out=$("$check" "$work/src" 2>&1); then
        echo "FAIL: $what passed the check"
        exit 1
    fi
    if ! grep -q -- "$pattern" <<<"$out"; then
        echo "FAIL: $what: no finding matching '$pattern' in:"
        echo "$out"
        exit 1
    fi
    echo "ok: $what"
}

fresh
"$check" "$work/src" || { echo "FAIL: the tree as it is does not pass"; exit 1; }
echo "ok: the tree as it is passes"

fresh
echo '#include "shell/frmMain.h"' >>"$work/src/alarms/AlarmPanel.cpp"
expect_finding "alarms including the shell" "alarms/AlarmPanel.cpp: includes shell/frmMain.h"

fresh
echo '#include <QWidget>' >>"$work/src/alarms/AlarmDesk.cpp"
expect_finding "a logic file including QWidget" "alarms/AlarmDesk.cpp: a logic file includes <QWidget>"

fresh
echo '#include <QtGui/QColor>' >>"$work/src/clock/ZoneClock.h"
expect_finding "a logic file including QtGui" "clock/ZoneClock.h: a logic file includes <QtGui/QColor>"

fresh
echo '#include "widgets/MessageBox.h"' >>"$work/src/logbook/LogBook.cpp"
expect_finding "a logic file including a window header" "logbook/LogBook.cpp: a logic file includes widgets/MessageBox.h"

fresh
echo '#include "alarms/AlarmDesk.h"' >>"$work/src/settings/Preferences.cpp"
expect_finding "a circle of folders" "include circle: .*settings"

# Other spellings of the same includes are caught too.
fresh
echo '#include "../shell/frmMain.h"' >>"$work/src/alarms/AlarmPanel.cpp"
expect_finding "the shell through ../" "alarms/AlarmPanel.cpp: includes ../shell/frmMain.h"

fresh
echo '#include <shell/frmMain.h>' >>"$work/src/alarms/AlarmPanel.cpp"
expect_finding "the shell in angle brackets" "alarms/AlarmPanel.cpp: includes shell/frmMain.h"

fresh
echo '#include "alarms/../shell/frmMain.h"' >>"$work/src/alarms/AlarmPanel.cpp"
expect_finding "the shell through a detour" "alarms/AlarmPanel.cpp: includes alarms/../shell/frmMain.h"

fresh
echo '#include "LogPanel.h"' >>"$work/src/logbook/LogViewer.cpp"
expect_finding "a window header beside a logic file" "logbook/LogViewer.cpp: a logic file includes LogPanel.h"

fresh
echo '#include <alarms/AlarmDesk.h>' >>"$work/src/settings/Preferences.cpp"
expect_finding "a circle in angle brackets" "include circle: .*settings"

fresh
echo '#include <QPrinter>' >>"$work/src/logbook/LogViewer.cpp"
expect_finding "a logic file including a printing header" "logbook/LogViewer.cpp: a logic file includes <QPrinter>"

echo "the clean tree and 11 wrong includes: 12 passed, 0 failed"
