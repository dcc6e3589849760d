#!/usr/bin/env bash
# Runs a test program with TW_SMALL_DISK naming a 64 KiB tmpfs mounted in a private mount
# namespace of its own, so that the machine's own mounts are never touched. Skips (77)
# where mount namespaces are not allowed.
set -euo pipefail
program="$1"
if ! unshare -m --propagation private true 2>/dev/null; then
    echo "small_disk: no private mount namespace here (needs root): skipped"
    exit 77
fi
disk=$(mktemp -d)
trap 'rmdir "$disk" 2>/dev/null || true' EXIT
unshare -m --propagation private bash -c '
    mount -t tmpfs -o size=64k,mode=0700 tmpfs "$1" || exit 77
    TW_SMALL_DISK="$1" "$2"
' small_disk "$disk" "$program"
