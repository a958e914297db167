#!/usr/bin/env bash
# Runs the benchmarks and prints wall time and peak memory for each; with callgrind available,
# also the instruction count, which is the same from run to run and machine load.
#   bench/run.sh <kvexec binary> [--instructions]
set -euo pipefail
bin=$(readlink -f "$1")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$here/make_scripts.sh" "$work"
cd "$work"
export KVEXEC_TERM=raw
printf '%-16s %10s %10s %16s\n' benchmark seconds 'peak KiB' instructions
for script in *.kvx; do
  /usr/bin/time -f '%e %M' -o time.txt "$bin" "$script" > /dev/null
  read -r secs kib < time.txt
  instr=-
  if [ "${2:-}" = --instructions ] && command -v valgrind > /dev/null; then
    valgrind --tool=callgrind --callgrind-out-file=cg.out "$bin" "$script" > /dev/null 2> cg.txt
    instr=$(sed -n 's/.*Collected : *\([0-9]*\).*/\1/p' cg.txt | head -1)
    [ -n "$instr" ] || instr=$(grep -o 'refs: *[0-9,]*' cg.txt | tr -dc 0-9)
  fi
  printf '%-16s %10s %10s %16s\n' "${script%.kvx}" "$secs" "$kib" "$instr"
done
