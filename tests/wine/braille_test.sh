#!/usr/bin/env bash
# Braille display buttons as hot keys, under Wine with a stand-in braille
# component registered in the prefix. Case "on" (braille switched on in
# setting.ini): the editor takes the display's description as its profile
# name; in the wizard, "Braille keys" attaches the display, and buttons are
# captured while the focus is in the hot-key field only; the saved menu marks
# the item as a braille button and the display profile holds its code, and
# find by hot key (Ctrl+K) finds the item by its button. Case
# "off": the display is never opened and no button reaches the wizard.
# Usage: braille_test.sh BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR on|off
set -u
BIN=$(cd "$1" && pwd); NXMENU=$2; DEMO=$(cd "$3" && pwd); WORK=$4; CASE=$5
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
set_dir="$WORK/install/Set"
active=0; [ "$CASE" = on ] && active=1
printf '[Braille]\r\nBrailleActive=%s\r\n' "$active" >"$set_dir/setting.ini"
printf '[Koral]\r\nDisplays=1\r\nInitDelayMs=0\r\n[Display1]\r\nDescription=Focus 40\r\nUnitId=7\r\n' >"$WORK/koral.ini"
: >"$WORK/koral.log"

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
probe() { nx_probe "$BIN/nxprobe.exe" "$@"; }
expect_line() {  # what, probe command, title, line
  local got; got=$(probe "$2" "$3" 20000)
  grep -qxF -- "$4" <<<"$got" || { fail "$1: no '$4' in"; sed 's/^/    /' <<<"$got"; }
}
press() { sleep 0.7; xdotool key "$@"; }
page() { probe visible "$1" 20000 | grep -q . || fail "no page '$1'"; }
button() { timeout 60 wine "$BIN/nxprobe.exe" braille "$@" 2>>"$WORK/probe.err" | tr -d '\r'; }

nx_session_start "$WORK" || exit 1
nx_set_install "$WORK/install"
timeout 60 wine regsvr32 /s "$(nx_winpath "$BIN/koral_standin.dll")" >/dev/null 2>&1 || fail "regsvr32"
export NX_KORAL_STANDIN NX_KORAL_LOG
NX_KORAL_STANDIN=$(nx_winpath "$WORK/koral.ini")
NX_KORAL_LOG=$(nx_winpath "$WORK/koral.log")
wine "$BIN/narrixmenu.exe" notepad >"$WORK/program.log" 2>&1 &
pid=$!

editor="Menu - notepad"
# Keys pressed before the editor has the focus would be lost on a busy machine.
for _ in $(seq 1 40); do probe editor "$editor" 20000 | grep -qxF "focus: 1103" && break; sleep 0.5; done
for _ in $(seq 1 7); do press Down; done
if [ "$CASE" = on ]; then
  expect_line "the display's description names the profile with the key names" editor "$editor" \
    "hot key: [Dot 2+Dot 4+Space]"
else
  # No profile to read the button from.
  expect_line "no display, no profile: no button" editor "$editor" "hot key: []"
fi
press Home

