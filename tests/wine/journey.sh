# The menu editor's keyboard journeys share these, sourced after
# wine-session.sh. Failures are counted in $failures; $BIN is the folder of
# the programs, $TITLE the editor's title argument (nx_title_arg) and
# $BOX_TITLE the title of the program's message boxes.
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
press() { sleep 0.6; xdotool key "$@"; }
# expect "what" "lines that must all appear in the editor's state"
expect() {
  local state; state=$(nx_probe "$BIN/nxprobe.exe" editor "$TITLE" 20000)
  while IFS= read -r line; do
    grep -qxF -- "$line" <<<"$state" || { fail "$1: no '$line' in"; sed 's/^/    /' <<<"$state"; return; }
  done <<<"$2"
}
# Waits up to about 30 s for a message box that holds the text "$2".
told() {
  local got end=$((SECONDS + 30))
  while [ "$SECONDS" -lt "$end" ]; do
    got=$(nx_probe "$BIN/nxprobe.exe" message "$BOX_TITLE" 10000)
    grep -qF -- "$2" <<<"$got" && return
    sleep 1
  done
  fail "$1"; sed 's/^/    /' <<<"$got"
}
# The texts of the visible nodes of the tree, in order, on one line.
tree() { nx_probe "$BIN/nxprobe.exe" nodes "$TITLE" 20000 | cut -d' ' -f3- | paste -sd'|'; }
