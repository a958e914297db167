// The command processor: command lines run through /bin/sh -c.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "kavro.h"
#include "signals.h"

extern char** environ;

namespace kavro {

namespace {

// A file holding the stacked text, positioned at its start, or -1.
int StackAsInput() {
    const std::string& text = t_StackText();
    if (text.empty()) return -1;
    int fd = memfd_create("kvexec-stack", MFD_CLOEXEC);
    if (fd < 0) {
        FILE* f = tmpfile();
        if (!f) return -1;
        fd = dup(fileno(f));
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

}  // namespace

int t_system(const char* command) {
#ifdef KVEXEC_FUZZ
    // The fuzzing build records the command instead of running it (fuzzing.cpp).
    errno = FuzzCommand(command);
    return errno;
#endif
    TermFlush();
    int input = StackAsInput();

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (input >= 0) posix_spawn_file_actions_adddup2(&actions, input, 0);

    // As the shell's system() does: the interpreter ignores interrupt and quit while the command
    // runs, and the command gets their default handling.
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

    struct sigaction ignore {
    }, oldInt{}, oldQuit{};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGINT, &ignore, &oldInt);
    sigaction(SIGQUIT, &ignore, &oldQuit);

    char sh[] = "sh";
    char dashc[] = "-c";
    char* argv[] = {sh, dashc, const_cast<char*>(command), nullptr};
    pid_t pid = 0;
    int status = 127;
    // Terminate and hangup go on to the command, and end the run once it has ended.
    SignalsCommandStarting();
    bool started = posix_spawn(&pid, "/bin/sh", &actions, &attr, argv, environ) == 0;
    SignalsCommandStarted(started ? pid : 0);
    if (started) {
        int ws = 0;
        while (waitpid(pid, &ws, 0) < 0 && errno == EINTR) {
        }
        SignalsCommandEnded();
        if (WIFEXITED(ws))
            status = WEXITSTATUS(ws);
        else if (WIFSIGNALED(ws))
            status = 128 + WTERMSIG(ws);
    }

    sigaction(SIGINT, &oldInt, nullptr);
    sigaction(SIGQUIT, &oldQuit, nullptr);
    posix_spawnattr_destroy(&attr);
    posix_spawn_file_actions_destroy(&actions);
    if (input >= 0) close(input);
    ++uiOutsideTurns;
    errno = status;
    return status;
}

}  // namespace kavro
