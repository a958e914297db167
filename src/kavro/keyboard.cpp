// Keyboard input: keys from the terminal in raw mode (restored on every way out), or bytes of
// standard input when it is not a terminal; and the cursor bookkeeping of the line editor.
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "kavro.h"
#include "signals.h"

namespace kavro {

namespace {

struct termios g_saved;
struct termios g_raw;
// The terminal is in raw mode; and raw input is on, though a stop may have handed the terminal
// back for a while.
volatile sig_atomic_t g_bRaw = 0;
volatile sig_atomic_t g_bRawInput = 0;
bool g_bAtExit = false;
int g_iCursor = 0;

// Line-editor cursor, relative to the start of the input, and the wrap width (0: none).
int g_iInRow = 0;
int g_iInCol = 0;
int g_iWidth = 0;

constexpr int kKeySequence = 0x1000;  // an escape sequence with no meaning for line input
constexpr int kKeyDelete = 0x2000;    // the Delete key

void LeaveRaw() {
    SignalGuard guard;
    if (g_bRaw) tcsetattr(0, TCSANOW, &g_saved);
    g_bRaw = 0;
    g_bRawInput = 0;
    SignalsRawInput(false);
}

void EnterRaw() {
    if (g_bRawInput || !isatty(0)) return;
    SignalGuard guard;
    if (tcgetattr(0, &g_saved) != 0) return;
    if (!g_bAtExit) {
        g_bAtExit = true;
        atexit(LeaveRaw);
    }
    g_raw = g_saved;
    g_raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    g_raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
    g_raw.c_cc[VMIN] = 1;
    g_raw.c_cc[VTIME] = 0;
    // TCSANOW, not TCSAFLUSH: keys typed ahead stay for the input that reads them.
    if (tcsetattr(0, TCSANOW, &g_raw) == 0) {
        g_bRaw = 1;
        g_bRawInput = 1;
        SignalsRawInput(true);
    }
}

int ReadByte(int timeoutMs) {
    if (timeoutMs >= 0) {
        struct pollfd pfd {
            0, POLLIN, 0
        };
        if (poll(&pfd, 1, timeoutMs) <= 0) return -1;
    }
    unsigned char c = 0;
    for (;;) {
        ssize_t n = read(0, &c, 1);
        if (n == 1) return c;
        if (n < 0 && errno == EINTR) continue;
        return -1;
    }
}

void MoveTo(int row, int col) {
    if (g_iWidth > 0 && g_iInCol >= g_iWidth) {
        // The cursor waits on the last column after a write there.
        if (row == g_iInRow + 1 && col == 0 && !TermDelaysWrap()) {
            g_iInRow = row;
            g_iInCol = 0;
            return;
        }
        TermCarriageReturn();
        g_iInCol = 0;
    }
    if (row != g_iInRow) {
        if (g_iInCol != 0) TermCarriageReturn();
        TermMoveRelative(row - g_iInRow, col);
    } else if (col != g_iInCol) {
        TermMoveRelative(0, col - g_iInCol);
    }
    g_iInRow = row;
    g_iInCol = col;
}

}  // namespace

bool TermIsInteractive() { return isatty(0) != 0; }

TermWin TermGetWin() {
    TermWin w;
    w.iKind = 0;
    w.iActive = 0;
    w.iRow = 0;
    w.iCol = TermColumn();
    struct winsize ws {};
    w.iWidth = (isatty(1) && ioctl(1, TIOCGWINSZ, &ws) == 0) ? ws.ws_col : 0;
    g_iInRow = 0;
    g_iInCol = w.iCol;
    g_iWidth = w.iWidth;
    return w;
}

int TermGetActive() { return 252; }

int TermSetCursor(int shape) {
    int previous = g_iCursor;
    g_iCursor = shape;
    if (shape == 2)
        EnterRaw();
    else
        LeaveRaw();
    return previous;
}

int TermGetUnicode() {
    TermFlush();
    int c = ReadByte(-1);
    if (c == 0x1b && g_bRaw) {
        int next = ReadByte(30);
        if (next < 0) return 0x1b;
        if (next != '[' && next != 'O') return kKeySequence;
        int param = 0;
        for (;;) {
            int b = ReadByte(30);
            if (b < 0) return kKeySequence;
            if (b >= '0' && b <= '9') param = param * 10 + (b - '0');
            if (b >= 0x40 && b <= 0x7e) return (b == '~' && param == 3) ? kKeyDelete : kKeySequence;
        }
    }
    return c;
}

int TermConvIn(int key) {
    if (key == kKeyDelete) return 127;
    if (key == kKeySequence) return 26;
    return key;
}

void TermMvwaddch(int /*win*/, int row, int col, int ch) {
    MoveTo(row, col);
    TermPut(ch);
    ++g_iInCol;
}

void TermMoveInput(int row, int col) { MoveTo(row, col); }

void TermUpdate() { TermFlush(); }

void pagewait() {
    if (!isatty(0)) return;
    bool show = isatty(1) != 0;
    if (show) TermWrite("Press any key to continue");
    TermFlush();
    EnterRaw();
    ReadByte(-1);
    LeaveRaw();
    if (show) {
        // Take the prompt away again: back to the line start, erase to its end.
        TermCarriageReturn();
        TermPut(0x17);
        TermFlush();
    }
}

bool KeyboardSuspendRaw() {
    if (!g_bRaw) return false;
    tcsetattr(0, TCSANOW, &g_saved);
    g_bRaw = 0;
    return true;
}

void KeyboardResumeRaw() {
    // Continued in the background the terminal stays as it is: raw mode comes back with the
    // continue that brings the process to the foreground.
    if (!g_bRawInput || tcgetpgrp(0) != getpgrp()) return;
    if (tcsetattr(0, TCSANOW, &g_raw) == 0) g_bRaw = 1;
}

}  // namespace kavro
