// Plain command lines started without the shell: which lines qualify, the environment the shell
// would give them, and that running them directly gives what running them through the shell gives.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

extern char** environ;

namespace {

// ---- Which lines are plain ---------------------------------------------------------------------

bool Plain(const char* line) {
    std::vector<std::string> words;
    return kavro::IsPlainCommand(line, words);
}

TEST(PlainCommand, WordsSplitAtBlanks) {
    std::vector<std::string> words;
    ASSERT_TRUE(kavro::IsPlainCommand("  ls \t -l  /tmp\t", words));
    EXPECT_EQ(words, (std::vector<std::string>{"ls", "-l", "/tmp"}));
    ASSERT_TRUE(kavro::IsPlainCommand("/bin/true", words));
    EXPECT_EQ(words, (std::vector<std::string>{"/bin/true"}));
    EXPECT_TRUE(Plain("dd if=a of=b bs=1k"));
    EXPECT_TRUE(Plain("cp a.b-c_d,e:f+g%h@i ./x/"));
}

TEST(PlainCommand, EmptyLineIsNotPlain) {
    EXPECT_FALSE(Plain(""));
    EXPECT_FALSE(Plain(" \t "));
}

TEST(PlainCommand, EveryShellCharacterSendsTheLineToTheShell) {
    for (char c : std::string("'\"$`\\<>|;&()*?[]~#{}!^\n\r\v\f\x01\x1b\x7f")) {
        std::string middle = std::string("ls a") + c + "b";
        std::string alone = std::string("ls ") + c;
        EXPECT_FALSE(Plain(middle.c_str())) << static_cast<int>(c);
        EXPECT_FALSE(Plain(alone.c_str())) << static_cast<int>(c);
    }
    EXPECT_FALSE(Plain("ls caf\xc3\xa9"));
}

TEST(PlainCommand, AssignmentFirstGoesToTheShell) {
    EXPECT_FALSE(Plain("x=1 ls"));
    EXPECT_FALSE(Plain("=x"));
    EXPECT_TRUE(Plain("ls x=1"));
}

TEST(PlainCommand, BuiltinsAndReservedWordsGoToTheShell) {
    for (const char* w : {".",     ":",    "alias", "bg",     "break",  "cd",    "chdir",    "command", "continue",
                          "echo",  "eval", "exec",  "exit",   "export", "false", "fg",       "getopts", "hash",
                          "jobs",  "kill", "local", "printf", "pwd",    "read",  "readonly", "return",  "set",
                          "shift", "test", "times", "trap",   "true",   "type",  "ulimit",   "umask",   "unalias",
                          "unset", "wait", "case",  "do",     "done",   "elif",  "else",     "esac",    "fi",
                          "for",   "if",   "in",    "then",   "until",  "while", "function", "select",  "time"}) {
        std::string line = std::string(w) + " x";
        EXPECT_FALSE(Plain(w)) << w;
        EXPECT_FALSE(Plain(line.c_str())) << w;
    }
    // Only the first word counts, and only in the shell's own spelling.
    EXPECT_TRUE(Plain("ls echo"));
    EXPECT_TRUE(Plain("ECHO x"));
    EXPECT_TRUE(Plain("/bin/echo x"));
}

// ---- The shell's environment -------------------------------------------------------------------

// Runs `program args` with exactly envp and returns its standard output.
std::string RunWith(const std::vector<std::string>& env, std::vector<const char*> argv) {
    std::vector<char*> envp;
    envp.reserve(env.size() + 1);
    for (const std::string& e : env) envp.push_back(const_cast<char*>(e.c_str()));
    envp.push_back(nullptr);
    argv.push_back(nullptr);
    int fds[2];
    if (pipe(fds) != 0) return "pipe failed";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    pid_t pid = 0;
    int rc = posix_spawn(&pid, argv[0], &actions, nullptr, const_cast<char**>(argv.data()), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    std::string out;
    char buf[4096];
    ssize_t n;
    while ((n = read(fds[0], buf, sizeof buf)) > 0 || (n < 0 && errno == EINTR))
        if (n > 0) out.append(buf, static_cast<size_t>(n));
    close(fds[0]);
    if (rc == 0) waitpid(pid, nullptr, 0);
    return out;
}

// The environment the shell gives its commands, as `env -0` prints it.
std::vector<std::string> ShellsOwn(const std::vector<std::string>& env) {
    std::string out = RunWith(env, {"/bin/sh", "-c", "/usr/bin/env -0"});
    std::vector<std::string> entries;
    for (size_t start = 0; start < out.size();) {
        size_t end = out.find('\0', start);
        if (end == std::string::npos) end = out.size();
        entries.push_back(out.substr(start, end - start));
        start = end + 1;
    }
    return entries;
}

std::vector<std::string> Ours(const std::vector<std::string>& env, bool* pbOk = nullptr, std::string* path = nullptr) {
    std::vector<char*> envp;
    envp.reserve(env.size() + 1);
    for (const std::string& e : env) envp.push_back(const_cast<char*>(e.c_str()));
    envp.push_back(nullptr);
    std::vector<std::string> entries;
    std::string searched;
    bool ok = kavro::ShellEnvironment(envp.data(), entries, searched);
    if (pbOk) *pbOk = ok;
    if (path) *path = searched;
    return entries;
}

std::string Cwd() {
    char* cwd = getcwd(nullptr, 0);
    std::string s = cwd ? cwd : "";
    free(cwd);
    return s;
}

TEST(ShellEnvironment, KeepsTheShellsOrderNotTheGivenOne) {
    std::vector<std::string> env = {"ZZ=1", "A=2", "PWD=" + Cwd(), "B=3", "HOME=/h", "PATH=/bin"};
    EXPECT_EQ(Ours(env), ShellsOwn(env));
    EXPECT_NE(Ours(env), env);
}

TEST(ShellEnvironment, AddsPwdWhenMissing) {
    std::vector<std::string> env = {"A=1", "PATH=/bin"};
    std::vector<std::string> ours = Ours(env);
    EXPECT_EQ(ours, ShellsOwn(env));
    EXPECT_NE(std::find(ours.begin(), ours.end(), "PWD=" + Cwd()), ours.end());
}

TEST(ShellEnvironment, ReplacesAWrongPwdInPlace) {
    for (const char* wrong : {"PWD=/", "PWD=relative", "PWD=", "PWD=/no/such/dir"}) {
        std::vector<std::string> env = {"A=1", wrong, "B=2"};
        EXPECT_EQ(Ours(env), ShellsOwn(env)) << wrong;
    }
}

TEST(ShellEnvironment, KeepsAPwdThatNamesTheDirectoryAnotherWay) {
    std::vector<std::string> env = {"A=1", "PWD=" + Cwd() + "/.", "B=2"};
    std::vector<std::string> ours = Ours(env);
    EXPECT_EQ(ours, ShellsOwn(env));
    EXPECT_NE(std::find(ours.begin(), ours.end(), "PWD=" + Cwd() + "/."), ours.end());
}

TEST(ShellEnvironment, DropsWhatTheShellCannotImport) {
    std::vector<std::string> env = {"1A=1", "A-B=2", "A B=3", "=4", "NOEQUALS", "caf\xc3\xa9=5", "_ok=6", "ok_9=7"};
    std::vector<std::string> ours = Ours(env);
    EXPECT_EQ(ours, ShellsOwn(env));
    EXPECT_EQ(ours.size(), 3u);  // _ok, ok_9 and PWD
}

TEST(ShellEnvironment, DuplicatesKeepTheFirstPlaceAndTheLastValue) {
    std::vector<std::string> env = {"A=1", "B=2", "A=3", "PATH=/x", "PATH=/usr/bin:/bin"};
    std::string path;
    std::vector<std::string> ours = Ours(env, nullptr, &path);
    EXPECT_EQ(ours, ShellsOwn(env));
    EXPECT_EQ(path, "/usr/bin:/bin");
}

TEST(ShellEnvironment, VariablesOfTheShellsOwn) {
    std::vector<std::string> env = {"IFS=abc", "PPID=1", "PS1=p", "PS2=q", "PS4=r", "MAIL=m", "MAILPATH=n", "LINENO=5"};
    EXPECT_EQ(Ours(env), ShellsOwn(env));
}

TEST(ShellEnvironment, DefaultSearchPathWithoutPath) {
    std::string path;
    Ours({"A=1"}, nullptr, &path);
    EXPECT_EQ(path, "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
}

TEST(ShellEnvironment, AnImportedOptindIsLeftToTheShell) {
    bool ok = true;
    Ours({"OPTIND=1"}, &ok);
    EXPECT_FALSE(ok);
}

// Random environments: names of the shell's own variables, valid and invalid names, characters
// from every class, empty values, duplicates, entries without "=", and PWD in its forms.
TEST(ShellEnvironment, MatchesTheShellOnRandomEnvironments) {
    uint32_t seed = 12345;
    auto next = [&seed](uint32_t n) {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 8) % n;
    };
    const char* specials[] = {"PATH", "IFS",      "PPID", "PWD", "PS1",    "PS2",   "PS4", "MAIL", "MAILPATH", "LINENO",
                              "TERM", "HISTSIZE", "HOME", "ENV", "OLDPWD", "SHLVL", "_",   "A",    "a",        "Z_9"};
    const std::string nameBytes = "ABCXYZabcxyz_019-.:+@ \xc3\xa9";
    const std::string valueBytes = "abc =/:\n\txyz019\xc3";
    std::string cwd = Cwd();
    int compared = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<std::string> env;
        uint32_t count = next(60);
        for (uint32_t i = 0; i < count; ++i) {
            std::string name;
            if (next(10) < 3) {
                name = specials[next(sizeof specials / sizeof specials[0])];
            } else {
                for (uint32_t k = next(9); k > 0; --k) name += nameBytes[next(nameBytes.size())];
            }
            if (!env.empty() && next(10) == 0) {
                const std::string& other = env[next(env.size())];
                name = other.substr(0, other.find('='));  // a duplicate
            }
            std::string value;
            for (uint32_t k = next(7); k > 0; --k) value += valueBytes[next(valueBytes.size())];
            if (next(20) != 0) name += "=" + value;
            env.push_back(name);
        }
        switch (next(6)) {
            case 0: env.push_back("PWD=" + cwd); break;
            case 1: env.push_back("PWD=/tmp"); break;
            case 2: env.push_back("PWD=" + cwd + "/."); break;
            case 3: env.push_back("PWD=rel"); break;
            default: break;
        }
        bool ok = false;
        std::vector<std::string> ours = Ours(env, &ok);
        if (!ok) continue;  // an OPTIND: left to the shell
        ++compared;
        ASSERT_EQ(ours, ShellsOwn(env)) << "round " << round;
    }
    EXPECT_GT(compared, 300);
}

// ---- Running lines directly and through the shell ------------------------------------------------

using kvtest::TempDir;

using kvtest::ReadFile;

void WriteFile(const std::string& path, const std::string& text, mode_t mode) {
    {
        std::ofstream out(path, std::ios::binary);
        out << text;
    }
    chmod(path.c_str(), mode);
}

struct LineRun {
    int iStatus;
    std::string sOut;
    std::string sErr;
    bool operator==(const LineRun& o) const { return iStatus == o.iStatus && sOut == o.sOut && sErr == o.sErr; }
};

std::ostream& operator<<(std::ostream& os, const LineRun& r) {
    return os << "status " << r.iStatus << ", out \"" << r.sOut << "\", err \"" << r.sErr << "\"";
}

class KavroSpawn : public ::testing::Test {
protected:
    void SetUp() override {
        kavro::t_StackClear();
        ASSERT_FALSE(dir.sPath.empty());
    }
    void TearDown() override {
        kavro::t_StackClear();
        kavro::Kavro->bPlain = false;
    }

