#!/usr/bin/env bash
# The application list's folder buttons and the export under Wine, from the
# keyboard: a word processor stand-in (a program with ProductVersion
# "11.0.6568") runs as winword.exe; Add version copies its menu folder, says
# "Složka již existuje." the second time and "Nelze provést." once it has
# stopped; the copy is renamed through the input box (a bad name refused
# first: the box comes back with it selected, and typing replaces it),
# removed with Delete (No, the default, first); Export writes the
# help page, and a second export leaves it byte for byte the same.
# In Czech the buttons have their Czech access keys.
# Usage: app_folders_test.sh BIN_DIR DEMO_DIR WORK_DIR english|czech
set -u
BIN=$(cd "$1" && pwd); DEMO=$(cd "$2" && pwd); WORK=$3; CASE=$4
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK/apps"
cp -r "$DEMO" "$WORK/install"
cp "$BIN/versioned_app.exe" "$WORK/apps/winword.exe"
set_dir="$WORK/install/Set"
page="$WORK/install/help/narrix/hotkey.htm"
title="Narrix - Screen Reader"
if [ "$CASE" = czech ]; then
  export LC_ALL=cs_CZ.UTF-8 2>/dev/null
  list_title="Úprava nabídky"; rename=alt+p; add=alt+v; export_key=alt+e; yes=a
  bad_name='text: Název "a/b" nemůže být názvem složky'
else
  list_title="Menu modification"; rename=alt+r; add=alt+a; export_key=alt+x; yes=y
  bad_name='text: The name "a/b" cannot be a folder name'
fi
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
probe() { nx_probe "$BIN/nxprobe.exe" "$1" "$(nx_title_arg "$2")" 20000; }
expect() {  # what, probe command, title, text the output holds
  local got; got=$(probe "$2" "$3")
  grep -qF -- "$4" <<<"$got" || { fail "$1: no '$4' in"; sed 's/^/    /' <<<"$got"; }
}
entries() { probe list "$list_title" | grep -E '^(entry|selected|focus):' | tr '\n' ' '; }
press() { sleep 0.6; xdotool key "$@"; }
wait_for() {  # a folder to appear (1) or go (0)
  for _ in $(seq 1 50); do
    if [ "$1" = 1 ]; then [ -d "$2" ] && return 0; else [ -d "$2" ] || return 0; fi
    sleep 0.2
  done
  return 1
}

nx_session_start "$WORK" || exit 1
nx_set_install "$WORK/install"
wine "$WORK/apps/winword.exe" 600 >/dev/null 2>&1 &
word_pid=$!
wine "$BIN/narrixmenu.exe" >"$WORK/program.log" 2>&1 &
pid=$!

got=$(entries)
[ "$got" = "entry: (Narrix) entry: excel entry: notepad entry: winword selected: 0 focus: 1003 " ] ||
  fail "the list at the start: $got"

# Add version, with the word processor running.
press End; press "$add"
wait_for 1 "$set_dir/winword_ver.11.0.6568" || fail "no version folder"
# The folder is made before the files are copied into it.
for _ in $(seq 1 50); do
  cmp -s "$set_dir/winword/Command.mnu" "$set_dir/winword_ver.11.0.6568/Command.mnu" && break
  sleep 0.2
done
cmp -s "$set_dir/winword/Command.mnu" "$set_dir/winword_ver.11.0.6568/Command.mnu" || fail "the menu was not copied"
got=$(entries)
[ "$got" = "entry: (Narrix) entry: excel entry: notepad entry: winword entry: winword_ver.11.0.6568 selected: 3 focus: 1003 " ] ||
  fail "the list after Add version: $got"
press "$add"
expect "a second time" message "$title" "text: Složka již existuje."
press Return
timeout 30 wine taskkill /f /im winword.exe >/dev/null 2>&1
nx_wait_exit "$word_pid" 20 || fail "the word processor did not stop"
press "$add"
expect "with the word processor stopped" message "$title" "text: Nelze provést."
press Return

# Rename the copy: a bad name first, then a good one.
press End; press "$rename"
expect "the input box" visible "Přejmenovat" "1502 Edit winword_ver.11.0.6568"
sleep 0.6; xdotool type --delay 60 "a/b"
press Return
expect "a bad name" message "$title" "$bad_name"
press Return
[ -d "$set_dir/winword_ver.11.0.6568" ] || fail "a refused name moved the folder"
expect "the input box again, with the refused name" visible "Přejmenovat" "1502 Edit a/b"
expect "the focus in the input box" active "Přejmenovat" "focus: 1502"
sleep 0.6; xdotool type --delay 60 "word 2003"
press Return
wait_for 1 "$set_dir/word 2003" || fail "not renamed"
[ -f "$set_dir/word 2003/Command.mnu" ] || fail "the renamed folder lost its menu"

# Remove it with Delete: No is the default.
got=$(entries)
[ "$got" = "entry: (Narrix) entry: excel entry: notepad entry: winword entry: word 2003 selected: 4 focus: 1003 " ] ||
  fail "the list after Rename: $got"
press Delete
expect "the question" message "$title" "text: Smazat nabídku word 2003 ?"
press Return
sleep 1
[ -d "$set_dir/word 2003" ] || fail "Enter (No) removed the folder"
press Delete
expect "the question again" message "$title" "text: Smazat nabídku word 2003 ?"
press "$yes"
wait_for 0 "$set_dir/word 2003" || fail "Yes did not remove the folder"

# Export, twice.
press "$export_key"
expect "the export" message "$title" "text: Nápověda aktualizována v souboru $(nx_winpath "$page")"
press Return
grep -q '<H3>(Narrix)</H3>' "$page" && grep -q '<H3>winword</H3>' "$page" || fail "the help page has no menus"
cp "$page" "$WORK/first.htm"
press "$export_key"
expect "the second export" message "$title" "text: Nápověda aktualizována"
press Return
sleep 1
cmp -s "$page" "$WORK/first.htm" || fail "a second export changed the page"

press Escape
nx_wait_exit "$pid" 20 || fail "Escape did not end the program"
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
