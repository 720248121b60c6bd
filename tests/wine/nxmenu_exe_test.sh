#!/usr/bin/env bash
# nxmenu.exe under Wine gives the same answers as the native nxmenu: the demo
# menus as JSON, and the same bytes written back.
# Usage: nxmenu_exe_test.sh WIN_BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR
set -u
BIN=$(cd "$1" && pwd); NATIVE=$2; DEMO=$(cd "$3" && pwd); WORK=$4
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"
rm -rf "$WORK"; mkdir -p "$WORK"
nx_session_start "$WORK" || exit 1
passed=0; failed=0
check() { if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $*"; fi; }
for app in "" notepad winword excel; do
  folder="$DEMO/Set${app:+/$app}"
  name=${app:-general}
  "$NATIVE" to-json "$folder/Command.mnu" --braille "$folder/Focus 40.ini" --codepage 1252 >"$WORK/$name.native.json"
  timeout 60 wine "$BIN/nxmenu.exe" to-json "$(nx_winpath "$folder/Command.mnu")" \
    --braille "$(nx_winpath "$folder/Focus 40.ini")" 2>"$WORK/$name.err" | tr -d '\r' >"$WORK/$name.wine.json"
  check cmp -s "$WORK/$name.native.json" "$WORK/$name.wine.json"
  timeout 60 wine "$BIN/nxmenu.exe" from-json "$(nx_winpath "$WORK/$name.wine.json")" \
    "$(nx_winpath "$WORK/$name.mnu")" 2>>"$WORK/$name.err"
  check cmp -s "$folder/Command.mnu" "$WORK/$name.mnu"
done
nx_session_stop
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
