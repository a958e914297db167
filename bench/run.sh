#!/usr/bin/env bash
# Times kvexec against dash, bash and Regina REXX doing the same work (bench/make_scripts.sh).
#
#   bench/run.sh <kvexec binary> [--runs N] [--only REGEX] [--smoke] [--instructions]
#
# Each pair is timed in alternation (kvexec, peer, kvexec, peer, ...), N times (default 3); the
# table shows medians: kvexec's seconds, the peer's, the ratio peer / kvexec (above 1: kvexec is
# faster) and the peak resident size of each (/usr/bin/time %M). Benchmarks without a peer time
# kvexec alone. Every program must end with status 0 and print the result its benchmark expects.
#   --smoke         tiny sizes, one run each: checks that every program runs and agrees (seconds);
#                   fails when a program fails or prints a wrong result, never because of a time.
#   --instructions  instead of times, kvexec's instruction counts under callgrind (the same from
#                   run to run and whatever the machine's load), at smaller sizes.
# A peer that is not installed is left out (regina-rexx: ./dev.sh bench installs it).
set -euo pipefail
bin=$(readlink -f "$1")
shift
runs=3 only=. size=full instructions=0
while [ $# -gt 0 ]; do
  case $1 in
    --runs) runs=$2; shift ;;
    --only) only=$2; shift ;;
    --smoke) size=smoke runs=1 ;;
    --instructions) size=instructions instructions=1 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
  shift
done
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$here/make_scripts.sh" "$work/s" "$size"
cd "$work/s"
export KVEXEC_TERM=raw

benchmarks="count nested string calls commands startup jumps long variables"
# Peers of each benchmark: name and interpreter; "shc" is dash running each command through
# /bin/sh -c, as kvexec does.
peers() {
  case $1 in
    jumps | long | variables) ;;
    commands) echo dash bash shc rexx ;;
    *) echo dash bash rexx ;;
  esac
}
# The command that runs one program of a benchmark.
command_of() {  # command_of <benchmark> <program>
  local b=$1
  case $2 in
    kvexec) echo "$bin $b.kvx" ;;
    dash) echo "dash $b.dash" ;;
    bash) echo "bash $b.bash" ;;
    shc) echo "dash $b.shc" ;;
    rexx) echo "rexx $PWD/$b.rexx" ;;
  esac
}
installed() {
  case $1 in
    kvexec) return 0 ;;
    shc) command -v dash > /dev/null ;;
    *) command -v "$1" > /dev/null ;;
  esac
}

failed=0
fail() {
  echo "FAIL: $*" >&2
  failed=1
}

# A start-up is too short to time alone: the program is started many times in a loop.
loop_prefix() {  # loop_prefix <benchmark>
  if [ "$1" = startup ]; then
    echo "dash -c 'n=\$1; shift; i=0; while [ \$i -lt \$n ]; do \"\$@\" || exit 1; i=\$((i + 1)); done' loop $(cat startup.starts)"
  fi
}

# Runs one program once; prints "<seconds> <KiB>", or fails.
measure() {  # measure <benchmark> <program>
  local b=$1 p=$2 cmd t0 t1 status=0 got want kib
  cmd="$(loop_prefix "$b") $(command_of "$b" "$p")"
  t0=$EPOCHREALTIME
  eval "/usr/bin/time -f %M -o $work/rss $cmd" > "$work/out" 2> "$work/err" || status=$?
  t1=$EPOCHREALTIME
  if [ $status -ne 0 ]; then
    fail "$b: $p ended with status $status: $(head -c 300 "$work/err")"
    echo "- -"
    return
  fi
  got=$(tr -d '\r' < "$work/out" | tail -n 1)
  want=$(cat "$b.expect")
  if [ "$got" != "$want" ]; then
    fail "$b: $p printed '$got', expected '$want'"
  fi
  kib=$(tail -n 1 "$work/rss")
  if [ "$b" = startup ]; then
    # The resident size of one start, not of the loop around it.
    eval "/usr/bin/time -f %M -o $work/rss $(command_of "$b" "$p")" > /dev/null 2>&1 || true
    kib=$(tail -n 1 "$work/rss")
  fi
  awk -v a="$t0" -v b="$t1" -v k="$kib" 'BEGIN { printf "%.3f %s\n", b - a, k }'
}

median() { sort -g | awk '{ v[NR] = $1 } END { if (NR == 0 || v[1] == "-") print "-"; else print v[int((NR + 1) / 2)] }'; }

# The command programs must really run as many commands as kvexec does.
want=$(awk '{ print $1 }' commands.work)
for p in kvx dash bash shc rexx; do
  n=$(grep -c "/bin/true" "commands.$p")
  [ "$n" = "$want" ] || fail "commands.$p holds $n command lines, not $want"
done

if [ $instructions = 1 ]; then
  command -v valgrind > /dev/null || { echo "valgrind is not installed"; exit 1; }
  printf '%-10s %-36s %16s\n' benchmark work instructions
  for b in $benchmarks; do
    [[ $b =~ $only ]] || continue
    valgrind --tool=callgrind --callgrind-out-file="$work/cg.out" $(command_of "$b" kvexec) \
      > "$work/out" 2> "$work/cg.txt" || fail "$b: kvexec failed under callgrind"
    instr=$(sed -n 's/.*Collected : *\([0-9]*\).*/\1/p' "$work/cg.txt" | head -n 1)
    [ "$(tr -d '\r' < "$work/out" | tail -n 1)" = "$(cat "$b.expect")" ] || fail "$b: wrong result"
    printf '%-10s %-36s %16s\n' "$b" "$(cat "$b.work")" "${instr:--}"
  done
  exit $failed
fi

echo "medians of $runs run(s); ratio = peer seconds / kvexec seconds (above 1: kvexec is faster)"
printf '%-10s %-36s %-5s %9s %9s %7s %11s %9s\n' \
  benchmark work peer 'kvexec s' 'peer s' ratio 'kvexec KiB' 'peer KiB'
for b in $benchmarks; do
  [[ $b =~ $only ]] || continue
  ps=$(peers "$b")
  [ -n "$ps" ] || ps=-
  for p in $ps; do
    if [ "$p" != - ] && ! installed "$p"; then
      printf '%-10s %-36s %-5s %s\n' "$b" "$(cat "$b.work")" "$p" "(not installed)"
      continue
    fi
    : > "$work/k" && : > "$work/p"
    for ((r = 0; r < runs; r++)); do
      measure "$b" kvexec >> "$work/k"
      [ "$p" = - ] || measure "$b" "$p" >> "$work/p"
    done
    ks=$(awk '{ print $1 }' "$work/k" | median) kk=$(awk '{ print $2 }' "$work/k" | median)
    pk=- ps_=- ratio=-
    if [ "$p" != - ]; then
      ps_=$(awk '{ print $1 }' "$work/p" | median) pk=$(awk '{ print $2 }' "$work/p" | median)
      ratio=$(awk -v k="$ks" -v p="$ps_" 'BEGIN { if (k == "-" || p == "-" || k == 0) print "-"; else printf "%.2f", p / k }')
    fi
    printf '%-10s %-36s %-5s %9s %9s %7s %11s %9s\n' "$b" "$(cat "$b.work")" "$p" "$ks" "$ps_" "$ratio" "$kk" "$pk"
  done
done
exit $failed
