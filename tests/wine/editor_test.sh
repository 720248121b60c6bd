#!/usr/bin/env bash
# The menu editor driven under Wine, as our users work: open the notepad menu
# from the command line, move in the tree, open the item menu with the
# context-menu key, copy and paste as next through Shift+F10, delete an item
# and answer both questions (the item, then its script files), open the item
# menu with a right click on another item, choose an entry in the preview
# (F9), Apply, and check the saved menu through `nxmenu to-json`. After the
# delete its neighbour is selected and Ctrl+N puts a new item after it; a cut
# item pasted into its own child is refused with a message. Then the saved
# file is damaged and opened again from the list: the report is the editor's
# own modal message, and the focus lands in the tree after Enter. A menu 26
# levels deep is not opened: its message, then the focus back in the list and
# the file as it was. Every step is checked from outside.
# Usage: editor_test.sh BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); NXMENU=$2; DEMO=$(cd "$3" && pwd); WORK=$4; CASE=$5
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
set_dir="$WORK/install/Set"
# The script files of the item that gets deleted.
printf 'MsgBox "line"\r\n' >"$set_dir/notepad/Current line.vbs"
printf 'form\r\n' >"$set_dir/notepad/Current line.frm"
# A menu one level deeper than the editor edits.
items='[]'
for level in $(seq 26 -1 1); do
  items="[{\"caption\": \"Level $level\", \"action\": \"\", \"hotKey\": 0, \"discard\": false, \"items\": $items}]"
done
mkdir "$set_dir/zdeep"
deep="$set_dir/zdeep/Command.mnu"
echo "{\"items\": $items}" | "$NXMENU" from-json - "$deep" || echo "FAIL: the deep menu could not be made"
cp "$deep" "$WORK/deep.mnu"
if [ "$CASE" = czech ]; then
  export LC_ALL=cs_CZ.UTF-8 2>/dev/null
  title="Nabídka - notepad"; list_title="Úprava nabídky"; root="Aplikace (notepad)"; copy=k; paste_next=z; apply=alt+u
  question=$'text: Opravdu odstranit položku Current line?\nbutton: &Ano\nbutton: &Ne'
  script_question=$'text: Smazat soubor Current line.vbs?\nbutton: &Ano\nbutton: &Ne'; yes=a; damaged=" je poškozený"
  new_name="Nová položka - Název"; new_type="Nová položka - Typ"; subitem="text: Uložit jako podpoložku?"
  into_itself="text: Vyjmutou položku Read nelze vložit do ní samé ani pod ni. Nic nebylo vloženo."
  too_deep=" má položky vnořené hlouběji než 25 úrovní."
else
  title="Menu - notepad"; list_title="Menu modification"; root="Application (notepad)"; copy=c; paste_next=x; apply=alt+a
  question=$'text: Are you sure to remove the item Current line\nbutton: &Yes\nbutton: &No'
  script_question=$'text: Smazat soubor Current line.vbs?\nbutton: &Yes\nbutton: &No'; yes=y; damaged=" is damaged"
  new_name="New item - Name"; new_type="New item - Type"; subitem="text: Save as subitem?"
  into_itself="text: The cut item Read cannot be pasted into itself or below itself. Nothing was pasted."
  too_deep=" has items nested more than 25 levels deep."
fi
BOX_TITLE="Narrix - Screen Reader"

source "$HERE/journey.sh"
# Waits for a pop-up menu before the next key goes to it.
popup() { timeout 60 wine "$BIN/nxprobe.exe" popup - 20000 >/dev/null 2>&1 || fail "no pop-up menu after $1"; }
# A pop-up menu that shows up within 2 s, after one was closed, is one too many.
no_popup() { ! timeout 60 wine "$BIN/nxprobe.exe" popup - 2000 >/dev/null 2>&1 || fail "a pop-up menu after $1"; }
# Waits up to 20 s for a message box whose content is "$2".
message() {
  local got
  for _ in $(seq 1 20); do
    got=$(nx_probe "$BIN/nxprobe.exe" message "$BOX_TITLE" 20000)
    [ "$got" = "$2" ] && return
    sleep 1
  done
  fail "$1"; sed 's/^/    /' <<<"$got"
}
# "enabled: yes" or "enabled: no" of the window titled by the argument file $1.
enabled() { nx_probe "$BIN/nxprobe.exe" active "$1" 20000 | grep '^enabled:'; }

nx_session_start "$WORK" || exit 1
TITLE=$(nx_title_arg "$title")
LIST_TITLE=$(nx_title_arg "$list_title")
nx_set_install "$WORK/install"
wine "$BIN/narrixmenu.exe" notepad >"$WORK/program.log" 2>&1 &
pid=$!

