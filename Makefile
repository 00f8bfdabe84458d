# Tovrand: the two commands that matter are `make demo` and `make test`; both do all set-up on a
# fresh Debian 12 machine (they install the Debian packages they need through scripts/setup).
JOBS ?= $(shell nproc)
BUILD ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
# Seconds of fuzzing per target: a short bounded run in `make test`, a long one in `make fuzz`.
FUZZ_TEST_SECONDS ?= 20
FUZZ_SECONDS ?= 600
# Rebuilds of the same sources (another build directory, another checkout) come from ccache.
CCACHE := $(shell command -v ccache >/dev/null 2>&1 && echo -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

.PHONY: all setup setup-com setup-bench setup-fuzz build build-asan fuzz-build demo test test-native test-asan \
	test-fuzz fuzz reliability com test-com installer bench load format clean package

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

setup-fuzz: setup
	scripts/require fuzz

build: setup
	cmake -S . -B $(BUILD) $(CCACHE) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)

build-asan: setup
	cmake -S . -B $(ASAN_BUILD) $(CCACHE) -DCMAKE_BUILD_TYPE=Debug -DTOVRAND_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j$(JOBS)

# Follows one sales order through the four classes on a private database with the sample data. It
# builds only what it runs, the library and the tovrand command, in the build directory `build`
# completes with the test programs.
demo: setup
	cmake -S . -B $(BUILD) $(CCACHE) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS) --target tovrand
	$(BUILD)/tovrand demo

test: test-native test-asan test-fuzz test-com

# Each test program starts its own private server (or cluster), so the programs run side by side.
test-native: build
	cd $(BUILD) && ctest -j$(JOBS) --output-on-failure

test-asan: build-asan
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=0 ctest -j$(JOBS) --output-on-failure

# The libFuzzer targets of fuzz/ (clang, ASan, UBSan) in a build of their own.
fuzz-build: setup-fuzz
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) $(CCACHE) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOVRAND_FUZZ=ON -DTOVRAND_TESTS=OFF
	cmake --build $(FUZZ_BUILD) -j$(JOBS) --target fuzz_targets

# Every kept input replayed, then each target fuzzed for a bounded time.
test-fuzz: fuzz-build
	fuzz/run --build $(FUZZ_BUILD) --seconds $(FUZZ_TEST_SECONDS)

fuzz: fuzz-build
	fuzz/run --build $(FUZZ_BUILD) --seconds $(FUZZ_SECONDS)

# The long runs that make test keeps short: every fuzz target for FUZZ_SECONDS, the soak's 100,000
# calls on objects of the four classes (memory, ODBC handles and server sessions must stay flat), and a
# frozen server waited out with the default timeouts.
reliability: build fuzz
	cd $(BUILD) && TOVRAND_SOAK_CALLS=100000 TOVRAND_LONG_RUNS=1 tests/test_faults --gtest_filter='Soak.*:NoHang.*'

# The Windows COM shell: Tovrand.dll and Velmora.dll for i686 and x86_64.
com: setup-com
	scripts/com-build

test-com: setup-com
	scripts/com-test

# The Windows setup programs into dist/: Tovrand-<version>-setup.exe (64-bit Windows) and
# Tovrand-<version>-setup-x86.exe (also 32-bit Windows), from the DLLs of make com.
installer: setup-com
	installer/build

bench: setup-bench
	cmake -S . -B build-bench $(CCACHE) -DCMAKE_BUILD_TYPE=Release -DTOVRAND_BENCH=ON -DTOVRAND_TESTS=ON
	cmake --build build-bench -j$(JOBS)
	build-bench/bench/tovrand_bench

# Many concurrent clients (16, 64 and 200 by default, TOVRAND_LOAD_CLIENTS), LOAD_SECONDS each
# (TOVRAND_LOAD_SECONDS), on a private server and on a private three-node cluster; the table, the
# CSV files and the chart go to load/results/. Fails when the tables' sums do not hold afterwards.
LOAD_SECONDS ?= 20
load: setup-bench
	cmake -S . -B build-load $(CCACHE) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOVRAND_LOAD=ON -DTOVRAND_TESTS=OFF
	cmake --build build-load -j$(JOBS) --target tovrand_load
	TOVRAND_LOAD_SECONDS=$${TOVRAND_LOAD_SECONDS:-$(LOAD_SECONDS)} build-load/load/tovrand_load

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) build-bench build-load build-com $(PACKAGE_BUILD) dist

# Everything a site installs, into dist/: the Debian packages libtovrandN, libtovrand-dev and tovrand
# (cmake/Packaging.cmake), checked by lintian, which fails the target on an error, and the Windows
# installers (installer/build). The build is RelWithDebInfo like `build`, so that ccache serves it;
# CPack strips the binaries.
PACKAGE_BUILD ?= build-package
package: setup setup-com
	scripts/setup --package
	cmake -S . -B $(PACKAGE_BUILD) $(CCACHE) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr \
	  -DTOVRAND_TESTS=OFF -DTOVRAND_DEBIAN_LAYOUT=ON
	cmake --build $(PACKAGE_BUILD) -j$(JOBS)
	rm -f dist/*.deb
	cd $(PACKAGE_BUILD) && cpack -G DEB
	lintian --fail-on error dist/*.deb
	for deb in dist/*.deb; do echo "== $$deb"; dpkg-deb --field $$deb Package Version Depends; done
	installer/build
