# The two commands of the README. Both install what the machine lacks first (scripts/setup).
PRESET ?= release
JOBS ?= $(shell nproc)
BUILD := build/$(PRESET)

.PHONY: setup configure build run test test-asan test-tsan bench install fuzz fuzz-smoke clean

setup:
	bash scripts/setup

configure: setup
	cmake --preset $(PRESET) >/dev/null

build: configure
	cmake --build $(BUILD) -j $(JOBS)

# The main job: the kx console's tour of what the library registered, on the embedded content.
run: build
	$(BUILD)/apps/kx/kx --tour

# Fails as well when the run touched the real user directory (~/.kx): tests work in their own.
test: build
	bash scripts/home-guard ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-asan:
	$(MAKE) test PRESET=asan

test-tsan:
	$(MAKE) test PRESET=tsan

bench: build
	bash scripts/bench $(BUILD)

# The libraries, headers, CMake package, pkg-config file, content and kx under PREFIX
# (docs/ARCHITECTURE.md, "Installation"). Root rights as the prefix needs them.
PREFIX ?= /usr/local
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# The libFuzzer targets, and only what they link: the fuzz preset instruments every library.
FUZZERS := value_readers_fuzz gelib_readers_fuzz document_open_fuzz material_library_fuzz \
	option_file_fuzz string_table_fuzz netfs_mounts_fuzz library_history_fuzz \
	text_command_line_fuzz geometry_commands_fuzz online_index_fuzz
fuzz: setup
	cmake --preset fuzz >/dev/null && cmake --build build/fuzz -j $(JOBS) --target $(FUZZERS)

# Each fuzzer for FUZZ_SECONDS on its seeds, as many at once as there are jobs (scripts/fuzz-smoke).
FUZZ_SECONDS ?= 60
fuzz-smoke: fuzz
	bash scripts/fuzz-smoke $(FUZZ_SECONDS) $(JOBS) $(FUZZERS)

clean:
	rm -rf build
