#!/usr/bin/env bash
# The interpreter reads its script line by line and never keeps it: a script ten times longer, or a
# loop run ten times more often, must not need more memory. Compares peak resident sizes.
#   constant_memory.sh <kvexec binary>
set -euo pipefail
bin=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Under AddressSanitizer, freed memory is held back for a while; keep that small for this test.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}quarantine_size_mb=1:detect_leaks=0"
export KVEXEC_TERM=raw

lines() {  # lines <count> <file>: a script of assignments, comments, labels and conditions
  awk -v n="$1" 'BEGIN {
    for (i = 0; i < n; i++) {
      k = i % 5
      if (k == 0) printf "x = %d + 1\n", i
      else if (k == 1) printf "; comment line %d with some text to make it longer\n", i
      else if (k == 2) printf "label%d:\n", i
      else if (k == 3) printf "&IF &x > 5 &y = &x\n"
      else printf "name%d = \"value %d\"\n", i % 50, i
    }
    print "&TYPE done"
  }' > "$2"
}

loop() {  # loop <passes> <file>
  printf 'n = 0\n&WHILE &n < %d.0\nn = &n + 1\ns = "text &n"\n&WEND\n&TYPE done\n' "$1" > "$2"
}

peak() {  # peak <script>: peak resident size in KiB; the script must print "done"
  local out
  out=$(/usr/bin/time -f '%M' -o "$work/rss" "$bin" "$1")
  if [ "$out" != $'done\r' ]; then
    echo "unexpected output from $1: $(printf '%q' "$out")"
    exit 1
  fi
  cat "$work/rss"
}

check() {  # check <what> <small KiB> <large KiB>
  echo "$1: $2 KiB, ten times the work: $3 KiB"
  if [ "$3" -gt $(($2 + 1024)) ]; then
    echo "FAIL: memory grows with $1"
    exit 1
  fi
}

lines 10000 "$work/short.kvx"
lines 100000 "$work/long.kvx"
check "script length" "$(peak "$work/short.kvx")" "$(peak "$work/long.kvx")"

# A long loop body is kept while it runs again and again: its lines, the blocks they lie in, and
# (up to a fixed budget) their tokens. That must stay within twelve times the body's text beyond
# what the plain engine needs for the same script (about five times in a normal build, nine under
# the sanitizers, whose allocator adds its own).
body() {  # body <lines> <file>: a loop of <lines> assignments to one variable, run three times
  awk -v n="$1" 'BEGIN {
    print "n = 0"; print "top:"
    for (i = 0; i < n; i++) printf "x = &n + %d ; filler text here\n", i
    print "n = &n + 1"; print "&IF &n < 3 &GOTO top"; print "&TYPE done"
  }' > "$2"
}
body 60000 "$work/body.kvx"
kept=$(peak "$work/body.kvx")
plain=$(KVEXEC_PLAIN=1 peak "$work/body.kvx")
text=$(($(wc -c < "$work/body.kvx") / 1024))
echo "a loop body of $text KiB: $kept KiB kept, $plain KiB plain"
if [ "$kept" -gt $((plain + 12 * text)) ]; then
  echo "FAIL: what is kept of a loop body outgrows twelve times its text"
  exit 1
fi

loop 100000 "$work/loop_short.kvx"
loop 1000000 "$work/loop_long.kvx"
check "loop passes" "$(peak "$work/loop_short.kvx")" "$(peak "$work/loop_long.kvx")"
echo "memory stays constant"
