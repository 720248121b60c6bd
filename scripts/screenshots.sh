#!/usr/bin/env bash
# make screenshots: pictures of the real program under Wine for the README,
# at 100% (96 DPI) and at 150% (144 DPI: app-list-150.png, menu-editor-150.png).
# Usage: screenshots.sh BIN_DIR DEMO_DIR WORK_DIR OUT_DIR
set -u -o pipefail
BIN=$(cd "$1" && pwd); DEMO=$(cd "$2" && pwd); WORK=$3; OUT=$4
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/wine-session.sh"
# The README shows the English texts, whatever this machine's language.
unset LANGUAGE LC_MESSAGES
export LC_ALL=C.UTF-8
rm -rf "$WORK"; mkdir -p "$WORK" "$OUT"
cp -r "$DEMO" "$WORK/install"
nx_session_start "$WORK" || exit 1
nx_set_install "$WORK/install"
nx_wine_frames N

# shoot TITLE FILE: the window titled TITLE, cut out of the screen.
shoot() {
  local rect x y w h
  rect=$(wine "$BIN/nxprobe.exe" rect "$1" 30000 2>/dev/null | tr -d '\r') || { echo "no window $1" >&2; exit 1; }
  read -r x y w h <<<"$rect"
  sleep 1
  import -window root "$WORK/screen.png"
  convert "$WORK/screen.png" -crop "${w}x${h}+${x}+${y}" +repage "$OUT/$2"
  echo "Saved $OUT/$2"
}

# at DPI SUFFIX: the list, then the editor with the notepad menu and the item
# menu open on "Current word".
at() {
  timeout 60 wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$1" /f >/dev/null 2>&1
  wine "$BIN/narrixmenu.exe" >/dev/null 2>&1 &
  local pid=$!
  shoot "Menu modification" "app-list$2.png"
  for key in Down Down Return; do sleep 0.5; xdotool key $key; done
  wine "$BIN/nxprobe.exe" rect "Menu - notepad" 30000 >/dev/null 2>&1
  for key in Down Down Down shift+F10; do sleep 0.5; xdotool key $key; done
  shoot "Menu - notepad" "menu-editor$2.png"
  for key in Escape Escape Escape; do sleep 0.5; xdotool key $key; done
  nx_wait_exit "$pid" 20 || { echo "the program did not end" >&2; exit 1; }
}
at 96 ""
at 144 "-150"
