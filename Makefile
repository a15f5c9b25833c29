# SPDX-License-Identifier: GPL-3.0-or-later
# The two set-up commands: `make run` and `make test`. Both install what is missing first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
FUZZ_SECONDS ?= 60
FUZZ_TARGET  ?= fuzz_reader
CMAKE_FLAGS ?=
# ccache keeps compiled objects across build folders and clones (paths taken relative to /work or
# wherever the sources sit), so a second build folder or a fresh clone costs minutes, not half an hour.
export CCACHE_BASEDIR ?= $(abspath $(CURDIR)/..)
export CCACHE_NOHASHDIR ?= 1
export CCACHE_MAXSIZE ?= 20G
LAUNCHER = $(if $(shell command -v ccache),-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
PREFIX     ?= /usr/local

.PHONY: deps build build-asan test test-tsan test-fast run fuzz bench clean screenshots install package

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD) -G Ninja $(LAUNCHER) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)
	cmake --build $(BUILD) -j $(JOBS)

build-asan: deps
	cmake -S . -B $(ASAN_BUILD) -G Ninja $(LAUNCHER) -DCMAKE_BUILD_TYPE=Debug -DTESSORIN_SANITIZE=ON -DTESSORIN_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(ASAN_BUILD) -j $(JOBS)

# Every test, in the normal build and again under AddressSanitizer and UndefinedBehaviorSanitizer.
# Then each normal-build test binary once shuffled and once under a German locale.
test: build build-asan test-tsan
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)
	JOBS=$(JOBS) bash scripts/run-tests-shuffled.sh $(BUILD)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=0:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

# The reader and writer tests, among them many threads reading and writing at once, under
# ThreadSanitizer: only their binary is built. Some tests run exiftool through QProcess, whose
# fork-and-exec ThreadSanitizer takes for a forked child that goes on to start threads, and
# would kill the run at the next thread: die_after_fork=0.
test-tsan: deps
	cmake -S . -B $(TSAN_BUILD) -G Ninja $(LAUNCHER) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSORIN_TSAN=ON -DTESSORIN_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(TSAN_BUILD) -j $(JOBS) --target imageio_tests
	TESSORIN_CORPUS=$(CURDIR)/../shared/corpus QT_QPA_PLATFORM=offscreen TSAN_OPTIONS=halt_on_error=1:die_after_fork=0 \
		$(TSAN_BUILD)/bin/imageio_tests

test-fast: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

run: build
	@bash scripts/run-demo.sh $(BUILD)

fuzz: deps
	CC=clang-14 CXX=clang++-14 cmake -S . -B $(FUZZ_BUILD) -G Ninja $(LAUNCHER) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
		-DTESSORIN_FUZZ=ON -DTESSORIN_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target $(FUZZ_TARGET)
	@bash scripts/run-fuzz.sh $(FUZZ_BUILD) $(FUZZ_TARGET) $(FUZZ_SECONDS)

bench: build
	@bash bench/run.sh $(BUILD)
	@bash bench/geo.sh $(BUILD)

# Pictures of every screen over the demo album, phone- and tablet-sized, drawn offscreen.
screenshots: build
	env $$(bash scripts/make-demo-library.sh $(BUILD)) QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software \
		$(BUILD)/bin/tessorin --screenshots $(BUILD)/screenshots

# The app, its launcher entry, icon and place data under PREFIX.
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# The Debian package tessorin_VERSION_ARCH.deb, here, made by CPack from the build and checked by
# lintian: it fails on any error or warning.
package: build
	rm -f $(BUILD)/tessorin_*.deb tessorin_*.deb
	cd $(BUILD) && cpack -G DEB
	cp $(BUILD)/tessorin_*.deb .
	lintian --fail-on error,warning tessorin_*.deb

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(FUZZ_BUILD)
