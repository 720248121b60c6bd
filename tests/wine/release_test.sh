#!/usr/bin/env bash
# The release as an administrator and a user meet it, in one fresh Wine
# prefix: the MSI installed quietly; both programs in the installed folder
# with their version resource and application manifest, the shortcut and the
# Add/Remove Programs entry; the installed program opening the application
# list and the editor on an installation of the screen reader at 144 DPI
# (150%), in English and in Czech, every control inside its window and every
# caption whole; the next version installed over it, leaving one copy; and
# the removal, which takes the folder, the shortcut and the entry and leaves
# the screen reader's files and registry key as they were.
# Usage: release_test.sh BIN_DIR MSI NEXT_MSI DEMO_DIR WORK_DIR VERSION NEXT_VERSION FOLDER PRODUCT PUBLISHER
set -u
BIN=$(cd "$1" && pwd); MSI=$2; NEXT_MSI=$3; DEMO=$(cd "$4" && pwd); WORK=$5
VERSION=$6; NEXT_VERSION=$7; FOLDER=$8; PRODUCT=$9; PUBLISHER=${10}
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/../../scripts/wine-session.sh"

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
rm -rf "$WORK"; mkdir -p "$WORK"
nx_session_start "$WORK" || exit 1
# No desktop menu entries outside the prefix for the shortcut.
export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;winemenubuilder.exe=d"
C="$WINEPREFIX/drive_c"
INSTALLED="$C/Program Files/$FOLDER"
# The screen reader's installation beside the program's folder, as on a user's machine.
SCREEN_READER="$C/Program Files/Narrix"
cp -r "$DEMO" "$SCREEN_READER"
nx_set_install "$SCREEN_READER"
fingerprint() { (cd "$SCREEN_READER" && find . -printf '%p %y %s\n' -type f -exec sha256sum {} + | sort); }
before=$(fingerprint)

msiexec() { timeout 180 wine msiexec "$1" "$(nx_winpath "$2")" /qn >>"$WORK/msiexec.log" 2>&1 || fail "msiexec $1 $2"; }
shortcuts() { find "$C" -name "$PRODUCT.lnk" | wc -l; }
# "VERSION PUBLISHER" of each Add/Remove Programs entry named PRODUCT.
entries() {
  timeout 60 wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s 2>/dev/null | tr -d '\r' |
    awk -v name="$PRODUCT" '/^HKEY/ { if (n == name) print v, p; n = v = p = "" }
      $1 == "DisplayName" { n = substr($0, index($0, "REG_SZ") + 10) }
      $1 == "DisplayVersion" { v = $3 } $1 == "Publisher" { p = substr($0, index($0, "REG_SZ") + 10) }
      END { if (n == name) print v, p }'
}

# 1. Installed quietly, per machine.
msiexec /i "$MSI"
for f in narrixmenu.exe nxmenu.exe README.html; do [ -f "$INSTALLED/$f" ] || fail "$f is not in $INSTALLED"; done
[ "$(shortcuts)" = 1 ] || fail "not one Start menu shortcut $PRODUCT.lnk"
grep -qaF "$(printf 'narrixmenu.exe' | iconv -t UTF-16LE)" "$(find "$C" -name "$PRODUCT.lnk" | head -n1)" 2>/dev/null ||
  fail "the shortcut does not start narrixmenu.exe"
[ "$(entries)" = "$VERSION $PUBLISHER" ] || fail "Add/Remove Programs: '$(entries)', not '$VERSION $PUBLISHER'"
[ -n "$(find "$C/windows/Installer" -name narrixmenu.ico)" ] || fail "no icon for Add/Remove Programs"
got=$(timeout 60 wine "C:\\Program Files\\$FOLDER\\nxmenu.exe" --version 2>/dev/null | tr -d '\r')
[ "$got" = "nxmenu $VERSION" ] || fail "nxmenu --version says '$got'"

# 2. The resources of the installed programs: version and manifest.
/usr/bin/python3 - "$INSTALLED" "$VERSION" "$PRODUCT" "$PUBLISHER" <<'EOF' || fail "resources of the installed programs"
import sys, xml.etree.ElementTree as ET
import pefile
folder, version, product, publisher = sys.argv[1:5]
ok = True
def check(what, good):
    global ok
    if not good:
        print("  " + what)
        ok = False
