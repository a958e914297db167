// Signal handling. The interpreter runs on a thread of its own, while a signal sent to the process
// is taken by whichever thread does not hold it back, most often the one that only waits for the
// interpreter. A handler on another thread passes the signal on to the interpreter's thread, so
// that every handler runs there, between two steps of the interpreter, and can rely on a guard
// to know whether the state it reads is whole.
#include "signals.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "kavro.h"

namespace kavro {

namespace {

// Signals whose default is to end the process (the faults of the program itself excepted).
const int aEndingSignals[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGPIPE, SIGALRM,   SIGTERM,
                              SIGUSR1, SIGUSR2, SIGXCPU, SIGXFSZ, SIGVTALRM, SIGPROF};

sigset_t g_handled;  // every signal with a handler here, held back while one runs
bool g_bStopIgnored = false;
bool g_bRawInput = false;
struct sigaction g_oldStop, g_oldContinue;

pthread_t g_owner;
volatile sig_atomic_t g_bOwnerGone = 1;

volatile sig_atomic_t g_iGuard = 0;
volatile sig_atomic_t g_iDeferred = 0;

volatile sig_atomic_t g_pidCommand = 0;
volatile sig_atomic_t g_iPassedOn = 0;
sigset_t g_commandMask;

// Marks the end of the interpreter's thread: from then on a handler runs where it lands.
struct OwnerMark {
    bool bSet = false;
    ~OwnerMark() {
        if (bSet) g_bOwnerGone = 1;
    }
};
thread_local OwnerMark t_ownerMark;

void Fence() { std::atomic_signal_fence(std::memory_order_seq_cst); }

bool PassedToOwner(int sig) {
    if (g_bOwnerGone || pthread_equal(pthread_self(), g_owner)) return false;
    return pthread_kill(g_owner, sig) == 0;
}

void SetAction(int sig, void (*handler)(int), struct sigaction* old) {
    struct sigaction sa {};
    sa.sa_handler = handler;
    sa.sa_mask = g_handled;
    sa.sa_flags = SA_RESTART;
    sigaction(sig, &sa, old);
}

void SetDefault(int sig) {
    struct sigaction sa {};
    sa.sa_handler = SIG_DFL;
    sigemptyset(&sa.sa_mask);
    sigaction(sig, &sa, nullptr);
}

[[noreturn]] void EndBySignal(int sig) {
    pthread_sigmask(SIG_BLOCK, &g_handled, nullptr);
    KeyboardSuspendRaw();
    OutputWriteWaiting();
    SetDefault(sig);
    raise(sig);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, sig);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    _exit(128 + sig);
}

void OnStop(int sig);

// The default action of the stop signal, taken with the terminal handed back and the output
// written; the code after the unblocking runs once the process is continued.
void Stop() {
    sigset_t saved;
    pthread_sigmask(SIG_BLOCK, &g_handled, &saved);
    KeyboardSuspendRaw();
    OutputWriteWaiting();
    SetDefault(SIGTSTP);
    raise(SIGTSTP);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, SIGTSTP);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    pthread_sigmask(SIG_BLOCK, &one, nullptr);
    if (g_bRawInput) SetAction(SIGTSTP, OnStop, nullptr);
    KeyboardResumeRaw();
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

void Resume() {
    sigset_t saved;
    pthread_sigmask(SIG_BLOCK, &g_handled, &saved);
    KeyboardResumeRaw();
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

bool IsEnding(int sig) { return sig != SIGTSTP && sig != SIGCONT; }

// One signal waits for the guard to end; one that ends the process comes before a stop, and a
// stop before a continue.
void Defer(int sig) {
    int waiting = g_iDeferred;
    if (waiting == 0 || (IsEnding(sig) && !IsEnding(waiting)) || (sig == SIGTSTP && waiting == SIGCONT))
        g_iDeferred = sig;
}

void HandleDeferred() {
    int sig = g_iDeferred;
    g_iDeferred = 0;
    if (sig == SIGTSTP)
        Stop();
    else if (sig == SIGCONT)
        Resume();
    else if (sig != 0)
        EndBySignal(sig);
}

void OnEnd(int sig) {
    int savedErrno = errno;
    if (!PassedToOwner(sig)) {
        if ((sig == SIGTERM || sig == SIGHUP) && g_pidCommand > 0) {
            kill(static_cast<pid_t>(g_pidCommand), sig);
            if (g_iPassedOn == 0) g_iPassedOn = sig;
        } else if (g_iGuard > 0) {
            Defer(sig);
        } else {
            EndBySignal(sig);
        }
    }
    errno = savedErrno;
}

void OnStop(int sig) {
    int savedErrno = errno;
    if (!PassedToOwner(sig)) {
        if (g_iGuard > 0)
            Defer(sig);
        else
            Stop();
    }
    errno = savedErrno;
}

void OnContinue(int sig) {
    int savedErrno = errno;
    if (!PassedToOwner(sig)) {
        if (g_iGuard > 0)
            Defer(sig);
        else
            KeyboardResumeRaw();
    }
    errno = savedErrno;
}

}  // namespace

void SignalsInit() {
    static bool done = false;
    if (done) return;
    done = true;
    g_owner = pthread_self();
    t_ownerMark.bSet = true;
    g_bOwnerGone = 0;

    sigemptyset(&g_handled);
    for (int sig : aEndingSignals) sigaddset(&g_handled, sig);
    sigaddset(&g_handled, SIGTSTP);
    sigaddset(&g_handled, SIGCONT);
    for (int sig : aEndingSignals) {
        struct sigaction old {};
        sigaction(sig, nullptr, &old);
        if (old.sa_handler != SIG_IGN) SetAction(sig, OnEnd, nullptr);
    }
    struct sigaction old {};
    sigaction(SIGTSTP, nullptr, &old);
    g_bStopIgnored = old.sa_handler == SIG_IGN;
}

SignalGuard::SignalGuard() {
    g_iGuard = g_iGuard + 1;
    Fence();
}

SignalGuard::~SignalGuard() {
    Fence();
    g_iGuard = g_iGuard - 1;
    Fence();
    if (g_iGuard == 0 && g_iDeferred != 0) HandleDeferred();
}

void SignalsHold(sigset_t* saved) {
    pthread_sigmask(SIG_BLOCK, &g_handled, saved);
    Fence();
}

void SignalsRelease(const sigset_t* saved) {
    Fence();
    pthread_sigmask(SIG_SETMASK, saved, nullptr);
}

void SignalsRawInput(bool on) {
    if (on == g_bRawInput) return;
    g_bRawInput = on;
    if (on) {
        if (!g_bStopIgnored) SetAction(SIGTSTP, OnStop, &g_oldStop);
        SetAction(SIGCONT, OnContinue, &g_oldContinue);
    } else {
        if (!g_bStopIgnored) sigaction(SIGTSTP, &g_oldStop, nullptr);
        sigaction(SIGCONT, &g_oldContinue, nullptr);
    }
}

void SignalsCommandStarting() {
    sigset_t both;
    sigemptyset(&both);
    sigaddset(&both, SIGTERM);
    sigaddset(&both, SIGHUP);
    g_iPassedOn = 0;
    pthread_sigmask(SIG_BLOCK, &both, &g_commandMask);
}

void SignalsCommandStarted(pid_t pid) {
    g_pidCommand = pid;
    Fence();
    pthread_sigmask(SIG_SETMASK, &g_commandMask, nullptr);
}

void SignalsCommandEnded() {
    g_pidCommand = 0;
    Fence();
    int sig = g_iPassedOn;
    if (sig != 0) EndBySignal(sig);
}

}  // namespace kavro
