#!/usr/bin/env bash
# Loads the vim syntax file on the sample script through the ftdetect file, and checks the
# syntax group at each place listed in expect.txt.
set -u
here=$(cd "$(dirname "$0")" && pwd)
runtime=$(cd "$here/../../editors/vim" && pwd)
command -v vim > /dev/null || { echo "SKIP: vim is not installed (./dev.sh installs it)"; exit 77; }
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxvim.XXXXXX")
trap 'rm -rf "$work"' EXIT
cp "$here/sample.kvx" "$work/sample.kvx"

# One "call Expect(line, text, group)" per row of expect.txt.
while IFS='|' read -r line text group _; do
  case $line in '#'* | '') continue ;; esac
  printf "call Expect(%s, '%s', '%s')\n" "$line" "${text//\'/\'\'}" "$group"
done < "$here/expect.txt" > "$work/rows.vim"

cat > "$work/check.vim" <<'VIM'
let s:out = []
function! Expect(line, text, group) abort
  let col = stridx(getline(a:line), a:text) + 1
  if col == 0
    call add(s:out, 'line ' . a:line . ': "' . a:text . '" not found in the sample')
    return
  endif
  let name = synIDattr(synID(a:line, col, 1), 'name')
  if name !=# a:group
    call add(s:out, 'line ' . a:line . ' col ' . col . ' "' . a:text . '": expected ' . a:group . ', got "' . name . '"')
  endif
endfunction
if &filetype !=# 'kvexec'
  call add(s:out, 'filetype is "' . &filetype . '", not kvexec: ftdetect did not apply')
endif
VIM
cat "$work/rows.vim" >> "$work/check.vim"
cat >> "$work/check.vim" <<'VIM'
call writefile(s:out, $KVX_RESULT)
qall!
VIM

cd "$work" || exit 1
KVX_RESULT="$work/result" timeout 60 vim -N -u NONE -i NONE -es \
  --cmd "set runtimepath^=$runtime" -c 'filetype on' -c 'syntax on' \
  -c 'edit sample.kvx' -c 'source check.vim' < /dev/null > /dev/null 2>&1
if [ ! -f "$work/result" ]; then echo "vim did not run the check"; exit 1; fi
if [ -s "$work/result" ]; then cat "$work/result"; exit 1; fi
echo "$(grep -c '^call' "$work/rows.vim") places checked"
