#!/usr/bin/env bash
# Runs every test tier: native unit, conformance and fuzz corpus runs, then the Windows
# conformance and end-to-end tests under Wine, then the installer's end-to-end run in a Wine prefix
# of its own (scripts/e2e-install.sh). Ends with the count of each tier, so that a tier
# that ran fewer cases than it should shows at a glance, and the whole run's "N passed, N failed".
# Every case must run: one that GoogleTest reports as not run counts as failed, since here that
# could only hide something set-up failed to install. The exit status is non-zero when anything failed.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

status=0
native_log=build/native/ctest.log
windows_log=build/windows/ctest.log
e2e_log=build/e2e.log
install_log=build/e2e-install.log
rm -f "$native_log" "$windows_log" "$e2e_log" "$install_log"

echo "== native: unit, conformance over the portable adapters, fuzz corpus runs"
ctest --preset native -j "$(nproc)" 2>&1 | tee "$native_log"
[ "${PIPESTATUS[0]}" -eq 0 ] || status=1

echo "== windows: conformance over the real API and end to end, under Wine"
source scripts/wine-env.sh
wine_prepare
# Under Wine an executable is one ctest test: show GoogleTest's own summary of its cases too.
ctest --preset windows --verbose >"$windows_log" 2>&1
windows_status=$?
grep -E '\[==========\] [0-9]+ tests|\[  PASSED  \]|\[  FAILED  \]|\[  SKIPPED \]|tests passed|Test +#' \
  "$windows_log"
if [ $windows_status -ne 0 ]; then
  status=1
  echo "windows tests failed; the whole log is $windows_log:"
  tail -n 80 "$windows_log"
fi
bash scripts/e2e.sh 2>&1 | tee "$e2e_log"
[ "${PIPESTATUS[0]}" -eq 0 ] || status=1
wine_finish
echo "== install: the installer, the installed program and its help, the uninstaller, in a fresh Wine prefix"
bash scripts/e2e-install.sh 2>&1 | tee "$install_log"
[ "${PIPESTATUS[0]}" -eq 0 ] || status=1

# The counts. Natively every GoogleTest case and every fuzz harness is one ctest test; under Wine
# a GoogleTest program is one ctest test, whose cases are counted from GoogleTest's summary, and
# the other ctest tests (whole-program checks) count one each.
fuzz_runs="$(sed -n 's/^QUORVANE_FUZZ_RUNS:STRING=//p' build/native/CMakeCache.txt 2>/dev/null)"
echo
echo "== counts"
# tier_line LABEL PASSED FAILED [NOTE]
tier_line() {
  local line
  line="$(printf '%-44s %5d passed, %d failed' "$1" "$2" "$3")"
  [ -n "${4:-}" ] && line+="  ($4)"
  echo "$line"
}
# The native tests by the first part of their names: unit_tests.*, conformance_portable.*, fuzz.*,
# and the rest.
native_counts="$(awk '
  / Test +#[0-9]+: / {
    name = $0; sub(/^.* Test +#[0-9]+: /, "", name); sub(/\..*$/, "", name); sub(/ .*$/, "", name)
    tier = (name == "unit_tests" || name == "conformance_portable" || name == "fuzz") ? name : "other"
    if ($0 ~ / Passed +[0-9.]+ sec$/) passed[tier]++
    else failed[tier]++
    seen[tier] = 1
  }
  END {
    split("unit_tests conformance_portable fuzz other", order, " ")
    for (i = 1; i <= 4; i++) {
      t = order[i]
      printf "%s %d %d\n", t, passed[t], failed[t]
    }
  }' "$native_log" 2>/dev/null)"
