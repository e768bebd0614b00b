# SPDX-License-Identifier: GPL-3.0-or-later
# Thin wrappers; the build itself is CMake's (CMakePresets.json).
PRESET ?= release
JOBS ?= 2
# Tests wait for windows and for programs that they start for a third of their time.
TEST_JOBS ?= $(shell expr $(JOBS) + 1)
PREFIX ?= $(CURDIR)/build/install
BUILD = build/$(PRESET)
export QT_QPA_PLATFORM ?= offscreen

.PHONY: all deps configure build demo test cluster-test bench sanitize tsan fuzz format format-check tidy tidy-changed reproducible install deb deb-test clean

all: build

deps:
	@scripts/install-packages.sh

configure: deps
	@cmake --preset $(PRESET) --log-level=WARNING

build: configure
	@cmake --build $(BUILD) -j$(JOBS)

demo: configure
	@cmake --build $(BUILD) -j$(JOBS) --target spum spum-workbench orvspum
	@scripts/demo.sh $(BUILD)/bin/spum demo

test: build
	@ctest --test-dir $(BUILD) --output-on-failure -j$(TEST_JOBS)

# Installs Slurm and Snakemake and starts a Slurm of its own: docs/cluster.md.
cluster-test: configure
	@cmake --build $(BUILD) -j$(JOBS) --target spum
	@scripts/cluster-test.sh $(BUILD)/bin/spum

# Recorded, never asserted on: docs/performance.md says how to read the figures.
bench: build
	@scripts/bench.sh $(BUILD)/bench

# By both compilers: what one of them happens to forgive, the other may not.
sanitize: deps
	@for preset in asan asan-clang; do \
	  cmake --preset $$preset --log-level=WARNING && cmake --build build/$$preset -j$(JOBS) && \
	  JOBS=$(JOBS) scripts/run-sanitized.sh build/$$preset || exit 1; \
	done

# A forked child may make threads, as tests do; a longer history shows which library a thread was in that has ended.
tsan: deps
	@cmake --preset tsan --log-level=WARNING
	@cmake --build build/tsan -j$(JOBS) --target test_math test_xtnt test_algorithms test_engine
	@TSAN_OPTIONS="suppressions=$(CURDIR)/tests/tsan.supp halt_on_error=1 die_after_fork=0 history_size=7" ctest --test-dir build/tsan --output-on-failure -R 'test_(math|xtnt|algorithms|engine)'

fuzz: deps
	@cmake --preset fuzz --log-level=WARNING
	@cmake --build build/fuzz -j$(JOBS) --target fuzzers
	@scripts/fuzz.sh build/fuzz/fuzz 60

format: deps
	@git ls-files '*.h' '*.cpp' | xargs clang-format -i

format-check: deps
	@git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror

tidy: deps
	@JOBS=$(JOBS) scripts/tidy.sh

# What changed since the history parted from BASE (a branch, say), or lately.
tidy-changed: deps
	@JOBS=$(JOBS) scripts/tidy.sh --changed $(BASE)

# Builds the commit twice, in folders of different names, and compares the bytes; takes a while.
reproducible: deps
	@JOBS=$(JOBS) scripts/reproducible.sh

install: configure
	@cmake --build $(BUILD) -j$(JOBS)
	@cmake --install $(BUILD) --prefix "$(PREFIX)" >/dev/null
	@echo "Installed below $(PREFIX); start $(PREFIX)/bin/spum-workbench or $(PREFIX)/bin/spum"

# A package for Debian 12 below build/deb.
deb: configure
	@cmake --build $(BUILD) -j$(JOBS) --target spum spum-workbench orvspum manuals
	@scripts/deb.sh $(BUILD) build/deb

# Installs it in a bare Debian of its own and removes it; as root.
deb-test: deb
	@scripts/deb-test.sh build/deb/orvspum_*.deb

clean:
	@rm -rf build demo
