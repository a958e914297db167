// Terminal output. Everything the interpreter writes passes through here and is buffered until a
// flush. In raw mode the bytes go out exactly as produced. In ansi mode carriage returns end
// lines and the one-byte screen codes become the terminal's own sequences (from terminfo); in
// text mode carriage returns become line feeds and screen codes are dropped.
//
// A signal that ends the run writes what is still buffered (signals.cpp): the buffer changes only
// under a signal guard, and what has been written of it is counted with the signals held back,
// so the signal path writes each byte exactly once.
#include <curses.h>
#include <langinfo.h>
#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <term.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "kavro.h"
#include "signals.h"
#include "terminal_codes.h"

namespace kavro {

namespace {

TermMode eMode = TermMode::Raw;
std::string sOut;
volatile size_t uiWritten = 0;  // bytes at the start of sOut already written
std::string* pCapture = nullptr;
bool bTty = false;
int iColumn = 0;

// Writes to a pipe, a socket or a terminal go in pieces small enough not to block once the
// output has room; a regular file takes everything at once.
size_t uiPiece = PIPE_BUF;
bool bFailed = false;   // a write failed: the run is ending, nothing more is written
bool bExiting = false;  // the buffer is being written at the end of the run
volatile sig_atomic_t bClosed = 0;
// How long the signal path waits for a stalled output before giving up what is left.
constexpr int kSignalWaitMs = 1000;

// ansi mode state
bool bTerminfo = false;
bool bUtf8 = false;
unsigned uiAttrs = 0;
// bytes of a UTF-8 sequence being assembled, and how many more it needs
unsigned char abPending[4];
int iPending = 0;
int iNeed = 0;

constexpr size_t kFlushAt = 1 << 16;
// Output waiting longer than this is written when the script next reads a line, so a run that
// goes on without writing (a long loop, a wait) still shows what it wrote before.
constexpr long kStaleNanoseconds = 50L * 1000 * 1000;
long lPendingSince = 0;

long MonotonicNanoseconds() {
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &ts);
    return ts.tv_sec * 1000000000L + ts.tv_nsec;
}

// A write error ends the run: output that cannot be written must not pass for a success.
[[noreturn]] void WriteFailed(int error) {
    {
        SignalGuard guard;
        bFailed = true;
        sOut.clear();
        uiWritten = 0;
    }
    std::string message = "kvexec: write error: ";
    message += strerror(error);
    message += "\n";
    ssize_t rc = write(2, message.data(), message.size());
    (void)rc;
#ifdef KVEXEC_FUZZ
    FuzzEndRun(1);
#endif
    if (bExiting) {
        CoverageFlush();
        _exit(1);
    }
    exit(1);
}

// Writes the rest of the buffer. An output that cannot take more just now (a full pipe, a
// non-blocking descriptor) is waited for; signals are handled while waiting.
void WriteWaiting() {
    while (uiWritten < sOut.size()) {
        struct pollfd pfd {
            1, POLLOUT, 0
        };
        if (poll(&pfd, 1, -1) < 0) {
            if (errno == EINTR || errno == EAGAIN) continue;
            WriteFailed(errno);
        }
        sigset_t saved;
        SignalsHold(&saved);
        size_t from = uiWritten;
        size_t n = sOut.size() - from;
        if (n > uiPiece) n = uiPiece;
        ssize_t w = n > 0 ? write(1, sOut.data() + from, n) : 0;
        int error = errno;
        if (w > 0) uiWritten = from + static_cast<size_t>(w);
        SignalsRelease(&saved);
        if (w < 0 && (error == EINTR || error == EAGAIN || error == EWOULDBLOCK)) continue;
        if (w < 0) WriteFailed(error);
        if (w == 0 && n > 0) WriteFailed(EIO);
    }
}

int Saturated(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : static_cast<int>(v); }

void AdvanceColumn() {
    if (iColumn < INT_MAX) ++iColumn;
}

// Where the cursor goes for one byte of output: text advances it, and screen codes move it as
// the terminal will. Bytes of a UTF-8 sequence after its first take no column; other bytes in
// 0x80-0xbf are screen codes, as the translation below reads them.
int iTrackNeed = 0;

void Track(unsigned char c) {
    if (iTrackNeed > 0 && (c & 0xc0) == 0x80) {
        --iTrackNeed;
        return;
    }
    iTrackNeed = 0;
    if (c >= 0xc2 && c <= 0xf4) {
        iTrackNeed = c >= 0xf0 ? 3 : c >= 0xe0 ? 2 : 1;
        AdvanceColumn();
        return;
    }
    switch (c) {
        case '\r':
        case '\n':
        case 0x01:  // home
        case 0x0c:  // clear
        case 0x80:  // new line
            iColumn = 0;
            return;
        case '\b': iColumn = iColumn > 0 ? iColumn - 1 : 0; return;
        case '\t': iColumn = Saturated((static_cast<long long>(iColumn) / 8 + 1) * 8); return;
        case 0x06: AdvanceColumn(); return;  // cursor right
        default: break;
    }
    if ((c >= 0x20 && c < 0x7f) || c >= 0xc0)
        AdvanceColumn();
    else if (const TermCode* code = FindTermCode(c); code && code->eAction == TermAction::Box)
        AdvanceColumn();
}

int PutSeqChar(int c) {
    sOut.push_back(static_cast<char>(c));
    return c;
}

// Appends a terminfo capability, with padding handled by tputs.
void Cap(const char* cap) {
    if (cap && cap != reinterpret_cast<const char*>(-1)) tputs(cap, 1, PutSeqChar);
}

const char* Str(const char* name) {
    const char* s = tigetstr(name);
    return (s && s != reinterpret_cast<const char*>(-1)) ? s : nullptr;
}

// A one-step capability, or its counted form with a count of 1 where the terminal has only that
// (xterm, for one, inserts characters only with "ich").
void StepCap(const char* name) {
    static const char* const aCounted[][2] = {{"ich1", "ich"}, {"dch1", "dch"}, {"il1", "il"},   {"dl1", "dl"},
                                              {"cuu1", "cuu"}, {"cud1", "cud"}, {"cub1", "cub"}, {"cuf1", "cuf"}};
    if (const char* s = Str(name)) {
        Cap(s);
        return;
    }
    for (const auto& pair : aCounted)
        if (strcmp(pair[0], name) == 0)
            if (const char* counted = Str(pair[1])) Cap(tiparm(counted, 1));
}

void ApplyAttributes() {
    const char* sgr = Str("sgr");
    auto on = [](unsigned bit) { return (uiAttrs & bit) ? 1 : 0; };
    if (sgr) {
        Cap(tiparm(sgr, on(kAttrStandout), on(kAttrUnderline), on(kAttrReverse), on(kAttrBlink), on(kAttrDim),
                   on(kAttrBold), 0, 0, 0));
        return;
    }
    Cap(Str("sgr0"));
    if (on(kAttrStandout)) Cap(Str("smso"));
    if (on(kAttrUnderline)) Cap(Str("smul"));
    if (on(kAttrReverse)) Cap(Str("rev"));
    if (on(kAttrBlink)) Cap(Str("blink"));
    if (on(kAttrDim)) Cap(Str("dim"));
    if (on(kAttrBold)) Cap(Str("bold"));
}

// One screen code in ansi mode.
void AnsiCode(unsigned char c) {
    const TermCode* code = FindTermCode(c);
    if (!code) return;
    switch (code->eAction) {
        case TermAction::Newline: sOut += "\r\n"; break;
        case TermAction::Text: sOut.push_back(static_cast<char>(c)); break;
        case TermAction::Capability:
            if (bTerminfo)
                StepCap(code->pszCap);
            else if (c == '\b' || c == '\a' || c == '\n')
                sOut.push_back(static_cast<char>(c));
            break;
        case TermAction::AttrOn:
        case TermAction::AttrOff: {
            unsigned before = uiAttrs;
            if (code->eAction == TermAction::AttrOn)
                uiAttrs |= code->uiAttr;
            else
                uiAttrs &= ~code->uiAttr;
            if (bTerminfo && before != uiAttrs) ApplyAttributes();
            break;
        }
        case TermAction::Box: sOut += bUtf8 ? code->pszUnicode : code->pszAscii; break;
        case TermAction::Drop: break;
    }
}

void TextCode(unsigned char c) {
    if (c == '\r')
        sOut.push_back('\n');
    else if (c == '\n' || c == '\t')
        sOut.push_back(static_cast<char>(c));
    else if (const TermCode* code = FindTermCode(c); code && code->eAction == TermAction::Newline)
        sOut.push_back('\n');
}

void Code(unsigned char c) {
    if (eMode == TermMode::Ansi)
        AnsiCode(c);
    else
        TextCode(c);
}

void FlushPending() {
    sOut.append(reinterpret_cast<const char*>(abPending), static_cast<size_t>(iPending));
    iPending = 0;
    iNeed = 0;
}

// Feeds one byte through the translation of the ansi and text modes. Bytes of well-formed UTF-8
// sequences are text; control bytes and stray bytes from the code tables are screen codes.
void Translate(unsigned char c) {
    if (iNeed > 0) {
        if ((c & 0xc0) == 0x80) {
            abPending[iPending++] = c;
            if (--iNeed == 0) FlushPending();
            return;
        }
        FlushPending();
    }
    if (c >= 0xc2 && c <= 0xf4) {
        abPending[0] = c;
        iPending = 1;
        iNeed = c >= 0xf0 ? 3 : c >= 0xe0 ? 2 : 1;
        return;
    }
    if (c < 0x20 || c == 0x7f || (c >= 0x80 && c < 0xc0)) {
        if (FindTermCode(c) || c < 0x20 || c == 0x7f) {
            Code(c);
            return;
        }
    }
    sOut.push_back(static_cast<char>(c));
}

void Emit(const char* p, size_t n) {
    {
        SignalGuard guard;
        if (sOut.empty()) lPendingSince = MonotonicNanoseconds();
        for (size_t i = 0; i < n; ++i) Track(static_cast<unsigned char>(p[i]));
        if (eMode == TermMode::Raw)
            sOut.append(p, n);
        else
            for (size_t i = 0; i < n; ++i) Translate(static_cast<unsigned char>(p[i]));
    }
    if (bTty || sOut.size() >= kFlushAt) TermFlush();
}

void SetupTerminfo() {
    int err = 0;
    const char* term = getenv("TERM");
    bTerminfo = term && *term && setupterm(term, 1, &err) == OK;
    LocaleUse();
    const char* cs = nl_langinfo(CODESET);
    bUtf8 = cs && (strcasecmp(cs, "UTF-8") == 0 || strcasecmp(cs, "utf8") == 0);
}

void FlushAtExit() {
    bExiting = true;
    TermFlush();
    bClosed = 1;
}

void ChooseWritePiece() {
    struct stat st {};
    uiPiece = (fstat(1, &st) == 0 && S_ISREG(st.st_mode)) ? SIZE_MAX : PIPE_BUF;
}

}  // namespace