    // Runs a line with standard output and error going to files; stacked text is given to it.
    LineRun RunLine(const char* line, bool bPlain, const char* stacked = nullptr) {
        kavro::Kavro->bPlain = bPlain;
        if (stacked) kavro::t_StackWrite(stacked);
        std::string out = dir / "stdout";
        std::string err = dir / "stderr";
        fflush(stdout);
        fflush(stderr);
        int saved1 = fcntl(1, F_DUPFD_CLOEXEC, 10), saved2 = fcntl(2, F_DUPFD_CLOEXEC, 10);
        int fd1 = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int fd2 = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(fd1, 1);
        dup2(fd2, 2);
        close(fd1);
        close(fd2);
        errno = 0;
        kavro::t_system(line);
        int status = errno;
        dup2(saved1, 1);
        dup2(saved2, 2);
        close(saved1);
        close(saved2);
        kavro::t_StackClear();
        kavro::Kavro->bPlain = false;
        return {status, ReadFile(out), ReadFile(err)};
    }

    // The line run directly must give exactly what it gives through the shell.
    LineRun Both(const char* line, const char* stacked = nullptr) {
        LineRun direct = RunLine(line, false, stacked);
        LineRun shell = RunLine(line, true, stacked);
        EXPECT_EQ(direct, shell) << line;
        return direct;
    }

