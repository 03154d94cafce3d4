# The commands of everyday work. Each installs what is missing, configures, builds and runs.

PRESET ?= release
JOBS ?= $(shell nproc)
BUILD := build/$(PRESET)
export EXPR

.PHONY: help run test bench sanitize sanitize-thread build format clean

help:
	@echo 'make run                 answer a showcase of expressions about this machine'
	@echo "make run EXPR='...'      answer one of your own"
	@echo 'make test                build everything and run the tests'
	@echo 'make sanitize            the tests under the address and undefined behaviour sanitizers'
	@echo 'make sanitize-thread     the tests of what has threads, under the thread sanitizer'
	@echo 'make bench               run the benchmarks'
	@echo 'make format              format the sources'
	@echo 'make clean               remove the build folders'

run: build
	@GATOTU=$(BUILD)/bin/gatotu scripts/showcase

build:
	@scripts/install-dependencies build
	@cmake --preset $(PRESET) --log-level=WARNING >/dev/null
	@cmake --build --preset $(PRESET) --parallel $(JOBS) --target gatotu Gatotu

# Nothing is installed while the tests run: some of them compare this machine with itself.
test:
	@scripts/install-dependencies build test
	@scripts/test-directory-server install || [ $$? -eq 77 ]
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --parallel $(JOBS)
	ctest --preset $(PRESET) --parallel $(JOBS)

sanitize:
	@scripts/install-dependencies build test sanitize
	@scripts/test-directory-server install || [ $$? -eq 77 ]
	cmake --preset sanitize
	cmake --build --preset sanitize --parallel $(JOBS)
	ctest --preset sanitize --parallel $(JOBS)

sanitize-thread:
	@scripts/install-dependencies build test sanitize
	cmake --preset sanitize-thread
	cmake --build --preset sanitize-thread --parallel $(JOBS) --target host_directory_test
	build/sanitize-thread/bin/host_directory_test

# The figures are of one program at a time, so nothing runs beside them.
bench:
	@scripts/install-dependencies build bench
	cmake --preset $(PRESET) -DGATOTU_BUILD_BENCHMARKS=ON
	cmake --build --preset $(PRESET) --parallel $(JOBS)
	cmake --build --preset $(PRESET) --target bench

format:
	@scripts/install-dependencies format
	@scripts/check-format --fix

clean:
	rm -rf build
