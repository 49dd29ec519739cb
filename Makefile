# Short names for the common jobs; CMakePresets.json says how things are built.
# `make test PRESET=gcc` and the like take another preset.
PRESET ?= default

MAKEFLAGS += --no-print-directory

# What a preset needs beyond a plain build.
SETUP_asan = check
SETUP_tsan = check
SETUP_fuzz = check
SETUP_arm64 = arm64
SETUP_bench = bench

.PHONY: run test package build setup check bench clean

run: build
	@scripts/demo build/$(PRESET)/bin

test: build
	@ctest --preset $(PRESET)

package: build
	@cmake --build --preset $(PRESET) --target package

bench:
	@scripts/bench

check:
	@scripts/check

build: setup
	@cmake --preset $(PRESET) --log-level=WARNING
	@cmake --build --preset $(PRESET) --parallel $(shell nproc)

setup:
	@scripts/setup build $(SETUP_$(PRESET))

clean:
	rm -rf build
