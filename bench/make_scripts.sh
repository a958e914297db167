#!/usr/bin/env bash
# Writes the benchmark programs into a directory: for each benchmark <name>, the kvexec script
# <name>.kvx and, where the same work can be written in them, <name>.dash, <name>.bash and
# <name>.rexx (Regina REXX), plus <name>.expect, the last line every one of them must print, so
# that a program that silently does less work is caught; <name>.work describes the work.
#   make_scripts.sh <dir> [full|smoke|instructions]
# full: the sizes the figures are quoted for; smoke: tiny, for a quick check that every program
# runs and agrees; instructions: sizes that callgrind gets through in reasonable time.
set -euo pipefail
d=$1
size=${2:-full}
mkdir -p "$d"

case $size in
  full) count=1000000 outer=1000 inner=1000 appends=10000 calls=100000 commands=1000 starts=1000
    jumps=10000 filler=100000 long=200000 vars=1000 passes=1000 ;;
  smoke) count=1000 outer=10 inner=10 appends=100 calls=100 commands=10 starts=3
    jumps=10 filler=1000 long=1000 vars=100 passes=2 ;;
  instructions) count=100000 outer=300 inner=300 appends=10000 calls=10000 commands=100 starts=1
    jumps=100 filler=100000 long=200000 vars=1000 passes=100 ;;
  *) echo "unknown size $size" >&2; exit 2 ;;
esac

work() { printf '%s\n' "$2" > "$d/$1.work"; }
expect() { printf '%s\n' "$2" > "$d/$1.expect"; }

# 1. A counting loop: the head and body are re-read from the file on every pass. Integers are 16
# bits wide, hence the floating-point bound.
work count "$count &WHILE passes"
expect count "$count"
printf 'I = 0\n&WHILE &I < %d.0\ni = &I + 1\n&WEND\n&TYPE &I\n' "$count" > "$d/count.kvx"
for sh in dash bash; do
  printf 'i=0\nwhile [ $i -lt %d ]; do\n  i=$((i + 1))\ndone\necho $i\n' "$count" > "$d/count.$sh"
done
printf 'i = 0\ndo while i < %d\n  i = i + 1\nend\nsay i\n' "$count" > "$d/count.rexx"

# 2. Nested &FOR loops with 16-bit counters.
work nested "${outer}x$inner &FOR passes"
expect nested "$((outer * inner))"
printf 't = 0\n&FOR &I = 1 , %d\n&FOR &J = 1 , %d\nt = &t + 1\n&NEXT\n&NEXT\n&TYPE &t\n' \
  "$outer" "$inner" > "$d/nested.kvx"
for sh in dash bash; do
  printf 't=0\ni=1\nwhile [ $i -le %d ]; do\n  j=1\n  while [ $j -le %d ]; do\n    t=$((t + 1))\n    j=$((j + 1))\n  done\n  i=$((i + 1))\ndone\necho $t\n' \
    "$outer" "$inner" > "$d/nested.$sh"
done
printf 't = 0\ndo i = 1 to %d\n  do j = 1 to %d\n    t = t + 1\n  end\nend\nsay t\n' \
  "$outer" "$inner" > "$d/nested.rexx"

# 3. A string built one character at a time.
work string "$appends one-character appends"
expect string "$appends"
printf 's = ""\n&FOR &I = 1 , %d\ns = &CAT &s "x"\n&NEXT\nn = &LEN &s\n&TYPE &n\n' "$appends" > "$d/string.kvx"
for sh in dash bash; do
  printf 's=\ni=0\nwhile [ $i -lt %d ]; do\n  s="${s}x"\n  i=$((i + 1))\ndone\necho ${#s}\n' \
    "$appends" > "$d/string.$sh"
done
printf "s = ''\ndo i = 1 to %d\n  s = s || 'x'\nend\nsay length(s)\n" "$appends" > "$d/string.rexx"

