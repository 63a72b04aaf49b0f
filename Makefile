# make run     - install what is missing, build, start the program
# make test    - install what is missing, build, run every test (normal and sanitized
#                builds), and build as packagers do (MinSizeRel, clang)
# make install - install the Release build under PREFIX (default /usr/local), DESTDIR honoured
# make package - the Debian package, build/ostrivane_<version>_<arch>.deb
JOBS ?= $(shell nproc)
BUILD ?= build
ASAN_BUILD ?= build-asan
PREFIX ?= /usr/local

.PHONY: deps build build-asan build-minsize build-clang run test test-normal test-asan bench clean install package

deps:
	@scripts/install-deps

# Release, as a packager builds it; warnings are errors in our own builds.
build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build $(BUILD) -j$(JOBS)

build-asan: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DOSTRIVANE_SANITIZE=ON -DOSTRIVANE_BENCH=OFF -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build $(ASAN_BUILD) -j$(JOBS)

# As a packager builds: no warnings as errors there; here they are.
build-minsize: deps
	cmake -S . -B build-minsize -DCMAKE_BUILD_TYPE=MinSizeRel -DOSTRIVANE_BENCH=OFF -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build build-minsize -j$(JOBS)

build-clang: deps
	CXX=clang++ cmake -S . -B build-clang -DCMAKE_BUILD_TYPE=Release -DOSTRIVANE_BENCH=OFF -DOSTRIVANE_WERROR=ON $(CMAKE_EXTRA)
	cmake --build build-clang -j$(JOBS)

install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)"

package: build
	cd $(BUILD) && cpack -G DEB

run: build
	@scripts/run

test-normal: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: build-asan
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j$(JOBS)

test: test-normal test-asan build-minsize build-clang

bench: build
	@scripts/bench

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) build-minsize build-clang
