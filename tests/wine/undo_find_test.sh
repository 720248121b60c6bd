#!/usr/bin/env bash
# Undo, redo and the two searches of the menu editor from the keyboard under
# Wine, with the focus checked after every step: the pull-down Read deleted
# with its items, Ctrl+Z brings it back in its place and selected, Ctrl+Y
# deletes it again, Ctrl+Z once more is the saved state (Apply disabled, the
# file untouched, Escape asks nothing). Ctrl+K finds an item by its hot key
# and closes; a hot key nobody has is said in the dialog, which stays with the
# focus in the field (Tab reaches Cancel). Ctrl+F finds by part of the name
# under a closed pull-down, F3 and Shift+F3 go on; a text nobody has gets its
# message. An item cut in the notepad menu, which is then closed, is pasted
# as a copy into the winword menu opened afterwards from the list, and saved
# there; notepad's file stays as it was. Both menus are checked through `nxmenu to-json`.
# Usage: undo_find_test.sh BIN_DIR NATIVE_NXMENU DEMO_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); NXMENU=$2; DEMO=$(cd "$3" && pwd); WORK=$4; CASE=$5
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
set_dir="$WORK/install/Set"
notepad="$set_dir/notepad/Command.mnu"; winword="$set_dir/winword/Command.mnu"
cp "$notepad" "$WORK/notepad.mnu"
if [ "$CASE" = czech ]; then
  export LC_ALL=cs_CZ.UTF-8 2>/dev/null
  title="Nabídka - notepad"; word_title="Nabídka - winword"; list_title="Úprava nabídky"; apply=alt+u
  root="Aplikace (notepad)"; word_root="Aplikace (winword)"; subitem="text: Uložit jako podpoložku?"
  question="text: Opravdu odstranit položku Read i s jejími podpoložkami?"; nothing="text: Není co vrátit zpět."
  find_title="Najít položku"; find_label="Název obsahuje:"; no_name='text: Název žádné položky neobsahuje "zzz".'
  key_title="Najít podle klávesové zkratky"; no_key="Žádná položka této nabídky nemá klávesovou zkratku "
else
  title="Menu - notepad"; word_title="Menu - winword"; list_title="Menu modification"; apply=alt+a
  root="Application (notepad)"; word_root="Application (winword)"; subitem="text: Save as subitem?"
  question="text: Are you sure to remove the item Read and its subitems?"; nothing="text: There is nothing to undo."
  find_title="Find item"; find_label="Name contains:"; no_name='text: No item'"'"'s name contains "zzz".'
  key_title="Find by hot key"; no_key="No item of this menu has the hot key "
fi
BOX_TITLE="Narrix - Screen Reader"

source "$HERE/journey.sh"
type_text() { sleep 0.6; LC_ALL=C.UTF-8 xdotool type --delay 60 "$1"; }
# The shown controls of the window titled by the argument file $1, then its focus.
controls() {
  nx_probe "$BIN/nxprobe.exe" visible "$1" 20000
  nx_probe "$BIN/nxprobe.exe" active "$1" 20000 | grep '^focus:'
}
# has "what" "state" "line": the line must be in the state.
has() { grep -qxF -- "$3" <<<"$2" || { fail "$1: no '$3' in"; sed 's/^/    /' <<<"$2"; }; }
gone() { timeout 60 wine "$BIN/nxprobe.exe" absent "$1" 3000 2>/dev/null || fail "the window '$2' stays"; }
list_state() { nx_probe "$BIN/nxprobe.exe" list "$LIST_TITLE" 20000 | grep -E '^(selected|focus):' | paste -sd' '; }
# The menu file $1 as JSON, with the braille profile of application $2.
json() { "$NXMENU" to-json "$1" --braille "$set_dir/$2/Focus 40.ini"; }

nx_session_start "$WORK" || exit 1
TITLE=$(nx_title_arg "$title")
LIST_TITLE=$(nx_title_arg "$list_title")
FIND_TITLE=$(nx_title_arg "$find_title")
KEY_TITLE=$(nx_title_arg "$key_title")
nx_set_install "$WORK/install"
wine "$BIN/narrixmenu.exe" notepad >"$WORK/program.log" 2>&1 &
pid=$!

expect "the editor opens on the menu's top node" "nodes: 10
name: $root
focus: 1103"
original=$(tree)

