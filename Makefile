# Thin entry points over CMake.
#   make demo   builds synthcall and runs it on the bundled example in a scratch project tree
#   make test   builds everything and runs every test
#   make bench  builds a Release synthcall and the write floor in build-bench/ and measures them
#               (bench/README.md)
#   make scale  runs the long scale checks (bench/scale_check.py), which the test run leaves out
#   make sanitize    runs every test against a build with AddressSanitizer and UBSan (build-asan/)
#   make fuzz-smoke  builds the libFuzzer targets (clang++, build-fuzz/), replays their seeds and
#                    fuzzes each for 10 s, two at a time
#   make check       installs the Debian packages the tests need (tools/check-packages.sh), then
#                    make test, make sanitize and make fuzz-smoke: what CI runs
#   make figure      redraws doc/trace.png from the program's own output (doc/trace_figure.py)
#   make package     builds the Debian package build/synthcall_<version>_<arch>.deb with CPack
# Install: `make package` and `dpkg -i`, or after `make build`, `cmake --install build --prefix
# /usr/local` puts bin/synthcall, the manual page and the README under the prefix (add DESTDIR=...
# for a staged install).
BUILD ?= build
JOBS ?= 2
DEMO := $(BUILD)/demo
BENCH_BUILD ?= build-bench
ASAN_BUILD ?= build-asan
FUZZ_SECONDS ?= 10

.PHONY: all build demo test bench scale sanitize fuzz-smoke check figure package clean

all: build

build:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)

# The example project is copied so that the checked-in tree stays empty. synthcall takes the
# current directory from PWD, as a shell sets it.
demo:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS) --target synthcall
	rm -rf $(DEMO) && mkdir -p $(DEMO) && cp -r examples/project $(DEMO)/
	cd $(DEMO)/project/edit_dir && PWD=$$(pwd) $(abspath $(BUILD))/synthcall $(abspath examples/reads.fa)
	cd $(DEMO)/project && ls -l chromat_dir phd_dir poly_dir

# CTest shows no output of a skipped test; tools/skipped_tests.py names each one and its reason.
run_ctest = ctest --output-on-failure -j$(JOBS) --output-junit $(abspath $(1))/ctest.xml; \
  status=$$?; python3 $(CURDIR)/tools/skipped_tests.py $(abspath $(1))/ctest.xml; exit $$status

test: build
	cd $(BUILD) && $(call run_ctest,$(BUILD))

bench:
	BENCH_BUILD=$(abspath $(BENCH_BUILD)) JOBS=$(JOBS) bench/run.sh

scale:
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DSYNTHCALL_TESTS=OFF
	cmake --build $(BENCH_BUILD) -j$(JOBS) --target synthcall
	python3 bench/scale_check.py $(BENCH_BUILD)/synthcall

# The end-to-end tests run the sanitized synthcall too. The missing-poly_dir tests expect the
# SIGABRT of an uncaught exception, which ASan must leave alone (handle_abort=0).
sanitize:
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DSYNTHCALL_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	cd $(ASAN_BUILD) && \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:handle_abort=0 \
	  UBSAN_OPTIONS=print_stacktrace=1 \
	  $(call run_ctest,$(ASAN_BUILD))

fuzz-smoke:
	JOBS=$(JOBS) fuzz/run.sh $(FUZZ_SECONDS)

# One after the other, also under make -j; a missing package stops it before anything is built.
check:
	tools/check-packages.sh
	$(MAKE) test
	$(MAKE) sanitize
	$(MAKE) fuzz-smoke

# Biopython and matplotlib are Debian packages, so the system interpreter runs the script.
figure:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS) --target synthcall
	/usr/bin/python3 doc/trace_figure.py $(BUILD)/synthcall doc/trace.png

package: build
	cd $(BUILD) && cpack

clean:
	rm -rf $(BUILD)
