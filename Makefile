# The two commands: `make run` and `make test`. Each does its own set-up on a fresh Debian
# machine (scripts/setup.sh), so nothing needs installing by hand. `make fuzz` runs the fuzz
# harnesses long (FUZZ_RUNS inputs a run, FUZZ_SEEDS), `make bench` the benchmarks, `make dist` the
# installer, build/windows/QuorvaneSetup.exe.
.PHONY: run test fuzz setup native windows dist bench clean

JOBS ?= $(shell nproc)

setup:
	@bash scripts/setup.sh

native: setup
	cmake --preset native >/dev/null
	cmake --build --preset native -j $(JOBS)

windows: setup
	cmake --preset windows >/dev/null
	cmake --build --preset windows -j $(JOBS)

dist: windows
	cmake --build --preset windows --target dist
	@echo "installer: build/windows/QuorvaneSetup.exe"

run: windows
	bash scripts/run.sh

test: native windows
	bash scripts/test.sh

fuzz: setup
	bash scripts/fuzz.sh

bench: setup
	bash scripts/bench.sh all

clean:
	rm -rf build
