# The two commands of the README. Both install what the machine lacks first (scripts/setup).
PRESET ?= release
JOBS ?= $(shell nproc)
BUILD := build/$(PRESET)

.PHONY: setup configure build run test test-asan test-tsan bench fuzz clean

setup:
	bash scripts/setup

configure: setup
	cmake --preset $(PRESET) >/dev/null

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# The main job: the kx console's tour of what the library registered, on the embedded content.
run: build
	$(BUILD)/apps/kx/kx --tour

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

test-asan:
	$(MAKE) test PRESET=asan

test-tsan:
	$(MAKE) test PRESET=tsan

bench: build
	bash scripts/bench $(BUILD)

fuzz: setup
	cmake --preset fuzz >/dev/null && cmake --build build/fuzz -j $(JOBS)

clean:
	rm -rf build
