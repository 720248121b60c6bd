# make run   the program under Wine on the demo installation (ARGS='notepad/Focus 40')
# make test  every test: native, then the Windows build under Wine
BUILD := build
NATIVE := $(BUILD)/native
WIN := $(BUILD)/win64
JOBS ?= 2
ARGS ?=

.PHONY: all setup native win run test test-native test-wine screenshots clean

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
	  -DNX_DEMO_DIR=$(abspath $(NATIVE)/demo) -DNX_NATIVE_NXMENU=$(abspath $(NATIVE)/bin/nxmenu)
	cmake --build $(WIN) -j $(JOBS)

run: win
	bash scripts/run.sh $(WIN)/bin $(NATIVE)/demo $(BUILD)/demo/Narrix $(BUILD)/wine $(ARGS)

test: test-native test-wine

test-native: native
	cd $(NATIVE) && ctest --output-on-failure -j $(JOBS)

test-wine: win
	cd $(WIN) && ctest --output-on-failure -j $(JOBS)

screenshots: win
	bash scripts/screenshots.sh $(WIN)/bin $(NATIVE)/demo $(BUILD)/screenshots docs

clean:
	rm -rf $(BUILD)
