# Shared parts of the end-to-end tests (sourced). Each test runs a copy of the real program
# from a temporary folder of its own, under Xvfb, with a faked wall clock, and without the
# right to set the computer's clock.

e2e_init() { # PROGRAM SOUND: prepares $work with the program, its sound and empty folders
    for tool in xvfb-run setpriv xwininfo; do
        command -v "$tool" >/dev/null || { echo "e2e: $tool is missing (scripts/deps installs it)"; exit 1; }
    done
    FAKETIME_LIB=$(find /usr/lib -name libfaketime.so.1 -path '*faketime*' 2>/dev/null | head -n 1)
    [ -n "$FAKETIME_LIB" ] || { echo "e2e: libfaketime is missing (scripts/deps installs faketime)"; exit 1; }
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    mkdir -p "$work/program" "$work/config" "$work/data" "$work/runtime" "$work/cwd"
    chmod 700 "$work/runtime"
    cp "$1" "$2" "$work/program/"
    export WORK=$work FAKETIME_LIB XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
    export XDG_RUNTIME_DIR=$work/runtime LANG=en_US.UTF-8 TZ=UTC
    # The machine's own system services are never reached: the system bus is one that is
    # not there (a test that needs a service starts its own bus).
    export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$work/no-system-bus"
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$work/no-session-bus"
    passed=0
    failed=0
}

e2e_settings() { # writes standard input as the settings file
    cat >"$work/config/Tarrowind 2.ini"
}

# Runs the given bash script (as text) under Xvfb without CAP_SYS_TIME. In it, start the
# program with e2e_start 'YYYY-MM-DD hh:mm:ss' and wait for windows with e2e_wait_title.
e2e_run() {
    {
        cat <<'PRELUDE'
set -u
bounding=$(awk '/^CapBnd/ {print $2}' /proc/self/status)
if (( (16#$bounding >> 25) & 1 )); then echo "e2e: CAP_SYS_TIME is still in the bounding set"; exit 3; fi
cd "$WORK/cwd"
# libfaketime is preloaded directly (the faketime command would fork and stand between this
# script and the program). Only the wall clock is faked; timers keep the real one.
e2e_start() {
    LD_PRELOAD=$FAKETIME_LIB FAKETIME="@$1" FAKETIME_DONT_FAKE_MONOTONIC=1 "$WORK/program/tarrowind" &
    pid=$!
}
# How many windows carry exactly the title $1 (not counting a window class of that name).
e2e_count_title() {
    xwininfo -root -tree 2>/dev/null |
        awk -v t="\"$1\":" '{ sub(/^ *0x[0-9a-f]+ /, ""); if (index($0, t) == 1) n++ } END { print n + 0 }'
}
# Waits up to $2 seconds until at least $3 (default 1) windows carry the title $1.
e2e_wait_title() {
    local want=${3:-1}
    for _ in $(seq 1 $(( $2 * 10 ))); do
        [ "$(e2e_count_title "$1")" -ge "$want" ] && return 0
        kill -0 "$pid" 2>/dev/null || { echo "e2e: the program ended early"; return 4; }
        sleep 0.1
    done
    echo "e2e: fewer than $want windows titled '$1' within $2 s"
    xwininfo -root -tree | grep -i tarrowind || true
    return 5
}
e2e_stop() {
    kill -TERM "$pid"
    wait "$pid"
}
PRELUDE
        echo "$1"
    } >"$work/inner.sh"
    # E2E_DROP_CAPS drops more (dac_override: root may not write where others may not).
    local caps="-sys_time${E2E_DROP_CAPS:+,-$E2E_DROP_CAPS}"
    # -noreset: the server would otherwise reset when its last client leaves (a program that
    # ended, a window query) and refuse the connections that come meanwhile.
    setpriv --bounding-set "$caps" --inh-caps "$caps" -- \
        xvfb-run -a -s "-screen 0 1024x768x24 -noreset" bash "$work/inner.sh"
}

check() { # DESCRIPTION CONDITION
    if eval "$2"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $1"; fi
}

e2e_summary() { # NAME
    echo "$1: $passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}
