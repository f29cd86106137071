# The two commands of the README, plus benchmarks, the sanitized suite and the fuzzers.
# Everything goes through CMake presets.
PRESET ?= release
BUILD_DIR := build/$(PRESET)
FUZZ_SECONDS ?= 20
FUZZ_TARGETS ?=

.PHONY: all deps configure build run test test-sanitize fuzz bench overhead format clean

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

# The whole suite on the debug preset: address and undefined-behaviour sanitizers. An
# undefined-behaviour report fails its test rather than scrolling past in a passing one.
test-sanitize:
	@UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 $(MAKE) --no-print-directory test PRESET=debug

# Each libFuzzer target for FUZZ_SECONDS (all of them, or those of FUZZ_TARGETS="a b").
fuzz:
	@$(MAKE) --no-print-directory build PRESET=fuzz
	@scripts/fuzz.sh $(FUZZ_SECONDS) $(FUZZ_TARGETS)

bench: build
	$(BUILD_DIR)/bench/zelvar2-bench
	QT_QPA_PLATFORM=offscreen $(BUILD_DIR)/bench/zelvar2-ui-bench

# What the tray app, htop, btop and top each cost the machine; OVERHEAD_SECONDS sets the window.
overhead:
	@scripts/overhead.sh

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
