# Tovrand: the two commands that matter are `make demo` and `make test`; both do all set-up on a
# fresh Debian 12 machine (they install the Debian packages they need through scripts/setup).
JOBS ?= $(shell nproc)
BUILD ?= build
ASAN_BUILD ?= build-asan

.PHONY: all setup setup-com setup-bench build build-asan demo test test-native test-asan com test-com bench format clean

all: build

# Installs the Debian packages, then checks that every program and file the job needs is here (a
# missing one is named with its package, before anything starts).
setup:
	scripts/setup
	scripts/require native

setup-com:
	scripts/setup --com
	scripts/require com

setup-bench:
	scripts/setup --bench
	scripts/require bench

build: setup
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)

build-asan: setup
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTOVRAND_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j$(JOBS)

# Adds, reads, updates and lists production orders through `tovrand run` on a private database.
demo: build
	$(BUILD)/tovrand demo

test: test-native test-asan test-com

test-native: build
	cd $(BUILD) && ctest --output-on-failure

test-asan: build-asan
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure

# The Windows COM shell: Tovrand.dll and Velmora.dll for i686 and x86_64.
com: setup-com
	scripts/com-build

test-com: setup-com
	scripts/com-test

bench: setup-bench
	cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTOVRAND_BENCH=ON -DTOVRAND_TESTS=ON
	cmake --build build-bench -j$(JOBS)
	build-bench/bench/tovrand_bench

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) build-bench build-com