press ctrl+n
page "New item - Name"
sleep 0.7; xdotool type --delay 60 "Braille item"
press Return; page "New item - Type"
press Up; press Up  # a screen-reader command
press Return; page "New item - Narrix command"
press Return; page "New item - Hot Key"
# Alt+K in the hot-key field would be a hot key: Tab to "Braille keys".
for _ in $(seq 1 4); do press Tab; done
expect_line "Tab reaches Braille keys" active "New item - Hot Key" "focus: 1326"
# The wizard's display takes a while to open.
sed -i 's/^InitDelayMs=0/InitDelayMs=4000/' "$WORK/koral.ini"
press space
if [ "$CASE" = on ]; then
  # The notice is found by its title alone: the program is busy and does not
  # answer messages until the display is open.
  probe rect "Narrix - Screen Reader" 5000 | grep -q '^[0-9]' || fail "no notice while the display opens"
  # While the display opens the program answers nothing (it may count as hung
  # for a moment afterwards), so the next questions wait for it to go.
  for _ in $(seq 1 40); do
    timeout 20 wine "$BIN/nxprobe.exe" absent "Narrix - Screen Reader" 0 >/dev/null 2>&1 && break
    sleep 0.5
  done
  sleep 2
  expect_line "the notice gone, the focus in the hot-key field" active "New item - Hot Key" "focus: 1318"
  # The program's display and the wizard's: the same unit, both listening.
  got=$(button normal 5)
  [ "$got" = "sent: 2 raised: 2" ] || fail "display keys 0 and 2 sent: $got"
  expect_line "keys 0 and 2 captured" visible "New item - Hot Key" "1318 Edit [Dot 1+Dot 3]"
  button cursor 3 >/dev/null
  expect_line "cursor-status button 3 captured" visible "New item - Hot Key" "1318 Edit [Routing 4]"
  button normal 5 0 >/dev/null  # a release binds nothing
  button aux 3 1 9 >/dev/null   # nor another display's button
  expect_line "a release and another unit change nothing" visible "New item - Hot Key" "1318 Edit [Routing 4]"
  button normal 5 >/dev/null
  # Discard is unavailable for a button: six steps to Finish.
  for _ in $(seq 1 6); do press Tab; done
  expect_line "the focus reaches Finish" active "New item - Hot Key" "focus: 1325"
  button normal 6 >/dev/null
  expect_line "a button pressed on Finish is ignored" visible "New item - Hot Key" "1318 Edit [Dot 1+Dot 3]"
else
  button normal 5 | grep -q "^sent: 0" || fail "a display was opened with braille switched off"
  expect_line "nothing captured" visible "New item - Hot Key" "1318 Edit "
  for _ in $(seq 1 7); do press Tab; done
  expect_line "the focus reaches Finish" active "New item - Hot Key" "focus: 1325"
fi
press Return  # Finish
expect_line "the new item" editor "$editor" "name: Braille item"
if [ "$CASE" = on ]; then
  # Find by hot key takes the program's display's buttons in its field.
  press Home; press ctrl+k
  probe visible "Find by hot key" 20000 | grep -q . || fail "no find-by-hot-key window after Ctrl+K"
  button normal 5 >/dev/null
  expect_line "a display button in Ctrl+K's field finds its item" editor "$editor" "name: Braille item"
  expect_line "the window gone, the focus back in the tree" editor "$editor" "focus: 1103"
fi
press Escape
expect_line "closing asks to save" message "Narrix - Screen Reader" "text: Save changes?"
press Return
for _ in $(seq 1 50); do
  "$NXMENU" dump "$set_dir/notepad/Command.mnu" | grep -q '^Braille item ' && break
  sleep 0.2
done
got=$("$NXMENU" dump "$set_dir/notepad/Command.mnu" --keys "$set_dir/gKeyCode.def" \
  --braille "$set_dir/notepad/Focus 40.ini" | head -1)
if [ "$CASE" = on ]; then
  want='Braille item  -> SayLine  key: [Dot 1+Dot 3]  #256'
  grep -qix 'SayLine=5' <(tr -d '\r' <"$set_dir/notepad/Focus 40.ini") ||
    { fail "the profile's Actions"; sed 's/^/    /' "$set_dir/notepad/Focus 40.ini"; }
else
  want='Braille item  -> SayLine  discard  #256'
fi
[ "$got" = "$want" ] || fail "the saved item: '$got', not '$want'"

press Escape
nx_wait_exit "$pid" 20 || fail "Escape in the list did not end the program"
log=$(tr -d '\r' <"$WORK/koral.log")
if [ "$CASE" = on ]; then
  # Two displays: the program's, and the wizard's from "Braille keys"; both
  # closed and shut down by the end.
  [ "$(grep -c '^Open 7$' <<<"$log")" = 2 ] && [ "$(grep -c '^Close 7$' <<<"$log")" = 2 ] &&
    [ "$(grep -c '^Shutdown$' <<<"$log")" = 2 ] || { fail "opened and closed"; sed 's/^/    /' <<<"$log"; }
else
  grep -q '^Initialize' <<<"$log" && { fail "initialised with braille off"; sed 's/^/    /' <<<"$log"; }
fi
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
