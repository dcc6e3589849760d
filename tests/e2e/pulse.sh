# A private PulseAudio sound server for the end-to-end tests, with a null sink whose monitor
# is recorded and measured: did a program really play a sound?
#
# A bash library: source it, do not run it.
#
#   source tests/e2e/pulse.sh
#   pulse_start || { [ $? -eq 2 ] && echo "SKIP: $PULSE_SKIP_REASON" && exit 77; exit 1; }
#   trap pulse_stop EXIT
#   pulse_record_start "$work/heard.wav"
#   paplay DefaultAlarm.Wav                  # or the program under test
#   pulse_record_stop
#   pulse_measure "$work/heard.wav"          # rms=0.1225 max=0.5457 hz=786 seconds=2.33 sound=1.00
#   pulse_tone_heard "$work/heard.wav" 700 1100 || echo "FAIL: no tone"
#
# pulse_start [FOLDER]
#     Starts a PulseAudio daemon of its own (no system or user configuration, no other
#     sound device) with one null sink, the default sink, in FOLDER (a new temporary folder
#     when none is given), and exports what its clients need: PULSE_SERVER,
#     PULSE_RUNTIME_PATH, PULSE_STATE_PATH, PULSE_COOKIE and PULSE_CLIENTCONFIG (no
#     autospawn), so that every program started afterwards plays into the null sink.
#     Also sets TW_PULSE_DIR, TW_PULSE_PID, TW_PULSE_SINK and TW_PULSE_MONITOR.
#     Returns 0 when the server answers, 1 when it is already running, and 2 when PulseAudio
#     cannot be started here (not installed, or the daemon does not come up): the caller
#     should SKIP, and PULSE_SKIP_REASON says why.
# pulse_stop
#     Stops the recording and the daemon that pulse_start started (by their process ids),
#     removes a folder that pulse_start created and unsets the variables. Always returns 0,
#     so that it may be an EXIT trap.
# pulse_record_start FILE.wav
#     Records the null sink's monitor (mono, 16-bit, 44100 Hz) into FILE.wav and returns once
#     the recording really runs. Returns 1 when it cannot record.
# pulse_record_stop
#     Ends the recording and completes the WAV file. Returns parec's status.
# pulse_measure FILE.wav
#     Prints one line: rms= and max= (amplitudes, 0 to 1), hz= (the strongest frequency,
#     0 for silence), seconds= (the recording's length) and sound= (seconds from the first
#     to the last sample above 1 % of full scale, 0 for silence).
# pulse_tone_heard FILE.wav [MIN_HZ MAX_HZ]
#     Returns 0 when the recording holds a tone: an RMS amplitude of at least
#     PULSE_MIN_RMS (0.01) and a peak of at least PULSE_MIN_PEAK (0.05), and, when MIN_HZ and
#     MAX_HZ are given, its strongest frequency between them. Returns 1 otherwise, and prints
#     the measurement either way.
#
# The daemon, a stream of silence that keeps the null sink awake and a recording are
# children of the sourcing shell: call pulse_start directly (not in a subshell), and never
# use a bare `wait`, which would wait for them too.

PULSE_MIN_RMS=${PULSE_MIN_RMS:-0.01}
PULSE_MIN_PEAK=${PULSE_MIN_PEAK:-0.05}

