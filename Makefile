# Short names for common jobs. CMakePresets.json defines the builds.
PRESET ?= default

MAKEFLAGS += --no-print-directory

# Groups of packages that a preset needs in addition to the group "build".
SETUP_asan = check
SETUP_tsan = check
SETUP_fuzz = check
SETUP_arm64 = arm64
SETUP_bench = bench

# Checked here, before anything is built.
ifeq ($(filter install,$(MAKECMDGOALS))$(PREFIX),install)
$(error PREFIX is missing; use make install PREFIX=/folder)
endif

.PHONY: help run test check bench format package install build program setup clean

help:
	@echo 'make run                     build the command and run it on sample data'
	@echo 'make test                    build everything and run all tests'
	@echo 'make check                   run all other checks: style, sanitizers, arm64, packaging, fuzzers'
	@echo 'make bench                   measure the cost of a lookup'
	@echo 'make format                  format all C++ sources'
	@echo 'make package                 write build/default/cadrova-VERSION-SYSTEM.tar.gz'
	@echo 'make install PREFIX=/folder  install the library, the fakes and the command'
	@echo 'make clean                   remove all builds'
	@echo
	@echo 'PRESET=gcc (or asan, tsan, arm64) selects another build for run, test, package and install.'

run: program
	@scripts/demo build/$(PRESET)/bin

test: build
	@ctest --preset $(PRESET) --parallel $(shell nproc)

check:
	@scripts/check

bench:
	@scripts/bench

format:
	@scripts/format

package: build
	@cmake --build --preset $(PRESET) --target package

install: program
	@cmake --install build/$(PRESET) --prefix "$(PREFIX)"

build: setup
	@cmake --preset $(PRESET) --log-level=WARNING
	@cmake --build --preset $(PRESET) --parallel $(shell nproc)

# The command and everything that it needs. These are all installed files.
program: setup
	@cmake --preset $(PRESET) --log-level=WARNING
	@cmake --build --preset $(PRESET) --parallel $(shell nproc) --target cadrova

setup:
	@scripts/setup build $(SETUP_$(PRESET))

clean:
	rm -rf build
