#!/usr/bin/env bash
# Installs the build into a temporary DESTDIR, once under its configured prefix and once under
# another, checks that every file lands where a Debian system keeps it, and runs the installed
# kvexec on an example.
#
#   install_run.sh <build folder> <configured prefix> <kvcheck built: 1 or 0>
set -u
build=$1
prefix=$2
with_kvcheck=$3
here=$(cd "$(dirname "$0")" && pwd)
command -v cmake > /dev/null || { echo "SKIP: cmake is not installed"; exit 77; }
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxinstall.XXXXXX")
trap 'rm -rf "$work"' EXIT

expected_files() {  # expected_files <root>
  local r=$1
  echo "$r/bin/kvexec"
  echo "$r/share/man/man1/kvexec.1"
  echo "$r/share/bash-completion/completions/kvexec"
  echo "$r/share/vim/vimfiles/syntax/kvexec.vim"
  echo "$r/share/vim/vimfiles/ftdetect/kvexec.vim"
  echo "$r/share/kvexec/textmate/kvexec.tmLanguage.json"
  echo "$r/share/doc/kvexec/examples/hello.kvx"
  echo "$r/share/doc/kvexec/examples/order.kvx"
  if [ "$with_kvcheck" = 1 ]; then
    echo "$r/bin/kvcheck"
    echo "$r/share/man/man1/kvcheck.1"
    echo "$r/share/bash-completion/completions/kvcheck"
  fi
}

fail=0
check_tree() {  # check_tree <destdir> <prefix>
  local root=$1$2 f
  while read -r f; do
    case $f in
      */man1/*) [ -f "$f" ] || [ -f "$f.gz" ] || { echo "missing: ${f#"$1"}[.gz]"; fail=1; } ;;
      *) [ -f "$f" ] || { echo "missing: ${f#"$1"}"; fail=1; } ;;
    esac
  done < <(expected_files "$root")
  [ -x "$root/bin/kvexec" ] || { echo "not executable: $2/bin/kvexec"; fail=1; }
}

# Under the configured prefix (CMAKE_INSTALL_PREFIX), below DESTDIR.
if ! DESTDIR="$work/one" cmake --install "$build" > "$work/one.log" 2>&1; then
  cat "$work/one.log"; exit 1
fi
check_tree "$work/one" "$prefix"

# Under another prefix given at install time.
if ! DESTDIR="$work/two" cmake --install "$build" --prefix /opt/kvexec > "$work/two.log" 2>&1; then
  cat "$work/two.log"; exit 1
fi
check_tree "$work/two" /opt/kvexec
[ -d "$work/two$prefix" ] && [ "$prefix" != /opt/kvexec ] && { echo "files left under $prefix as well"; fail=1; }

# The installed program runs an example exactly as the build does.
if [ -x "$work/two/opt/kvexec/bin/kvexec" ]; then
  "$here/../examples/run_example.sh" "$work/two/opt/kvexec/bin/kvexec" "$here/../../examples" order || fail=1
fi
[ $fail -eq 0 ] && echo "installed under $prefix and /opt/kvexec"
exit $fail
