#!/usr/bin/env bash
# The long fuzz runs (`make fuzz`): every harness of fuzz/ over a bounded, seeded random corpus
# under the sanitizers, as `make test` runs them, with more inputs and more seeds.
#
#   bash scripts/fuzz.sh [HARNESS...]          all harnesses, or the ones named (fuzz_reg_reader)
#   FUZZ_RUNS=100000 FUZZ_SEEDS="1 2 3" bash scripts/fuzz.sh
#
# FUZZ_RUNS is the count of random inputs of each run (20,000 unless given), FUZZ_SEEDS the seeds
# of the runs of each harness (1 and 2 unless given: seed 1 is the corpus of `make test`, grown).
# The runs go in parallel, one a core. A run that fails keeps its output in build/fuzz-runs/.
# Ends with "N passed, N failed", counting runs.
set -uo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"

runs="${FUZZ_RUNS:-20000}"
seeds="${FUZZ_SEEDS:-1 2}"
bin="$root/build/native"
out="$root/build/fuzz-runs"

cmake --preset native >/dev/null || exit 1
if [ $# -gt 0 ]; then
  harnesses=("$@")
else
  mapfile -t harnesses < <(cd fuzz && ls fuzz_*.cpp | sed 's/\.cpp$//')
fi
cmake --build --preset native -j "$(nproc)" --target "${harnesses[@]}" >/dev/null || {
  echo "fuzz: the build of the harnesses failed (cmake --build --preset native)" >&2
  echo "0 passed, 1 failed"
  exit 1
}
rm -rf "$out"
mkdir -p "$out"

echo "== fuzz: ${#harnesses[@]} harnesses, $runs random inputs a run, seeds $seeds"
started=$(date +%s)
# One run: HARNESS SEED. Its output and its status go to build/fuzz-runs/HARNESS.SEED.{log,status}.
run_one() {
  local harness="$1" seed="$2" log="$out/$1.$2.log"
  local begin=$(date +%s)
  "$bin/$harness" --runs "$runs" --seed "$seed" >"$log" 2>&1
  echo "$? $(( $(date +%s) - begin ))" >"$out/$harness.$seed.status"
}
export -f run_one
export bin out runs
for harness in "${harnesses[@]}"; do
  for seed in $seeds; do echo "$harness $seed"; done
done | xargs -P "$(nproc)" -L 1 bash -c 'run_one "$0" "$1"'

passed=0
failed=0
for harness in "${harnesses[@]}"; do
  for seed in $seeds; do
    read -r code seconds <"$out/$harness.$seed.status" 2>/dev/null || code=missing
    if [ "$code" = 0 ]; then
      passed=$((passed + 1))
      echo "ok   $harness seed $seed: $(tail -n 1 "$out/$harness.$seed.log" | cut -d' ' -f1) inputs, ${seconds} s"
      rm -f "$out/$harness.$seed.log"
    else
      failed=$((failed + 1))
      echo "FAIL $harness seed $seed (exit $code): see $out/$harness.$seed.log"
      tail -n 20 "$out/$harness.$seed.log" 2>/dev/null | sed 's/^/     /'
    fi
    rm -f "$out/$harness.$seed.status"
  done
done
echo "fuzz took $(( $(date +%s) - started )) s"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