# 1. Delete a pull-down with its items, undo, redo, undo.
press Down
expect "Down" "name: Read"
press Delete
told "the delete question" "$question"
press Return  # Yes is the default
expect "the pull-down deleted with its items" "nodes: 5
name: Insert date and time
focus: 1103
apply: enabled"
press ctrl+z
expect "Ctrl+Z brings the pull-down back, selected" "nodes: 10
name: Read
focus: 1103
apply: disabled"
[ "$(tree)" = "$original" ] || fail "Ctrl+Z: the tree is not as before: $(tree)"
press ctrl+y
expect "Ctrl+Y deletes it again, its parent selected" "nodes: 5
name: $root
focus: 1103
apply: enabled"
press ctrl+z
expect "Ctrl+Z again: the saved state" "nodes: 10
name: Read
focus: 1103
apply: disabled"
[ "$(tree)" = "$original" ] || fail "the second Ctrl+Z: the tree is not as before: $(tree)"
press ctrl+z
told "nothing more to undo" "$nothing"
press Return
expect "after the message the focus is in the tree" "name: Read
focus: 1103"
cmp -s "$notepad" "$WORK/notepad.mnu" || fail "undo and redo wrote notepad's file"

# 2. Find by hot key: Control+Shift+F5 is the hot key of Insert date and time.
press ctrl+k
has "Ctrl+K opens the dialog with the focus in the field" "$(controls "$KEY_TITLE")" "focus: 1602"
press ctrl+shift+F5
gone "$KEY_TITLE" "$key_title"
expect "the item with the hot key, the focus back in the tree" "name: Insert date and time
focus: 1103"
press ctrl+k
has "Ctrl+K again" "$(controls "$KEY_TITLE")" "focus: 1602"
press ctrl+shift+F6
state=$(controls "$KEY_TITLE")
grep -qx -- "1603 Static ${no_key}.*F6\." <<<"$state" || { fail "no status for a hot key nobody has"; sed 's/^/    /' <<<"$state"; }
has "the dialog stays with the focus in the field" "$state" "focus: 1602"
nx_probe "$BIN/nxprobe.exe" layout "$KEY_TITLE" 20000 | grep -E ' (OUTSIDE|CUT) ' | sed 's/^/FAIL: cut or outside: /' |
  grep . && failures=$((failures + 1))
command -v import >/dev/null && import -window root "$WORK/find-key.png"
press Tab
has "Tab leaves the field for Cancel" "$(controls "$KEY_TITLE")" "focus: 2"
press Return
gone "$KEY_TITLE" "$key_title"
expect "Cancel: the selection as it was, the focus in the tree" "name: Insert date and time
focus: 1103"

# 3. Find by name under a closed pull-down, again and back; then nothing found.
press Home; press Down; press Left
case "|$(tree)|" in *"|Current word|"*) fail "Left did not close Read: $(tree)" ;; esac
press ctrl+f
state=$(controls "$FIND_TITLE")
has "Ctrl+F asks for the text" "$state" "1501 Static &$find_label"
has "Ctrl+F: the focus in the field" "$state" "focus: 1502"
type_text WORD
press Return
expect "the first name containing 'word' after Read" "name: Current word
focus: 1103"
press F3
expect "F3" "name: Word count
focus: 1103"
press shift+F3
expect "Shift+F3" "name: Current word
focus: 1103"
press ctrl+f
has "Ctrl+F again: the last text in the field" "$(controls "$FIND_TITLE")" "1502 Edit WORD"
press End shift+Home; type_text zzz
press Return
told "no name contains zzz" "$no_name"
press Return
expect "after the message the focus is in the tree" "name: Current word
focus: 1103"

# 4. Cut Read, close the editor (nothing to save), paste into winword.
press Home; press Down; press ctrl+x
press Escape
[ "$(list_state)" = "selected: 2 focus: 1003" ] || fail "Escape with nothing changed: not back in the list: $(list_state)"
cmp -s "$notepad" "$WORK/notepad.mnu" || fail "notepad's file changed"
[ "$(json "$notepad" notepad)" = "$(json "$WORK/notepad.mnu" notepad)" ] || fail "notepad's menu changed"
cp "$winword" "$WORK/winword.mnu"
press Down; press Return
TITLE=$(nx_title_arg "$word_title")
expect "the winword menu opens" "name: $word_root
focus: 1103"
press Down; press ctrl+v
told "the placement question" "$subitem"
press n
expect "Read pasted after Navigate, selected" "name: Read
focus: 1103
apply: enabled"
press "$apply"
expect "Apply saves, the focus in the tree" "apply: disabled
focus: 1103"
# Read, as notepad's to-json has it: the first item, up to its closing line.
read_block=$(json "$WORK/notepad.mnu" notepad | awk 'NR >= 3 { print } $0 == "    }," { exit }')
got=$(json "$winword" winword)
[[ "$got" == *"$read_block"* ]] || fail "Read is not in winword's saved menu"
[ "${got/"$read_block"$'\n'/}" = "$(json "$WORK/winword.mnu" winword)" ] || fail "winword's menu has other changes"
press Escape
[ "$(list_state)" = "selected: 3 focus: 1003" ] || fail "back in the list after winword: $(list_state)"
press Escape
nx_wait_exit "$pid" 20 || fail "Escape in the list did not end the program"
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
