#!/usr/bin/env bash
# A day's log printed through a real CUPS queue. A private cupsd (its own configuration,
# spool, state, logs and a unix socket, all in a temporary folder; the machine's own CUPS
# service is neither used nor touched) gets a cups-pdf queue; the test program prints the
# 57-entry log of a day to that queue, and the PDF the queue writes must hold the log's two
# pages. cups-pdf reads its configuration only from /etc/cups, so cupsd runs in a private
# mount namespace in which the temporary configuration folder is mounted over /etc/cups:
# the machine's /etc/cups is never written. Skipped (exit 77), not failed, only where cupsd
# cannot start.
# Usage: cups.sh PATH/TO/cups_print
set -euo pipefail
program=$(realpath "$1")
queue=TarrowindE2E
ppd=/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd
passed=0
failed=0

check() { # DESCRIPTION COMMAND [ARGUMENT...]
    local what=$1
    shift
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $what"; fi
}
lacks() { # TEXT FILE: FILE does not hold TEXT
    ! grep -qF -- "$1" "$2"
}
skip() { # REASON
    echo "SKIP: $1"
    exit 77
}

for tool in cupsd lpadmin lpstat unshare mount setpriv gs pdftocairo pdfinfo pdftotext; do
    command -v "$tool" >/dev/null || {
        echo "e2e_cups: $tool is missing (scripts/deps installs cups, printer-driver-cups-pdf, poppler-utils)"
        exit 1
    }
done
for file in /usr/lib/cups/backend/cups-pdf "$ppd"; do
    [ -e "$file" ] || { echo "e2e_cups: $file is missing (scripts/deps installs printer-driver-cups-pdf)"; exit 1; }
done
[ "$(id -u)" -eq 0 ] || skip "cupsd must run as root here (the cups-pdf backend runs as root)"
[ -d /etc/cups ] || skip "/etc/cups is missing: nothing to mount the private configuration over"
unshare --mount true 2>/dev/null || skip "no private mount namespace can be made for cupsd here"

work=$(mktemp -d /tmp/tw-cups.XXXXXX)
cupsd_pid=
stop_cupsd() {
    [ -n "$cupsd_pid" ] || return 0
    if kill -TERM "$cupsd_pid" 2>/dev/null; then
        for _ in $(seq 1 100); do
            kill -0 "$cupsd_pid" 2>/dev/null || break
            sleep 0.1
        done
        kill -KILL "$cupsd_pid" 2>/dev/null || true
    fi
    wait "$cupsd_pid" 2>/dev/null || true
    cupsd_pid=
}
trap 'stop_cupsd; rm -rf "$work"' EXIT

# The filters run as the user lp and read the spooled files: the folder must be passable.
chmod 755 "$work"
etc=$work/etc
mkdir -p "$etc/ppd" "$work/spool/tmp" "$work/cache" "$work/state" "$work/log" "$work/pdf" \
    "$work/pdfspool" "$work/gstmp" "$work/home" "$work/runtime"
chmod 700 "$work/runtime"
socket=$work/cups.sock

cat >"$etc/cups-files.conf" <<EOF
ServerRoot $etc
RequestRoot $work/spool
TempDir $work/spool/tmp
CacheDir $work/cache
StateDir $work/state
AccessLog $work/log/access_log
ErrorLog $work/log/error_log
PageLog $work/log/page_log
FileDevice No
SystemGroup root
User lp
Group lp
EOF
cat >"$etc/cupsd.conf" <<EOF
LogLevel debug
MaxLogSize 0
Listen $socket
Browsing No
BrowseLocalProtocols none
DefaultShared No
WebInterface No
DefaultAuthType None
JobPrivateAccess all
JobPrivateValues none
SubscriptionPrivateAccess all
SubscriptionPrivateValues none
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
EOF
# Seen by the backend as /etc/cups/cups-pdf.conf inside cupsd's mount namespace.
cat >"$etc/cups-pdf.conf" <<EOF
Out $work/pdf
AnonDirName $work/pdf
Spool $work/pdfspool
Log $work/log
GSTmp $work/gstmp
Grp lp
Label 2
EOF

show_logs() {
    echo "--- cupsd error_log (last lines)"
    tail -n 40 "$work/log/error_log" 2>/dev/null || true
    for log in "$work"/log/cups-pdf-*_log; do
        [ -e "$log" ] || continue
        echo "--- $(basename "$log") (last lines)"
        tail -n 40 "$log"
    done
}

cupsd -t -c "$etc/cupsd.conf" -s "$etc/cups-files.conf" >"$work/log/config-test" 2>&1 || {
    echo "e2e_cups: the private cupsd configuration is refused:"
    cat "$work/log/config-test"
    exit 1
}