void TermInit() {
    static bool once = false;
    if (!once) {
        once = true;
        atexit(FlushAtExit);
        SignalsInit();
    }
    ChooseWritePiece();
    bTty = isatty(1) != 0;
    const char* m = getenv("KVEXEC_TERM");
    TermMode mode = bTty ? TermMode::Ansi : TermMode::Raw;
    if (m && strcmp(m, "raw") == 0)
        mode = TermMode::Raw;
    else if (m && strcmp(m, "ansi") == 0)
        mode = TermMode::Ansi;
    else if (m && strcmp(m, "text") == 0)
        mode = TermMode::Text;
    TermSetMode(mode);
}

void TermSetMode(TermMode mode) {
    TermFlush();
    SignalGuard guard;
    eMode = mode;
    uiAttrs = 0;
    iPending = iNeed = 0;
    if (mode == TermMode::Ansi) SetupTerminfo();
}

TermMode TermGetMode() { return eMode; }

void TermPrintf(const char* format, ...) {
    char small[512];
    va_list ap;
    va_start(ap, format);
    va_list copy;
    va_copy(copy, ap);
    int n = vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (n >= 0 && static_cast<size_t>(n) < sizeof small) {
        Emit(small, static_cast<size_t>(n));
    } else if (n >= 0) {
        std::string big(static_cast<size_t>(n) + 1, '\0');
        vsnprintf(&big[0], big.size(), format, ap);
        Emit(big.data(), static_cast<size_t>(n));
    }
    va_end(ap);
}

