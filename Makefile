# The verbs of this tree; each is a thin call of CMake, CTest or a script. `make help` lists them.
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
RUN_WINE := $(or $(QILSYS_WINDOWS_PREFIX),$(HOME)/.cache/qilsys/windows)/bin/run-wine

.DEFAULT_GOAL := help
.DELETE_ON_ERROR:
.PHONY: help setup build demo test windows demo-windows asan tsan check coverage bench install clean format

help: ## Show this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## / { printf "make %-13s %s\n", $$1, $$2 }' Makefile

setup: ## Install what building, testing and the demo need, where it is missing
	@scripts/setup base

build: setup build/release/build.ninja ## Build everything, optimised
	@cmake --build --preset release -j $(JOBS)

demo: setup build/release/build.ninja ## Build and run the demo
	@scripts/setup demo
	@cmake --build --preset release -j $(JOBS) --target qilsys_demo
	@build/release/examples/demo/qilsys_demo

test: build ## Build and run all tests
	@ctest --preset release -j $(JOBS)

windows: setup ## Build everything for 64-bit Windows and run all tests there, under Wine
	@scripts/setup-windows
	@$(MAKE) --no-print-directory build/windows/build.ninja build/release/build.ninja
	@cmake --build --preset windows -j $(JOBS)
	@cmake --build --preset release -j $(JOBS) --target monitor_member
	@ctest --preset windows -j $(JOBS); status=$$?; scripts/windows-cases && exit $$status

demo-windows: ## Build the demo for 64-bit Windows and run it under Wine
	@scripts/setup-windows
	@$(MAKE) --no-print-directory build/windows/build.ninja
	@cmake --build --preset windows -j $(JOBS) --target qilsys_demo
	@$(RUN_WINE) build/windows/bin/qilsys_demo.exe

asan: setup ## Run all tests under AddressSanitizer and UndefinedBehaviorSanitizer, built by clang
	@scripts/setup clang
	@$(MAKE) --no-print-directory test-asan

tsan: setup test-tsan ## Run all tests under ThreadSanitizer

check: setup ## Check form, headers, exported symbols, build lists, layering and warnings
	@scripts/setup clang check
	@scripts/setup-windows
	@scripts/check

coverage: setup ## Print the line coverage of main/
	@scripts/setup coverage
	@$(MAKE) --no-print-directory test-coverage
	@gcovr --root . --filter main/ --print-summary --fail-under-line 95 build/coverage -j $(JOBS)

bench: build ## Run all benchmarks
	@find build/release/benchmarks -name '*_benchmark' -type f -print0 | sort -z | xargs -0 -r -n 1 sh -c 'echo "== $$0"; exec "$$0"'

install: build ## Install under PREFIX (/usr/local)
	@cmake --install build/release --prefix $(PREFIX)
	@[ -n "$(DESTDIR)" ] || [ "$$(id -u)" -ne 0 ] || ldconfig

clean: ## Remove everything that was built
	@rm -rf build

format: ## Format all sources in place
	@scripts/setup check
	@git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format -i

test-%: build/%/build.ninja
	@cmake --build --preset $* -j $(JOBS)
	@ctest --preset $* -j $(JOBS)

# CMake runs itself again when its own files change; what a preset says is only read here.
.PRECIOUS: build/%/build.ninja
build/%/build.ninja: CMakePresets.json
	@cmake --preset $*
	@touch $@
