# make run   the program under Wine on the demo installation (ARGS='notepad/Focus 40')
# make test  every test: native, then the Windows build under Wine
# make dist  the MSI and the zip for Windows users, in build/dist
# make mutants  how many small faults of tests/mutants.txt the native suite catches (not part of make test)
BUILD := build
NATIVE := $(BUILD)/native
WIN := $(BUILD)/win64
JOBS ?= 2
ARGS ?=

ASAN := $(BUILD)/asan
FUZZ := $(BUILD)/fuzz
FUZZ_SECONDS ?= 60

.PHONY: all setup native win dist run test test-native test-asan test-wine fuzz bench mutants screenshots clean

all: native win

setup:
	@bash scripts/setup.sh

native: setup
	cmake -S . -B $(NATIVE) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(NATIVE) -j $(JOBS)

# The Windows tests use the demo installation that the native build lays out
# (its menus are made by the native nxmenu).
win: setup native
	cmake -S . -B $(WIN) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake -DCMAKE_BUILD_TYPE=Release \
	  -DNX_DEMO_DIR=$(abspath $(NATIVE)/demo) -DNX_NATIVE_NXMENU=$(abspath $(NATIVE)/bin/nxmenu) \
	  -DNX_DIST_DIR=$(abspath $(BUILD)/dist)
	cmake --build $(WIN) -j $(JOBS)

# The MSI and the zip, named after the version, in $(BUILD)/dist.
dist: win
	cmake --build $(WIN) --target dist
	@ls -1 $(BUILD)/dist

# ARGS reaches the program through the environment, untouched by make and the
# shell: a script path such as notepad*$(appsetdir)\hello.vbs keeps its text.
run: export NX_RUN_ARGS = $(value ARGS)
run: win
	bash scripts/run.sh $(WIN)/bin $(NATIVE)/demo $(BUILD)/demo/Narrix $(BUILD)/wine

test: test-native test-asan test-wine

test-native: native
	cd $(NATIVE) && ctest --output-on-failure -j $(JOBS)

# The native suite once more under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: setup
	cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=Debug -DNX_SANITIZE=ON
	cmake --build $(ASAN) -j $(JOBS)
	cd $(ASAN) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# Each libFuzzer target for FUZZ_SECONDS, starting from the demo menus and
# tables; the corpora grow in $(FUZZ)/corpus from run to run. The combined
# menu-and-profile inputs are a profile, a NUL byte and a menu.
FUZZ_TARGETS := fuzz_tables fuzz_braille_profile fuzz_menu_with_profile
FUZZ_RUN = -max_total_time=$(FUZZ_SECONDS) -max_len=4096 -print_final_stats=0
fuzz: setup native
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DNX_FUZZ=ON -DNX_BUILD_TESTS=OFF
	cmake --build $(FUZZ) -j $(JOBS) --target $(FUZZ_TARGETS)
	mkdir -p $(addprefix $(FUZZ)/corpus/,tables profile menu-profile)
	find $(NATIVE)/demo -name '*.ini' -exec sh -c 'cp "$$1" $(FUZZ)/corpus/profile/$$(echo "$$1" | md5sum | cut -c1-8)' _ {} \;
	find $(NATIVE)/demo -name Command.mnu -exec sh -c 'd=$$(dirname "$$1"); \
	  { cat "$$d/Focus 40.ini"; printf "\0"; cat "$$1"; } > $(FUZZ)/corpus/menu-profile/$$(echo "$$1" | md5sum | cut -c1-8)' _ {} \;
	cp $(NATIVE)/demo/Set/gKeyCode.def $(NATIVE)/demo/Set/gActions.def $(FUZZ)/corpus/tables/
	$(FUZZ)/bin/fuzz_tables $(FUZZ_RUN) $(FUZZ)/corpus/tables
	$(FUZZ)/bin/fuzz_braille_profile $(FUZZ_RUN) $(FUZZ)/corpus/profile
	$(FUZZ)/bin/fuzz_menu_with_profile $(FUZZ_RUN) $(FUZZ)/corpus/menu-profile

test-wine: win
	cd $(WIN) && ctest --output-on-failure -j $(JOBS)

# Speed against baselines measured in the same run (figures: docs/benchmarks.md).
bench: native win
	$(NATIVE)/bin/menu_bench --benchmark_min_time=1
	bash tests/wine/run_exe.sh $(BUILD)/editor-bench $(WIN)/bin/editor_bench.exe @WORK

# The native suite against each fault of tests/mutants.txt, in a copy of the
# source in $(BUILD)/mutants (docs/testing.md); MUTANTS_ONLY="m03 m17" runs
# some, MUTANTS_WINE=1 adds the window code's faults and their Wine journeys.
mutants: setup
	JOBS=$(JOBS) bash scripts/mutants.sh $(BUILD)

screenshots: win
	bash scripts/screenshots.sh $(WIN)/bin $(NATIVE)/demo $(BUILD)/screenshots docs

clean:
	rm -rf $(BUILD)
