# Thin entry points over CMake.
#   make demo   builds synthcall and runs it on the bundled example in a scratch project tree
#   make test   builds everything and runs every test
#   make bench  builds a Release synthcall and the write floor in build-bench/ and measures them
#               (bench/README.md)
#   make scale  runs the long scale checks (bench/scale_check.py), which the test run leaves out
#   make sanitize    runs every test against a build with AddressSanitizer and UBSan (build-asan/)
#   make fuzz-smoke  builds the libFuzzer targets (clang++, build-fuzz/) and runs each for 15 s
#   make check       make test, then make sanitize, then make fuzz-smoke: what CI runs
# Install: after `make build`, `cmake --install build --prefix /usr/local` puts bin/synthcall and
# share/man/man1/synthcall.1 under the prefix (add DESTDIR=... for a staged install).
BUILD ?= build
JOBS ?= 2
DEMO := $(BUILD)/demo
BENCH_BUILD ?= build-bench
ASAN_BUILD ?= build-asan
FUZZ_SECONDS ?= 15

.PHONY: all build demo test bench scale sanitize fuzz-smoke check clean

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

test: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

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
	  ctest --output-on-failure -j$(JOBS)

fuzz-smoke:
	JOBS=$(JOBS) fuzz/run.sh $(FUZZ_SECONDS)

# One after the other, also under make -j.
check:
	$(MAKE) test
	$(MAKE) sanitize
	$(MAKE) fuzz-smoke

clean:
	rm -rf $(BUILD)
