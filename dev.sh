#!/usr/bin/env bash
# Builds kvexec and runs it, its tests or its benchmarks, installing what the build needs first.
#
#   ./dev.sh example    build, then run examples/hello.kvx
#   ./dev.sh test       build, then run every test (unit, conformance, terminal)
#   ./dev.sh sanitize   build with AddressSanitizer + UBSan in build-asan, then run every test
#   ./dev.sh bench      build, then run the benchmarks in bench/ (options go to bench/run.sh:
#                       --runs N, --only REGEX, --smoke, --instructions)
#   ./dev.sh lint       check formatting (clang-format) and run clang-tidy over the sources
set -euo pipefail
cd "$(dirname "$0")"

deps() {  # deps [bench [bench options]]
  local missing=()
  if [ "${1:-}" = bench ]; then
    command -v dash > /dev/null || missing+=(dash)
    command -v rexx > /dev/null || missing+=(regina-rexx)
    if [[ " $* " == *" --instructions "* ]]; then
      command -v valgrind > /dev/null || missing+=(valgrind)
    fi
  fi
  command -v cmake > /dev/null || missing+=(cmake)
  command -v g++ > /dev/null || missing+=(g++)
  command -v tmux > /dev/null || missing+=(tmux)
  [ -x /usr/bin/time ] || missing+=(time)
  [ -f /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)
  [ -f /usr/include/term.h ] || missing+=(libncurses-dev)
  if [ ${#missing[@]} -gt 0 ]; then
    echo "installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo=sudo
    $sudo apt-get update -qq && $sudo apt-get install -y -qq "${missing[@]}"
  fi
}

build() {  # build <dir> [cmake options]
  local dir=$1
  shift
  cmake -S . -B "$dir" -DKVEXEC_WERROR=ON "$@" > /dev/null
  cmake --build "$dir" -j"$(nproc)"
}

case "${1:-test}" in
  example)
    deps
    build build
    ./build/kvexec examples/hello.kvx
    ;;
  test)
    deps
    build build
    ctest --test-dir build -j"$(nproc)" --output-on-failure
    ;;
  sanitize)
    deps
    build build-asan -DKVEXEC_SANITIZE=ON
    ASAN_OPTIONS=detect_stack_use_after_return=0 UBSAN_OPTIONS=print_stacktrace=1 \
      LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
      ctest --test-dir build-asan -j"$(nproc)" --output-on-failure
    ;;
  bench)
    deps bench "${@:2}"
    build build
    bench/run.sh build/kvexec "${@:2}"
    ;;
  lint)
    deps
    cmake -S . -B build -DKVEXEC_WERROR=ON -DCMAKE_EXPORT_COMPILE_COMMANDS=ON > /dev/null
    clang-format --dry-run --Werror src/*/*.cpp include/*.h tests/unit/*.cpp tests/unit/*.h
    # clang-tidy counts the warnings it hid in system headers; only its findings are shown.
    if ! clang-tidy --quiet -p build src/*/*.cpp > build/clang-tidy.log 2>&1; then
      grep -v 'warnings generated' build/clang-tidy.log
      exit 1
    fi
    ;;
  *)
    echo "usage: ./dev.sh example|test|sanitize|bench|lint" >&2
    exit 2
    ;;
esac
