#!/usr/bin/env bash
# Starts narrixmenu.exe under Wine on its own virtual screen against a copy of
# the demo installation and checks the application list from outside, driving
# it from the keyboard as our users do.
# Usage: app_list_test.sh BIN_DIR DEMO_DIR WORK_DIR CASE
#   CASE: english | czech | missing-install | new-app
set -u
BIN=$(cd "$1" && pwd); DEMO=$(cd "$2" && pwd); WORK=$3; CASE=$4
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

rm -rf "$WORK"; mkdir -p "$WORK"
cp -r "$DEMO" "$WORK/install"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_same() {  # expected actual what
  if [ "$1" != "$2" ]; then
    fail "$3"
    diff <(printf '%s\n' "$1") <(printf '%s\n' "$2") | sed 's/^/    /'
  fi
}
probe() { timeout 60 wine "$BIN/nxprobe.exe" "$@" 2>/dev/null | tr -d '\r'; }
start_program() {
  wine "$BIN/narrixmenu.exe" "$@" >"$WORK/program.log" 2>&1 &
  PROGRAM_PID=$!
}
press() { sleep 0.5; xdotool key "$@"; }

nx_session_start "$WORK" || exit 1
case "$CASE" in
  english|czech)
    # Names on disk in mixed case: the list sorts them without regard to case.
    mkdir "$WORK/install/Set/Word" "$WORK/install/Set/7zip"
    if [ "$CASE" = czech ]; then
      export LC_ALL=cs_CZ.UTF-8 2>/dev/null
      title="Úprava nabídky"
      head=$'title: Úprava nabídky\nlabel: &Seznam nabídek:\nok: Upravit... (enabled)\ncancel: Storno'
    else
      title="Menu modification"
      head=$'title: Menu modification\nlabel: &Menu list\nok: Edit... (enabled)\ncancel: Cancel'
    fi
    nx_set_install "$WORK/install"
    start_program
    printf '%s\n' "$title" >"$WORK/title.txt"
    got=$(probe list "@$(nx_winpath "$WORK/title.txt")" 30000)
    expect_same "$head"$'\nentry: (Narrix)\nentry: 7zip\nentry: excel\nentry: notepad\nentry: winword\nentry: Word\nselected: 0\nfocus: 1003' "$got" "application list as shown"
    # Escape is the Cancel button: it closes the list and ends the program.
    press Escape
    nx_wait_exit "$PROGRAM_PID" 20 || fail "Escape did not end the program"
    ;;
  missing-install)
    nx_set_install "$WORK/nowhere"
    start_program
    got=$(probe message "Narrix - Screen Reader" 30000)
    expect_same $'text: Bad program instalation\nbutton: OK' "$got" "message for a missing installation"
    press Return
    nx_wait_exit "$PROGRAM_PID" 20 || fail "the program did not end after the message"
    probe absent "Menu modification" 500 || fail "the application list was shown"
    [ -e "$WORK/nowhere" ] && fail "something was written for the missing installation"
    ;;
  new-app)
    nx_set_install "$WORK/install"
    start_program calc /Focus 40
    got=$(probe message "Narrix - Screen Reader" 30000)
    expect_same $'text: Create a new menu for "calc"?\nbutton: &Yes\nbutton: &No' "$got" "question for an unknown application"
    press Return  # Yes is the default button
    for _ in $(seq 1 50); do [ -d "$WORK/install/Set/calc" ] && break; sleep 0.2; done
    [ -d "$WORK/install/Set/calc" ] || fail "the folder of the new menu was not created"
    # The new, empty menu opens in the editor; Escape closes it unchanged.
    got=$(timeout 60 wine "$BIN/nxprobe.exe" editor "Menu - calc" 30000 2>/dev/null | tr -d '\r' | grep -E '^(nodes|focus):')
    [ "$got" = $'nodes: 0\nfocus: 1103' ] || { fail "the editor of the new menu"; echo "$got" | sed 's/^/    /'; }
    press Escape
    [ -e "$WORK/install/Set/calc/Command.mnu" ] && fail "closing an unchanged new menu wrote a file"
    got=$(probe list "Menu modification" 30000 | grep -E '^(entry|selected|focus):')
    expect_same $'entry: (Narrix)\nentry: calc\nentry: excel\nentry: notepad\nentry: winword\nselected: 1\nfocus: 1003' "$got" "list with the new application selected"
    press Escape
    nx_wait_exit "$PROGRAM_PID" 20 || fail "Escape did not end the program"
    ;;
  *)
    echo "unknown case $CASE"; exit 2 ;;
esac
nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
