#!/usr/bin/env bash
# make run: narrixmenu.exe under Wine on the demo installation.
# Usage: run.sh BIN_DIR DEMO_SOURCE INSTALL_DIR WINE_WORK [PROGRAM ARGUMENTS...]
# The program's arguments may instead come in NX_RUN_ARGS as one text, which is
# split at blanks only (no globbing, backslashes and $ kept).
# The installation is a writable copy of the demo (files already there are
# kept, so menus edited in it survive the next run). Without $DISPLAY a
# virtual screen is started and a screenshot saved beside the installation.
set -u
BIN=$(cd "$1" && pwd); DEMO=$2; INSTALL=$3; WORK=$4; shift 4
if [ -n "${NX_RUN_ARGS:-}" ]; then
  read -r -a words <<<"$NX_RUN_ARGS"
  set -- "$@" "${words[@]}"
fi
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/wine-session.sh"

mkdir -p "$INSTALL" "$WORK"
cp -r -n "$DEMO/." "$INSTALL/"
virtual=
if [ -n "${DISPLAY:-}" ]; then
  export NX_KEEP_DISPLAY=1
else
  virtual=1
fi
nx_session_start "$WORK" || exit 1
[ -n "$virtual" ] && echo "No display: started a virtual screen ($DISPLAY)."
nx_set_install "$INSTALL"
if [ -n "$virtual" ]; then nx_wine_frames N; else nx_wine_frames Y; fi
echo "Installation: $INSTALL"

if [ -z "$virtual" ]; then
  wine "$BIN/narrixmenu.exe" "$@"
  exit $?
fi

wine "$BIN/narrixmenu.exe" "$@" >"$WORK/program.log" 2>&1 &
pid=$!
# The list's title in English or, under a Czech or Slovak locale, in Czech.
czech=$(nx_title_arg "Úprava nabídky")
for _ in $(seq 1 15); do
  wine "$BIN/nxprobe.exe" list "Menu modification" 1000 >/dev/null 2>&1 && break
  wine "$BIN/nxprobe.exe" list "$czech" 1000 >/dev/null 2>&1 && break
done
shot="$(dirname "$INSTALL")/run-screenshot.png"
import -window root "$shot" && echo "Screenshot: $shot"
limit=${NX_RUN_SECONDS:-120}
if [ -t 0 ]; then
  echo "The program runs on the virtual screen; press a key to end it (or wait ${limit} s)."
  read -r -s -n 1 -t "$limit" || true
else
  echo "The program runs on the virtual screen for ${limit} s."
  nx_wait_exit "$pid" "$limit" || true
fi
