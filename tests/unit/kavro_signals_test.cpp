// Signals and write errors of the terminal runtime. Each case runs in a child process of its own,
// with standard output (and error) sent to files, and looks at how the child ended and what
// reached the files.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "signals.h"
#include "test_support.h"

namespace {

using kvtest::ReadFile;

// Ends a child process as _exit does, its line counters written first in a coverage build.
[[noreturn]] void EndChild(int status) {
    kavro::CoverageFlush();
    _exit(status);
}

class KavroSignals : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(dir.sPath.empty());
        sOut = dir / "out";
        sErr = dir / "err";
        std::ofstream(sOut).close();  // the child opens it without creating it
    }

    // Runs body in a child whose standard output goes to sOut (or to `output` when given) and
    // whose standard error goes to sErr, with the runtime started as at the start of a run.
    // Returns the child's wait status.
    template <typename Body>
    int InChild(Body body, const char* output = nullptr) {
        fflush(nullptr);
        pid_t pid = fork();
        if (pid == 0) {
            int out = open(output ? output : sOut.c_str(), O_WRONLY | O_TRUNC);
            int err = open(sErr.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            if (out < 0 || err < 0) EndChild(90);
            dup2(out, 1);
            dup2(err, 2);
            for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) signal(sig, SIG_DFL);
            setenv("KVEXEC_TERM", "raw", 1);
            kavro::TermCapture(nullptr);
            kavro::TermInit();
            body();
            EndChild(91);
        }
        // A stopped child is counted and continued.
        int status = 0;
        iStops = 0;
        while (waitpid(pid, &status, WUNTRACED) == pid && WIFSTOPPED(status)) {
            ++iStops;
            kill(pid, SIGCONT);
        }
        return status;
    }

    void ExpectOutputWrittenThenDeathBy(int sig, int status) {
        EXPECT_TRUE(WIFSIGNALED(status)) << "status " << status;
        if (WIFSIGNALED(status)) {
            EXPECT_EQ(WTERMSIG(status), sig);
        }
        EXPECT_EQ(ReadFile(sOut), "progress\r");
    }

    // With raw input on, sends the signals to itself during a guard, then writes and ends with 0:
    // a run that goes on once the guard has ended. Returns how often it was stopped.
    int GoOnAfterAGuard(std::initializer_list<int> signals) {
        std::vector<int> sent(signals);
        int status = InChild([&sent] {
            setpgid(0, 0);  // a group of its own, which a stop may stop
            kavro::SignalsRawInput(true);
            {
                kavro::SignalGuard guard;
                for (int sig : sent) kill(getpid(), sig);
            }
            kavro::TermWrite("went on\r");
            kavro::TermFlush();
            EndChild(0);
        });
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
        EXPECT_EQ(ReadFile(sOut), "went on\r");
        return iStops;
    }

    kvtest::TempDir dir;
    int iStops = 0;
    std::string sOut;
    std::string sErr;
};

// ---- a signal that ends the run writes what is waiting -------------------------------------

TEST_F(KavroSignals, TerminateWritesTheWaitingOutputThenEndsOfIt) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        kill(getpid(), SIGTERM);
    });
    ExpectOutputWrittenThenDeathBy(SIGTERM, status);
}

TEST_F(KavroSignals, InterruptWritesTheWaitingOutputThenEndsOfIt) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        kill(getpid(), SIGINT);
    });
    ExpectOutputWrittenThenDeathBy(SIGINT, status);
}

TEST_F(KavroSignals, HangupWritesTheWaitingOutputThenEndsOfIt) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        kill(getpid(), SIGHUP);
    });
    ExpectOutputWrittenThenDeathBy(SIGHUP, status);
}

TEST_F(KavroSignals, OutputAlreadyWrittenIsNotWrittenAgain) {
    int status = InChild([] {
        kavro::TermWrite("pro");
        kavro::TermFlush();
        kavro::TermWrite("gress\r");
        kill(getpid(), SIGTERM);
    });
    ExpectOutputWrittenThenDeathBy(SIGTERM, status);
}

