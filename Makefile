# The goals for everyday work. Each goal installs the packages that it needs and that are missing, from
# debian/control. When all of them are installed, it needs neither root nor the network for that.

.PHONY: help run test test-platform check bench fuzz coverage docs package bare test-arm64 test-armhf clean
.PHONY: test-boot boot-shell deps-build deps-test deps-check deps-package deps-bare build-release build-dev

help:
	@sed -n 's|^\([a-z0-9 -]*\):[^#]*## |  make \1\t|p' Makefile | expand -t 32

run: deps-build build-release  ## build, and answer requests over the example configuration
	examples/show build/release/tools/tarnwick-parse-config
	examples/check build/release/tools/config/tarnwick-config
	examples/explain build/release/tools/config/tarnwick-config

test: deps-test build-dev  ## build, and run the tests that every change must pass
	scripts/run-tests build/dev -j2

test-platform: deps-test build-dev  ## only the tests with real systemd, logind and journald
	ctest --test-dir build/dev -V -R '^platform-services$$'

check: deps-check  ## the longer checks: sanitizers, fuzzing, lint, ARM, install
	scripts/check

bench: deps-check  ## measure start-up and loading beside other programs
	bench/run

fuzz: deps-check  ## fuzz all targets side by side for MINUTES minutes
	scripts/fuzz $(or $(MINUTES),1)

coverage: deps-check  ## print the table of line and branch coverage
	scripts/coverage

docs: deps-check  ## the library's reference in build/docs
	scripts/build-docs

package: deps-package  ## the Debian packages in build/packages
	scripts/build-packages

bare: deps-bare  ## make GOAL (test) of the last commit on a minimal Debian; needs root
	scripts/try-bare-machine make $(or $(GOAL),test)

test-arm64 test-armhf: test-%:  ## build for ARM, and run the tests under emulation
	scripts/test-arm $*

test-boot:  ## prove the packages on a booted ARM machine, ARCH=arm64 or armhf
	scripts/test-boot $(or $(ARCH),arm64)

boot-shell:  ## look around in that machine by hand
	scripts/make-boot-machine $(or $(ARCH),arm64)
	scripts/run-boot-machine $(or $(ARCH),arm64)

clean:  ## remove everything that was built
	rm -rf build

deps-build deps-test deps-check deps-package deps-bare: deps-%:
	@scripts/install-build-deps $*

build-release: deps-build
	cmake --preset release
	cmake --build build/release

build-dev:
	cmake --preset dev
	cmake --build build/dev
