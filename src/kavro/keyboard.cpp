// Keyboard input: keys from the terminal in raw mode (restored on every way out), or bytes of
// standard input when it is not a terminal; and the cursor bookkeeping of the line editor.
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cwchar>

#include "kavro.h"
#include "signals.h"

namespace kavro {

namespace {

struct termios termSaved;
struct termios termRaw;
// The terminal is in raw mode; and raw input is on, though a stop may have handed the terminal
// back for a while.
volatile sig_atomic_t bRaw = 0;
volatile sig_atomic_t bRawInput = 0;
bool bAtExit = false;
int iCursor = 0;

// Line-editor cursor, relative to the start of the input, and the wrap width (0: none).
int iInRow = 0;
int iInCol = 0;
int iWidth = 0;

// Key codes beyond every character.
constexpr int kKeySequence = 0x110000;  // an escape sequence with no meaning for line input
constexpr int kKeyDelete = 0x110001;    // the Delete key
// How long the rest of a key may take after its first byte.
constexpr int kKeyRestMs = 30;
// Numbers in escape sequences stop growing here; only small ones name keys.
constexpr int kSequenceNumberLimit = 100000;

// The bytes of the last key read, and a byte read too far that the next key starts with.
char acKey[MB_LEN_MAX > 8 ? MB_LEN_MAX : 8];
size_t uiKey = 0;
int iUnread = -1;

// Whether standard input is the terminal. The fuzzing build has no keyboard: its input is at
// its end from the start.
bool InputIsTerminal() {
#ifdef KVEXEC_FUZZ
    return false;
#else
    return isatty(0) != 0;
#endif
}

void LeaveRaw() {
    SignalGuard guard;
    if (bRaw) tcsetattr(0, TCSANOW, &termSaved);
    bRaw = 0;
    bRawInput = 0;
    SignalsRawInput(false);
}

void EnterRaw() {
    if (bRawInput || !InputIsTerminal()) return;
    SignalGuard guard;
    if (tcgetattr(0, &termSaved) != 0) return;
    if (!bAtExit) {
        bAtExit = true;
        atexit(LeaveRaw);
    }
    termRaw = termSaved;
    termRaw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    termRaw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
    termRaw.c_cc[VMIN] = 1;
    termRaw.c_cc[VTIME] = 0;
    // TCSANOW, not TCSAFLUSH: keys typed ahead stay for the input that reads them.
    if (tcsetattr(0, TCSANOW, &termRaw) == 0) {
        bRaw = 1;
        bRawInput = 1;
        SignalsRawInput(true);
    }
}

int ReadByte(int timeoutMs) {
#ifdef KVEXEC_FUZZ
    (void)timeoutMs;
    return -1;
#endif
    if (iUnread >= 0) {
        int c = iUnread;
        iUnread = -1;
        return c;
    }
    if (timeoutMs >= 0) {
        struct pollfd pfd {
            0, POLLIN, 0
        };
        int ready;
        while ((ready = poll(&pfd, 1, timeoutMs)) < 0 && errno == EINTR) {
        }
        if (ready <= 0) return -1;
    }
    unsigned char c = 0;
    for (;;) {
        ssize_t n = read(0, &c, 1);
        if (n == 1) return c;
        if (n < 0 && errno == EINTR) continue;
        return -1;
    }
}

int KeyByte(int timeoutMs) {
    int c = ReadByte(timeoutMs);
    if (c >= 0 && uiKey < sizeof acKey) acKey[uiKey++] = static_cast<char>(c);
    return c;
}

// After an escape: a control sequence (ESC [ or ESC O, up to its final byte) is one key.
int ReadEscapeSequence() {
    int next = KeyByte(kKeyRestMs);
    if (next < 0) return 0x1b;
    if (next != '[' && next != 'O') return kKeySequence;
    int param = 0;
    for (;;) {
        int b = KeyByte(kKeyRestMs);
        if (b < 0) return kKeySequence;
        if (b >= '0' && b <= '9') param = param < kSequenceNumberLimit ? param * 10 + (b - '0') : param;
        if (b >= 0x40 && b <= 0x7e) return (b == '~' && param == 3) ? kKeyDelete : kKeySequence;
    }
}

// A character of several bytes is one key: its code. A byte that cannot continue it begins the
// next key; a broken character is a key with no meaning.
int ReadCharacter(int first) {
    mbstate_t state{};
    char b = static_cast<char>(first);
    wchar_t wc = 0;
    size_t r = mbrtowc(&wc, &b, 1, &state);
    while (r == static_cast<size_t>(-2)) {
        int next = ReadByte(kKeyRestMs);
        if (next < 0) return kKeySequence;
        b = static_cast<char>(next);
        r = mbrtowc(&wc, &b, 1, &state);
        if (r == static_cast<size_t>(-1)) {
            iUnread = next;
            return kKeySequence;
        }
        if (uiKey < sizeof acKey) acKey[uiKey++] = b;
    }
    if (r == static_cast<size_t>(-1)) return kKeySequence;
    return uiKey > 1 ? static_cast<int>(wc) : first;
}

// One key: a byte, or on the terminal an escape sequence or a whole character of several bytes.
int ReadKey() {
    uiKey = 0;
    int c = KeyByte(-1);
    if (c < 0 || !bRaw) return c;
    if (c == 0x1b) return ReadEscapeSequence();
    if (c >= 0x80) {
        LocaleUse();
        if (MB_CUR_MAX > 1) return ReadCharacter(c);
    }
    return c;
}

void MoveTo(int row, int col) {
    if (iWidth > 0 && iInCol >= iWidth) {
        // The cursor waits on the last column after a write there.
        if (row == iInRow + 1 && col == 0 && !TermDelaysWrap()) {
            iInRow = row;
            iInCol = 0;
            return;
        }
        TermCarriageReturn();
        iInCol = 0;
    }
    if (row != iInRow) {
        if (iInCol != 0) TermCarriageReturn();
        TermMoveRelative(row - iInRow, col);
    } else if (col != iInCol) {
        TermMoveRelative(0, col - iInCol);
    }
    iInRow = row;
    iInCol = col;
}

}  // namespace

bool TermIsInteractive() { return InputIsTerminal(); }

TermWin TermGetWin() {
    TermWin w;
    w.iKind = 0;
    w.iActive = 0;
    w.iRow = 0;
    w.iCol = TermColumn();
    struct winsize ws {};
    w.iWidth = (isatty(1) && ioctl(1, TIOCGWINSZ, &ws) == 0) ? ws.ws_col : 0;
    iInRow = 0;
    iInCol = w.iCol;
    iWidth = w.iWidth;
    return w;
}

int TermGetActive() { return 252; }

int TermSetCursor(int shape) {
    int previous = iCursor;
    iCursor = shape;
    if (shape == 2)
        EnterRaw();
    else
        LeaveRaw();
    return previous;
}

int TermGetUnicode() {
    TermFlush();
    int key = ReadKey();
    ++uiOutsideTurns;
    return key;
}

const char* TermKeyText(size_t* length) {
    *length = uiKey;
    return acKey;
}

int TermConvIn(int key) {
    if (key == kKeyDelete) return 127;
    if (key == kKeySequence) return 26;
    return key;
}

void TermMvwaddch(int /*win*/, int row, int col, int ch) {
    MoveTo(row, col);
    TermPut(ch);
    if (iInCol < INT_MAX) ++iInCol;
}

void TermMoveInput(int row, int col) { MoveTo(row, col); }

void TermUpdate() { TermFlush(); }

void pagewait() {
    if (!InputIsTerminal()) return;
    bool show = isatty(1) != 0;
    if (show) TermWrite("Press any key to continue");
    TermFlush();
    EnterRaw();
    ReadKey();
    ++uiOutsideTurns;
    LeaveRaw();
    if (show) {
        // Take the prompt away again: back to the line start, erase to its end.
        TermCarriageReturn();
        TermPut(0x17);
        TermFlush();
    }
}

#ifdef KVEXEC_FUZZ
void KeyboardFuzzReset() {
    iCursor = 0;
    iInRow = iInCol = iWidth = 0;
    uiKey = 0;
    iUnread = -1;
}
#endif

bool KeyboardSuspendRaw() {
    if (!bRaw) return false;
    tcsetattr(0, TCSANOW, &termSaved);
    bRaw = 0;
    return true;
}

void KeyboardResumeRaw() {
    // Continued in the background the terminal stays as it is: raw mode comes back with the
    // continue that brings the process to the foreground.
    if (!bRawInput || tcgetpgrp(0) != getpgrp()) return;
    if (tcsetattr(0, TCSANOW, &termRaw) == 0) bRaw = 1;
}

}  // namespace kavro