# shellcheck disable=SC2016 # expanded by the inner shell
unshare --mount --propagation private -- sh -c \
    'mount --bind "$1" /etc/cups && exec cupsd -f -c "$1/cupsd.conf" -s "$1/cups-files.conf"' \
    sh "$etc" >"$work/log/cupsd.out" 2>&1 &
cupsd_pid=$!
export CUPS_SERVER=$socket
up=0
for _ in $(seq 1 200); do
    if [ -S "$socket" ] && lpstat -r 2>/dev/null | grep -qx "scheduler is running"; then
        up=1
        break
    fi
    kill -0 "$cupsd_pid" 2>/dev/null || break
    sleep 0.1
done
if [ "$up" -eq 0 ]; then
    reason=$(cat "$work/log/cupsd.out" "$work/log/error_log" 2>/dev/null | grep -v '^D ' | tail -n 3 | tr '\n' ' ' || true)
    stop_cupsd
    skip "the private cupsd did not start: $reason"
fi
echo "private cupsd (pid $cupsd_pid) on $socket"

# The PostScript for cups-pdf is made by pdftocairo: the other renderers turn the embedded
# fonts into Type 3 glyphs whose text can no longer be read back from the PDF.
lpadmin -p "$queue" -E -v cups-pdf:/ -P "$ppd" -o pdftops-renderer-default=pdftocairo 2>&1 |
    grep -v 'deprecated' || true
queue_enabled() { lpstat -p "$queue" 2>/dev/null | grep -q enabled; }
check "the queue $queue is ready" queue_enabled

set +e
env HOME="$work/home" XDG_RUNTIME_DIR="$work/runtime" TW_CUPS_QUEUE="$queue" \
    QT_QPA_PLATFORM=offscreen LANG=en_US.UTF-8 LC_ALL=en_US.UTF-8 TZ=UTC \
    setpriv --bounding-set -sys_time --inh-caps -sys_time -- "$program" >"$work/program.out" 2>&1
status=$?
set -e
cat "$work/program.out"
check "the test program printed the log without an error" test "$status" -eq 0
check "the test program was not skipped" lacks "SKIP" "$work/program.out"

# The three documents (the blank one, the log and the table) are jobs of their own; wait
# until all are done.
done_jobs=0
deadline=$((SECONDS + 60))
while [ "$SECONDS" -lt "$deadline" ]; do
    done_jobs=$(lpstat -W completed -o "$queue" 2>/dev/null | wc -l || true)
    pending=$(lpstat -W not-completed -o "$queue" 2>/dev/null | wc -l || true)
    [ "$pending" -eq 0 ] && [ "$done_jobs" -ge 3 ] && break
    sleep 0.5
done
lpstat -W completed -o "$queue" || true
check "three print jobs completed within 60 s" test "$done_jobs" -ge 3

log_pdf=
table_text=$work/table.txt
: >"$table_text"
for pdf in "$work"/pdf/*.pdf; do
    [ -e "$pdf" ] || continue
    pages=$(pdfinfo "$pdf" 2>/dev/null | awk '/^Pages:/ {print $2}' || true)
    echo "arrived: $(basename "$pdf"), ${pages:-?} page(s)"
    if [ "${pages:-0}" -eq 2 ]; then log_pdf=$pdf; fi
    if [ "${pages:-0}" -eq 1 ]; then
        pdftotext -layout "$pdf" "$work/page.txt" 2>/dev/null || true
        if grep -qF "Sunrise/Sunset Table for: Chicago" "$work/page.txt"; then cp "$work/page.txt" "$table_text"; fi
    fi
done
check "a 2-page PDF (the 57-entry log) arrived" test -n "$log_pdf"
text=$work/log.txt
: >"$text"
if [ -n "$log_pdf" ]; then pdftotext -layout "$log_pdf" "$text" 2>/dev/null || true; fi
check "the log's PDF holds the heading 'Tarrowind Logbook'" grep -qF "Tarrowind Logbook" "$text"
check "the log's PDF holds 'Page: 2'" grep -qF "Page: 2" "$text"
check "the log's PDF holds the 57th entry" grep -qF "08:56--Entry: 57 (x)" "$text"
check "a 1-page PDF of the sunrise/sunset table arrived" grep -qF "All times are: CST/MDT" "$table_text"
check "the table's PDF holds its last row, 14 March beside 31 December" grep -qE "^ *3/14 .*\| 12/31 " "$table_text"

[ "$failed" -eq 0 ] || show_logs
stop_cupsd
echo "e2e_cups: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
