#!/usr/bin/env bash
# nxmenu.exe under Wine gives the same answers as the native nxmenu: the demo
# menus as JSON, and the same bytes written back, also over files that are
# there; failures say the system's reason.
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
# Over files that are there (replaced in place), with the braille profile:
# the same bytes again, and no new file left behind.
cp "$DEMO/Set/notepad/Command.mnu" "$WORK/again.mnu"
cp "$DEMO/Set/notepad/Focus 40.ini" "$WORK/again.ini"
timeout 60 wine "$BIN/nxmenu.exe" from-json "$(nx_winpath "$WORK/notepad.wine.json")" "$(nx_winpath "$WORK/again.mnu")" \
  --braille "$(nx_winpath "$WORK/again.ini")" 2>>"$WORK/again.err"
check cmp -s "$DEMO/Set/notepad/Command.mnu" "$WORK/again.mnu"
check cmp -s "$DEMO/Set/notepad/Focus 40.ini" "$WORK/again.ini"
check test -z "$(ls "$WORK" | grep '~$')"
# Failures give the system's own reason; an unreadable profile stops the
# write before anything is written.
mkdir -p "$WORK/folder.ini"
timeout 60 wine "$BIN/nxmenu.exe" from-json "$(nx_winpath "$WORK/notepad.wine.json")" "$(nx_winpath "$WORK/new.mnu")" \
  --braille "$(nx_winpath "$WORK/folder.ini")" 2>"$WORK/folder.err"
check grep -q 'folder.ini: cannot be read ([^)]' "$WORK/folder.err"
check test ! -e "$WORK/new.mnu"
timeout 60 wine "$BIN/nxmenu.exe" from-json "$(nx_winpath "$WORK/notepad.wine.json")" \
  "$(nx_winpath "$WORK")\\no folder\\new.mnu" 2>"$WORK/missing.err"
check grep -q 'new.mnu: cannot be written ([^)]' "$WORK/missing.err"
nx_session_stop
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
