#!/usr/bin/env bash
# Standard output set non-blocking (shared with, or left so by, another program): when the pipe is
# full, the output waits for room instead of losing what does not fit. The reader reads nothing
# until the pipe is full, then everything; it must get every byte.
. "$(dirname "$0")/lib/shell_test.bash"
sht_setup "$@"
sht_need perl

cat > script.kvx <<'KVX'
&N = 0
&WHILE &N < 5000
&TYPE line &N of the output, written to a pipe that is not read until it is full
&N = &N + 1
&WEND
&TYPE end
KVX
for ((n = 0; n < 5000; n++)); do
    printf 'line %d of the output, written to a pipe that is not read until it is full\r' "$n"
done > expected
printf 'end\r' >> expected

# Sets O_NONBLOCK on standard output, then runs the command.
nonblocking() {
    perl -MFcntl -e 'my $f = fcntl(STDOUT, F_GETFL, 0) or die "F_GETFL: $!";
        fcntl(STDOUT, F_SETFL, $f | O_NONBLOCK) or die "F_SETFL: $!";
        exec @ARGV or die "exec: $!"' "$@"
}

# Waits until the pipe on standard input holds as much as it can (F_GETPIPE_SZ, 1032), by
# FIONREAD (0x541B); then copies everything to standard output.
read_when_full() {
    perl -e 'my $cap = fcntl(STDIN, 1032, 0) || 65536;
        for (;;) {
            my $n = pack("i", 0);
            ioctl(STDIN, 0x541B, $n) or die "FIONREAD: $!";
            last if unpack("i", $n) >= $cap;
            select(undef, undef, undef, 0.01);
        }
        binmode STDIN; binmode STDOUT; local $/; print <STDIN>;'
}

nonblocking "$SHT_BIN" script.kvx 2> err | read_when_full > got
status=${PIPESTATUS[0]}
[ "$status" = 0 ] || sht_fail "status $status, expected 0; standard error: $(cat err)"
[ ! -s err ] || sht_fail "standard error: $(cat err)"
cmp -s expected got || sht_fail "the reader got $(wc -c < got) bytes of $(wc -c < expected), or other bytes"

sht_pass