# The Windows tests: the cases of each GoogleTest program, then the other tests.
windows_counts="$(awk '
  / Test +#[0-9]+: / {
    number = $0; sub(/^.* Test +#/, "", number); sub(/:.*$/, "", number)
    name = $0; sub(/^.* Test +#[0-9]+: /, "", name); sub(/ .*$/, "", name)
    names[number] = name
    result[number] = ($0 ~ / Passed +[0-9.]+ sec$/) ? "passed" : "failed"
    order[++count] = number
  }
  match($0, /^[0-9]+: \[  PASSED  \] [0-9]+ tests?/) {
    n = $0; sub(/:.*$/, "", n); c = $0; sub(/^.*PASSED  \] /, "", c); sub(/ .*$/, "", c)
    gpassed[n] += c; gtest[n] = 1
  }
  match($0, /^[0-9]+: \[  FAILED  \] [0-9]+ tests?, listed below/) {
    n = $0; sub(/:.*$/, "", n); c = $0; sub(/^.*FAILED  \] /, "", c); sub(/ .*$/, "", c)
    gfailed[n] += c; gtest[n] = 1
  }
  # A case GoogleTest reports as not run is a failed one here.
  match($0, /^[0-9]+: \[  SKIPPED \] [0-9]+ tests?, listed below/) {
    n = $0; sub(/:.*$/, "", n); c = $0; sub(/^.*SKIPPED \] /, "", c); sub(/ .*$/, "", c)
    gfailed[n] += c; gtest[n] = 1
  }
  END {
    for (i = 1; i <= count; i++) {
      n = order[i]
      if (gtest[n]) {
        # A program that failed without a failed case (a crash, no summary) counts one failure.
        f = gfailed[n]; if (result[n] == "failed" && f == 0) f = 1
        printf "gtest %s %d %d\n", names[n], gpassed[n], f
      } else {
        printf "other %s %d %d\n", names[n], (result[n] == "passed"), (result[n] == "failed")
      }
    }
  }' "$windows_log" 2>/dev/null)"

all_passed=0
all_failed=0
add() {
  all_passed=$((all_passed + $1))
  all_failed=$((all_failed + $2))
}
while read -r tier p f; do
  [ -n "$tier" ] || continue
  case "$tier" in
    unit_tests) tier_line "native unit cases" "$p" "$f" ;;
    conformance_portable) tier_line "native conformance cases" "$p" "$f" ;;
    fuzz) tier_line "native fuzz runs" "$p" "$f" "${fuzz_runs:-?} random inputs a harness" ;;
    other) [ $((p + f)) -eq 0 ] || tier_line "native whole-program checks" "$p" "$f" ;;
  esac
  add "$p" "$f"
done <<<"$native_counts"
other_p=0
other_f=0
while read -r kind name p f; do
  [ -n "$kind" ] || continue
  if [ "$kind" = gtest ]; then
    tier_line "windows cases of $name" "$p" "$f"
    add "$p" "$f"
  else
    other_p=$((other_p + p))
    other_f=$((other_f + f))
  fi
done <<<"$windows_counts"
[ -n "$windows_counts" ] || tier_line "windows tests (no log)" 0 1
[ $((other_p + other_f)) -eq 0 ] ||
  tier_line "windows whole-program checks" "$other_p" "$other_f" "start-up, cabinets"
add "$other_p" "$other_f"
e2e_line="$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$e2e_log" 2>/dev/null | tail -n 1)"
if [ -n "$e2e_line" ]; then
  read -r e2e_p _ e2e_f _ <<<"$e2e_line"
else
  e2e_p=0
  e2e_f=1
fi
tier_line "end-to-end cases" "$e2e_p" "$e2e_f"
add "$e2e_p" "$e2e_f"
install_line="$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$install_log" 2>/dev/null | tail -n 1)"
if [ -n "$install_line" ]; then
  read -r install_p _ install_f _ <<<"$install_line"
else
  install_p=0
  install_f=1
fi
tier_line "install end-to-end cases" "$install_p" "$install_f"
add "$install_p" "$install_f"

[ "$all_failed" -eq 0 ] || status=1
echo "$all_passed passed, $all_failed failed"
exit $status
