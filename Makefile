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
	option_file_fuzz string_table_fuzz netfs_mounts_fuzz
fuzz: setup
	cmake --preset fuzz >/dev/null && cmake --build build/fuzz -j $(JOBS) --target $(FUZZERS)

# Each fuzzer for FUZZ_SECONDS on its seeds (tests/data/fuzz-seeds/<target>, and the golden files
# the readers take as they are), in a scratch corpus so the repository stays as it is. A crash,
# leak, timeout or undefined behaviour fails the run; the input is kept as fuzz-<target>-crash-*
# in the scratch folder, whose path is printed.
FUZZ_SECONDS ?= 60
SEEDS_value_readers_fuzz := tests/data/values
SEEDS_gelib_readers_fuzz := tests/data/gelib
fuzz-smoke: fuzz
	@scratch=$$(mktemp -d /tmp/kx-fuzz-smoke-XXXXXX); echo "fuzz-smoke: corpora and crashes in $$scratch"; \
	for target in $(FUZZERS); do \
		mkdir -p $$scratch/$$target; \
		for seeds in tests/data/fuzz-seeds/$$target $(SEEDS_$$target); do \
			if [ -d $$seeds ]; then cp $$seeds/* $$scratch/$$target/; fi; \
		done; \
	done; \
	for target in $(FUZZERS); do \
		[ -n "$$(ls -A $$scratch/$$target)" ] || { echo "fuzz-smoke: $$target has no seeds"; exit 1; }; \
		echo "fuzz-smoke: $$target for $(FUZZ_SECONDS) s"; \
		KX_USER_DIR=$$scratch/user UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
		build/fuzz/fuzz/$$target $$scratch/$$target -max_total_time=$(FUZZ_SECONDS) -timeout=10 \
			-rss_limit_mb=2048 -artifact_prefix=$$scratch/fuzz-$$target- -print_final_stats=1 \
			> $$scratch/$$target.log 2>&1 || { tail -60 $$scratch/$$target.log; exit 1; }; \
		grep -E "^(stat::number_of_executed_units|stat::peak_rss_mb)" $$scratch/$$target.log | tr '\n' ' '; echo; \
	done

clean:
	rm -rf build
