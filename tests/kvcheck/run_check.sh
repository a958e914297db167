#!/usr/bin/env bash
# Runs kvcheck on one case and compares its report and status with the expected ones.
#
#   run_check.sh <kvcheck binary> <case path without extension>
#
#   <case>.kvx      the script checked, as "kvcheck [args] <case>.kvx" from a fresh directory
#   <case>.expect   exact standard output (absent: must be empty)
#   <case>.status   exit status (default 0)
#   <case>.args     options and further files placed before the script name, one a line
#   <case>.err      exact standard error (absent: must be empty)
#   <case>.stdin    standard input (absent: empty)
set -u
bin=$(readlink -f "$1")
case_path=$(readlink -f "$2")
name=$(basename "$case_path")
[ -x "$bin" ] || { echo "SKIP: no kvcheck binary at $1"; exit 77; }
work=$(mktemp -d "${TMPDIR:-/tmp}/kvcheck.XXXXXX")
trap 'rm -rf "$work"' EXIT
cp "$case_path.kvx" "$work/$name.kvx"

args=()
if [ -f "$case_path.args" ]; then
  while IFS= read -r a || [ -n "$a" ]; do args+=("$a"); done < "$case_path.args"
fi
want_status=0
[ -f "$case_path.status" ] && want_status=$(tr -d ' \n' < "$case_path.status")

stdin=/dev/null
[ -f "$case_path.stdin" ] && stdin="$case_path.stdin"

cd "$work" || exit 2
env -i PATH="/usr/local/bin:/usr/bin:/bin" LC_ALL=C.UTF-8 \
  timeout -s KILL 20 "$bin" "${args[@]}" "$name.kvx" < "$stdin" > .stdout 2> .stderr
status=$?

fail=0
if [ "$status" != "$want_status" ]; then echo "exit status: expected $want_status, got $status"; fail=1; fi
expect=/dev/null
[ -f "$case_path.expect" ] && expect="$case_path.expect"
if ! cmp -s "$expect" .stdout; then
  echo "report differs (expected, then actual):"
  diff "$expect" .stdout | head -40
  fail=1
fi
if [ -f "$case_path.err" ]; then
  if ! cmp -s "$case_path.err" .stderr; then echo "standard error differs:"; diff "$case_path.err" .stderr; fail=1; fi
elif [ -s .stderr ]; then
  echo "unexpected standard error:"; head -c 2000 .stderr; echo; fail=1
fi
exit $fail
