#!/usr/bin/env bash
# Renders a manual page with every groff warning enabled; any warning fails.
#
#   man_lint.sh <page> [word ...]
#
# Each further word must appear in the rendered text (the statements of the language guide, the
# codes of the checker), so a section that loses an entry fails too.
set -u
page=$1
shift
command -v groff > /dev/null || { echo "SKIP: groff is not installed (./dev.sh installs it)"; exit 77; }
[ -f "$page" ] || { echo "no such page: $page"; exit 1; }

fail=0
for device in utf8 ps; do
  out=$(groff -ww -z -man -T"$device" "$page" 2>&1)
  status=$?
  if [ $status -ne 0 ] || [ -n "$out" ]; then
    echo "groff -T$device reports (status $status):"
    echo "$out"
    fail=1
  fi
done

if [ $# -gt 0 ]; then
  text=$(groff -man -Tutf8 -P-cbou "$page" 2> /dev/null)
  for word in "$@"; do
    grep -qF -- "$word" <<< "$text" || { echo "the page lacks: $word"; fail=1; }
  done
fi
exit $fail
