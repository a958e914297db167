// The command processor: command lines run as /bin/sh -c runs them; plain ones are started
// directly (spawn.cpp), without the shell in between.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "kavro.h"
#include "plain_command.h"
#include "signals.h"

extern char** environ;

namespace kavro {

namespace {

// A file holding the stacked text, positioned at its start, or -1.
int StackAsInput() {
    const std::string& text = StackContents();
    if (text.empty()) return -1;
    int fd = memfd_create("kvexec-stack", MFD_CLOEXEC);
    if (fd < 0) {
        FILE* f = tmpfile();
        if (!f) return -1;
        fd = fcntl(fileno(f), F_DUPFD_CLOEXEC, 0);
        fclose(f);
        if (fd < 0) return -1;
    }
    size_t done = 0;
    while (done < text.size()) {
        ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    lseek(fd, 0, SEEK_SET);
    return fd;
}

// Interrupt or quit typed at the terminal while a command started directly runs. The shell would
// have received it as well: on interrupt it waits for its command and then ends as interrupted,
// on quit it ends at once.
volatile sig_atomic_t iTyped = 0;
pthread_t thWaiter;  // the thread waiting for the command

void NoteTyped(int sig, siginfo_t* info, void* /*context*/) {
    if (SignalInForkedChild(sig)) return;
    if (info && info->si_code == SI_KERNEL && iTyped != SIGQUIT) iTyped = sig;
    // A key reaches whichever thread of the process takes it: quit must wake the waiting one.
    if (sig == SIGQUIT && iTyped == SIGQUIT && !pthread_equal(pthread_self(), thWaiter))
        pthread_kill(thWaiter, SIGQUIT);
}

// Catches interrupt and quit while a command started directly runs; the dispositions before are
// put back when it ends.
class TypedWatched {
public:
    TypedWatched() {
        iTyped = 0;
        thWaiter = pthread_self();
        struct sigaction note {};
        note.sa_sigaction = NoteTyped;
        note.sa_flags = SA_SIGINFO;  // no SA_RESTART: quit must end the wait
        sigemptyset(&note.sa_mask);
        sigaction(SIGINT, &note, &saInterrupt);
        sigaction(SIGQUIT, &note, &saQuit);
    }
    ~TypedWatched() {
        sigaction(SIGINT, &saInterrupt, nullptr);
        sigaction(SIGQUIT, &saQuit, nullptr);
    }
    TypedWatched(const TypedWatched&) = delete;
    TypedWatched& operator=(const TypedWatched&) = delete;

private:
    struct sigaction saInterrupt {};
    struct sigaction saQuit {};
};

// Throws away an interrupt or quit typed before the command's process exists, which the command
// never gets: the shell would have ignored it (as the interpreter does while it starts the
// shell). Called with every signal held back, just before the process is made.
void DiscardTyped() {
    sigset_t typed;
    sigemptyset(&typed);
    sigaddset(&typed, SIGINT);
    sigaddset(&typed, SIGQUIT);
    struct timespec now {};
    while (sigtimedwait(&typed, nullptr, &now) > 0) {
    }
}

// Waits for the command and returns its wait status. A quit typed meanwhile ends the wait.
int Await(pid_t pid) {
    int ws = 0;
    while (iTyped != SIGQUIT && waitpid(pid, &ws, 0) < 0 && errno == EINTR) {
    }
    return ws;
}

// The shell's note on standard error when its command was ended by a signal other than interrupt
// and broken pipe: the signal's description (untranslated, as the shell runs in the C locale).
void ReportSignal(int ws) {
    int sig = WTERMSIG(ws);
    if (sig == SIGINT || sig == SIGPIPE) return;
    char text[64];
    int n = 0;
    if (const char* description = sigdescr_np(sig))
        n = snprintf(text, 32, "%s", description);
    else if (sig >= SIGRTMIN && sig <= SIGRTMAX)
        n = snprintf(text, 32, "Real-time signal %d", sig - SIGRTMIN);
    else
        n = snprintf(text, 32, "Unknown signal %d", sig);
    n = n > 31 ? 31 : n;
    if (WCOREDUMP(ws)) n += snprintf(text + n, sizeof text - static_cast<size_t>(n), " (core dumped)");
    text[n++] = '\n';
    ssize_t rc = write(2, text, static_cast<size_t>(n));
    (void)rc;
}

// The status the shell reports (exit code, or 128 + signal). For a command started directly, also
// what the shell would have said and done: its note on a signal, and its own end on a typed key.
int Status(int ws, bool bDirect) {
    if (bDirect) {
        if (iTyped == SIGQUIT) return 128 + SIGQUIT;
        if (WIFSIGNALED(ws)) ReportSignal(ws);
        if (iTyped == SIGINT) return 128 + SIGINT;
    }
    if (WIFSIGNALED(ws)) return 128 + WTERMSIG(ws);
    return WIFEXITED(ws) ? WEXITSTATUS(ws) : 127;
}

}  // namespace

InterruptsIgnored::InterruptsIgnored() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGINT, &ignore, &saInterrupt);
    sigaction(SIGQUIT, &ignore, &saQuit);
}

