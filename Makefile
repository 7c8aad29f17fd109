# The commands; CMakePresets.json holds what they configure. Each one installs the packages that it needs and that are missing.
.PHONY: run package release test fuzz swarm mutate sanitize asan tsan bench desktops coverage macos mac-report lint tidy format clean

CONFIGURE_FLAGS ?=
JOBS ?= $(shell getconf _NPROCESSORS_ONLN)
# Most tests wait for another process most of their time.
TEST_JOBS ?= $(shell expr 3 \* $(JOBS))
SANITIZER_TEST_JOBS ?= $(shell expr 2 \* $(JOBS))

# Builds the simulator, shows it clear the notifications of an evening from a simulated screen, then builds the program.
run:
	@tools/install-packages build
	@cmake --preset dev $(CONFIGURE_FLAGS) >build-run.log || { cat build-run.log; exit 1; }; rm -f build-run.log
	@cmake --build --preset dev -j $(JOBS) --target hushlet-sim
	@mkdir -p build/demo && HOME=$(CURDIR)/build/demo HUSHLET_PICTURE=1 build/bin/hushlet-sim --dismiss-now
	@cmake --build --preset dev -j $(JOBS) --target hushlet
	@echo "Built build/bin/hushlet, the program itself."

# The packages, for Debian and for RPM.
package:
	@tools/install-packages build package
	cmake --preset release $(CONFIGURE_FLAGS)
	cmake --build --preset release -j $(JOBS)
	cd build-release && cpack

# The release, with each source compiled alone, and a short test of what it installs and of its packages.
release:
	@tools/install-packages build test package
	cmake --preset release $(CONFIGURE_FLAGS)
	cmake --build --preset release -j $(JOBS)
	tests/packaging/install-test build-release
	tests/packaging/package-test build-release

# Every test, those on a real desktop included; then the macOS build, where a sysroot for it is named.
test:
	@tools/install-packages build test
	cmake --preset dev -DHL_TESTS=ON $(CONFIGURE_FLAGS)
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev -j $(TEST_JOBS)
	tools/check-macos

# The same tests under the address, undefined-behavior and thread sanitizers.
sanitize: asan tsan
asan tsan:
	@tools/install-packages build test fuzz
	cmake --preset $@ $(CONFIGURE_FLAGS)
	cmake --build --preset $@ -j $(JOBS)
	ctest --preset $@ -j $(SANITIZER_TEST_JOBS)

# Every fuzzer for SECONDS seconds, starting from what earlier runs found.
fuzz: SECONDS ?= 600
fuzz:
	@tools/install-packages build fuzz
	cmake --preset fuzz $(CONFIGURE_FLAGS)
	cmake --build --preset fuzz -j $(JOBS)
	tools/fuzz $(SECONDS)

# Random desktops, faults and input for SECONDS seconds; docs/swarm.md.
swarm: SECONDS ?= 600
swarm:
	@tools/install-packages build test
	cmake --preset dev -DHL_TESTS=ON $(CONFIGURE_FLAGS)
	cmake --build --preset dev -j $(JOBS) --target swarm
	tools/swarm $(SECONDS)

# Changes single tokens of the sources, and lists those changes that no test notices. Hours for all modules.
mutate: NUMBER ?= 25
mutate:
	@tools/install-packages build test
	tools/mutate --number $(NUMBER) $(if $(MODULE),--module $(MODULE)) $(if $(SEED),--seed $(SEED))

bench:
	@tools/install-packages build bench
	cmake --preset release -DHL_BENCH=ON $(CONFIGURE_FLAGS)
	cmake --build --preset release -j $(JOBS)
	tools/bench build-release

# The program on every notification server of Debian 12; writes the tables of docs/desktops.md. Needs no screen.
desktops:
	@tools/install-packages build desktops
	cmake --preset release $(CONFIGURE_FLAGS)
	cmake --build --preset release -j $(JOBS) --target hushlet hushlet-desktop.so
	tests/desktops/run --program build-release/bin/hushlet

coverage:
	@tools/install-packages build test coverage
	tools/coverage

# What can be proved of the macOS build without a Mac; docs/macos.md.
macos:
	tools/check-macos

# On a Mac: every test, and a report to send back.
mac-report:
	tools/macos-report

lint:
	@tools/install-packages build test lint
	tools/lint/all

tidy:
	@tools/install-packages build test lint
	cmake --preset dev -DHL_TESTS=ON $(CONFIGURE_FLAGS)
	run-clang-tidy -quiet -p build '$(CURDIR)/(entry|app|daemon|autoclose|core|report|base|platform)/.*\.cc$$'

format:
	@tools/install-packages lint
	tools/lint/format --fix

clean:
	rm -rf build build-*
