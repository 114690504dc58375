# The two set-up commands: `make demo` and `make test`. Both install what is missing first.
BUILD_DIR ?= build
GENERATOR := $(shell command -v ninja >/dev/null 2>&1 && echo Ninja || echo "Unix Makefiles")
JOBS ?= $(shell nproc 2>/dev/null || echo 2)

ifeq ($(CI),true)
  SANITIZE ?= ON
  BUILD_DIR := build-ci
else
  SANITIZE ?= OFF
endif

CMAKE_FLAGS := -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARNSHEETS_SANITIZE=$(SANITIZE) -DTARNSHEETS_WERROR=ON \
  -DTARNSHEETS_WITH_QT=ON \
  $(EXTRA_CMAKE_FLAGS)

.PHONY: all deps configure build test demo format format-check clean

all: build

deps:
	@bash scripts/install-deps.sh qt

configure: deps
	@cmake -S . -B $(BUILD_DIR) -G "$(GENERATOR)" $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	@cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

demo: build
	@bash scripts/demo.sh $(BUILD_DIR)

format:
	@git ls-files '*.h' '*.cc' | xargs clang-format -i

format-check: deps
	@git ls-files '*.h' '*.cc' | xargs clang-format --dry-run --Werror

clean:
	rm -rf build build-ci
