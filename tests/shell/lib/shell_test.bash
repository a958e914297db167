# Shared helpers for the shell tests: run kvexec with files, pipes and signals around it.
#
# Source this file, then:
#   sht_setup "$1"            binary path; makes a work dir (SHT_DIR, also the working directory)
#   sht_need TOOL...          skips the test (status 77) when a tool is missing
#   sht_skip MESSAGE          skips the test: it cannot run here (under CI: fails)
#   sht_fail MESSAGE          fails the test; sht_pass ends it well
#   sht_wait_until CMD...     polls until the command succeeds (fails the test after SHT_TIMEOUT s)
#   "${SHT_DEFAULT_SIGNALS[@]}" CMD...
#                             runs CMD with interrupt and quit at their default actions (a shell
#                             starts background commands with them ignored); CMD keeps the
#                             process id that "$!" gives
set -u

SHT_NAME=$(basename "$0" .sh)
SHT_DIR=""
SHT_TIMEOUT=${SHT_TIMEOUT:-10}  # seconds for each wait; only a failing wait takes this long

. "$(dirname "${BASH_SOURCE[0]}")/../../lib/skip.bash"
sht_skip() { skip_test "$SHT_NAME" "$@"; }

sht_fail() {
    echo "$SHT_NAME: FAIL: $*"
    exit 1
}

sht_pass() {
    echo "$SHT_NAME: PASS"
    exit 0
}

sht_need() {
    local tool
    for tool in "$@"; do
        command -v "$tool" > /dev/null 2>&1 || sht_skip "$tool is not installed"
    done
}

sht_setup() {
    if [ $# -lt 1 ] || [ ! -x "$1" ]; then
        echo "$SHT_NAME: FAIL: usage: $0 <kvexec binary> (got '${1:-}')"
        exit 2
    fi
    SHT_BIN=$(readlink -f "$1")
    SHT_DIR=$(mktemp -d "${TMPDIR:-/tmp}/kvxshell.XXXXXX")
    trap 'rm -rf "$SHT_DIR"' EXIT
    cd "$SHT_DIR" || exit 2
    export LC_ALL=C KVEXEC_TERM=raw
}

sht_wait_until() {
    local end=$(($(date +%s%N) + SHT_TIMEOUT * 1000000000))
    until "$@"; do
        [ "$(date +%s%N)" -ge "$end" ] && sht_fail "timed out waiting for: $*"
        sleep 0.02
    done
}

# shellcheck disable=SC2016
SHT_DEFAULT_SIGNALS=(perl -e '$SIG{INT} = "DEFAULT"; $SIG{QUIT} = "DEFAULT"; exec @ARGV or die "exec: $!"')
