#!/usr/bin/env bash
# Runs one example script as a conformance case: examples/<name>.kvx with what it must produce in
# examples/expected/<case>.* (the files of tests/conformance/run_case.sh). A case is the example's
# name, or "<name>@<variant>" for a further run of the same script (other arguments, input, ...).
#
#   run_example.sh <kvexec binary> <examples folder> <case>
set -u
bin=$1
examples=$(readlink -f "$2")
case_name=$3
name=${case_name%%@*}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxexample.XXXXXX")
trap 'rm -rf "$work"' EXIT
cp "$examples/$name.kvx" "$work/$name.kvx"
for f in "$examples/expected/$case_name".*; do
  [ -e "$f" ] && cp "$f" "$work/$name.${f##*.}"
done
"$here/../conformance/run_case.sh" "$bin" "$work/$name"
