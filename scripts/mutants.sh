#!/usr/bin/env bash
# make mutants: how many of the small faults in tests/mutants.txt the native
# suite catches. Each fault is put, on its own, into a copy of the source in
# BUILD/mutants/tree (the working tree is never touched), the copy's native
# build is brought up to date and nx_tests runs; a failing or hanging suite
# has killed the fault. The score is the output: the exit status is 0 when
# the run reached its end, 2 when the suite fails without any fault or when
# a fault's text is no longer found in its file.
#
#   bash scripts/mutants.sh [BUILD]      (make mutants)
#
# Environment: JOBS (2), MUTANTS_ONLY="m03 m17" runs only those,
# MUTANTS_TIMEOUT seconds for one run of the suite (120), MUTANTS_WINE=1 also
# runs the faults of the window code against their Wine journeys in the
# copy's Windows build (several minutes each), MUTANTS_ALL_TESTS=1 runs the
# whole suite for every fault, so that its log in BUILD/mutants/logs names
# every test that catches it (which tests only repeat others' catches).
set -u

repo=$(cd "$(dirname "$0")/.." && pwd)
cd "$repo" || exit 2
build_arg=${1:-build}
jobs=${JOBS:-2}
limit=${MUTANTS_TIMEOUT:-120}
only=${MUTANTS_ONLY:-}
with_wine=${MUTANTS_WINE:-0}
list=$repo/tests/mutants.txt

mkdir -p "$build_arg/mutants" || exit 2
out=$(cd "$build_arg/mutants" && pwd)
tree=$out/tree
native=$out/native
win=$out/win64
logs=$out/logs
report=$out/report.txt
started=$(date +%s)

say() { printf '%s\n' "$*"; }
elapsed() {
  local s=$(($(date +%s) - started))
  printf '%dm%02ds' $((s / 60)) $((s % 60))
}

# --- The list -------------------------------------------------------------
# One record per fault on standard output: id, file, from, to, what, wine,
# separated by the unit separator and ended by NUL.
parse_list() {
  python3 - "$list" <<'EOF'
import re, sys
path = sys.argv[1]
keys = ("id", "file", "from", "to", "what", "wine")
blocks, block, errors = [], {}, []
with open(path, encoding="utf-8") as f:
    for number, raw in enumerate(f, 1):
        line = raw.rstrip("\n")
        if line.startswith("#"):
            continue
        if not line.strip():
            if block:
                blocks.append(block)
            block = {}
            continue
        key, sep, value = line.partition(":")
        if not sep or key.strip() not in keys:
            errors.append(f"line {number}: not 'key: value' with a known key")
            continue
        if key.strip() in block:
            errors.append(f"line {number}: {key.strip()} given twice")
        block[key.strip()] = value.strip()
        block.setdefault("line", number)
if block:
    blocks.append(block)
seen = set()
for b in blocks:
    for key in ("id", "file", "from", "to", "what"):
        if key not in b:
            errors.append(f"line {b['line']}: the block has no {key}")
    if not re.fullmatch(r"m\d+", b.get("id", "")):
        errors.append(f"line {b['line']}: the id must be m01, m02, ...")
    if b.get("id") in seen:
        errors.append(f"line {b['line']}: id {b['id']} used twice")
    seen.add(b.get("id"))
    if not b.get("file", "").startswith(("src/", "resources/")):
        errors.append(f"line {b['line']}: faults go into the product's source, under src/ or resources/")
    if not b.get("from"):
        errors.append(f"line {b['line']}: from is empty")
    for field in keys:
        if any(c in b.get(field, "") for c in "\x1f\0"):
            errors.append(f"line {b['line']}: control character in {field}")
if errors:
    for e in errors:
        print(f"mutants: {path}: {e}", file=sys.stderr)
    sys.exit(2)
for b in blocks:
    sys.stdout.write("\x1f".join(b.get(k, "") for k in keys) + "\0")
EOF
}

# How often FROM occurs in FILE.
occurrences() {
  python3 -c 'import sys; print(open(sys.argv[1], encoding="utf-8").read().count(sys.argv[2]))' "$1" "$2"
}

# Replaces the one FROM in FILE by TO.
mutate() {
  python3 -c '
import sys
path, old, new = sys.argv[1:4]
text = open(path, encoding="utf-8", newline="").read()
open(path, "w", encoding="utf-8", newline="").write(text.replace(old, new, 1))' "$1" "$2" "$3"
}

