#!/usr/bin/env bash
# The item wizard from the keyboard under Wine: the program is started with
# a script path, so the wizard opens by itself for a new script item (name,
# refused first for a character no code page of the test has, kind and path
# from the command line, Control+Shift+F5, Finish), and the first control to
# get the focus after the wizard is shown, at the opening and after each page
# move, is the page's own (nxprobe focuslog); then Ctrl+N makes a pull-down
# and, under it, a screen-reader command with a hot key captured while Insert
# is held (Alt+J, also with Alt released first, F10 and Alt+F4 are hot keys
# there too, not commands, and leave no menu mode behind); an edit is
# cancelled; OK saves. The saved menu is compared as JSON (nxmenu to-json)
# with wizard_expected.json. Wine draws the window frames, so that the window
# has its system menu, as on Windows.
# Usage: wizard_test.sh BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); NXMENU=$2; DEMO=$(cd "$3" && pwd); WORK=$4; CASE=$5
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
if [ "$CASE" = czech ]; then
  export LC_ALL=cs_CZ.UTF-8 2>/dev/null
  editor_title="Nabídka - notepad"; new_item="Nová položka"; new_name="Nová položka - Název"
  new_keys="Nová položka - Klávesová zkratka"
  edit_name="Úprava položky - Název"; yes=a; subitem="text: Uložit jako podpoložku?"
  fresh="1302 Edit Nová položka"; finish=alt+d
  new_type="Nová položka - Typ"; new_script="Nová položka - Příkaz"; new_command="Nová položka - Příkaz Narrixu"
  unstorable='Znak "Ω" (U+03A9) nelze uložit do souboru nabídky: znaková stránka systému takový znak nemá. Odstraňte ho nebo ho napište jinak.'
else
  editor_title="Menu - notepad"; new_item="New item"; new_name="New item - Name"; new_keys="New item - Hot Key"
  edit_name="Edit item - Name"; yes=y; subitem="text: Save as subitem?"
  fresh="1302 Edit New item"; finish=alt+f
  new_type="New item - Type"; new_script="New item - Command"; new_command="New item - Narrix command"
  unstorable='The character "Ω" (U+03A9) cannot be stored in the menu file: the system'"'"'s code page has no such character. Remove it or write it another way.'
fi
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
probe() { nx_probe "$BIN/nxprobe.exe" "$1" "$(nx_title_arg "$2")" 20000; }
expect_line() {  # what, probe command, title, line
  local got; got=$(probe "$2" "$3")
  grep -qxF -- "$4" <<<"$got" || { fail "$1: no '$4' in"; sed 's/^/    /' <<<"$got"; }
}
press() { sleep 0.7; xdotool key "$@"; }
# Waits for the page titled $1 before the next key goes to it.
page() { probe visible "$1" | grep -q . || fail "no page '$1'"; }
# xdotool reads the text in a UTF-8 locale whatever the language of the test.
type_text() { sleep 0.7; LC_ALL=C.UTF-8 xdotool type --delay 60 "$1"; }
# Types $1 over the whole name field until the field holds it: xdotool maps a
# character missing from the keyboard map onto a spare key for a moment, and
# on a loaded machine the window may read that key after it is mapped back.
type_name() {
  for _ in 1 2 3; do
    press End shift+Home; type_text "$1"
    probe visible "$new_name" | grep -qxF "1302 Edit $1" && return
  done
  fail "the name field never held '$1'"
}

nx_session_start "$WORK" || exit 1
nx_set_install "$WORK/install"
nx_wine_frames N
# Every focus change and window show, in order, until the hot-key page.
timeout 120 wine "$BIN/nxprobe.exe" focuslog - 110000 >"$WORK/focus.log" 2>"$WORK/focuslog.err" &
focuslog=$!
for _ in $(seq 1 100); do grep -q logging "$WORK/focus.log" 2>/dev/null && break; sleep 0.2; done
wine "$BIN/narrixmenu.exe" 'notepad*$(appsetdir)\hello.vbs' >"$WORK/program.log" 2>&1 &
pid=$!

