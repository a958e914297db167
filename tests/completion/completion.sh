#!/usr/bin/env bash
# Runs the bash completion functions of kvexec and kvcheck on typed words and checks the offers.
set -u
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../../completions/kvexec.bash"
source "$here/../../completions/kvcheck.bash"
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxcomp.XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
touch job.kvx nightly.kvx notes.txt
mkdir jobs

fail=0
# expect "<offers, sorted, blank-separated>" <function> <word>...: the last word is being typed.
expect() {
  local want=$1 fn=$2
  shift 2
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  COMPREPLY=()
  "$fn"
  local got
  got=$(printf '%s\n' "${COMPREPLY[@]}" | sort | tr '\n' ' ' | sed 's/ $//')
  if [ "$got" != "$want" ]; then
    echo "$*: expected [$want], got [$got]"
    fail=1
  fi
}

expect "--help --version" _kvexec kvexec --
expect "--version" _kvexec kvexec --v
expect "job.kvx jobs nightly.kvx" _kvexec kvexec ''
expect "job.kvx jobs" _kvexec kvexec j
expect "job.kvx jobs nightly.kvx notes.txt" _kvexec kvexec job.kvx ''
expect "-Werror" _kvcheck kvcheck -W
expect "--no-warn= --no-warnings" _kvcheck kvcheck --no
expect "--json" _kvcheck kvcheck --j
expect "KV210 KV211 KV212 KV213 KV214 KV215 KV216 KV217 KV218" _kvcheck kvcheck --warn = KV21
expect "KV203,KV204" _kvcheck kvcheck --no-warn = KV203,KV204
expect "job.kvx jobs nightly.kvx" _kvcheck kvcheck -w ''
[ $fail -eq 0 ] && echo "completions offer what they should"
exit $fail
