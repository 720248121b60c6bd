#!/usr/bin/env bash
# Runs one Windows program under Wine with its own prefix and virtual screen,
# its arguments after the work folder; `@WORK` in them becomes the work
# folder's Windows path.
# Usage: run_exe.sh WORK_DIR PROGRAM [ARGUMENTS...]
set -u
WORK=$1; shift
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"
rm -rf "$WORK"; mkdir -p "$WORK/files"
nx_session_start "$WORK" || exit 1
program=$1; shift
args=()
for a in "$@"; do args+=("${a//@WORK/$(nx_winpath "$WORK/files")}"); done
timeout 600 wine "$program" "${args[@]}" 2>/dev/null | tr -d '\r'
status=${PIPESTATUS[0]}
nx_session_stop
exit "$status"