    kvtest::Context ctx;
    TempDir dir;
};

TEST_F(KavroSpawn, StatusOfAProgram) {
    EXPECT_EQ(Both("/bin/true").iStatus, 0);
    EXPECT_EQ(Both("false").iStatus, 1);  // a builtin: the shell's own
    EXPECT_EQ(Both("/bin/false").iStatus, 1);
    EXPECT_EQ(Both("ls /no/such/file").iStatus, 2);
}

TEST_F(KavroSpawn, NotFoundIsTheShellsMessage) {
    LineRun r = Both("no_such_command_kvexec x");
    EXPECT_EQ(r.iStatus, 127);
    EXPECT_EQ(r.sErr, "sh: 1: no_such_command_kvexec: not found\n");
    EXPECT_EQ(Both("/no/such/program").iStatus, 127);
}

TEST_F(KavroSpawn, FilesThatAreNoProgram) {
    std::string plainFile = dir / "data";
    WriteFile(plainFile, "echo hi\n", 0644);
    LineRun r = Both(plainFile.c_str());
    EXPECT_EQ(r.iStatus, 126);
    EXPECT_EQ(r.sErr, "sh: 1: " + plainFile + ": Permission denied\n");
    r = Both(dir.sPath.c_str());
    EXPECT_EQ(r.iStatus, 126);
}

TEST_F(KavroSpawn, ScriptWithoutInterpreterLineRunsThroughTheShell) {
    std::string script = dir / "script";
    WriteFile(script, "read line\necho \"got $line\"\nexit 4\n", 0755);
    LineRun r = Both(script.c_str(), "first\nsecond\n");
    EXPECT_EQ(r.iStatus, 4);
    EXPECT_EQ(r.sOut, "got first\n");
}

TEST_F(KavroSpawn, StackedTextIsTheInput) {
    LineRun r = Both("cat", "one\ntwo");
    EXPECT_EQ(r.sOut, "one\ntwo");
    EXPECT_EQ(r.iStatus, 0);
}

TEST_F(KavroSpawn, KilledBySignal) {
    std::string script = dir / "selfkill";
    WriteFile(script, "#!/bin/sh\nkill -TERM $$\n", 0755);
    LineRun r = Both(script.c_str());
    EXPECT_EQ(r.iStatus, 128 + 15);
    EXPECT_EQ(r.sErr, "Terminated\n");
    for (const char* name : {"KILL", "SEGV", "HUP", "USR1", "PIPE", "INT", "35", "32"}) {
        WriteFile(script, std::string("#!/bin/sh\nkill -") + name + " $$\n", 0755);
        Both(script.c_str());
    }
}

TEST_F(KavroSpawn, SameEnvironmentAndSignals) {
    LineRun r = Both("env");
    EXPECT_NE(r.sOut.find("PWD="), std::string::npos);
    // Dispositions and mask of the command: ignored, blocked, caught.
    r = Both("grep -e SigBlk -e SigIgn -e SigCgt /proc/self/status");
    EXPECT_NE(r.sOut.find("SigIgn:"), std::string::npos);
    // With signals of the interpreter caught, ignored and blocked.
    struct sigaction caught {
    }, ignored{}, oldTerm{}, oldHup{}, oldUsr1{};
    caught.sa_handler = [](int) {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGTERM, &caught, &oldTerm);
    sigaction(SIGUSR1, &caught, &oldUsr1);
    sigaction(SIGHUP, &ignored, &oldHup);
    sigset_t blocked, oldMask;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &blocked, &oldMask);
    Both("grep -e SigBlk -e SigIgn -e SigCgt /proc/self/status");
    pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
    sigaction(SIGTERM, &oldTerm, nullptr);
    sigaction(SIGUSR1, &oldUsr1, nullptr);
    sigaction(SIGHUP, &oldHup, nullptr);
}