void TermWrite(const char* text) { Emit(text, strlen(text)); }
void TermWrite(const char* text, size_t length) { Emit(text, length); }

void TermPut(int c) {
    char b = static_cast<char>(c);
    Emit(&b, 1);
}

void TermMove(int row, int col) {
    if (eMode == TermMode::Text) return;
    {
        SignalGuard guard;
        if (eMode == TermMode::Ansi && bTerminfo) {
            Cap(tiparm(Str("cup"), row, col));
        } else {
            char seq[40];
            snprintf(seq, sizeof seq, "\x1b[%lld;%lldH", row + 1LL, col + 1LL);
            sOut += seq;
        }
        iColumn = col;
    }
    if (bTty) TermFlush();
}

// Cursor moves inside the line being edited, relative to where the cursor stands.
void TermMoveRelative(int rows, int cols) {
    auto repeat = [](const char* cap, const char* fallback, int n) {
        for (int i = 0; i < n; ++i) {
            const char* s = (eMode == TermMode::Ansi && bTerminfo) ? Str(cap) : nullptr;
            if (s)
                Cap(s);
            else
                sOut += fallback;
        }
    };
    {
        SignalGuard guard;
        if (rows < 0) repeat("cuu1", "\x1b[A", -rows);
        if (rows > 0) repeat("cud1", "\x1b[B", rows);
        if (cols < 0) repeat("cub1", "\b", -cols);
        if (cols > 0) repeat("cuf1", "\x1b[C", cols);
        iColumn = Saturated(static_cast<long long>(iColumn) + cols);
    }
    if (bTty) TermFlush();
}

