# One entry for everything; `make help` lists it. Each target installs the Debian packages that are missing first.

DEVICE ?= device
PRESETS_TESTED = release asan tsan

# What the compiler cache holds is good for another clone of the same sources too.
export CCACHE_BASEDIR = $(CURDIR)
export CCACHE_NOHASHDIR = true
export CCACHE_SLOPPINESS = pch_defines,time_macros

.DEFAULT_GOAL := build
.PHONY: help deps packages build run test quick lint bench fuzz coverage install format clean $(PRESETS_TESTED:%=test-%)

help:  ## this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## / {printf "  make %-10s %s\n", $$1, $$2}' $(MAKEFILE_LIST)

deps:
	@scripts/install-packages.sh

build: deps  ## build everything (build/bin, build/lib)
	@scripts/build-preset.sh release

run: deps  ## run the first script and the tour on simulated home-phones, in ./device and ./device-tour
	@scripts/build-preset.sh release --target product
	@build/bin/sorel --device $(DEVICE) examples/first.js
	@scripts/show-device.sh $(DEVICE)
	@tools/tour $(DEVICE)-tour

# make ABI=i386 test: the module and the platform libraries by the device's 32-bit word.
ifdef ABI
test: deps
	@scripts/install-packages.sh $(ABI)
	@scripts/test-preset.sh $(ABI)
else
test: lint test-release test-asan test-tsan test-clang  ## everything: lint, both compilers, all tests, sanitizers (ABI=i386: the 32-bit word)
	@scripts/run-ctest.sh build
endif

quick: build  ## the tests that take seconds
	@scripts/run-ctest.sh build -LE slow

lint: deps  ## formatting, static analysis, shell scripts
	@scripts/lint.sh

test-asan test-tsan: test-%: deps
	@scripts/test-preset.sh $*

test-clang: deps
	@scripts/build-preset.sh clang

test-release: build

bench: build  ## measure; every ratio comes from one run
	@scripts/bench.sh build

FUZZ_SECONDS ?= 30
fuzz: deps  ## run every fuzz target for FUZZ_SECONDS each
	@scripts/fuzz.sh $(FUZZ_SECONDS)

coverage: deps  ## executed lines of class_modules and platform
	@scripts/coverage.sh

install: deps  ## install below PREFIX (default /usr/local), DESTDIR honoured
	@scripts/build-preset.sh release --target product
	@cmake --install build $(if $(PREFIX),--prefix $(PREFIX))

packages: deps  ## make Debian packages (build-package/packages)
	@scripts/build-preset.sh package
	@cd build-package && cpack

format: deps  ## rewrite the sources in the house's format
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:  ## remove what was built
	rm -rf build build-asan build-tsan build-clang build-coverage build-fuzz build-package build-i386