pulse_start() {
    if [ -n "${TW_PULSE_PID:-}" ] && kill -0 "$TW_PULSE_PID" 2>/dev/null; then
        echo "pulse_start: already running (pid $TW_PULSE_PID)" >&2
        return 1
    fi
    local tool
    for tool in pulseaudio pactl parec sox; do
        if ! command -v "$tool" >/dev/null; then
            PULSE_SKIP_REASON="$tool is missing (scripts/deps installs pulseaudio, pulseaudio-utils and sox)"
            return 2
        fi
    done

    local dir=${1:-}
    _tw_pulse_own_dir=0
    if [ -z "$dir" ]; then
        dir=$(mktemp -d "${TMPDIR:-/tmp}/tw-pulse.XXXXXX") || {
            PULSE_SKIP_REASON="cannot create a temporary folder"
            return 2
        }
        _tw_pulse_own_dir=1
    fi
    mkdir -p "$dir/runtime" "$dir/state"
    chmod 700 "$dir" "$dir/runtime" "$dir/state"

    TW_PULSE_DIR=$dir
    TW_PULSE_SINK=tw_null
    TW_PULSE_MONITOR=$TW_PULSE_SINK.monitor
    # The socket lives outside the runtime folder so that its path is short and known.
    cat >"$dir/server.pa" <<EOF
load-module module-null-sink sink_name=$TW_PULSE_SINK rate=44100 channels=2 sink_properties=device.description=TarrowindTestSink
set-default-sink $TW_PULSE_SINK
load-module module-native-protocol-unix auth-anonymous=1 socket=$dir/native
EOF
    printf 'autospawn = no\n' >"$dir/client.conf"

    # -n: no default script; -F: ours instead. --daemonize=no keeps the daemon our child, so
    # that its process id is known and it ends with pulse_stop. --exit-idle-time=-1 and
    # --disallow-exit keep it running between recordings. Running as root works outside
    # system mode (it only warns).
    PULSE_RUNTIME_PATH=$dir/runtime PULSE_STATE_PATH=$dir/state \
        pulseaudio -n -F "$dir/server.pa" --daemonize=no --system=no --use-pid-file=no \
        --exit-idle-time=-1 --disallow-exit --disallow-module-loading=no \
        --realtime=no --high-priority=no --log-target=stderr --log-level=notice \
        >"$dir/pulseaudio.log" 2>&1 &
    TW_PULSE_PID=$!

    export PULSE_SERVER=unix:$dir/native
    export PULSE_RUNTIME_PATH=$dir/runtime
    export PULSE_STATE_PATH=$dir/state
    export PULSE_COOKIE=$dir/cookie
    export PULSE_CLIENTCONFIG=$dir/client.conf

    local _
    for _ in $(seq 1 100); do
        if ! kill -0 "$TW_PULSE_PID" 2>/dev/null; then
            PULSE_SKIP_REASON="pulseaudio ended at once: $(tail -n 3 "$dir/pulseaudio.log" | tr '\n' ' ')"
            wait "$TW_PULSE_PID" 2>/dev/null || true
            TW_PULSE_PID=
            pulse_stop
            return 2
        fi
        if pactl list short sinks 2>/dev/null | grep -q "^[0-9]*[[:space:]]$TW_PULSE_SINK[[:space:]]"; then
            _tw_pulse_keep_awake
            return 0
        fi
        sleep 0.1
    done
    PULSE_SKIP_REASON="pulseaudio did not answer within 10 s: $(tail -n 3 "$dir/pulseaudio.log" | tr '\n' ' ')"
    pulse_stop
    return 2
}

# A null sink with nothing to play renders in blocks of up to 2 s, and its monitor then
# delivers nothing for as long: a recording would miss the start of a sound. A stream of
# silence at a low latency keeps it rendering every 20 ms. Once the block it sleeps in has
# passed (a probe recording sees its first data), recordings start within about 0.1 s.
_tw_pulse_keep_awake() {
    pacat --playback --device="$TW_PULSE_SINK" --latency-msec=20 --raw --format=s16le \
        --rate=44100 --channels=1 /dev/zero >/dev/null 2>&1 &
    _tw_pulse_keeper_pid=$!
    local probe=$TW_PULSE_DIR/probe.raw _ probe_pid
    parec --device="$TW_PULSE_MONITOR" --latency-msec=20 --raw --format=s16le --rate=44100 \
        --channels=1 >"$probe" 2>/dev/null &
    probe_pid=$!
    for _ in $(seq 1 100); do
        [ -s "$probe" ] && break
        kill -0 "$probe_pid" 2>/dev/null || break
        sleep 0.05
    done
    kill -INT "$probe_pid" 2>/dev/null || true
    wait "$probe_pid" 2>/dev/null || true
    rm -f "$probe"
}

pulse_stop() {
    # Safe under set -e: no command here may end the caller.
    if [ -n "${_tw_pulse_rec_pid:-}" ]; then
        pulse_record_stop >/dev/null 2>&1 || true
    fi
    if [ -n "${_tw_pulse_keeper_pid:-}" ]; then
        kill -TERM "$_tw_pulse_keeper_pid" 2>/dev/null || true
        wait "$_tw_pulse_keeper_pid" 2>/dev/null || true
    fi
    if [ -n "${TW_PULSE_PID:-}" ]; then
        kill -TERM "$TW_PULSE_PID" 2>/dev/null || true
        local _
        for _ in $(seq 1 50); do
            kill -0 "$TW_PULSE_PID" 2>/dev/null || break
            sleep 0.1
        done
        kill -KILL "$TW_PULSE_PID" 2>/dev/null || true
        wait "$TW_PULSE_PID" 2>/dev/null || true
    fi
    if [ "${_tw_pulse_own_dir:-0}" = 1 ] && [ -n "${TW_PULSE_DIR:-}" ]; then
        rm -rf "$TW_PULSE_DIR"
    fi
    unset PULSE_SERVER PULSE_RUNTIME_PATH PULSE_STATE_PATH PULSE_COOKIE PULSE_CLIENTCONFIG
    unset TW_PULSE_DIR TW_PULSE_PID TW_PULSE_SINK TW_PULSE_MONITOR _tw_pulse_own_dir _tw_pulse_keeper_pid
    return 0
}