# 4. Subroutine calls: &CALL scans forward, &RETURN seeks back. A &CALL leaves its entry on the
# block stack, and a &CALL in a &FOR body would make &NEXT find that entry instead of the loop's,
# so the loop is made with &GOTO. The subroutine counts its calls.
work calls "$calls &CALL/&RETURN pairs"
expect calls "$calls"
cat > "$d/calls.kvx" << EOF
n = 0
c = 0
again:
&CALL sub
n = &n + 1
&IF &n < $calls.0 &GOTO again
&TYPE &c
&QUIT
sub:
c = &c + 1
&RETURN
EOF
for sh in dash bash; do
  printf 'sub() {\n  c=$((c + 1))\n}\nn=0\nc=0\nwhile [ $n -lt %d ]; do\n  sub\n  n=$((n + 1))\ndone\necho $c\n' \
    "$calls" > "$d/calls.$sh"
done
printf 'n = 0\nc = 0\ndo while n < %d\n  call sub\n  n = n + 1\nend\nsay c\nexit\nsub:\n  c = c + 1\n  return\n' \
  "$calls" > "$d/calls.rexx"

# 5. Command lines, echo off: kvexec hands each to /bin/sh -c. The peers run the same lines
# themselves, and (commands_shc) through /bin/sh -c as kvexec does. Each program prints the
# status of the last one; the runner counts the command lines of each.
work commands "$commands /bin/true lines"
expect commands 0
{
  echo '&CONTROL OFF'
  for ((i = 0; i < commands; i++)); do echo /bin/true; done
  echo '&TYPE &retcode'
} > "$d/commands.kvx"
{
  for ((i = 0; i < commands; i++)); do echo /bin/true; done
  echo 'echo $?'
} > "$d/commands.dash"
cp "$d/commands.dash" "$d/commands.bash"
{
  for ((i = 0; i < commands; i++)); do echo '/bin/sh -c /bin/true'; done
  echo 'echo $?'
} > "$d/commands.shc"
{
  for ((i = 0; i < commands; i++)); do echo "'/bin/true'"; done
  echo 'say rc'
} > "$d/commands.rexx"

# 6. Start-up: an empty program, started $starts times.
work startup "$starts starts of an empty program"
expect startup ""
: > "$d/startup.kvx"
: > "$d/startup.dash"
: > "$d/startup.bash"
: > "$d/startup.rexx"
echo "$starts" > "$d/startup.starts"

# 7. &GOTO rewinds and scans for its label: a label near the end of a long script (no peer).
work jumps "$jumps &GOTOs over $filler lines"
expect jumps "$jumps"
awk -v jumps="$jumps" -v filler="$filler" 'BEGIN {
  print "n = 0"
  for (i = 1; i <= filler; i++) printf "; filler line %d\n", i
  print "target:"
  print "n = &n + 1"
  printf "&IF &n < %d &GOTO target\n", jumps
  print "&TYPE &n"
}' > "$d/jumps.kvx"

# 8. A long straight script: reading, tokenizing and dispatching lines (no peer).
work long "$long lines read once"
awk -v n="$long" 'BEGIN {
  for (i = 0; i < n; i++) {
    k = i % 4
    # The literal is read as a 16-bit integer; the sum is a double.
    if (k == 0) { printf "x = %d + 1\n", i; v = i % 65536; last = (v > 32767 ? v - 65536 : v) + 1 }
    else if (k == 1) printf "; comment %d\n", i
    else if (k == 2) printf "&IF &x > 5 &y = &x\n"
    else printf "s = &CAT \"item \" &x\n"
  }
  print "&TYPE &y"
  print last > "/dev/stderr"
}' > "$d/long.kvx" 2> "$d/long.expect"

# 9. Many variables: every lookup searches the table (no peer).
work variables "$vars variables, $((passes * 20)) lookups"
{
  for ((i = 1; i <= vars; i++)); do echo "v$i = $i"; done
  echo 't = 0'
  echo "&FOR &I = 1 , $passes"
  # Twenty variables spread over the table, the last ones created being the slowest to find.
  sum=0
  for ((k = 0; k < 20; k++)); do
    i=$((vars - k * vars / 20))
    echo "t = &t + &v$i"
    sum=$((sum + i))
  done
  echo '&NEXT'
  echo '&TYPE &t'
} > "$d/variables.kvx"
expect variables "$((sum * passes))"
