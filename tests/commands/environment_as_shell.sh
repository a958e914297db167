#!/usr/bin/env bash
# A command started directly gets exactly the environment /bin/sh -c would give it, in the same
# order: `env` run by a script prints the same bytes with KVEXEC_PLAIN set (every line through the
# shell) and without it. Environments in unusual orders, with names the shell does not import,
# empty values and the shell's own variables, without PATH, and with PWD missing, wrong, relative,
# reached through a link and right.
#   environment_as_shell.sh <kvexec binary>
set -u
bin=$(readlink -f "$1")
work=$(mktemp -d "${TMPDIR:-/tmp}/kvxenv.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/real"
ln -s "$work/real" "$work/link"
cd "$work/real" || exit 2
printf '&CONTROL OFF\nenv\n' > env.kvx
# Which way a line went: the parent of a command is the shell only when the shell ran it.
printf '&CONTROL OFF\n./parent\n' > parent.kvx
printf '#!/bin/sh\ncat /proc/$PPID/comm\n' > parent
chmod +x parent

fail=0
run() {  # run MODE ARGS...: the script's output and status with KVEXEC_PLAIN=MODE
    local mode=$1
    shift
    env "$@" KVEXEC_PLAIN="$mode" KVEXEC_TERM=raw "$bin" env.kvx 2>&1
    echo "status $?"
}
# Both ways must give the same, but for the KVEXEC_PLAIN entry itself and the interpreter's process
# id in an exported PPID (the shell's parent), which differs from run to run.
compare() {  # compare WHAT ENV-ARGS...
    local what=$1
    shift
    run "" "$@" | grep -av '^KVEXEC_PLAIN=' | sed 's/^PPID=[0-9]*$/PPID=pid/' > direct.out
    run 1 "$@" | grep -av '^KVEXEC_PLAIN=' | sed 's/^PPID=[0-9]*$/PPID=pid/' > plain.out
    if ! cmp -s direct.out plain.out; then
        echo "FAIL: $what: the environments differ (through the shell, then direct):"
        diff plain.out direct.out | head -20
        fail=1
    fi
}

# The direct way is taken at all.
[ "$(env KVEXEC_PLAIN=1 "$bin" parent.kvx)" = sh ] || { echo "FAIL: KVEXEC_PLAIN did not use the shell"; fail=1; }
[ "$(env KVEXEC_PLAIN= "$bin" parent.kvx)" != sh ] || { echo "FAIL: a plain line went through the shell"; fail=1; }

here=$work/real
compare "the environment of this run"
compare "an unusual order" -i Z=1 A=2 M=3 PATH=/usr/bin:/bin HOME=/x PWD="$here" B=4 _=/x
compare "PWD missing" -i A=1 PATH=/usr/bin:/bin
compare "PWD elsewhere" -i A=1 PWD=/tmp B=2 PATH=/usr/bin:/bin
compare "PWD relative" -i PWD=real A=1 PATH=/usr/bin:/bin
compare "PWD empty" -i PWD= A=1 PATH=/usr/bin:/bin
compare "PWD missing directory" -i A=1 PATH=/usr/bin:/bin PWD=/no/such/directory
compare "PWD through a link" -i A=1 PWD="$work/link" PATH=/usr/bin:/bin
compare "PWD with a dot" -i A=1 PWD="$here/." PATH=/usr/bin:/bin
compare "PWD right" -i PWD="$here" A=1 PATH=/usr/bin:/bin
compare "names the shell does not import" -i 'A-B=1' '1X=2' 'caf'$'\xc3\xa9''=3' 'A B=4' 'a.b=5' C= PATH=/usr/bin:/bin
compare "values" -i E= 'F=a b' 'G=x=y' $'H=line\nnext' 'I=$HOME' PATH=/usr/bin:/bin
compare "the shell's own variables" -i IFS=x PPID=1 PS1=p PS2=q PS4=r MAIL=m MAILPATH=n LINENO=3 OLDPWD=/x ENV=/e PATH=/usr/bin:/bin
compare "an OPTIND" -i OPTIND=1 A=1 PATH=/usr/bin:/bin
compare "no PATH" -i A=1 B=2
compare "an empty PATH element" -i A=1 PATH=/no/such::/usr/bin
compare "PATH options" -i A=1 PATH=/usr/bin%builtin:/bin

# Many variables, names and values from a fixed sequence.
RANDOM=42
chars=(A B C X Y Z a b c x y z _ 0 1 9)
vars=()
for ((i = 0; i < 300; i++)); do
    name=""
    for ((k = RANDOM % 8 + 1; k > 0; k--)); do name+=${chars[RANDOM % ${#chars[@]}]}; done
    vars+=("$name=v$i")
done
compare "300 variables" -i "${vars[@]}" PATH=/usr/bin:/bin PWD="$here"
compare "300 variables, PWD missing" -i PATH=/usr/bin:/bin "${vars[@]}"

[ "$fail" = 0 ] && echo "environment_as_shell: PASS"
exit "$fail"
