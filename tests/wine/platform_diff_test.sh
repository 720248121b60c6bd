#!/usr/bin/env bash
# Runs platform_diff.exe (portable implementations against Windows' own) under
# Wine with its own prefix and display, in English (code page 1252) or Czech
# (code page 1250).
# Usage: platform_diff_test.sh BIN_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); WORK=$2; CASE=$3
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"
rm -rf "$WORK"; mkdir -p "$WORK/files"
nx_session_start "$WORK" || exit 1
[ "$CASE" = czech ] && export LC_ALL=cs_CZ.UTF-8
timeout 120 wine "$BIN/platform_diff.exe" "$(nx_winpath "$WORK/files")" 2>/dev/null | tr -d '\r'
status=${PIPESTATUS[0]}
nx_session_stop
exit "$status"
