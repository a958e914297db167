// Plain command lines: those /bin/sh would run as one program, resolved here as the shell resolves
// them, so that they can be started without it. Anything the shell could read differently is left
// to the shell.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "kavro.h"
#include "plain_command.h"
#include "signals.h"

extern char** environ;

namespace kavro {

namespace {

// Words the shell runs itself: its builtins and its reserved words, with those of other shells
// for good measure. A line starting with one of them goes through the shell.
const char* const aszShellWords[] = {
    // builtins of /bin/sh
    ".", ":", "[", "alias", "bg", "break", "cd", "chdir", "command", "continue", "echo", "eval", "exec", "exit",
    "export", "false", "fc", "fg", "getopts", "hash", "jobs", "kill", "local", "printf", "pwd", "read", "readonly",
    "return", "set", "shift", "test", "times", "trap", "true", "type", "ulimit", "umask", "unalias", "unset", "wait",
    // reserved words
    "!", "{", "}", "case", "do", "done", "elif", "else", "esac", "fi", "for", "if", "in", "then", "until", "while",
    // words of other shells
    "[[", "]]", "builtin", "coproc", "declare", "function", "let", "select", "source", "time", "typeset"};

bool IsShellWord(const char* word) {
    static const std::vector<std::string_view> aSorted = [] {
        std::vector<std::string_view> words(std::begin(aszShellWords), std::end(aszShellWords));
        std::sort(words.begin(), words.end());
        return words;
    }();
    return std::binary_search(aSorted.begin(), aSorted.end(), std::string_view(word));
}

// Bytes a plain line may hold besides the blanks: letters, digits and punctuation that means
// nothing to the shell. Quotes, "$", "`", "\", redirections, "|", ";", "&", parentheses, glob
// characters, "~", "#", braces, "!", control characters and bytes above 127 all send the line
// to the shell.
struct PlainBytes {
    bool aPlain[256] = {};
    PlainBytes() {
        for (int c = 'a'; c <= 'z'; ++c) aPlain[c] = true;
        for (int c = 'A'; c <= 'Z'; ++c) aPlain[c] = true;
        for (int c = '0'; c <= '9'; ++c) aPlain[c] = true;
        for (const char* p = "-_./,:=+%@"; *p; ++p) aPlain[static_cast<unsigned char>(*p)] = true;
    }
};
const PlainBytes kPlainBytes;

bool IsPlainByte(unsigned char c) { return kPlainBytes.aPlain[c]; }

// The environment the shell would give its commands: entries in its order, pointing into the
// environment it was built from and into the texts made for it here.
struct ShellEnvironmentText {
    std::vector<const char*> apEntries;
    const char* pszPath = nullptr;  // the PATH it searches
    const char* pszPwd = nullptr;   // the PWD it was given, when that names the working directory
    std::string sPpid;
    std::string sPwd;
};

// ---- The shell's environment ---------------------------------------------------------------
//
// The shell keeps its variables in a hash table of 39 chains and hands its exported variables on
// chain by chain. Its own variables head their chains; imported ones are added at the end of
// theirs in the order first seen, a later duplicate replacing the value in place.

constexpr int kChains = 39;

// The shell's own variables, in the order it enters them (each goes to the head of its chain).
const char* const aszOwnVars[] = {
    "IFS", "MAIL", "MAILPATH", "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
    "PS1", "PS2",  "PS4",      "OPTIND"};

bool IsNameStart(unsigned char c) { return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsNameByte(unsigned char c) { return IsNameStart(c) || (c >= '0' && c <= '9'); }

// The length of the variable name an environment entry starts with, or 0 when the shell would
// not import it.
size_t NameLength(const char* entry) {
    if (!IsNameStart(static_cast<unsigned char>(entry[0]))) return 0;
    size_t n = 1;
    while (IsNameByte(static_cast<unsigned char>(entry[n]))) ++n;
    return entry[n] == '=' ? n : 0;
}

int Chain(const char* name, size_t n) {
    unsigned hash = static_cast<unsigned>(static_cast<unsigned char>(name[0])) << 4;
    for (size_t i = 0; i < n; ++i) hash += static_cast<unsigned char>(name[i]);
    return static_cast<int>(hash % kChains);
}

// The shell's variable table, its entries pointing at "NAME=value" texts held elsewhere.
class ShellVars {
public:
    explicit ShellVars(size_t reserve) {
        aVars.reserve(reserve + sizeof aszOwnVars / sizeof aszOwnVars[0]);
        for (int& i : aHead) i = -1;
        for (int& i : aTail) i = -1;
        // Entering each at the head of its chain is adding them in reverse order at the end.
        for (size_t i = sizeof aszOwnVars / sizeof aszOwnVars[0]; i-- > 0;)
            Append(aszOwnVars[i], strcspn(aszOwnVars[i], "="), false);
    }
    // Sets a variable, keeping its place; a new one goes to the end of its chain.
    void Set(const char* text, size_t nName, bool bExport) {
        if (Var* v = Find(text, nName)) {
            v->pText = text;
            v->bExported = v->bExported || bExport;
        } else {
            Append(text, nName, bExport);
        }
    }
    bool Has(const char* name) { return Find(name, strlen(name)) != nullptr; }
    // The value of a variable that is set, or null.
    const char* Value(const char* name) {
        size_t n = strlen(name);
        Var* v = Find(name, n);
        return v && v->pText[n] == '=' ? v->pText + n + 1 : nullptr;
    }
    void Exported(std::vector<const char*>& entries) const {
        for (int head : aHead)
            for (int i = head; i >= 0; i = aVars[static_cast<size_t>(i)].iNext)
                if (aVars[static_cast<size_t>(i)].bExported) entries.push_back(aVars[static_cast<size_t>(i)].pText);
    }

private:
    struct Var {
        const char* pText;
        size_t nName;
        bool bExported;
        int iNext;
    };
    Var* Find(const char* name, size_t n) {
        for (int i = aHead[Chain(name, n)]; i >= 0; i = aVars[static_cast<size_t>(i)].iNext) {
            Var& v = aVars[static_cast<size_t>(i)];
            if (v.nName == n && memcmp(v.pText, name, n) == 0) return &v;
        }
        return nullptr;
    }
    void Append(const char* text, size_t nName, bool bExport) {
        int chain = Chain(text, nName);
        int index = static_cast<int>(aVars.size());
        aVars.push_back({text, nName, bExport, -1});
        if (aTail[chain] >= 0)
            aVars[static_cast<size_t>(aTail[chain])].iNext = index;
        else
            aHead[chain] = index;
        aTail[chain] = index;
    }
    std::vector<Var> aVars;
    int aHead[kChains];
    int aTail[kChains];
};

bool SameFile(const char* a, const char* b) {
    struct stat sa {
    }, sb{};
    return stat(a, &sa) == 0 && stat(b, &sb) == 0 && sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

// ---- The shell's command search ------------------------------------------------------------

// A file the shell would take as a program: a regular file executable by us.
bool IsProgram(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return false;
    return (st.st_mode & 0111) == 0111 || faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

// The file the shell runs for a name without "/": the first program along PATH, where an empty
// element is the current directory. False when there is none, or when PATH holds "%" (which the
// shell reads as options of its own).
bool SearchPath(const std::string& name, const char* path, std::string& program) {
    if (strchr(path, '%')) return false;
    for (const char* start = path;;) {
        const char* end = strchrnul(start, ':');
        program.assign(start, end);
        if (end > start) program += '/';
        program += name;
        if (IsProgram(program)) return true;
        if (!*end) return false;
        start = end + 1;
    }
}

bool BuildEnvironment(char* const* envp, ShellEnvironmentText& env) {
    size_t count = 0;
    for (char* const* e = envp; e && *e; ++e) ++count;
    ShellVars vars(count);
    for (char* const* e = envp; e && *e; ++e) {
        size_t n = NameLength(*e);
        if (n == 0) continue;
        // The shell checks an imported OPTIND and may refuse to start over it.
        if (n == 6 && memcmp(*e, "OPTIND", 6) == 0) return false;
        vars.Set(*e, n, true);
    }
    // Its IFS is always the default; PPID, when exported, is its parent: this process.
    vars.Set("IFS= \t\n", 3, false);
    if (vars.Has("PPID")) {
        env.sPpid = "PPID=" + std::to_string(getpid());
        vars.Set(env.sPpid.c_str(), 4, false);
    }
    // PWD stays when it names the working directory by an absolute path; otherwise the shell
    // sets it to the directory's real path.
    const char* pwd = vars.Value("PWD");
    env.pszPwd = pwd;
    if (!pwd || pwd[0] != '/' || !SameFile(pwd, ".")) {
        env.pszPwd = nullptr;
        char* cwd = getcwd(nullptr, 0);
        if (!cwd) return false;
        env.sPwd = std::string("PWD=") + cwd;
        free(cwd);
        vars.Set(env.sPwd.c_str(), 3, true);
    }
    env.pszPath = vars.Value("PATH");
    env.apEntries.clear();
    vars.Exported(env.apEntries);
    return true;
}

// The environment made last, kept while the process, its environment and the directory PWD
// names stay the same. Entries of the C library's environment are never changed in place nor
// freed, so the same pointers mean the same texts.
struct EnvironmentCache {
    bool bValid = false;
    pid_t pid = 0;
    std::vector<char*> apFrom;  // the entries it was made from
    ShellEnvironmentText env;   // its entries end with a null pointer
};

bool SameEntries(char* const* envp, const std::vector<char*>& seen) {
    size_t i = 0;
    for (; envp && envp[i]; ++i)
        if (i >= seen.size() || envp[i] != seen[i]) return false;
    return i == seen.size();
}

// The environment for a command now, made afresh or, where nothing it depends on has changed,
// as made last time; null when only the shell can tell.
const ShellEnvironmentText* CommandEnvironment(pid_t pid) {
    static EnvironmentCache cache;
    // The directory PWD names may have changed: a kept PWD is checked again; a PWD set from
    // the working directory's path is made again.
    if (cache.bValid && cache.pid == pid && cache.env.pszPwd && SameEntries(environ, cache.apFrom) &&
        SameFile(cache.env.pszPwd, "."))
        return &cache.env;
    cache.bValid = false;
    if (!BuildEnvironment(environ, cache.env)) return nullptr;
    cache.env.apEntries.push_back(nullptr);
    cache.apFrom.clear();
    for (char* const* e = environ; e && *e; ++e) cache.apFrom.push_back(*e);
    cache.pid = pid;
    cache.bValid = true;
    return &cache.env;
}

// The child side of StartPlain, between vfork and exec: it shares the interpreter's memory, so
// no handler of the interpreter may act in it (SignalInForkedChild). Standard input from the
// stacked text; broken pipe back to its default (caught signals are reset by exec itself); the
// C library's own signals ignored; an empty mask. That is what posix_spawn gives the shell,
// and the shell its commands.
[[noreturn]] void LaunchChild(const char* program, char* const* argv, char* const* envp, int input,
                              volatile int* pExecError) {
    if (input == 0)
        fcntl(0, F_SETFD, 0);
    else if (input > 0)
        dup2(input, 0);
    struct sigaction sa {};
    sa.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &sa, nullptr);
    // sigaction refuses the library's signals (those below SIGRTMIN); the system call does not.
    struct {
        __sighandler_t handler;
        unsigned long flags;
        void* restorer;
        unsigned long mask;
    } ignore{SIG_IGN, 0, nullptr, 0};
    for (int sig = __SIGRTMIN; sig < SIGRTMIN; ++sig)
        syscall(SYS_rt_sigaction, sig, &ignore, nullptr, sizeof ignore.mask);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(program, argv, envp);
    *pExecError = errno;
    _exit(127);
}

}  // namespace

bool ShellEnvironment(char* const* envp, std::vector<std::string>& entries, std::string& path) {
    ShellEnvironmentText env;
    if (!BuildEnvironment(envp, env)) return false;
    entries.assign(env.apEntries.begin(), env.apEntries.end());
    path = env.pszPath;
    return true;
}

bool IsPlainCommand(const char* command, std::vector<std::string>& words) {
    words.clear();
    for (const char* p = command;;) {
        while (*p == ' ' || *p == '\t') ++p;
        if (!*p) break;
        const char* start = p;
        while (*p && *p != ' ' && *p != '\t') {
            if (!IsPlainByte(static_cast<unsigned char>(*p))) return false;
            ++p;
        }
        words.emplace_back(start, p);
    }
    return !words.empty() && words[0].find('=') == std::string::npos && !IsShellWord(words[0].c_str());
}

bool PreparePlain(const char* command, PlainCommand& plain) {
    if (!IsPlainCommand(command, plain.aWords)) return false;
    plain.pidSelf = getpid();
    const ShellEnvironmentText* env = CommandEnvironment(plain.pidSelf);
    if (!env) return false;
    plain.sProgram = plain.aWords[0];
    if (plain.sProgram.find('/') == std::string::npos && !SearchPath(plain.aWords[0], env->pszPath, plain.sProgram))
        return false;
    plain.ppEnvironment = const_cast<char* const*>(env->apEntries.data());
    plain.apArgv.clear();
    for (std::string& w : plain.aWords) plain.apArgv.push_back(&w[0]);
    plain.apArgv.push_back(nullptr);
    return true;
}

// vfork rather than posix_spawn, which costs a fresh stack and two system calls for every signal.
pid_t StartPlain(const PlainCommand& plain, int input) {
    volatile int execError = 0;
    SignalsForking(plain.pidSelf);
    pid_t pid = vfork();
    if (pid == 0) LaunchChild(plain.sProgram.c_str(), plain.apArgv.data(), plain.ppEnvironment, input, &execError);
    SignalsForking(0);
    if (pid > 0 && execError != 0) {
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
        pid = -1;
    }
    return pid;
}

}  // namespace kavro
