#!/usr/bin/env bash
# Writes the benchmark scripts into a directory: each exercises one hot path of the interpreter.
#   make_scripts.sh <dir>
set -euo pipefail
d=$1
mkdir -p "$d"

# Loops re-read their head and body from the file on every pass.
printf 'n = 0\n&WHILE &n < 200000.0\nn = &n + 1\nm = &n * 2 - 1\n&WEND\n&TYPE &n\n' > "$d/while_loop.kvx"
printf 't = 0\n&FOR &I = 1 , 400\n&FOR &J = 1 , 400\nt = &t + &J\n&NEXT\n&NEXT\n&TYPE &t\n' > "$d/for_nested.kvx"

# &GOTO rewinds and scans for its label every time.
{
  echo 'n = 0'
  echo 'top:'
  echo 'n = &n + 1'
  echo '&IF &n > 3000 &GOTO done'
  for i in $(seq 1 500); do echo "; filler line $i"; done
  echo '&GOTO top'
  echo 'done:'
  echo '&TYPE &n'
} > "$d/goto_scan.kvx"

# &CALL scans forward, &RETURN seeks back. (A &CALL entry stays on the block stack, so the loop
# around it is made with &GOTO: a &FOR's &NEXT would go back to the &CALL entry instead.)
{
  echo 'n = 0'
  echo 'again:'
  echo '&CALL sub'
  echo 'n = &n + 1'
  echo '&IF &n < 20000 &GOTO again'
  echo '&TYPE &n'
  echo '&QUIT'
  for i in $(seq 1 50); do echo "; filler line $i"; done
  echo 'sub:'
  echo 'x = &n % 7'
  echo '&RETURN'
} > "$d/call_return.kvx"

# A long straight script: reading, tokenizing and dispatching lines.
awk 'BEGIN {
  for (i = 0; i < 200000; i++) {
    k = i % 4
    if (k == 0) printf "x = %d + 1\n", i
    else if (k == 1) printf "; comment %d\n", i
    else if (k == 2) printf "&IF &x > 5 &y = &x\n"
    else printf "s = &CAT \"item \" &x\n"
  }
  print "&TYPE &y"
}' > "$d/long_script.kvx"

# Many variables: every lookup scans the table.
{
  for i in $(seq 1 1000); do echo "v$i = $i"; done
  echo 't = 0'
  echo '&FOR &I = 1 , 100'
  for i in $(seq 1 1000 | shuf -n 20 --random-source=<(yes)); do echo "t = &t + &v$i"; done
  echo '&NEXT'
  echo '&TYPE &t'
} > "$d/variables.kvx"

# Command lines: each runs a process.
{
  echo '&CONTROL OFF'
  echo '&FOR &I = 1 , 300'
  echo 'true'
  echo '&NEXT'
  echo '&TYPE &retcode'
} > "$d/commands.kvx"