TEST_F(KavroSpawn, PathSearchAsTheShellDoes) {
    std::string first = dir / "first";
    std::string second = dir / "second";
    mkdir(first.c_str(), 0755);
    mkdir(second.c_str(), 0755);
    // Not executable, then a directory of the same name, then the program.
    WriteFile(first + "/tool", "#!/bin/sh\necho first\n", 0644);
    mkdir((second + "/tool").c_str(), 0755);
    std::string third = dir / "third";
    mkdir(third.c_str(), 0755);
    WriteFile(third + "/tool", "#!/bin/sh\necho third\n", 0755);
    const char* saved = getenv("PATH");
    std::string savedPath = saved ? saved : "";
    setenv("PATH", (first + ":" + second + ":" + third).c_str(), 1);
    EXPECT_EQ(Both("tool").sOut, "third\n");
    // An empty element is the current directory.
    std::string cwd = Cwd();
    ASSERT_EQ(chdir(third.c_str()), 0);
    setenv("PATH", "/nonexistent::/bin", 1);
    EXPECT_EQ(Both("tool").sOut, "third\n");
    setenv("PATH", "", 1);
    EXPECT_EQ(Both("tool").sOut, "third\n");
    // A name with "/" is not searched.
    setenv("PATH", third.c_str(), 1);
    EXPECT_EQ(Both("./tool").sOut, "third\n");
    EXPECT_EQ(Both("sub/tool").iStatus, 127);
    ASSERT_EQ(chdir(cwd.c_str()), 0);
    setenv("PATH", savedPath.c_str(), 1);
}

