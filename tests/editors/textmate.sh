#!/usr/bin/env bash
# Checks the TextMate grammar on the sample script with node: tokenized by vscode-textmate when
# ./dev.sh has installed it into <tools folder>/node_modules, else by the grammar's own patterns.
#
#   textmate.sh <tools folder>
set -u
here=$(cd "$(dirname "$0")" && pwd)
command -v node > /dev/null || { echo "SKIP: node is not installed (./dev.sh installs it)"; exit 77; }
modules="${1:-}/node_modules"
[ -d "$modules/vscode-textmate" ] || modules=""
exec node "$here/textmate_check.js" "$here/../../editors/textmate/kvexec.tmLanguage.json" \
  "$here/sample.kvx" "$here/expect.txt" $modules
