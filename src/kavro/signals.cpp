// Signal handling. Every handler runs on the interpreter's thread, between two steps of the
// interpreter, and can rely on a guard to know whether the state it reads is whole. Where the
// interpreter runs on a thread of its own (see kvexec's main), a signal sent to the process is
// taken by whichever thread does not hold it back, most often the one that only waits for the
// interpreter: a handler on another thread passes the signal on to the interpreter's thread.
#include "signals.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "kavro.h"

namespace kavro {

namespace {

// Signals whose default is to end the process (the faults of the program itself excepted).
const int aEndingSignals[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGPIPE, SIGALRM,   SIGTERM,
                              SIGUSR1, SIGUSR2, SIGXCPU, SIGXFSZ, SIGVTALRM, SIGPROF};

sigset_t setHandled;  // every signal with a handler here, held back while one runs
bool bStopIgnored = false;
bool bRawInput = false;
struct sigaction saOldStop, saOldContinue;

pthread_t thOwner;
volatile sig_atomic_t bOwnerGone = 1;

volatile sig_atomic_t iGuard = 0;
volatile sig_atomic_t iDeferred = 0;

// The interpreter's process while it forks, else 0: one value, so that a handler on any thread
// reads whole what it needs.
std::atomic<pid_t> pidForking{0};
static_assert(std::atomic<pid_t>::is_always_lock_free, "a handler reads it");

volatile sig_atomic_t pidCommand = 0;
volatile sig_atomic_t iPassedOn = 0;
sigset_t setCommandMask;

// Marks the end of the interpreter's thread: from then on a handler runs where it lands.
struct OwnerMark {
    bool bSet = false;
    ~OwnerMark() {
        if (bSet) bOwnerGone = 1;
    }
};
thread_local OwnerMark t_ownerMark;

void Fence() { std::atomic_signal_fence(std::memory_order_seq_cst); }

bool PassedToOwner(int sig) {
    if (bOwnerGone || pthread_equal(pthread_self(), thOwner)) return false;
    return pthread_kill(thOwner, sig) == 0;
}

void SetAction(int sig, void (*handler)(int), struct sigaction* old) {
    struct sigaction sa {};
    sa.sa_handler = handler;
    sa.sa_mask = setHandled;
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
    pthread_sigmask(SIG_BLOCK, &setHandled, nullptr);
    KeyboardSuspendRaw();
    OutputWriteWaiting();
    SetDefault(sig);
    CoverageFlush();
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
    pthread_sigmask(SIG_BLOCK, &setHandled, &saved);
    KeyboardSuspendRaw();
    OutputWriteWaiting();
    SetDefault(SIGTSTP);
    raise(SIGTSTP);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, SIGTSTP);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    pthread_sigmask(SIG_BLOCK, &one, nullptr);
    if (bRawInput) SetAction(SIGTSTP, OnStop, nullptr);
    KeyboardResumeRaw();
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

void Resume() {
    sigset_t saved;
    pthread_sigmask(SIG_BLOCK, &setHandled, &saved);
    KeyboardResumeRaw();
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
}

bool IsEnding(int sig) { return sig != SIGTSTP && sig != SIGCONT; }

// One signal waits for the guard to end; one that ends the process comes before a stop, and a
// stop before a continue.
void Defer(int sig) {
    int waiting = iDeferred;
    if (waiting == 0 || (IsEnding(sig) && !IsEnding(waiting)) || (sig == SIGTSTP && waiting == SIGCONT))
        iDeferred = sig;
}

void HandleDeferred() {
    int sig = iDeferred;
    iDeferred = 0;
    if (sig == SIGTSTP)
        Stop();
    else if (sig == SIGCONT)
        Resume();
    else if (sig != 0)
        EndBySignal(sig);
}

void OnEnd(int sig) {
    if (SignalInForkedChild(sig)) return;
    int savedErrno = errno;
    if (!PassedToOwner(sig)) {
        if ((sig == SIGTERM || sig == SIGHUP) && pidCommand > 0) {
            kill(static_cast<pid_t>(pidCommand), sig);
            if (iPassedOn == 0) iPassedOn = sig;
        } else if (iGuard > 0) {
            Defer(sig);
        } else {
            EndBySignal(sig);
        }
    }
    errno = savedErrno;
}

// A stop or a continue during raw input: act now, or once the outermost guard ends.
template <void (*Act)()>
void OnRawInputSignal(int sig) {
    if (SignalInForkedChild(sig)) return;
    int savedErrno = errno;
    if (!PassedToOwner(sig)) {
        if (iGuard > 0)
            Defer(sig);
        else
            Act();
    }
    errno = savedErrno;
}

void OnStop(int sig) { OnRawInputSignal<Stop>(sig); }
void OnContinue(int sig) { OnRawInputSignal<KeyboardResumeRaw>(sig); }

}  // namespace

void SignalsInit() {
    static bool done = false;
    if (done) return;
    done = true;
    thOwner = pthread_self();
    t_ownerMark.bSet = true;
    bOwnerGone = 0;

    sigemptyset(&setHandled);
    for (int sig : aEndingSignals) sigaddset(&setHandled, sig);
    sigaddset(&setHandled, SIGTSTP);
    sigaddset(&setHandled, SIGCONT);
    for (int sig : aEndingSignals) {
        struct sigaction old {};
        sigaction(sig, nullptr, &old);
        if (old.sa_handler != SIG_IGN) SetAction(sig, OnEnd, nullptr);
    }
    struct sigaction old {};
    sigaction(SIGTSTP, nullptr, &old);
    bStopIgnored = old.sa_handler == SIG_IGN;
    // The child signal ignored would take away how commands end (their processes are reaped
    // unseen) and would go on to them, where the shell gives it at its default.
    sigaction(SIGCHLD, nullptr, &old);
    if (old.sa_handler == SIG_IGN) SetDefault(SIGCHLD);
}

SignalGuard::SignalGuard() {
    iGuard = iGuard + 1;
    Fence();
}

SignalGuard::~SignalGuard() {
    Fence();
    iGuard = iGuard - 1;
    Fence();
    if (iGuard == 0 && iDeferred != 0) HandleDeferred();
}

void SignalsHold(sigset_t* saved) {
    pthread_sigmask(SIG_BLOCK, &setHandled, saved);
    Fence();
}

void SignalsRelease(const sigset_t* saved) {
    Fence();
    pthread_sigmask(SIG_SETMASK, saved, nullptr);
}

void SignalsRawInput(bool on) {
    if (on == bRawInput) return;
    bRawInput = on;
    if (on) {
        if (!bStopIgnored) SetAction(SIGTSTP, OnStop, &saOldStop);
        SetAction(SIGCONT, OnContinue, &saOldContinue);
    } else {
        if (!bStopIgnored) sigaction(SIGTSTP, &saOldStop, nullptr);
        sigaction(SIGCONT, &saOldContinue, nullptr);
    }
}

void SignalsCommandStarting() {
    sigset_t all;
    sigfillset(&all);
    iPassedOn = 0;
    pthread_sigmask(SIG_SETMASK, &all, &setCommandMask);
}

void SignalsCommandStarted(pid_t pid) {
    pidCommand = pid;
    Fence();
    pthread_sigmask(SIG_SETMASK, &setCommandMask, nullptr);
}

void SignalsCommandEnded() {
    pidCommand = 0;
    Fence();
    int sig = iPassedOn;
    if (sig != 0) EndBySignal(sig);
}

void SignalsForking(pid_t self) { pidForking.store(self); }

bool SignalInForkedChild(int sig) {
    pid_t forking = pidForking.load();
    if (forking == 0) return false;
    // The C library's getpid asks the system: the child's own id, not a remembered one.
    pid_t self = static_cast<pid_t>(syscall(SYS_getpid));
    if (self == forking) return false;
    int savedErrno = errno;
    SetDefault(sig);
    // Held back while the handler runs, taken at its default once it returns. Not raise(): it
    // would name the interpreter's thread, whose record the child shares.
    syscall(SYS_kill, self, sig);
    errno = savedErrno;
    return true;
}

}  // namespace kavro
