#!/usr/bin/env bash
# Builds the Debian package with CPack into a temporary folder, lists it, and checks its paths,
# its control fields and that the packaged kvexec runs an example.
#
#   package_deb.sh <build folder> <kvcheck built: 1 or 0>
set -u
build=$(readlink -f "$1")
with_kvcheck=$2
here=$(cd "$(dirname "$0")" && pwd)
for tool in cpack dpkg-deb; do
  command -v $tool > /dev/null || { echo "SKIP: $tool is not installed (./dev.sh installs it)"; exit 77; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxdeb.XXXXXX")
trap 'rm -rf "$work"' EXIT

if ! cpack -G DEB -B "$work" --config "$build/CPackConfig.cmake" > "$work/cpack.log" 2>&1; then
  cat "$work/cpack.log"; exit 1
fi
deb=$(ls "$work"/*.deb 2> /dev/null | head -1)
[ -n "$deb" ] || { echo "cpack made no .deb"; cat "$work/cpack.log"; exit 1; }

fail=0
dpkg-deb -c "$deb" | awk '{print $NF}' > "$work/contents"
want=(./usr/bin/kvexec ./usr/share/man/man1/kvexec.1.gz ./usr/share/bash-completion/completions/kvexec
      ./usr/share/vim/vimfiles/syntax/kvexec.vim ./usr/share/vim/vimfiles/ftdetect/kvexec.vim
      ./usr/share/kvexec/textmate/kvexec.tmLanguage.json ./usr/share/doc/kvexec/examples/hello.kvx)
if [ "$with_kvcheck" = 1 ]; then
  want+=(./usr/bin/kvcheck ./usr/share/man/man1/kvcheck.1.gz ./usr/share/bash-completion/completions/kvcheck)
fi
for path in "${want[@]}"; do
  grep -qxF -- "$path" "$work/contents" || { echo "not in the package: $path"; fail=1; }
done

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = kvexec ] || { echo "Package: $(field Package)"; fail=1; }
[ "$(field Section)" = interpreters ] || { echo "Section: $(field Section)"; fail=1; }
[ -n "$(field Maintainer)" ] || { echo "no Maintainer"; fail=1; }
[ -n "$(field Description)" ] || { echo "no Description"; fail=1; }
depends=$(field Depends)
# A statically linked kvexec asks for the C library it was linked with (its name-service
# modules); a dynamically linked one for the libraries it loads.
if readelf -d "$build/kvexec" 2> /dev/null | grep -q NEEDED; then
  grep -q 'libtinfo' <<< "$depends" || { echo "Depends lacks libtinfo: $depends"; fail=1; }
else
  libc=$(getconf GNU_LIBC_VERSION | sed 's/^glibc //')
  grep -qF "libc6 (>= $libc)" <<< "$depends" && grep -qF "libc6 (<< " <<< "$depends" ||
    { echo "Depends does not pin libc6 to $libc: $depends"; fail=1; }
fi
grep -qE 'ncurses|gtest|dev\b' <<< "$depends" && { echo "Depends has build-time packages: $depends"; fail=1; }

dpkg-deb -x "$deb" "$work/root"
"$here/../examples/run_example.sh" "$work/root/usr/bin/kvexec" "$here/../../examples" order || fail=1
[ $fail -eq 0 ] && { echo "$(basename "$deb"): Depends: $depends"; cat "$work/contents"; }
exit $fail
