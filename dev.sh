#!/usr/bin/env bash
# Builds kvexec and runs it, its tests or its benchmarks, installing what each command needs first.
#
#   ./dev.sh example    build kvexec alone, then run examples/hello.kvx
#   ./dev.sh test       build, then run every test; prints a summary (the full log on failure)
#   ./dev.sh sanitize   the same with AddressSanitizer + UBSan, in build-asan
#   ./dev.sh bench      build, then run the benchmarks in bench/ (options go to bench/run.sh:
#                       --runs N, --only REGEX, --smoke, --instructions)
#   ./dev.sh coverage   build with line counters in build-cov, run every test, then print the files
#                       of src/ least covered and the total (tests/coverage.py), and check that
#                       every line no test runs has its reason in tests/coverage_notes.md
#   ./dev.sh lint       check formatting (clang-format) and run clang-tidy over the sources
#   ./dev.sh fuzz-smoke build the fuzzing target with clang in build-fuzz and run its smoke test
#                       (the corpus, then a minute of fuzzing); status 77 when clang cannot build it
#
# Build output goes to <build folder>/build.log and test output to <build folder>/test.log; each is
# shown only when its step fails.
set -euo pipefail
cd "$(dirname "$0")"

# What each command needs: "command-or-file:Debian package:what it is for".
BASE_NEEDS=(
  "cmake:cmake:the build"
  "g++:g++:the build"
  "/usr/include/term.h:libncurses-dev:the terminal library (terminfo)"
  "/usr/include/gtest/gtest.h:libgtest-dev:the unit tests (the build configures them)"
)
TEST_NEEDS=(
  "tmux:tmux:the terminal tests"
  "/usr/bin/time:time:the memory test"
  "groff:groff-base:checking the manual pages"
  "vim:vim:checking the vim syntax file"
  "node:nodejs:checking the TextMate grammar"
  "npm:npm:installing the grammar tokenizer for that check"
  "dpkg-deb:dpkg:listing the Debian package"
  "dpkg-shlibdeps:dpkg-dev:the Debian package's dependencies"
  "gzip:gzip:compressing the manual pages"
  "python3:python3:the differential test"
  "/usr/share/i18n/locales/tr_TR:locales:building the locales of the locale test"
)
BENCH_NEEDS=("/usr/bin/time:time:timing the benchmarks" "dash:dash:the dash peers"
             "bash:bash:the bash peers" "rexx:regina-rexx:the Regina REXX peers")
FUZZ_NEEDS=("clang++:clang:the fuzzing target (libFuzzer)")
LINT_NEEDS=("clang-format:clang-format:the formatting check" "clang-tidy:clang-tidy:the lint")

has() {  # has <command or absolute path>
  case $1 in
    /*) [ -e "$1" ] ;;
    *) command -v "$1" > /dev/null ;;
  esac
}

# need <required: yes|no> <entry>...: installs what is missing with apt-get; without apt-get, says
# what is missing and what for, and stops when a required part is among it.
need() {
  local required=$1 entry tool pkg why
  shift
  local missing=() lines=()
  for entry in "$@"; do
    IFS=: read -r tool pkg why <<< "$entry"
    if ! has "$tool"; then
      missing+=("$pkg")
      lines+=("  $pkg  ($tool, for $why)")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if command -v apt-get > /dev/null; then
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo=sudo
    echo "installing: ${missing[*]}"
    $sudo apt-get update -qq > /dev/null && $sudo apt-get install -y -qq "${missing[@]}" > /dev/null
    return 0
  fi
  echo "apt-get is not available; install these (Debian package names) with your package manager:"
  printf '%s\n' "${lines[@]}"
  if [ "$required" = yes ]; then
    exit 1
  fi
  echo "(the tests that need them are reported as skipped)"
}

# The TextMate grammar check tokenizes with vscode-textmate when it is installed in
# <build folder>/editor-tools; without the npm registry it falls back to a check of its own.
node_tools() {  # node_tools <build folder>
  local dir=$1/editor-tools
  [ -d "$dir/node_modules/vscode-textmate" ] && [ -d "$dir/node_modules/vscode-oniguruma" ] && return 0
  command -v npm > /dev/null || return 0
  mkdir -p "$dir"
  if ! npm install --silent --no-audit --no-fund --no-save --prefix "$dir" \
      vscode-textmate@9.3.2 vscode-oniguruma@2.0.1 > "$dir/npm.log" 2>&1; then
    echo "note: could not install vscode-textmate from npm (see $dir/npm.log); the grammar test checks it without"
  fi
}

# Whether clang++ links a libFuzzer target with the sanitizers the fuzzing build uses.
fuzzer_runtime() {
  has clang++ || return 1
  local dir status=0
  dir=$(mktemp -d)
  printf 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }\n' > "$dir/t.cpp"
  clang++ -fsanitize=fuzzer,address,undefined,float-cast-overflow "$dir/t.cpp" -o "$dir/t" > /dev/null 2>&1 || status=1
  rm -rf "$dir"
  return $status
}

build() {  # build <dir> [--target <target>] [cmake options]
  local dir=$1
  shift
  local target=()
  if [ "${1:-}" = --target ]; then
    target=(--target "$2")
    shift 2
  fi
  mkdir -p "$dir"
  if ! { cmake -S . -B "$dir" -DKVEXEC_WERROR=ON "$@" && cmake --build "$dir" -j"$(nproc)" "${target[@]}"; } \
      > "$dir/build.log" 2>&1; then
    cat "$dir/build.log"
    echo "build failed (log: $dir/build.log)"
    exit 1
  fi
}

# run_tests <build folder>: all tests; a one-line summary, the whole log when something fails.
run_tests() {
  local dir=$1 log=$1/test.log status=0
  local start=$SECONDS
  ctest --test-dir "$dir" -j"$(nproc)" --output-on-failure > "$log" 2>&1 || status=$?
  local seconds=$((SECONDS - start))
  local total failed skipped
  total=$(sed -n 's/.*tests failed out of \([0-9]*\).*/\1/p' "$log" | tail -1)
  failed=$(sed -n 's/.* \([0-9]*\) tests failed out of.*/\1/p' "$log" | tail -1)
  skipped=$(grep -c '(Skipped)$' "$log" || true)
  if [ $status -ne 0 ] || [ -z "$total" ]; then
    cat "$log"
    echo
    echo "tests failed (log: $log)"
  else
    grep 'tests passed' "$log" | tail -1
    if [ "$skipped" -gt 0 ]; then
      echo "skipped (a tool is missing):"
      grep '(Skipped)$' "$log" | sed 's/^ *[0-9]* - /  /; s/ (Skipped)$//'
    fi
  fi
  echo "time: ${seconds}s"
  echo "tests: $((${total:-0} - ${failed:-0} - skipped)) passed, ${failed:-0} failed, $skipped skipped"
  return $status
}