void TermCarriageReturn() {
    {
        SignalGuard guard;
        const char* s = (eMode == TermMode::Ansi && bTerminfo) ? Str("cr") : nullptr;
        if (s)
            Cap(s);
        else
            sOut += "\r";
        iColumn = 0;
    }
    if (bTty) TermFlush();
}

bool TermDelaysWrap() { return !(eMode == TermMode::Ansi && bTerminfo) || tigetflag("xenl") > 0; }

void TermFlush() {
    if (sOut.empty()) return;
    if (pCapture) {
        SignalGuard guard;
        pCapture->append(sOut);
        sOut.clear();
        return;
    }
    if (!bFailed) WriteWaiting();
    SignalGuard guard;
    sOut.clear();
    uiWritten = 0;
}

void TermFlushIfStale() {
    if (!sOut.empty() && MonotonicNanoseconds() - lPendingSince >= kStaleNanoseconds) TermFlush();
}

int TermColumn() { return iColumn; }

// The signal path: nothing here may allocate or take a lock.
void OutputWriteWaiting() {
    if (pCapture || bFailed || bClosed) return;
    const char* p = sOut.data();
    size_t size = sOut.size();
    while (uiWritten < size) {
        struct pollfd pfd {
            1, POLLOUT, 0
        };
        int ready = poll(&pfd, 1, kSignalWaitMs);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return;
        size_t n = size - uiWritten;
        if (n > uiPiece) n = uiPiece;
        ssize_t w = write(1, p + uiWritten, n);
        if (w < 0 && (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)) continue;
        if (w <= 0) return;
        uiWritten = uiWritten + static_cast<size_t>(w);
    }
}

#ifdef KVEXEC_FUZZ
void OutputFuzzReset() {
    SignalGuard guard;
    sOut.clear();
    uiWritten = 0;
    bFailed = false;
    bExiting = false;
    bClosed = 0;
    uiAttrs = 0;
    iPending = iNeed = 0;
    lPendingSince = 0;
    iColumn = 0;
    iTrackNeed = 0;
}
#endif

void TermCapture(std::string* sink) {
    TermFlush();
    SignalGuard guard;
    pCapture = sink;
    bTty = !sink && isatty(1) != 0;
}

}  // namespace kavro
