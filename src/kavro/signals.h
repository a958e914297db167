// Signals, as the units of the terminal runtime share them. Every signal whose default is to end
// the process takes one way out: the terminal is handed back, the output still waiting is written,
// and the process ends of that same signal. A stop from the terminal during raw input hands the
// terminal back too, and raw input resumes when the process is continued in the foreground.
#pragma once

#include <signal.h>
#include <sys/types.h>

namespace kavro {

// Installs the handlers, once, when the runtime starts. A signal ignored at start stays ignored,
// the child signal aside: it is set back to its default.
void SignalsInit();

// While a guard lives, state that a handler reads (the output buffer, the terminal mode) may be
// half updated: a signal arriving meanwhile is handled when the outermost guard ends. Guards
// cover updates of memory only, never a wait.
class SignalGuard {
public:
    SignalGuard();
    ~SignalGuard();
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;
};

// Holds the handled signals back around one write, so that the record of what has been written
// is exact whenever a handler looks at it.
void SignalsHold(sigset_t* saved);
void SignalsRelease(const sigset_t* saved);

// Raw input is on: a stop from the terminal, and the continue after it, are handled meanwhile.
void SignalsRawInput(bool on);

// A command runs. Terminate and hangup received meanwhile are passed on to it; once it has ended,
// the run ends of the signal received. From the start until its process id is known, every signal
// is held back.
void SignalsCommandStarting();
void SignalsCommandStarted(pid_t pid);  // 0 when the command could not be started
void SignalsCommandEnded();

// Between vfork and exec a command's process shares the interpreter's memory and has its handlers
// until exec puts caught signals back to their default. The one who calls vfork marks the time;
// every handler asks first whether it runs in that process, where it gives the signal its default
// action and does nothing else: the process behaves as if the signal had been at its default.
// SignalsForking takes the interpreter's process id (getpid) before vfork, and 0 after.
void SignalsForking(pid_t self);
bool SignalInForkedChild(int sig);  // async-signal-safe

// For the signal path, from the output and keyboard units; async-signal-safe.
void OutputWriteWaiting();  // writes what waits in the output buffer, giving up on a stalled output
bool KeyboardSuspendRaw();  // hands the terminal back; whether it was raw
void KeyboardResumeRaw();   // raw again, when raw input is on and the process has the terminal

}  // namespace kavro
