# make run  - install what is missing, build, start the program
# make test - install what is missing, build, run every test (normal and sanitized builds)
JOBS ?= $(shell nproc)
BUILD ?= build
ASAN_BUILD ?= build-asan

.PHONY: deps build build-asan run test test-normal test-asan bench clean

deps:
	@scripts/install-deps

# Release, as a packager builds it; warnings are errors in our own builds.
build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build $(BUILD) -j$(JOBS)

build-asan: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DOSTRIVANE_SANITIZE=ON -DOSTRIVANE_BENCH=OFF -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build $(ASAN_BUILD) -j$(JOBS)

run: build
	@scripts/run

test-normal: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: build-asan
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j$(JOBS)

test: test-normal test-asan

bench: build
	@scripts/bench

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)
