#!/usr/bin/env bash
# Benchmarks (not tests). Each prints its figures; the README's table holds the latest.
#
#   bash scripts/bench.sh            all of them
#   bash scripts/bench.sh import     ImportFromReg against `wine reg import`
#   bash scripts/bench.sh resample   cDIBSection::Resample, natively
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
what="${1:-all}"
runs="${RUNS:-10}"

build_native_release() {
  cmake --preset native-release >/dev/null
  cmake --build --preset native-release -j "$(nproc)" "$@" >/dev/null
}

bench_import() {
  build_native_release --target generate_reg_file
  cmake --preset windows >/dev/null
  cmake --build --preset windows -j "$(nproc)" --target win_import_reg >/dev/null
  source scripts/wine-env.sh
  wine_prepare
  local dir="$root/build/bench"
  mkdir -p "$dir"
  build/native-release/generate_reg_file "$dir/values.reg" 1000 10
  build/native-release/generate_reg_file "$dir/empty.reg" 0 0
  local reg_file empty_file
  reg_file="$(winepath -w "$dir/values.reg")"
  empty_file="$(winepath -w "$dir/empty.reg")"
  local exe="build/windows/win_import_reg.exe"
  echo "== import of 10,000 values in 1,000 keys, each a whole Wine process, $runs runs"
  hyperfine --style basic --warmup 2 --runs "$runs" \
    --prepare "wine reg delete 'HKCU\\Software\\QuorvaneBench' /f >/dev/null 2>&1 || true" \
    -n "ImportFromReg" "wine $exe '$reg_file'" \
    -n "wine reg import" "wine reg import '$reg_file'" \
    -n "ImportFromReg, empty file" "wine $exe '$empty_file'" \
    -n "wine reg import, empty file" "wine reg import '$empty_file'" \
    --export-json "$dir/import.json"
  wine reg delete 'HKCU\Software\QuorvaneBench' /f >/dev/null 2>&1 || true
  wine_finish
}

bench_resample() {
  build_native_release --target bench_resample
  echo "== Resample 3840x2160 <-> 1920x1080, natively"
  build/native-release/bench_resample
}

case "$what" in
  import) bench_import ;;
  resample) bench_resample ;;
  all) bench_resample; bench_import ;;
  *) echo "unknown benchmark: $what" >&2; exit 2 ;;
esac
