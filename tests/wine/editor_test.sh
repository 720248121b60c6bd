#!/usr/bin/env bash
# The menu editor driven from the keyboard under Wine, as our users work:
# open the notepad menu from the command line, move in the tree, copy and
# paste as next through the context menu (Shift+F10), delete an item and
# answer the question, choose an entry in the preview (F9), Apply, and check
# the saved menu with nxmenu. Every step is checked from outside.
# Usage: editor_test.sh BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); NXMENU=$2; DEMO=$(cd "$3" && pwd); WORK=$4; CASE=$5
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
if [ "$CASE" = czech ]; then
  export LC_ALL=cs_CZ.UTF-8 2>/dev/null
  title="Nabídka - notepad"; list_title="Úprava nabídky"; root="Aplikace (notepad)"; copy=k; paste_next=z; apply=alt+u
  question=$'text: Opravdu odstranit položku Current line?\nbutton: &Ano\nbutton: &Ne'
else
  title="Menu - notepad"; list_title="Menu modification"; root="Application (notepad)"; copy=c; paste_next=x; apply=alt+a
  question=$'text: Are you sure to remove the item Current line\nbutton: &Yes\nbutton: &No'
fi
printf '%s\n' "$title" >"$WORK/title.txt"
printf '%s\n' "$list_title" >"$WORK/list-title.txt"
TITLE="@$(nx_winpath "$WORK/title.txt")"
LIST_TITLE="@$(nx_winpath "$WORK/list-title.txt")"

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
editor() { nx_probe "$BIN/nxprobe.exe" editor "$TITLE" 20000; }
# expect "what" "lines that must all appear in the editor's state"
expect() {
  local state; state=$(editor)
  while IFS= read -r line; do
    grep -qxF -- "$line" <<<"$state" || { fail "$1: no '$line' in"; sed 's/^/    /' <<<"$state"; return; }
  done <<<"$2"
}
press() { sleep 0.6; xdotool key "$@"; }
# Waits for a pop-up menu before the next key goes to it.
popup() { timeout 60 wine "$BIN/nxprobe.exe" popup - 20000 >/dev/null 2>&1 || fail "no pop-up menu after $1"; }

nx_session_start "$WORK" || exit 1
nx_set_install "$WORK/install"
wine "$BIN/narrixmenu.exe" notepad >"$WORK/program.log" 2>&1 &
pid=$!

expect "the editor opens on the menu's top node" "nodes: 10
name: $root
focus: 1103
apply: disabled"
press Down; press Down
expect "Down, Down" "name: Current line"
press shift+F10; popup Shift+F10; press "$copy"
press Down
press shift+F10; popup Shift+F10; press "$paste_next"
expect "copy, then paste as next after Current word" "nodes: 11
name: Current line
apply: enabled"
press Up; press Up
expect "Up, Up to the original" "name: Current line"
press Delete
got=$(nx_probe "$BIN/nxprobe.exe" message "Narrix - Screen Reader" 20000)
[ "$got" = "$question" ] || { fail "delete question"; echo "$got" | sed 's/^/    /'; }
press Return  # Yes is the default of this question
expect "after the delete, its neighbour is selected" "nodes: 10
name: Current word"
press F9; popup F9; press Down; press Down; press Return
expect "the preview's choice is shown, with the focus in the name field" "name: Insert date and time
focus: 1105"
press "$apply"
expect "Apply saves, and the focus goes back to the tree" "apply: disabled
focus: 1103"

set_dir="$WORK/install/Set"
got=$("$NXMENU" dump "$set_dir/notepad/Command.mnu" --keys "$set_dir/gKeyCode.def" --braille "$set_dir/notepad/Focus 40.ini")
want='Read  #256
  Current word  -> SayWord  key: Narrix+5  discard  #257
  Current line  -> SayLine  key: Narrix+Up Arrow  discard  #258
  From cursor to end  -> SayFromCursor  key: Narrix+S+Down Arrow  discard  #259
  Everything  -> SayAll  key: Narrix+Down Arrow  discard  #260
Insert date and time  -> shell(wscript.exe "$(appsetdir)\datetime.vbs")  key: C+S+F5  #261
Word count  -> shell(wscript.exe "$(appsetdir)\wordcount.vbs")  key: [Dot 2+Dot 4+Space]  #262
Status bar  -> SayStatusBar  key: Narrix+C+S  discard  #263
Tips for Notepad  -> shell(notepad.exe "$(appsetdir)\tips.txt")  key: Narrix+A+T  discard  #264'
[ "$got" = "$want" ] || { fail "the saved menu"; diff <(echo "$want") <(echo "$got") | sed 's/^/    /'; }

press Escape  # saved: the editor closes without a question
got=$(nx_probe "$BIN/nxprobe.exe" list "$LIST_TITLE" 20000 | grep -E '^(selected|focus):')
[ "$got" = $'selected: 2\nfocus: 1003' ] || { fail "back in the list"; echo "$got" | sed 's/^/    /'; }
press Escape
nx_wait_exit "$pid" 20 || fail "Escape in the list did not end the program"
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
