# Wine on a virtual screen, for the program's tests and for `make run`.
# Source this file, then:
#   nx_session_start WORKDIR   own Wine prefix in WORKDIR/prefix, own Xvfb display
#   nx_set_install DIR          points the registry at a screen-reader installation
#   nx_session_stop             ends every process of this prefix and the display
#   nx_probe, nx_title_arg      run a probe program, pass it a window title
# Each session cleans up what it started, also when the caller fails.

nx_session_start() {
  NX_WORK=$(cd "$1" && pwd)
  export WINEPREFIX="$NX_WORK/prefix" WINEARCH=win64 WINEDEBUG=-all
  # No Mono or Gecko installers: they would ask questions and the program
  # needs neither.
  export WINEDLLOVERRIDES="mscoree,mshtml="
  if [ -z "${NX_KEEP_DISPLAY:-}" ] || [ -z "${DISPLAY:-}" ]; then
    rm -f "$NX_WORK/display"
    # Xvfb chooses a free display number itself and writes it to fd 3.
    Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$NX_WORK/display" 2>"$NX_WORK/xvfb.log" &
    NX_XVFB_PID=$!
    for _ in $(seq 1 100); do
      [ -s "$NX_WORK/display" ] && break
      sleep 0.1
    done
    [ -s "$NX_WORK/display" ] || { echo "Xvfb did not start" >&2; return 1; }
    export DISPLAY=":$(head -n1 "$NX_WORK/display")"
  fi
  trap nx_session_stop EXIT
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    # On a busy machine Wine now and then fails to start one of the set-up
    # programs; a new prefix made from scratch a second time succeeds.
    if ! timeout 120 wineboot -i >"$NX_WORK/wineboot.log" 2>&1; then
      timeout 30 wineserver -k >/dev/null 2>&1
      rm -rf "$WINEPREFIX"
      timeout 120 wineboot -i >>"$NX_WORK/wineboot.log" 2>&1 || { echo "wineboot failed" >&2; return 1; }
    fi
  fi
}

# The Windows spelling (Z:\...) of a path on this machine.
nx_winpath() {
  printf 'Z:%s' "$(cd "$(dirname "$1")" && pwd)/$(basename "$1")" | tr '/' '\\'
}

# nx_wine_frames N lets Wine draw the window frames itself, as Windows does:
# a virtual screen has no window manager, and without this windows show no
# title bar. nx_wine_frames Y leaves the frames to the desktop's manager.
nx_wine_frames() {
  timeout 60 wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d "$1" /f >/dev/null 2>&1
}

nx_set_install() {
  timeout 60 wine reg add 'HKCU\SOFTWARE\Velkor\NarrixXP' /v Path /t REG_SZ /d "$(nx_winpath "$1")" /f >/dev/null 2>&1
}

nx_session_stop() {
  trap - EXIT
  [ -n "${WINEPREFIX:-}" ] && timeout 30 wineserver -k >/dev/null 2>&1
  if [ -n "${NX_XVFB_PID:-}" ]; then
    kill "$NX_XVFB_PID" 2>/dev/null
    wait "$NX_XVFB_PID" 2>/dev/null
    NX_XVFB_PID=
  fi
  return 0
}

# Waits up to $2 seconds for process $1 to end; true if it ended.
nx_wait_exit() {
  for _ in $(seq 1 $(( $2 * 10 ))); do
    kill -0 "$1" 2>/dev/null || return 0
    sleep 0.1
  done
  return 1
}

# Runs a probe program under Wine and prints what it printed, without the
# carriage returns. A probe that prints nothing at all did not run (Wine
# could not start it while the machine was busy), so it is run once more;
# what Wine said goes to $NX_WORK/probe.err.
nx_probe() {
  local out
  for _ in 1 2; do
    out=$(timeout 60 wine "$@" 2>>"$NX_WORK/probe.err" | tr -d '\r')
    [ -n "$out" ] && break
  done
  printf '%s\n' "$out"
}

# A window title as nxprobe takes it, whatever the language: in a UTF-8 file
# named "@Z:\..." (Wine would pass non-ASCII arguments in the ANSI code page).
nx_title_arg() {
  local file="$NX_WORK/title-$RANDOM.txt"
  printf '%s\n' "$1" >"$file"
  echo "@$(nx_winpath "$file")"
}