pulse_record_start() {
    local file=${1:-}
    if [ -z "${TW_PULSE_PID:-}" ] || [ -z "$file" ]; then
        echo "pulse_record_start: no server (pulse_start first) or no file" >&2
        return 1
    fi
    if [ -n "${_tw_pulse_rec_pid:-}" ]; then
        echo "pulse_record_start: a recording is running already" >&2
        return 1
    fi
    rm -f "$file"
    parec --device="$TW_PULSE_MONITOR" --latency-msec=20 --file-format=wav \
        --format=s16le --rate=44100 --channels=1 "$file" 2>"$file.log" &
    _tw_pulse_rec_pid=$!
    # parec takes a moment to connect; what plays before its first data would not be
    # heard. Wait for 50 ms of sound data beyond the WAV header.
    local _ size
    for _ in $(seq 1 100); do
        if ! kill -0 "$_tw_pulse_rec_pid" 2>/dev/null; then
            echo "pulse_record_start: parec ended: $(cat "$file.log")" >&2
            wait "$_tw_pulse_rec_pid" 2>/dev/null || true
            _tw_pulse_rec_pid=
            return 1
        fi
        size=$(stat -c %s "$file" 2>/dev/null || echo 0)
        if [ "$size" -ge 4500 ]; then
            return 0
        fi
        sleep 0.05
    done
    echo "pulse_record_start: the recording did not start within 5 s" >&2
    pulse_record_stop || true
    return 1
}

pulse_record_stop() {
    [ -n "${_tw_pulse_rec_pid:-}" ] || return 1
    # Let the last sounds through the monitor, then end parec as Ctrl+C would: it completes
    # the WAV header before it exits.
    sleep 0.2
    kill -INT "$_tw_pulse_rec_pid" 2>/dev/null || true
    local status=0
    wait "$_tw_pulse_rec_pid" || status=$?
    _tw_pulse_rec_pid=
    return "$status"
}

pulse_measure() {
    local file=${1:-}
    [ -s "$file" ] || {
        echo "pulse_measure: no recording $file" >&2
        return 1
    }
    local stats hz sound
    stats=$(sox "$file" -n stat 2>&1) || {
        echo "pulse_measure: sox cannot read $file: $stats" >&2
        return 1
    }
    # The strongest band of sox's frequency analysis (about 11 Hz wide at 44100 Hz).
    hz=$(sox "$file" -n stat -freq 2>&1 |
        awk 'NF == 2 && $1 ~ /^[0-9.]+$/ && $2 ~ /^[0-9.]+$/ && $1 > 0 { if ($2 > m) { m = $2; f = $1 } }
             END { if (m > 0) printf "%.0f", f; else print 0 }') || hz=0
    # The length between the first and the last sample above 1 % of full scale: the
    # recording trimmed of its silence at both ends.
    sound=$(sox "$file" -n silence 1 1s 1% reverse silence 1 1s 1% reverse stat 2>&1 |
        awk -F: '/^Length \(seconds\)/ { gsub(/ /, "", $2); print $2 }') || sound=0
    echo "$stats" | awk -F: -v hz="$hz" -v sound="${sound:-0}" '
        /^RMS +amplitude/ { gsub(/ /, "", $2); rms = $2 }
        /^Maximum amplitude/ { gsub(/ /, "", $2); max = $2 }
        /^Length \(seconds\)/ { gsub(/ /, "", $2); len = $2 }
        END { if (max + 0 == 0) { rms = 0; hz = 0; sound = 0 }
              printf "rms=%.4f max=%.4f hz=%s seconds=%.2f sound=%.2f\n", rms, max, hz, len, sound }'
}

pulse_tone_heard() {
    local file=${1:-} min_hz=${2:-} max_hz=${3:-}
    local measured
    measured=$(pulse_measure "$file") || return 1
    echo "$measured"
    echo "$measured" | awk -v min_rms="$PULSE_MIN_RMS" -v min_peak="$PULSE_MIN_PEAK" \
        -v min_hz="$min_hz" -v max_hz="$max_hz" '{
        for (i = 1; i <= NF; ++i) { split($i, kv, "="); v[kv[1]] = kv[2] + 0 }
        ok = v["rms"] >= min_rms && v["max"] >= min_peak
        if (ok && min_hz != "" && max_hz != "") ok = v["hz"] >= min_hz && v["hz"] <= max_hz
        exit ok ? 0 : 1 }'
}