# --- Restoring the copy ---------------------------------------------------
mutated=""  # the copy's file holding a fault right now
saved=$out/original
restore() {
  if [ -n "$mutated" ]; then
    cp "$saved" "$tree/$mutated"  # a new time stamp: the next build takes it again
    mutated=""
  fi
}
trap 'restore' EXIT
trap 'restore; say "mutants: interrupted"; exit 130' INT TERM

records=()
while IFS= read -r -d '' record; do records+=("$record"); done < <(parse_list)
[ ${#records[@]} -gt 0 ] || { say "mutants: no faults read from $list"; exit 2; }

if [ -n "$only" ]; then
  for wanted in $only; do
    found=0
    for record in "${records[@]}"; do [ "${record%%$'\x1f'*}" = "$wanted" ] && found=1; done
    [ $found -eq 1 ] || say "mutants: MUTANTS_ONLY names $wanted, which tests/mutants.txt does not have"
  done
fi
selected() { [ -z "$only" ] || [[ " $only " == *" $1 "* ]]; }

# --- The copy and its native build ----------------------------------------
say "mutants: copying the source into $tree"
rm -rf "$tree" "$native" "$logs"
mkdir -p "$tree" "$logs"
excludes=(--exclude=./build --exclude=./.git)
case $build_arg in /*) ;; *) excludes+=("--exclude=./${build_arg%/}") ;; esac
tar -C "$repo" "${excludes[@]}" -cf - . | tar -C "$tree" -xf - || exit 2

# Debug without debug information and without optimisation: the fastest
# builds; the demo installation is laid out by the copy's own nxmenu.
say "mutants: configuring and building $native"
if ! cmake -S "$tree" -B "$native" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DNX_SANITIZE=OFF \
  -DNX_FUZZ=OFF >"$logs/configure.log" 2>&1; then
  say "mutants: the copy does not configure; see $logs/configure.log"
  exit 2
fi
build_native() {  # LOG; 1: the product does not build, 2: the tests' build or the demo fails
  timeout 900 cmake --build "$native" -j "$jobs" --target nxmenu >"$1" 2>&1 || return 1
  timeout 900 cmake --build "$native" -j "$jobs" --target nx_tests >>"$1" 2>&1 || return 2
}

test_flags=(--gtest_brief=1)
run_suite() {  # LOG; the suite's exit status, 124 after the time limit
  # The subshell waits for the suite, so that a crash is reported in the log.
  (
    cd "$native" && timeout -k 5 "$limit" "$native/bin/nx_tests" "${test_flags[@]}"
    exit $?
  ) >"$1" 2>&1
}

if ! build_native "$logs/unmutated-build.log"; then
  say "mutants: the unmutated copy does not build; see $logs/unmutated-build.log"
  exit 2
fi
if [ "${MUTANTS_ALL_TESTS:-0}" != 1 ] && "$native/bin/nx_tests" --help 2>/dev/null | grep -q -- --gtest_fail_fast; then
  test_flags+=(--gtest_fail_fast)
fi
suite_start=$(date +%s)
if ! run_suite "$logs/unmutated-tests.log"; then
  say "mutants: the native suite fails without any fault; nothing is measured. See $logs/unmutated-tests.log"
  exit 2
fi
say "mutants: the unmutated suite passes ($(($(date +%s) - suite_start)) s); $(elapsed) so far"

# --- The Windows build, for the faults of the window code -----------------
wine_ready=0
wine_regex() {  # every journey of the selected window faults, as one expression
  local record regexes=() id wine
  for record in "${records[@]}"; do
    IFS=$'\x1f' read -r id _ _ _ _ wine <<<"$record"
    [ -n "$wine" ] && selected "$id" && regexes+=("($wine)")
  done
  (IFS='|'; printf '%s' "${regexes[*]}")
}
build_win() {  # LOG
  timeout 1800 cmake --build "$win" -j "$jobs" --target narrixmenu nxmenu nxprobe koral_standin versioned_app \
    platform_diff >"$1" 2>&1
}
run_journeys() {  # REGEX LOG
  (
    cd "$win" && timeout -k 10 1800 ctest -R "$1" --no-tests=error --output-on-failure --timeout 300
    exit $?
  ) >"$2" 2>&1
}
prepare_wine() {
  [ $wine_ready -eq 0 ] || return 0
  wine_ready=2
  # The journeys use the native nxmenu and demo, which must be the unmutated ones again.
  if ! build_native "$logs/wine-native.log"; then
    say "mutants: the unmutated native build failed again; see $logs/wine-native.log"
    return 1
  fi
  say "mutants: configuring and building $win"
  if ! cmake -S "$tree" -B "$win" -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DNX_DEMO_DIR="$native/demo" -DNX_NATIVE_NXMENU="$native/bin/nxmenu" -DNX_DIST_DIR="$out/dist" \
    >"$logs/wine-configure.log" 2>&1 || ! build_win "$logs/wine-unmutated-build.log"; then
    say "mutants: the unmutated Windows build failed; see $logs/wine-*.log"
    return 1
  fi
  if ! run_journeys "$(wine_regex)" "$logs/wine-unmutated-journeys.log"; then
    say "mutants: the Wine journeys fail without any fault; see $logs/wine-unmutated-journeys.log"
    return 1
  fi
  wine_ready=1
}

# --- The faults -----------------------------------------------------------
: >"$report"
killed=() survived=() stillborn=() missing=() skipped=()
unmutated_fails=0
line() {  # ID STATUS FILE WHAT
  printf '%-4s %-15s %-38s %s\n' "$1" "$2" "$3" "$4" | tee -a "$report"
}

for record in "${records[@]}"; do
  IFS=$'\x1f' read -r id file from to what wine <<<"$record"
  selected "$id" || continue
  log=$logs/$id.log
  if [ -n "$wine" ] && [ "$with_wine" != 1 ]; then
    line "$id" "skipped (Wine)" "$file" "$what"
    skipped+=("$id")
    continue
  fi
  count=0
  [ -f "$tree/$file" ] && count=$(occurrences "$tree/$file" "$from")
  if [ "$count" != 1 ]; then
    if [ -f "$tree/$file" ]; then
      line "$id" "anchor missing" "$file" "$what (its text is found $count times)"
    else
      line "$id" "anchor missing" "$file" "$what (no such file)"
    fi
    missing+=("$id")
    continue
  fi
  if [ -n "$wine" ] && ! prepare_wine; then
    line "$id" "not run" "$file" "$what (the unmutated Windows build or journeys fail)"
    unmutated_fails=1
    continue
  fi
  cp "$tree/$file" "$saved"
  mutated=$file
  mutate "$tree/$file" "$from" "$to"
  status=""
  if [ -n "$wine" ]; then
    if ! build_win "$log"; then
      status=stillborn
    elif run_journeys "$wine" "$log.journeys"; then
      status=survived
    else
      status=killed
    fi
  else
    build_native "$log"
    case $? in
      0)
        run_suite "$log.tests"
        case $? in
          0) status=survived ;;
          124 | 137) status="killed (time)" ;;
          *) status=killed ;;
        esac
        ;;
      1) status=stillborn ;;
      *) status="killed (demo)" ;;  # the copy's nxmenu could not lay out the demo installation
    esac
  fi
  restore
  line "$id" "$status" "$file" "$what"
  case $status in
    killed*) killed+=("$id") ;;
    survived) survived+=("$id") ;;
    stillborn) stillborn+=("$id") ;;
  esac
done

# --- The score ------------------------------------------------------------
ran=$((${#killed[@]} + ${#survived[@]}))
summary="killed ${#killed[@]} of $ran (${#survived[@]} survived: ${survived[*]:-none}; stillborn: ${stillborn[*]:-none};"
summary+=" anchor missing: ${missing[*]:-none})"
{
  say ""
  say "$summary"
  [ ${#skipped[@]} -eq 0 ] || say "skipped (the Wine journeys, MUTANTS_WINE=1): ${skipped[*]}"
  say "time: $(elapsed) with JOBS=$jobs on $(nproc) cores"
} | tee -a "$report"
if [ ${#missing[@]} -gt 0 ]; then
  say "mutants: ANCHOR MISSING for ${missing[*]}: re-anchor them in tests/mutants.txt to the same fault"
  exit 2
fi
[ $unmutated_fails -eq 0 ] || exit 2
exit 0