asm, v3, ws = "{urn:schemas-microsoft-com:asm.v1}", "{urn:schemas-microsoft-com:asm.v3}", "{http://schemas.microsoft.com/SMI/"
for exe in ("narrixmenu.exe", "nxmenu.exe"):
    pe = pefile.PE(f"{folder}/{exe}")
    numbers = [int(n) for n in version.split(".")] + [0]
    fixed = pe.VS_FIXEDFILEINFO[0]
    for ms, ls in ((fixed.FileVersionMS, fixed.FileVersionLS), (fixed.ProductVersionMS, fixed.ProductVersionLS)):
        check(f"{exe}: fixed version {ms:#x} {ls:#x}", [ms >> 16, ms & 0xFFFF, ls >> 16, ls & 0xFFFF] == numbers)
    tables = {st.LangID.decode().lower(): {k.decode(): v.decode() for k, v in st.entries.items()}
              for info in pe.FileInfo[0] if info.Key == b"StringFileInfo" for st in info.StringTable}
    check(f"{exe}: string blocks {sorted(tables)}", sorted(tables) == ["040504b0", "040904b0"])
    for lang, table in tables.items():
        for key, want in (("FileVersion", version), ("ProductVersion", version), ("ProductName", product),
                          ("CompanyName", publisher)):
            check(f"{exe} {lang}: {key} '{table.get(key)}'", table.get(key) == want)
        check(f"{exe} {lang}: FileDescription, LegalCopyright", table.get("FileDescription") and
              publisher in table.get("LegalCopyright", ""))
    check(f"{exe}: FileDescription not in Czech", tables.get("040504b0", {}).get("FileDescription") !=
          tables.get("040904b0", {}).get("FileDescription"))
    manifests = [e for e in pe.DIRECTORY_ENTRY_RESOURCE.entries if e.id == 24]
    check(f"{exe}: no manifest", len(manifests) == 1)
    if not manifests:
        continue
    entry = manifests[0].directory.entries[0].directory.entries[0].data.struct
    root = ET.fromstring(pe.get_data(entry.OffsetToData, entry.Size))
    check(f"{exe}: manifest version", root.find(asm + "assemblyIdentity").get("version") == version + ".0")
    deps = [d.get("name") + " " + d.get("version") for d in root.iter(asm + "assemblyIdentity")][1:]
    check(f"{exe}: common controls {deps}", deps == ["Microsoft.Windows.Common-Controls 6.0.0.0"])
    level = root.find(f"{v3}trustInfo/{v3}security/{v3}requestedPrivileges/{v3}requestedExecutionLevel")
    check(f"{exe}: asInvoker", level is not None and level.get("level") == "asInvoker")
    settings = {e.tag.split("}")[1]: e.text for e in root.iter() if e.tag.startswith(ws)}
    check(f"{exe}: DPI settings {settings}", settings.get("dpiAware") == "true/pm" and
          settings.get("dpiAwareness", "").startswith("PerMonitorV2"))
    oses = {e.get("Id") for e in root.iter("{urn:schemas-microsoft-com:compatibility.v1}supportedOS")}
    check(f"{exe}: supported systems {oses}", oses == {"{35138b9a-5d96-4fbd-8e2d-a2440225f93a}",
          "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}", "{1f676c76-80e1-4239-95bb-83d0f6d0da78}",
          "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"})
    check(f"{exe}: icon", (exe == "narrixmenu.exe") == any(e.id == 14 for e in pe.DIRECTORY_ENTRY_RESOURCE.entries))
sys.exit(0 if ok else 1)
EOF

# 3. The installed program at 150%: the list, then the notepad menu in the
# editor, each laid out with every control inside and every caption whole.
timeout 60 wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d 144 /f >/dev/null 2>&1
layout() {  # TITLE what
  local got; got=$(nx_probe "$BIN/nxprobe.exe" layout "$(nx_title_arg "$1")" 30000)
  grep -qx 'dpi: 144' <<<"$got" || { fail "$2: not at 144 DPI"; sed 's/^/    /' <<<"$got"; return; }
  [ "$(grep -c ' inside \(fits\|-\) ' <<<"$got")" -gt 3 ] || fail "$2: too few controls"
  grep -E ' (OUTSIDE|CUT) ' <<<"$got" | sed "s/^/FAIL: $2: /" | grep . && failures=$((failures + 1))
}
for lang in english czech; do
  if [ "$lang" = czech ]; then
    list_title="Úprava nabídky"; editor_title="Nabídka - notepad"; export LC_ALL=cs_CZ.UTF-8
  else
    list_title="Menu modification"; editor_title="Menu - notepad"
  fi
  wine "C:\\Program Files\\$FOLDER\\narrixmenu.exe" >"$WORK/program-$lang.log" 2>&1 &
  pid=$!
  got=$(nx_probe "$BIN/nxprobe.exe" list "$(nx_title_arg "$list_title")" 30000 | grep '^entry:' | tr '\n' ' ')
  [ "$got" = "entry: (Narrix) entry: excel entry: notepad entry: winword " ] ||
    fail "$lang: the installed program's list: $got"
  layout "$list_title" "$lang list"
  for key in Down Down Return; do sleep 0.5; xdotool key $key; done
  layout "$editor_title" "$lang editor"
  for key in Escape Escape; do sleep 0.5; xdotool key $key; done
  nx_wait_exit "$pid" 20 || fail "$lang: Escape did not end the program"
  unset LC_ALL
done

# 4. The next version over it: one folder, one shortcut, one entry.
msiexec /i "$NEXT_MSI"
[ "$(find "$C" -maxdepth 2 -name "$FOLDER*" | wc -l)" = 1 ] || fail "not one program folder after the upgrade"
[ "$(shortcuts)" = 1 ] || fail "not one shortcut after the upgrade"
[ "$(entries)" = "$NEXT_VERSION $PUBLISHER" ] || fail "Add/Remove Programs after the upgrade: '$(entries)'"
[ -f "$INSTALLED/narrixmenu.exe" ] || fail "no narrixmenu.exe after the upgrade"

# 5. Removed: everything it installed, nothing of the screen reader's.
msiexec /x "$NEXT_MSI"
[ -e "$INSTALLED" ] && fail "$INSTALLED is still there"
[ "$(shortcuts)" = 0 ] || fail "the shortcut is still there"
[ -z "$(entries)" ] || fail "still in Add/Remove Programs: $(entries)"
[ "$(fingerprint)" = "$before" ] || fail "the screen reader's installation changed"
timeout 60 wine reg query 'HKCU\SOFTWARE\Velkor\NarrixXP' /v Path >/dev/null 2>&1 ||
  fail "the screen reader's registry key is gone"

nx_session_stop
if [ "$failures" -eq 0 ]; then echo "1 passed, 0 failed"; exit 0; fi
echo "0 passed, 1 failed"
exit 1
