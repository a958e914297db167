#!/usr/bin/env bash
# Runs one conformance case and compares what it produced with what it must produce.
#
#   run_case.sh <kvexec binary> <case path without extension>
#
# A case is a script <case>.kvx beside files that say what must happen:
#   <case>.out       exact standard output (absent: not checked)
#   <case>.status    exit status (default 0), or "timeout": the run must still be going when the
#                    time limit ends it, and .out is then a prefix of what it printed
#   <case>.err       exact standard error (absent: standard error must be empty)
#   <case>.args      arguments after the script name, one a line
#   <case>.argv      the whole argument list instead of "<case>.kvx" and .args, one a line
#   <case>.env       NAME=VALUE lines added to the environment
#   <case>.stdin     standard input (default: empty)
#   <case>.timeout   seconds before the run is stopped (default 20)
#   <case>.setup     shell script run in the working directory before the case
#   <case>.contains  lines each of which must occur somewhere in standard output
# The case runs in a fresh directory holding a copy of the script, started as "kvexec <case>.kvx",
# so that diagnostics name the script by its base name.
set -u
bin=$(readlink -f "$1")
case_path=$(readlink -f "$2")
name=$(basename "$case_path")
dir=$(dirname "$case_path")
work=$(mktemp -d "${TMPDIR:-/tmp}/kvx.XXXXXX")
trap 'rm -rf "$work"' EXIT
cp "$case_path.kvx" "$work/$name.kvx"

args=()
if [ -f "$case_path.argv" ]; then
  while IFS= read -r a || [ -n "$a" ]; do args+=("$a"); done < "$case_path.argv"
else
  args+=("$name.kvx")
  if [ -f "$case_path.args" ]; then
    while IFS= read -r a || [ -n "$a" ]; do args+=("$a"); done < "$case_path.args"
  fi
fi

envs=(KVEXEC_TERM=raw TZ=UTC LC_ALL=C.UTF-8 HOME="$work")
# Sanitizer settings, and KVEXEC_PLAIN (every command through the shell), pass through to the run.
for v in ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS KVEXEC_PLAIN; do
  [ -n "${!v:-}" ] && envs+=("$v=${!v}")
done
if [ -f "$case_path.env" ]; then
  while IFS= read -r e || [ -n "$e" ]; do [ -n "$e" ] && envs+=("$e"); done < "$case_path.env"
fi
stdin=/dev/null
[ -f "$case_path.stdin" ] && stdin="$case_path.stdin"
limit=20
[ -f "$case_path.timeout" ] && limit=$(tr -d ' \n' < "$case_path.timeout")
want_status=0
[ -f "$case_path.status" ] && want_status=$(tr -d ' \n' < "$case_path.status")

cd "$work" || exit 2
if [ -f "$case_path.setup" ]; then
  bash "$case_path.setup" > /dev/null 2>&1 || { echo "setup failed"; exit 1; }
fi
# A clean environment: only what a case asks for, plus what a shell needs.
env -i PATH="/usr/local/bin:/usr/bin:/bin" PWD="$work" "${envs[@]}" \
  timeout -s KILL "$limit" "$bin" "${args[@]}" < "$stdin" > "$work/.stdout" 2> "$work/.stderr"
status=$?

fail=0
if [ "$want_status" = timeout ]; then
  if [ "$status" -ne 137 ]; then echo "expected the run to be stopped by the time limit, got status $status"; fail=1; fi
  if [ -f "$case_path.out" ]; then
    size=$(stat -c %s "$case_path.out")
    if ! cmp -s -n "$size" "$case_path.out" "$work/.stdout"; then
      echo "standard output does not start with the expected bytes"; fail=1
    fi
  fi
else
  if [ "$status" != "$want_status" ]; then echo "exit status: expected $want_status, got $status"; fail=1; fi
  if [ -f "$case_path.out" ] && ! cmp -s "$case_path.out" "$work/.stdout"; then
    echo "standard output differs (expected, then actual, as od -c):"
    diff <(od -An -c "$case_path.out") <(od -An -c "$work/.stdout") | head -40
    fail=1
  fi
fi
if [ -f "$case_path.err" ]; then
  if ! cmp -s "$case_path.err" "$work/.stderr"; then
    echo "standard error differs:"; diff <(od -An -c "$case_path.err") <(od -An -c "$work/.stderr") | head -20; fail=1
  fi
elif [ -s "$work/.stderr" ]; then
  echo "unexpected standard error:"; head -c 2000 "$work/.stderr"; echo; fail=1
fi
if [ -f "$case_path.contains" ]; then
  while IFS= read -r line || [ -n "$line" ]; do
    [ -z "$line" ] && continue
    grep -qF -- "$line" "$work/.stdout" || { echo "standard output lacks: $line"; fail=1; }
  done < "$case_path.contains"
fi
exit $fail
