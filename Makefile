# The two commands of the README. Each installs what is missing, builds and
# then runs the program or every test.
BUILD ?= build
ASAN_BUILD ?= build-asan
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
TIDY_DIRS = (app|bench|fuzz|graphics|kernel|kmultimedia|project|tape|tests|tools|windowing)

.PHONY: run test setup build build-asan bench fuzz tidy clean install update-po

setup:
	@bash scripts/setup

build: setup
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=$(PREFIX) >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

# make install [PREFIX=/usr] [DESTDIR=/tmp/stage]: builds, then installs.
install: build
	@DESTDIR="$(DESTDIR)" cmake --install $(BUILD)

run: build
	@bash scripts/run $(BUILD)

test: setup
	@bash scripts/test

bench: build
	@bash scripts/bench $(BUILD)

fuzz: setup
	@bash scripts/fuzz

# Refreshes data/locale/taleloom.pot from the code and merges it into the
# PO files.
update-po: setup
	@bash scripts/update-po

# clang-tidy with the checks of .clang-tidy over the project's own sources
# and headers; any finding fails.
tidy: setup
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@run-clang-tidy -p $(BUILD) -j $(JOBS) -quiet \
		-header-filter='^$(CURDIR)/$(TIDY_DIRS)/' '^$(CURDIR)/$(TIDY_DIRS)/'

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) build-fuzz
