// The terminal runtime: session record, terminal output in its three modes, keyboard input,
// the keyboard type-ahead stack, the command processor, file lookup and text helpers.
// It is the only part of the program that touches the terminal, processes and file kinds.
#pragma once

#include <signal.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cbstring.h"

#ifdef KVEXEC_COVERAGE
extern "C" {
#include <gcov.h>  // GCC's, declared for C
}
#endif

namespace kavro {

// In a coverage build, writes the line counters now: a process about to end by a signal or by
// _exit, which skip what exit does, calls it first. Nothing in any other build.
inline void CoverageFlush() {
#ifdef KVEXEC_COVERAGE
    __gcov_dump();
#endif
}

// ---- Session ---------------------------------------------------------------------------

// The session's environment record.
struct KavroEnv {
    CBString sPrompt;       // written by line input before it reads
    char cCaseMode = 'M';   // input case mode: 'U' upper, 'L' swap, anything else as typed
    CBString sAccount;      // account name, once AccountName has settled it
    char cDateStyle = 'Y';  // 'A' American, 'E' European, anything else year first
    int iYearMode = 1;      // 2 two-digit years, 0 two digits before 2000, other four digits
    uint16_t uiSerial1 = 0;
    uint16_t uiSerial2 = 0;
    bool bPlain = false;  // KVEXEC_PLAIN set: every command line through /bin/sh, nothing cached
};

extern KavroEnv* Kavro;
// Counts the times other programs may have run while the interpreter waited: a command, a sleep,
// input. What the interpreter read of its files before then may be out of date.
extern unsigned uiOutsideTurns;
extern std::vector<CBString> t_asCmdargs;

// Prepares the session: fills t_asCmdargs with argv[0..argc-1] (the script path first) and the
// session record from the environment; returns the number of positional arguments.
int t_Init(int argc, char** argv, int mode, bool bQuiet);
// The character-type locale (LC_CTYPE). LocaleInit takes the user's at start-up, except where
// its single-byte classes and case are the C locale's (C, POSIX, every UTF-8 locale): then it is
// taken at the first use of what does differ, multibyte keys and the terminal's character set,
// which calls LocaleUse first. Reading a locale costs more than the rest of a start-up.
void LocaleInit(bool defer = true);  // defer false (KVEXEC_PLAIN): read it at start-up always
void LocaleUse();
bool LocaleDeferrable(const char* name);  // whether a locale name is one LocaleInit may defer
// The account name: KVEXEC_ACCOUNT, else the login name, else USER, as they were at start-up.
const CBString& AccountName();
// An environment variable read as a base-10 integer; 0 when it is not set.
int getintenv(const char* name);

// ---- Terminal output -------------------------------------------------------------------

enum class TermMode { Raw, Ansi, Text };

// Chooses the output mode from KVEXEC_TERM (raw, ansi, text); ansi when standard output is a
// terminal, raw otherwise.
void TermInit();
void TermSetMode(TermMode mode);
TermMode TermGetMode();

void TermPrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
void TermWrite(const char* text);
void TermWrite(const char* text, size_t length);
void TermPut(int c);
// Moves the cursor to a row and a column, both counted from 0.
void TermMove(int row, int col);
// Writes everything buffered. Done before a command runs, before input, before sleeping, at exit.
void TermFlush();
// Writes what is buffered if it has waited for a while.
void TermFlushIfStale();
// The column the cursor stands in, as far as the output written so far tells.
int TermColumn();
// Cursor moves relative to where it stands, and a bare carriage return; these are sequences for
// the terminal, not screen codes, and pass untranslated.
void TermMoveRelative(int rows, int cols);
void TermCarriageReturn();
// Whether the terminal keeps the cursor on the last column after writing there.
bool TermDelaysWrap();
// For tests: where output goes instead of standard output (null restores it).
void TermCapture(std::string* sink);

// ---- Keyboard input --------------------------------------------------------------------

struct TermWin {
    int iKind = 0;  // 2 for a window of the window manager
    int iActive = 0;
    int iRow = 0;  // cursor position where input starts, relative to that input
    int iCol = 0;
    int iWidth = 0;  // columns before input wraps; 0 for no wrapping
};

bool TermIsInteractive();  // standard input is a terminal
TermWin TermGetWin();
int TermGetActive();
int TermSetCursor(int shape);  // returns the previous shape
int TermGetUnicode();          // next key, or -1 at end of input
// The bytes of the key TermGetUnicode returned last: one byte, or every byte of an escape
// sequence or of a character typed on the terminal.
const char* TermKeyText(size_t* length);
int TermConvIn(int key);
// Writes ch at a position of the line being edited: rows and columns relative to where
// TermGetWin found the cursor (row 0), columns counted from the left edge.
void TermMvwaddch(int win, int row, int col, int ch);
void TermMoveInput(int row, int col);
void TermUpdate();
// Waits for one key when standard input is a terminal; returns at once otherwise.
void pagewait();

// ---- Keyboard stack --------------------------------------------------------------------

extern bool t_bStackShow;
void t_StackWrite(const char* text);
void t_StackWrite(const CBString& text);
void t_StackClear();
void t_StackSave();
void t_StackLoad();
bool t_StackReady(bool bLine);
CBString t_StackRead(int autoCount, bool* pbComplete, bool bRemove);
void t_StackDump();
const std::string& StackContents();

// ---- Commands and files ----------------------------------------------------------------

// Runs the command line as /bin/sh -c would, after flushing the output: a plain line directly,
// any other (or every line, with Kavro->bPlain) through the shell. Text in the keyboard stack
// becomes the command's standard input. The status (exit code, or 128 + signal) is left in
// errno, 0 on success; the same value is returned.
int t_system(const char* command);

// While one lives, the interpreter ignores interrupt and quit, as system() does while its
// command runs; the dispositions before are put back when it ends.
class InterruptsIgnored {
public:
    InterruptsIgnored();
    ~InterruptsIgnored();
    InterruptsIgnored(const InterruptsIgnored&) = delete;
    InterruptsIgnored& operator=(const InterruptsIgnored&) = delete;

private:
    struct sigaction saInterrupt {};
    struct sigaction saQuit {};
};

// A plain command line: one whose words the shell would run as one program (no shell syntax, not
// a word of the shell's own). t_system starts such lines itself (plain_command.h), resolved as
// the shell resolves them, with the environment, standard input and signal dispositions the shell
// would give them. Splits a line into its words when it is plain.
bool IsPlainCommand(const char* command, std::vector<std::string>& words);
// The environment the shell would give its commands when started with envp, in its order, and
// the PATH it would search; false when only the shell can tell.
bool ShellEnvironment(char* const* envp, std::vector<std::string>& entries, std::string& path);

struct CFileInfo {
    int iKind = 0;   // 2 file, 8 directory, 16 device, 64 FIFO, 128 dangling link, 512 socket
    int iOwner = 0;  // owner uid
    long long llSize = 0;
};

int t_Device(const char* name);                   // 3/4 character/block device, 2 any other path
int t_Locate(CFileInfo& info, const char* name);  // 2 when not found
int c_getuid();
int c_getpid();

// ---- Text helpers ----------------------------------------------------------------------

char* stripspace(char* text);          // removes trailing white space in place
const char* strend(const char* text);  // the terminating NUL of text
char* strupr(char* text);
bool strmatch(const char* text, const char* pattern);
bool t_isalpha(int c);
bool t_isalnum(int c);
bool t_isupper(int c);
bool t_islower(int c);
int t_toupper(int c);
int t_tolower(int c);

#ifdef KVEXEC_FUZZ
// ---- Fuzzing build ---------------------------------------------------------------------
// The fuzzing build (KVEXEC_FUZZ, never the program) runs one script after another in one process
// and reaches nothing outside it: command lines are recorded instead of run, sleeps and waits
// return at once, keyboard input reads as the end of input, and every way a run ends throws
// RunEnded instead of ending the process. fuzzing.cpp holds it.

struct RunEnded {
    int iStatus;
    bool bCutOff;  // the run used up its budget of steps or time
};
[[noreturn]] void FuzzEndRun(int status);
// One step of a run (a script line read, a command, a round of &SHIFT): past the budget the run
// is cut off.
void FuzzStep();
// Gives the next run its budget, and puts back what the runtime keeps from one run to the next
// (output, keyboard, keyboard stack, the recorded commands) as it was at start.
void FuzzReset(unsigned long steps, long nanoseconds);
// What t_system does instead of running the command: records it and gives a status read from its
// text ("false" 1, "exit n" n, anything else 0).
int FuzzCommand(const char* command);
// The commands recorded since the reset (the first ones; the count is kept whole).
const std::vector<std::string>& FuzzCommands();
unsigned long FuzzCommandCount();
// The resets of the output and keyboard units.
void OutputFuzzReset();
void KeyboardFuzzReset();
#endif

}  // namespace kavro