case "${1:-test}" in
  example)
    need yes "${BASE_NEEDS[@]}"
    build build --target kvexec
    # On a terminal the screen codes work; elsewhere (a log, a pipe) the text mode reads best.
    if [ -t 1 ]; then
      ./build/kvexec examples/hello.kvx
    else
      KVEXEC_TERM=${KVEXEC_TERM:-text} ./build/kvexec examples/hello.kvx
    fi
    ;;
  test)
    need yes "${BASE_NEEDS[@]}"
    need no "${TEST_NEEDS[@]}"
    build build
    node_tools build
    run_tests build
    ;;
  sanitize)
    need yes "${BASE_NEEDS[@]}"
    need no "${TEST_NEEDS[@]}"
    build build-asan -DKVEXEC_SANITIZE=ON
    node_tools build-asan
    ASAN_OPTIONS=detect_stack_use_after_return=0 UBSAN_OPTIONS=print_stacktrace=1 \
      LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
      run_tests build-asan
    ;;
  coverage)
    need yes "${BASE_NEEDS[@]}"
    need no "${TEST_NEEDS[@]}"
    build build-cov -DKVEXEC_COVERAGE=ON -DCMAKE_BUILD_TYPE=Debug
    node_tools build-cov
    find build-cov -name '*.gcda' -delete
    status=0
    run_tests build-cov || status=$?
    python3 tests/coverage.py build-cov --least 12
    python3 tests/coverage.py build-cov --notes tests/coverage_notes.md || status=1
    exit $status
    ;;
  bench)
    need yes "${BASE_NEEDS[@]}" "${BENCH_NEEDS[@]}"
    if [[ " ${*:2} " == *" --instructions "* ]]; then need yes "valgrind:valgrind:instruction counts"; fi
    build build
    bench/run.sh build/kvexec "${@:2}"
    ;;
  lint)
    need yes "${BASE_NEEDS[@]}" "${LINT_NEEDS[@]}"
    cmake -S . -B build -DKVEXEC_WERROR=ON -DCMAKE_EXPORT_COMPILE_COMMANDS=ON > /dev/null
    clang-format --dry-run --Werror src/*/*.cpp src/*/*.h fuzz/*.cpp tests/unit/*.cpp tests/unit/*.h
    # clang-tidy counts the warnings it hid in system headers; only its findings are shown.
    if ! clang-tidy --quiet -p build src/*/*.cpp > build/clang-tidy.log 2>&1; then
      grep -v 'warnings generated' build/clang-tidy.log
      exit 1
    fi
    ;;
  fuzz-smoke)
    need yes "${BASE_NEEDS[@]}"
    need no "${FUZZ_NEEDS[@]}"
    if has clang++ && ! fuzzer_runtime && command -v apt-get > /dev/null; then
      # The runtimes (libFuzzer, the sanitizers) come in a package of their own.
      sudo=""
      [ "$(id -u)" -ne 0 ] && sudo=sudo
      echo "installing: libclang-rt-dev"
      $sudo apt-get update -qq > /dev/null && $sudo apt-get install -y -qq libclang-rt-dev > /dev/null || true
    fi
    if ! fuzzer_runtime; then
      echo "fuzz smoke SKIPPED: clang++ cannot link a libFuzzer target with the sanitizers (Debian: clang, libclang-rt-dev)"
      exit 77
    fi
    build build-fuzz --target kvexec_fuzz -DCMAKE_CXX_COMPILER=clang++ -DKVEXEC_FUZZ=ON -DKVEXEC_TESTS=ON
    status=0
    ctest --test-dir build-fuzz -L fuzz -V > build-fuzz/test.log 2>&1 || status=$?
    if [ $status -ne 0 ] || ! grep -q '100% tests passed' build-fuzz/test.log; then
      cat build-fuzz/test.log
      echo "fuzz smoke failed (log: build-fuzz/test.log; findings: build-fuzz/fuzz-findings/)"
      exit 1
    fi
    if grep -q '(Skipped)' build-fuzz/test.log; then
      grep -E 'SKIPPED' build-fuzz/test.log || true
      echo "fuzz smoke SKIPPED"
      exit 77
    fi
    grep -E ': (== |#[0-9]+[[:space:]]+(INITED|DONE)|stat::)' build-fuzz/test.log | sed 's/^[0-9]*: /  /'
    echo "fuzz smoke passed"
    ;;
  *)
    echo "usage: ./dev.sh example|test|sanitize|bench|lint|fuzz-smoke" >&2
    exit 2
    ;;
esac
