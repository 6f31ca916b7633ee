# The two commands of the README. Each installs what is missing, builds and
# then runs the program or every test.
BUILD ?= build
ASAN_BUILD ?= build-asan
JOBS ?= $(shell nproc)

.PHONY: run test setup build build-asan bench fuzz clean

setup:
	@bash scripts/setup

build: setup
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@bash scripts/run $(BUILD)

test: setup
	@bash scripts/test

bench: build
	@bash scripts/bench $(BUILD)

fuzz: setup
	@bash scripts/fuzz

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) build-fuzz