# 1. The pending new item: a script from the command line.
expect_line "the wizard opens for the script of the command line" visible "$new_name" "$fresh"
type_name HelloΩ
press Return  # neither code page 1252 nor 1250 has the Omega
expect_line "a character the code page lacks is refused" message "Narrix - Screen Reader" "text: $unstorable"
press Return; press BackSpace  # it is selected in the field again
press Return; page "$new_type"
press Return; page "$new_script"
press Return; page "$new_keys"
sleep 0.5; kill "$focuslog"
# After each show of the wizard the focus goes first to the page's control
# (name, the chosen kind, script path, hot key), never through the old page's.
first=$(awk -v shown="show 0 #32770 $new_item - " 'index($0, shown) == 1 { want = 1; next }
  want && /^focus / { printf "%s %s ", $2, $3; want = 0 }' "$WORK/focus.log")
[ "$first" = "shown 1302 shown 1305 shown 1312 shown 1318 " ] ||
  { fail "first focus after each show: $first"; sed 's/^/    /' "$WORK/focus.log"; }
press ctrl+shift+F5
expect_line "Control+Shift+F5 captured" visible "$new_keys" "1318 Edit C+S+F5"
expect_line "the item that already has it is named" visible "$new_keys" "1320 Edit Insert date and time"
press Tab; press "$finish"  # out of the field, the access key is Finish again
expect_line "the new script item is the first of the menu" editor "$editor_title" "name: Hello"

# 2. A pull-down after it.
press ctrl+n
expect_line "Ctrl+N opens the wizard" visible "$new_name" "$fresh"
type_text Tools
press Return; page "$new_type"
press Return  # a new item is a pull-down: Finish
expect_line "the placement question" message "Narrix - Screen Reader" "$subitem"
press n  # "Save as subitem?" No: after the selected item
expect_line "the pull-down" editor "$editor_title" "name: Tools"

# 3. A screen-reader command under it, with Insert held for the hot key.
press ctrl+n
expect_line "Ctrl+N opens the wizard again" visible "$new_name" "$fresh"
type_text "Say time"
press Return; page "$new_type"
press Up; press Up  # the kind: Narrix command
press Return; page "$new_command"
for _ in $(seq 1 13); do press Down; done  # "says the time"
press Return; page "$new_keys"
# Keys that would be commands elsewhere are hot keys in the field: the wizard
# stays in front with the focus in the field, and no menu opens. Alt released
# before J, and Alt+F4, leave no menu mode: the next key is captured.
for key in alt+j F10 alt-first+j F3 alt+F4; do
  if [ "$key" = alt-first+j ]; then sleep 0.7; xdotool keydown alt keydown j keyup alt keyup j; else press "$key"; fi
  expect_line "$key captured" visible "$new_keys" "1318 Edit $(sed 's/alt.*+/A+/; s/j$/J/' <<<"$key")"
  expect_line "$key opens nothing" active "$new_keys" "foreground: $new_keys"
  expect_line "$key keeps the focus in the field" active "$new_keys" "focus: 1318"
  timeout 60 wine "$BIN/nxprobe.exe" popup - 500 >/dev/null 2>&1 && fail "$key opened a menu"
done
sleep 0.7; xdotool keydown Insert key j keyup Insert
expect_line "Insert+J captured" visible "$new_keys" "1318 Edit Narrix+J"
press Tab; press Return
expect_line "the placement question again" message "Narrix - Screen Reader" "$subitem"
press "$yes"  # "Save as subitem?" Yes: under Tools
expect_line "the command item" editor "$editor_title" "command: SayTime"

# 4. An edit, cancelled.
press Home; press Down
press alt+Return
expect_line "the edit wizard" visible "$edit_name" "1302 Edit Hello"
type_text Changed
press Escape
expect_line "a cancelled edit changes nothing" editor "$editor_title" "name: Hello"

# 5. OK saves and closes; Tab goes from the tree past the three fields to it.
for _ in 1 2 3 4; do press Tab; done
expect_line "Tab reaches OK" active "$editor_title" "focus: 1"
press Return
menu="$WORK/install/Set/notepad/Command.mnu"
for _ in $(seq 1 50); do
  timeout 60 wine "$BIN/nxprobe.exe" absent "$(nx_title_arg "$editor_title")" 0 >/dev/null 2>&1 &&
    "$NXMENU" dump "$menu" 2>/dev/null | grep -q '^Hello ' && break
  sleep 0.2
done
got=$("$NXMENU" to-json "$menu")
rc=$?
echo "$got" >"$WORK/saved.json"
[ "$rc" = 0 ] || fail "nxmenu to-json exit status $rc"
diff "$HERE/wizard_expected.json" <(echo "$got") >"$WORK/saved.diff" ||
  { fail "the saved menu"; sed 's/^/    /' "$WORK/saved.diff"; }

press Escape
nx_wait_exit "$pid" 20 || fail "Escape in the list did not end the program"
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