// An ignored signal stays ignored: the run goes on.
TEST_F(KavroSignals, SignalIgnoredAtStartStaysIgnored) {
    fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        int out = open(sOut.c_str(), O_WRONLY | O_TRUNC);
        dup2(out, 1);
        signal(SIGHUP, SIG_IGN);
        setenv("KVEXEC_TERM", "raw", 1);
        kavro::TermCapture(nullptr);
        kavro::TermInit();
        kavro::TermWrite("still here\r");
        kill(getpid(), SIGHUP);
        kavro::TermFlush();
        EndChild(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    EXPECT_EQ(ReadFile(sOut), "still here\r");
}

// ---- signals during a guard, and on another thread --------------------------------------------

TEST_F(KavroSignals, AnEndingSignalDuringAGuardIsHandledWhenTheGuardEnds) {
    int status = InChild([] {
        kavro::SignalGuard guard;
        kill(getpid(), SIGTERM);
        kavro::TermWrite("progress\r");
    });
    ExpectOutputWrittenThenDeathBy(SIGTERM, status);
    EXPECT_EQ(iStops, 0);
}

TEST_F(KavroSignals, DuringAGuardAnEndingSignalComesBeforeAStop) {
    for (bool bStopFirst : {true, false}) {
        int status = InChild([bStopFirst] {
            setpgid(0, 0);  // a group of its own, which a stop may stop
            kavro::SignalsRawInput(true);
            kavro::TermWrite("progress\r");
            kavro::SignalGuard guard;
            kill(getpid(), bStopFirst ? SIGTSTP : SIGTERM);
            kill(getpid(), bStopFirst ? SIGTERM : SIGTSTP);
        });
        ExpectOutputWrittenThenDeathBy(SIGTERM, status);
        EXPECT_EQ(iStops, 0) << bStopFirst;
    }
}

TEST_F(KavroSignals, DuringAGuardAStopComesBeforeAContinue) {
    EXPECT_EQ(GoOnAfterAGuard({SIGCONT, SIGTSTP, SIGCONT}), 1);
}

TEST_F(KavroSignals, AContinueDuringAGuardIsHandledWhenTheGuardEnds) { EXPECT_EQ(GoOnAfterAGuard({SIGCONT}), 0); }

// A signal sent to the process that lands on another thread is passed on to the interpreter's.
TEST_F(KavroSignals, ASignalTakenByAnotherThreadIsPassedToTheInterpreters) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        sigset_t term;
        sigemptyset(&term);
        sigaddset(&term, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &term, nullptr);
        static std::atomic<bool> bTaken{false};
        std::thread other([term] {
            sigset_t open;
            pthread_sigmask(SIG_BLOCK, nullptr, &open);
            sigdelset(&open, SIGTERM);
            sigsuspend(&open);  // returns once the handler has run here
            bTaken = true;
            for (;;) pause();
        });
        other.detach();
        kill(getpid(), SIGTERM);
        for (int i = 0; i < 5000 && !bTaken; ++i) usleep(1000);
        if (!bTaken) EndChild(94);
        sigset_t pending;
        sigpending(&pending);
        if (!sigismember(&pending, SIGTERM)) EndChild(95);
        // Had the other thread ended the process, this would never be written.
        kavro::TermWrite("passed on\r");
        pthread_sigmask(SIG_UNBLOCK, &term, nullptr);
        EndChild(96);
    });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << "status " << status;
    EXPECT_EQ(ReadFile(sOut), "progress\rpassed on\r");
}

// ---- a command's process before its program runs -------------------------------------------

// The wait status of a forked process that sends itself the signal and, if it goes on, ends with 0
// when the signal is then at its default (97 when not).
int ForkedSendsItself(int sig) {
    pid_t child = fork();
    if (child == 0) {
        kill(getpid(), sig);
        struct sigaction now {};
        sigaction(sig, nullptr, &now);
        EndChild(now.sa_handler == SIG_DFL ? 0 : 97);
    }
    int ws = 0;
    waitpid(child, &ws, 0);
    return ws;
}

// A signal taken in a process forked to start a command, before its program runs, ends that
// process as the signal's default would, and nothing of the interpreter's runs there: the output
// waiting is not written twice. The interpreter itself still handles the signal as always.
TEST_F(KavroSignals, SignalInAForkedChildTakesItsDefaultThere) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        kavro::SignalsForking(getpid());
        for (int sig : {SIGTERM, SIGINT, SIGUSR1}) {
            int ws = ForkedSendsItself(sig);
            if (!WIFSIGNALED(ws) || WTERMSIG(ws) != sig) EndChild(93);
        }
        // A signal whose default is to go on: the process goes on, the signal at its default.
        kavro::SignalsRawInput(true);
        int ws = ForkedSendsItself(SIGCONT);
        if (!WIFEXITED(ws) || WEXITSTATUS(ws) != 0) EndChild(98);
        kill(getpid(), SIGTERM);
    });
    ExpectOutputWrittenThenDeathBy(SIGTERM, status);
}

TEST_F(KavroSignals, OutsideTheForkingTheHandlersAreTheInterpretersInEveryProcess) {
    int status = InChild([] {
        kavro::TermWrite("progress\r");
        kavro::SignalsForking(getpid());
        kavro::SignalsForking(0);
        int ws = ForkedSendsItself(SIGTERM);
        // The forked process wrote the waiting output before it ended; the interpreter ends with
        // nothing written twice only because it wrote nothing itself.
        EndChild(WIFSIGNALED(ws) && WTERMSIG(ws) == SIGTERM ? 0 : 93);
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    EXPECT_EQ(ReadFile(sOut), "progress\r");
}

// ---- write errors --------------------------------------------------------------------------

TEST_F(KavroSignals, WriteErrorEndsTheRunWithAMessageAndStatus1) {
    int status = InChild(
        [] {
            kavro::TermWrite("lost\r");
            kavro::TermFlush();
            EndChild(0);
        },
        "/dev/full");
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << "status " << status;
    EXPECT_EQ(ReadFile(sErr), "kvexec: write error: " + std::string(strerror(ENOSPC)) + "\n");
}

TEST_F(KavroSignals, WriteErrorAtTheEndOfTheRunSetsStatus1) {
    int status = InChild(
        [] {
            kavro::TermWrite("lost\r");
            exit(0);
        },
        "/dev/full");
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << "status " << status;
    EXPECT_EQ(ReadFile(sErr), "kvexec: write error: " + std::string(strerror(ENOSPC)) + "\n");
}

}  // namespace
