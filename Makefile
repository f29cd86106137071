# The two commands of the README, plus benchmarks. Everything goes through CMake presets.
PRESET ?= release
BUILD_DIR := build/$(PRESET)

.PHONY: all deps configure build run test bench overhead format clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

run: build
	$(BUILD_DIR)/src/app/zelvar2 $(ARGS)

test: build
	@QT_QPA_PLATFORM=offscreen ctest --test-dir $(BUILD_DIR) --output-on-failure --no-tests=error -j2

bench: build
	$(BUILD_DIR)/bench/zelvar2-bench

# What the tray app, htop, btop and top each cost the machine; OVERHEAD_SECONDS sets the window.
overhead:
	@scripts/overhead.sh

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