expect "the editor opens on the menu's top node" "nodes: 10
name: $root
focus: 1103
apply: disabled"
press Down; press Down
expect "Down, Down" "name: Current line"
press Menu; popup "the context-menu key"; press Escape
no_popup "Escape"
expect "Escape closes the item menu" "name: Current line
focus: 1103"
press shift+F10; popup Shift+F10; press "$copy"
press Down
press shift+F10; popup Shift+F10; press "$paste_next"
expect "copy, then paste as next after Current word" "nodes: 11
name: Current line
apply: enabled"
press Up; press Up
expect "Up, Up to the original" "name: Current line"
press Delete
message "the delete question" "$question"
press Return  # Yes is the default of this question
message "the question about the item's script" "$script_question"
press "$yes"
expect "after the delete its next sibling is selected and shown, the focus in the tree" "nodes: 10
name: Current word
command: SayWord
focus: 1103
apply: enabled"
for f in "Current line.vbs" "Current line.frm"; do
  [ -e "$set_dir/notepad/$f" ] && fail "$f was not deleted"
done

# Ctrl+N: a pull-down named Fresh, placed after the selected item (No).
press ctrl+n
nx_probe "$BIN/nxprobe.exe" visible "$(nx_title_arg "$new_name")" 20000 | grep -q . || fail "no wizard after Ctrl+N"
sleep 0.6; xdotool type --delay 60 Fresh
press Return
nx_probe "$BIN/nxprobe.exe" visible "$(nx_title_arg "$new_type")" 20000 | grep -q . || fail "no Type page"
press Return  # a pull-down: Finish
told "the placement question" "$subitem"
press n
expect "the new item, selected, with the focus in the tree" "nodes: 11
name: Fresh
focus: 1103"
got=$(tree)
grep -qF "|Current word|Fresh|Current line|" <<<"$got" || fail "the new item is not after Current word: $got"

# A cut item pasted into its own child: refused before any question.
press Home; press Down; press ctrl+x
press Down; press ctrl+v
told "the paste into itself" "$into_itself"
press Return
expect "the refused paste changes nothing" "nodes: 11
name: Current word
focus: 1103"
[ "$(tree)" = "$got" ] || fail "the refused paste changed the tree: $(tree)"

# A right click selects the item under the pointer and opens the item menu.
read -r x y _ <<<"$(nx_probe "$BIN/nxprobe.exe" nodes "$TITLE" 20000 | grep -m1 ' Word count$')"
if [ -n "${y:-}" ]; then
  sleep 0.6; xdotool mousemove "$x" "$y" click 3
  popup "a right click"
  expect "the right click selects Word count" "name: Word count"
  press Escape
  no_popup "Escape"
else
  fail "no node Word count on the screen"
fi

press F9; popup F9; press Down; press Down; press Return
expect "the preview's choice is shown, with the focus in the name field" "name: Insert date and time
focus: 1105"
press "$apply"
expect "Apply saves, and the focus goes back to the tree" "apply: disabled
focus: 1103"

menu="$set_dir/notepad/Command.mnu"
got=$("$NXMENU" to-json "$menu" --braille "$set_dir/notepad/Focus 40.ini")
status=$?
[ "$status" -eq 0 ] || fail "nxmenu to-json ended with $status"
want=$(cat "$HERE/editor_saved.json")
[ "$got" = "$want" ] || { fail "the saved menu"; diff <(echo "$want") <(echo "$got") | sed 's/^/    /'; }

press Escape  # saved: the editor closes without a question
got=$(nx_probe "$BIN/nxprobe.exe" list "$LIST_TITLE" 20000 | grep -E '^(selected|focus):')
[ "$got" = $'selected: 2\nfocus: 1003' ] || { fail "back in the list"; echo "$got" | sed 's/^/    /'; }

# The saved menu, cut short, opened again from the list.
truncate -s -3 "$menu"
press Return
got=$(nx_probe "$BIN/nxprobe.exe" message "$BOX_TITLE" 20000)
grep -qF -- "$(nx_winpath "$menu")$damaged" <<<"$got" || { fail "the damaged file's report"; sed 's/^/    /' <<<"$got"; }
[ "$(enabled "$TITLE")" = "enabled: no" ] || fail "the editor takes input under the report"
[ "$(enabled "$LIST_TITLE")" = "enabled: no" ] || fail "the list takes input under the report"
press Return
expect "after the report the focus is in the tree" "name: $root
focus: 1103
apply: disabled"
press Escape
got=$(nx_probe "$BIN/nxprobe.exe" list "$LIST_TITLE" 20000 | grep -E '^(selected|focus):')
[ "$got" = $'selected: 2\nfocus: 1003' ] || { fail "back in the list again"; echo "$got" | sed 's/^/    /'; }

# The menu 26 levels deep: the message over the editor, then the list again.
press End; press Return
told "the too deep menu's message" "$(nx_winpath "$deep")$too_deep"
[ "$(enabled "$LIST_TITLE")" = "enabled: no" ] || fail "the list takes input under the too deep menu's message"
press Return
got=$(nx_probe "$BIN/nxprobe.exe" list "$LIST_TITLE" 20000 | grep -E '^(selected|focus):')
[ "$got" = $'selected: 4\nfocus: 1003' ] || { fail "back in the list after the deep menu"; echo "$got" | sed 's/^/    /'; }
cmp -s "$deep" "$WORK/deep.mnu" || fail "the deep menu's file changed"
press Escape
nx_wait_exit "$pid" 20 || fail "Escape in the list did not end the program"
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
