#!/usr/bin/env bash
# Runs every test tier: native unit, conformance and fuzz corpus runs, then the Windows
# conformance and end-to-end tests under Wine.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

status=0
echo "== native: unit, conformance over the portable adapters, fuzz corpus runs"
ctest --preset native -j "$(nproc)" || status=1

echo "== windows: conformance over the real API and end to end, under Wine"
source scripts/wine-env.sh
wine_prepare
# Under Wine an executable is one ctest test: show GoogleTest's own summary of its cases too.
ctest --preset windows --verbose >build/windows/ctest.log 2>&1
windows_status=$?
grep -E '\[==========\] [0-9]+ tests|\[  PASSED  \]|\[  FAILED  \]|tests passed|Test +#' build/windows/ctest.log
if [ $windows_status -ne 0 ]; then
  status=1
  echo "windows tests failed; the whole log is build/windows/ctest.log:"
  tail -n 80 build/windows/ctest.log
fi
if [ -x scripts/e2e.sh ]; then
  bash scripts/e2e.sh || status=1
fi
wine_finish
exit $status
