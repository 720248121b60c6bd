#!/usr/bin/env bash
# make screenshots: pictures of the real program under Wine for the README.
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
wine "$BIN/narrixmenu.exe" >/dev/null 2>&1 &
rect=$(wine "$BIN/nxprobe.exe" rect "Menu modification" 30000 2>/dev/null | tr -d '\r') ||
  { echo "the application list did not open" >&2; exit 1; }
read -r x y w h <<<"$rect"
sleep 1
import -window root "$WORK/screen.png"
convert "$WORK/screen.png" -crop "${w}x${h}+${x}+${y}" +repage "$OUT/app-list.png"
echo "Saved $OUT/app-list.png"

# The editor with the notepad menu and the item menu open on "Current word".
for key in Down Down Return; do sleep 0.5; xdotool key $key; done
rect=$(wine "$BIN/nxprobe.exe" rect "Menu - notepad" 30000 2>/dev/null | tr -d '\r') ||
  { echo "the menu editor did not open" >&2; exit 1; }
read -r x y w h <<<"$rect"
for key in Down Down Down shift+F10; do sleep 0.5; xdotool key $key; done
sleep 1
import -window root "$WORK/screen.png"
convert "$WORK/screen.png" -crop "${w}x${h}+${x}+${y}" +repage "$OUT/menu-editor.png"
echo "Saved $OUT/menu-editor.png"
