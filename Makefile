# Two commands for a new machine: "make run" and "make test". Each installs what is missing first.
JOBS ?= 2
PYTHON := /usr/bin/python3

.PHONY: all setup release run test bench clean
all: release

setup:
	@sh tools/setup.sh

release: setup
	@cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKERNO_TESTS=OFF -DKERNO_BENCH=ON >/dev/null
	@cmake --build build/release -j $(JOBS)

run: release
	@sh tools/run_samples.sh build/release/src/cli/kerno out

test: setup
	@cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKERNO_SANITIZE=ON >/dev/null
	@cmake --build build/test -j $(JOBS)
	@cd build/test && ctest -j $(JOBS) --output-on-failure --timeout 600

bench: release
	@build/release/bench/kerno_bench
	@$(PYTHON) bench/process_bench.py build/release/src/cli/kerno

clean:
	@rm -rf build out