// Each command gets the environment as it is when it starts: after "set", after the working
// directory changed, and after the directory PWD names was renamed.
TEST_F(KavroSpawn, EnvironmentAsItIsAtEachCommand) {
    auto has = [](const LineRun& r, const std::string& entry) {
        return ("\n" + r.sOut).find("\n" + entry + "\n") != std::string::npos;
    };
    std::string cwd = Cwd();
    const char* saved = getenv("PWD");
    std::string savedPwd = saved ? saved : "";
    setenv("PWD", cwd.c_str(), 1);
    EXPECT_TRUE(has(Both("env"), "PWD=" + cwd));
    setenv("KVEXEC_UNIT_X", "1", 1);
    EXPECT_TRUE(has(Both("env"), "KVEXEC_UNIT_X=1"));
    setenv("KVEXEC_UNIT_X", "2", 1);
    EXPECT_TRUE(has(Both("env"), "KVEXEC_UNIT_X=2"));
    unsetenv("KVEXEC_UNIT_X");
    EXPECT_EQ(Both("env").sOut.find("KVEXEC_UNIT_X"), std::string::npos);
    // PWD no longer names the working directory: the shell's PWD is the directory's path.
    std::string first = dir / "first";
    std::string second = dir / "second";
    mkdir(first.c_str(), 0755);
    ASSERT_EQ(chdir(first.c_str()), 0);
    char* real = realpath(first.c_str(), nullptr);
    ASSERT_NE(real, nullptr);
    std::string firstReal = real;
    free(real);
    EXPECT_TRUE(has(Both("env"), "PWD=" + firstReal));
    setenv("PWD", first.c_str(), 1);
    EXPECT_TRUE(has(Both("env"), "PWD=" + first));
    // Renamed while it is the working directory: PWD names nothing any more.
    ASSERT_EQ(rename(first.c_str(), second.c_str()), 0);
    LineRun r = Both("env");
    EXPECT_FALSE(has(r, "PWD=" + first));
    EXPECT_EQ(r.sOut.find("PWD=" + first + "\n"), std::string::npos);
    EXPECT_NE(r.sOut.find("PWD=" + firstReal.substr(0, firstReal.size() - 5) + "second\n"), std::string::npos);
    ASSERT_EQ(chdir(cwd.c_str()), 0);
    if (saved)
        setenv("PWD", savedPwd.c_str(), 1);
    else
        unsetenv("PWD");
}

TEST_F(KavroSpawn, PlainModeAlwaysUsesTheShell) {
    // Only the shell knows its own process: $PPID is the interpreter either way, and the parent
    // of the command is the shell only on the plain path.
    std::string script = dir / "parent";
    WriteFile(script, "#!/bin/sh\ncat /proc/$PPID/comm\n", 0755);
    EXPECT_EQ(RunLine(script.c_str(), true).sOut, "sh\n");
    EXPECT_NE(RunLine(script.c_str(), false).sOut, "sh\n");
}

TEST_F(KavroSpawn, DescriptorsOfTheInterpreterStayClosed) {
    // The stacked text becomes standard input and nothing else.
    EXPECT_EQ(Both("ls /proc/self/fd", "stacked\n").sOut, Both("ls /proc/self/fd").sOut);
}

}  // namespace
