#!/usr/bin/env bash
# Names are compared with case folded as the character-type locale folds it. In Turkish the
# letters I and i are not one letter in two cases, so &I and &i are two variables there; in
# English and in the C locale they are one. The locale comes from LC_ALL, else LC_CTYPE, else
# LANG. Both engines are run. The locales are built for the test with localedef.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need localedef
[ -f /usr/share/i18n/locales/tr_TR ] || sht_skip "the locale sources are not installed (package locales)"
mkdir locales
for l in tr_TR en_US; do
  localedef -i $l -f UTF-8 "locales/$l.UTF-8" > /dev/null 2>&1 || sht_skip "localedef cannot build $l.UTF-8"
done
export LOCPATH=$PWD/locales KVEXEC_TERM=raw
printf 'I = 1\ni = 2\n&TYPE &I &i\n' > case.kvx

check() {  # check <expected output> NAME=VALUE...
  local want=$1 plain got
  shift
  for plain in "" 1; do
    got=$(env -u LC_ALL -u LC_CTYPE -u LANG KVEXEC_PLAIN=$plain "$@" "$SHT_BIN" case.kvx; echo x)
    [ "$got" = "${want}x" ] || sht_fail "$* (plain '$plain'): $(printf '%q' "${got%x}")"
  done
}

check $'1 2\r' LC_ALL=tr_TR.UTF-8
check $'1 2\r' LANG=tr_TR.UTF-8
check $'1 2\r' LC_CTYPE=tr_TR.UTF-8 LANG=en_US.UTF-8
check $'2 2\r' LC_ALL=en_US.UTF-8 LC_CTYPE=tr_TR.UTF-8
check $'2 2\r' LC_CTYPE=en_US.UTF-8 LANG=tr_TR.UTF-8
check $'2 2\r' LANG=en_US.UTF-8
check $'2 2\r' LC_ALL=C.UTF-8
check $'2 2\r' LC_ALL=C
check $'2 2\r'
sht_pass