InterruptsIgnored::~InterruptsIgnored() {
    sigaction(SIGINT, &saInterrupt, nullptr);
    sigaction(SIGQUIT, &saQuit, nullptr);
}

namespace {

// Runs a plain line without the shell. Returns its status, or -1 when its program could not be
// started (nothing has happened then, and the line goes to the shell).
int RunDirect(const PlainCommand& plain, int input) {
    // Every signal is held back until the command's process id is known. Interrupt and quit are
    // caught from the start, so exec sets them back to their default in the command's process,
    // as it does every caught signal.
    SignalsCommandStarting();
    TypedWatched watched;
    DiscardTyped();
    pid_t pid = StartPlain(plain, input);
    SignalsCommandStarted(pid > 0 ? pid : 0);
    if (pid <= 0) return -1;
    int ws = Await(pid);
    SignalsCommandEnded();
    return Status(ws, true);
}

// Runs a line through /bin/sh -c, as system() does: the interpreter ignores interrupt and quit
// while the command runs, and the command gets their default handling.
int RunThroughShell(const char* command, int input) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (input >= 0) posix_spawn_file_actions_adddup2(&actions, input, 0);
    posix_spawnattr_t attr;
    posix_spawnattr_init(&attr);
    sigset_t defaults, none;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGQUIT);
    sigaddset(&defaults, SIGPIPE);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attr, &defaults);
    posix_spawnattr_setsigmask(&attr, &none);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    int status = 127;
    iTyped = 0;
    {
        InterruptsIgnored ignored;
        // Terminate and hangup go on to the command, and end the run once it has ended.
        SignalsCommandStarting();
        char sh[] = "sh";
        char dashc[] = "-c";
        char* argv[] = {sh, dashc, const_cast<char*>(command), nullptr};
        pid_t pid = -1;
        if (posix_spawn(&pid, "/bin/sh", &actions, &attr, argv, environ) != 0) pid = -1;
        SignalsCommandStarted(pid > 0 ? pid : 0);
        if (pid > 0) {
            int ws = Await(pid);
            SignalsCommandEnded();
            status = Status(ws, false);
        }
    }
    posix_spawnattr_destroy(&attr);
    posix_spawn_file_actions_destroy(&actions);
    return status;
}

}  // namespace

int t_system(const char* command) {
#ifdef KVEXEC_FUZZ
    // The fuzzing build records the command instead of running it (fuzzing.cpp).
    errno = FuzzCommand(command);
    return errno;
#endif
    TermFlush();
    int input = StackAsInput();
    int status = -1;
    PlainCommand plain;
    if (!Kavro->bPlain && PreparePlain(command, plain)) status = RunDirect(plain, input);
    if (status < 0) status = RunThroughShell(command, input);
    if (input >= 0) close(input);
    ++uiOutsideTurns;
    errno = status;
    return status;
}

}  // namespace kavro
