#!/usr/bin/env bash
# The fuzzing target's smoke run: every input of the committed corpus once, then fuzzing for a
# short while from that corpus (new inputs go to a scratch folder). Any finding fails the test and
# is kept, with the sanitizer's report, in <build folder>/fuzz-findings/.
#
#   smoke.sh <kvexec_fuzz binary> <source root> [seconds, default 60]
#
# Builds nothing: when the target has not been built (it is built only by a build configured
# with -DKVEXEC_FUZZ=ON, see ./dev.sh fuzz-smoke), the test is skipped (77).
set -u
bin=$1
root=$2
seconds=${3:-${KVEXEC_FUZZ_SECONDS:-60}}
if [ ! -x "$bin" ]; then
  echo "SKIPPED: $bin has not been built (cmake --build <folder> --target kvexec_fuzz)"
  exit 77
fi
corpus=$root/fuzz/corpus
findings=$(dirname "$bin")/fuzz-findings
scratch=$(mktemp -d "${TMPDIR:-/tmp}/kvexec-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$findings"

export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS=print_stacktrace=1
options=(-dict="$root/fuzz/kvexec.dict" -max_len=16384 -timeout=20 -rss_limit_mb=4096
         -artifact_prefix="$findings/")

echo "== the corpus, each input once"
if ! "$bin" "${options[@]}" -runs=0 "$corpus" > "$scratch/corpus.log" 2>&1; then
  cat "$scratch/corpus.log"
  echo "an input of the corpus fails (kept in $findings)"
  exit 1
fi
grep -E '^#[0-9]+[[:space:]]+INITED' "$scratch/corpus.log"

echo "== fuzzing for $seconds seconds"
mkdir -p "$scratch/new"
if ! "$bin" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 "$scratch/new" "$corpus" \
    > "$scratch/fuzz.log" 2>&1; then
  tail -n 80 "$scratch/fuzz.log"
  echo "fuzzing found a fault (kept in $findings)"
  exit 1
fi
grep -E '^#[0-9]+[[:space:]]+DONE|^stat::number_of_executed_units|^stat::peak_rss_mb' "$scratch/fuzz.log"
exit 0
