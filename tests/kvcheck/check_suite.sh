#!/usr/bin/env bash
# Runs kvcheck over every script known to run to its end: each conformance case whose status is 0
# (no .status file, or one holding 0) and each example. None may get an error; warnings are fine.
#
#   check_suite.sh <kvcheck binary> <source root>
set -u
bin=$1
root=$2
[ -x "$bin" ] || { echo "SKIP: no kvcheck binary at $bin"; exit 77; }

scripts=()
while IFS= read -r -d '' kvx; do
  status=0
  [ -f "${kvx%.kvx}.status" ] && status=$(tr -d ' \n' < "${kvx%.kvx}.status")
  [ "$status" = 0 ] && scripts+=("$kvx")
done < <(find "$root/tests/conformance" -name '*.kvx' -print0 | sort -z)
for kvx in "$root"/examples/*.kvx; do scripts+=("$kvx"); done
[ "${#scripts[@]}" -gt 0 ] || { echo "no scripts found under $root"; exit 1; }

fail=0
for kvx in "${scripts[@]}"; do
  out=$("$bin" -w "$kvx" 2>&1)
  status=$?
  if [ "$status" != 0 ] || [ -n "$out" ]; then
    echo "${kvx#"$root"/}: status $status"
    [ -n "$out" ] && printf '%s\n' "$out"
    fail=1
  fi
done
[ $fail -eq 0 ] && echo "no error in ${#scripts[@]} scripts that run to their end"
exit $fail
