# Thin entry points over CMake. `make demo` runs synthcall on the bundled example,
# `make test` builds and runs every test.
BUILD ?= build
JOBS ?= 2

.PHONY: all build demo test clean

all: build

build:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j$(JOBS)

test: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

clean:
	rm -rf $(BUILD)
