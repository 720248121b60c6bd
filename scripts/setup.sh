#!/usr/bin/env bash
# Installs what the build and the tests need and is missing, from Debian's
# packages. Run as root (as on the project's machines); otherwise it only
# names what is missing.
set -u
need=()
have() { command -v "$1" >/dev/null 2>&1; }
have cmake || need+=(cmake)
have g++ || need+=(g++)
have make || need+=(make)
[ -f /usr/include/gtest/gtest.h ] || need+=(libgtest-dev)
[ -f /usr/include/benchmark/benchmark.h ] || need+=(libbenchmark-dev)
# clang builds the libFuzzer targets (make fuzz).
have clang++ || need+=(clang)
have x86_64-w64-mingw32-g++-posix || need+=(g++-mingw-w64-x86-64-posix)
have wine || need+=(wine)
have wine64 || [ -x /usr/lib/wine/wine64 ] || need+=(wine64)
have Xvfb || need+=(xvfb)
have xdotool || need+=(xdotool)
# ImageMagick's import takes the screenshots; a stand-in convert is not enough.
have import || need+=(imagemagick)
# make dist: the MSI (wixl), the zip and the README as a web page; the
# release test reads the executables' resources with pefile. Debian's own
# Python, which has Debian's modules whatever else is first on PATH.
have wixl || need+=(wixl)
have zip || need+=(zip)
/usr/bin/python3 -c 'import markdown' 2>/dev/null || need+=(python3-markdown)
/usr/bin/python3 -c 'import pefile' 2>/dev/null || need+=(python3-pefile)
[ ${#need[@]} -eq 0 ] && exit 0

echo "Installing: ${need[*]}"
if [ "$(id -u)" -ne 0 ]; then
  echo "Not root: install these packages, then run make again." >&2
  exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq >/dev/null && apt-get install -y -qq "${need[@]}" >/dev/null || {
  echo "Installing ${need[*]} failed." >&2
  exit 1
}
