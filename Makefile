# Two commands for a new machine: "make run" and "make test". Each installs what is missing first.
JOBS ?= 2
PYTHON := /usr/bin/python3
VERSION := $(shell sed -n "s/^project.kerno VERSION \([0-9.]*\).*/\1/p" CMakeLists.txt)
# ON where a warning of the compiler is to end a build of the tests.
WARNINGS_AS_ERRORS ?= OFF
TEST_BUILD := -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKERNO_WARNINGS_AS_ERRORS=$(WARNINGS_AS_ERRORS)

.PHONY: all setup build run samples test bench fuzzers fuzz fuzz-briefly faults kills tsan screenshots install clean \
  setup-windows windows test-windows agreement
all: build

setup:
	@sh tools/setup.sh

RELEASE_BUILD := -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKERNO_TESTS=OFF
# The programs, in build/release.
build: setup
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS)

# The window only where there is a display to show it on.
run: setup
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=OFF >/dev/null
	@cmake --build build/release -j $(JOBS) --target kerno $(if $(DISPLAY)$(WAYLAND_DISPLAY),kerno-desktop)
	@sh tools/run_samples.sh build/release/src/cli/kerno out
	$(if $(DISPLAY)$(WAYLAND_DISPLAY),@build/release/src/cli/kerno)

test: setup fuzz-briefly
	@cmake -S . -B build/test $(TEST_BUILD) -DKERNO_SANITIZE=ON >/dev/null
	@cmake --build build/test -j $(JOBS)
	@cd build/test && ctest -j $(JOBS) --output-on-failure --timeout 600

# One sheet with every format's file as other programs show it.
samples: build
	@sh tools/make_samples.sh build/release/src/cli/kerno out/samples docs/samples.png

bench: setup
	@cmake $(RELEASE_BUILD) -DKERNO_BENCH=ON >/dev/null
	@cmake --build build/release -j $(JOBS)
	@build/release/bench/kerno_bench --benchmark_filter='^(append|layout|text_to_parts)/'
	@build/release/bench/kerno_bench --benchmark_filter='-^(append|layout|text_to_parts)/'
	@build/release/bench/kerno_desktop_bench 2>/dev/null
	@build/release/bench/kerno_preview_bench 2>/dev/null
	@$(PYTHON) bench/process_bench.py build/release/src/cli/kerno
	@$(PYTHON) bench/cut_process_bench.py build/release/src/cli/kerno
	@$(PYTHON) bench/series_bench.py build/release/src/cli/kerno
	@$(PYTHON) bench/upload_bench.py build/release/src/cli/kerno

# Feeds each reader random inputs, FUZZ_SECONDS each; "make test" feeds those that are the same each time.
FUZZ_SECONDS ?= 60
FUZZ_SEED ?= 0
fuzzers: setup
	@cmake -S . -B build/fuzz -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKERNO_SANITIZE=ON -DKERNO_FUZZ=ON -DKERNO_TESTS=OFF >/dev/null
	@cmake --build build/fuzz -j $(JOBS) --target fuzzers

fuzz: fuzzers
	@cd build/fuzz && FUZZ_SECONDS=$(FUZZ_SECONDS) FUZZ_SEED=$(FUZZ_SEED) ctest -R '^fuzz_' --output-on-failure

fuzz-briefly: fuzzers
	@cd build/fuzz && ctest -R '^fixed_' -j $(JOBS) --output-on-failure

# Lets each system call and each allocation of each command and of the library fail; "make test" takes a sample.
# In pieces: FAULTS_SECONDS=1200 FAULTS_JOURNAL=FILE, again until nothing is left. FAULTS_EVERY=12 takes each 12th.
FAULTS_EVERY ?= 1
FAULTS_SECONDS ?= 0
FAULTS_JOURNAL ?=
faults: build
	@cmake --build build/release --target kerno_faults
	@failed=0; \
	$(PYTHON) tools/campaign/cases.py build/release/src/cli/kerno || failed=1; \
	$(PYTHON) tools/campaign/faults.py --jobs $(JOBS) --every $(FAULTS_EVERY) --seconds $(FAULTS_SECONDS) \
	  --journal '$(FAULTS_JOURNAL)' build/release/src/cli/kerno \
	  build/release/tools/campaign/kerno_faults.so || failed=1; \
	exit $$failed

# Ends each command at each file call and at moments of chance; "make test" takes a sample.
# KILLS_EVERY=40 ends it at each 40th call.
KILLS_SEED ?= 15
KILLS_EVERY ?= 1
kills: build
	@cmake --build build/release --target kerno_faults
	@$(PYTHON) tools/campaign/kills.py --jobs $(JOBS) --seed $(KILLS_SEED) --every $(KILLS_EVERY) build/release/src/cli/kerno \
	  build/release/tools/campaign/kerno_faults.so

# What works on several threads, with the sanitizer that finds races: minutes to build, a minute to run.
tsan: setup
	@cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_C_FLAGS='-O1 -g1' -DCMAKE_CXX_FLAGS='-O1 -g1' \
	  -DKERNO_SANITIZE_THREADS=ON -DKERNO_DESKTOP=OFF -DKERNO_MANUAL=OFF -DKERNO_TESTS=ON >/dev/null
	@cmake --build build/tsan -j $(JOBS) --target kerno api_tests
	@$(PYTHON) tools/try_threads.py build/tsan/src/cli/kerno build/tsan/tests/api/api_tests

# Pictures of the window in each of its states, in out/screenshots.
screenshots: build
	@$(PYTHON) tools/screenshots.py build/release/src/cli/kerno-desktop out/screenshots

# prefix and DESTDIR as usual.
prefix ?= /usr/local
install: build
	@DESTDIR='$(DESTDIR)' cmake --install build/release --prefix '$(prefix)'

# The same programs for 64-bit Windows, cross-built.
setup-windows:
	@sh tools/setup.sh windows

windows: setup-windows
	@cmake -S . -B build/windows -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw.cmake -DCMAKE_BUILD_TYPE=Release -DKERNO_TESTS=OFF >/dev/null
	@cmake --build build/windows -j $(JOBS)

# The tests of that system, run under Wine, and the same texts on both.
test-windows: setup setup-windows
	@cmake -S . -B build/test $(TEST_BUILD) -DKERNO_SANITIZE=ON >/dev/null
	@cmake --build build/test -j $(JOBS) --target kerno
	@cmake -S . -B build/windows-test $(TEST_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw.cmake >/dev/null
	@cmake --build build/windows-test -j $(JOBS)
	@export KERNO_WINEPREFIX='$(CURDIR)/build/windows-test/wineprefix'; \
	  trap 'WINEPREFIX=$$KERNO_WINEPREFIX wineserver -k' EXIT; \
	  $(PYTHON) tools/check_agreement.py build/test/src/cli/kerno build/windows-test/src/cli/kerno.exe && \
	  cd build/windows-test && ctest --output-on-failure --timeout 600

# The same texts on both systems, the other one under Wine.
agreement: build windows
	@$(PYTHON) tools/check_agreement.py build/release/src/cli/kerno build/windows/src/cli/kerno.exe

# What users install: each kind in a file of its own.
include $(wildcard packaging/*.mk)

clean:
	@rm -rf build out
