// Session start-up: the argument list and the session record, taken from the environment.
#include <fcntl.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "kavro.h"

extern char** environ;

namespace kavro {

unsigned uiOutsideTurns = 0;

namespace {
KavroEnv sessionEnv;

char EnvLetter(const char* name, char fallback) {
    const char* v = getenv(name);
    return (v && *v) ? *v : fallback;
}

long EnvNumber(const char* name, long fallback) {
    const char* v = getenv(name);
    return (v && *v) ? strtol(v, nullptr, 10) : fallback;
}

// The account name is settled when it is first asked for, from the environment as it was at
// start-up: the name service is asked only by a script that wants the name.
bool bAccountKnown = false;
bool bAccountSet = false;
CBString sAccountSet;
CBString sUserSet;

void NoteAccountSources() {
    const char* account = getenv("KVEXEC_ACCOUNT");
    const char* user = getenv("USER");
    bAccountKnown = false;
    bAccountSet = account != nullptr;
    sAccountSet = account ? account : "";
    sUserSet = user ? user : "";
}

#ifndef KVEXEC_FUZZ  // the fuzzing build starts no process
// The user database's name for the user id, as getent reports it: 1 found, 0 not there, -1 when
// getent could not tell.
int NameFromGetent(uid_t uid, CBString& name) {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
    std::string key = std::to_string(uid);
    char getent[] = "getent";
    char passwd[] = "passwd";
    char* argv[] = {getent, passwd, key.data(), nullptr};
    pid_t pid = -1;
    bool started = posix_spawn(&pid, "/usr/bin/getent", &actions, nullptr, argv, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    std::string out;
    char buffer[512];
    while (started) {
        ssize_t n = read(fds[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        out.append(buffer, static_cast<size_t>(n));
    }
    close(fds[0]);
    if (!started) return -1;
    int ws = 0;
    while (waitpid(pid, &ws, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(ws)) return -1;
    if (WEXITSTATUS(ws) == 2) return 0;  // no such entry
    size_t colon = out.find(':');
    if (WEXITSTATUS(ws) != 0 || colon == std::string::npos) return -1;
    name = CBString(out.data(), colon);
    return 1;
}
#endif

// The login name of the user id from the user database. A statically linked program cannot load
// the name service's modules (one that is not built into the C library, such as systemd's, brings
// the process down), so the name is asked of getent, the name service's own front end, which asks
// every source the system lists. Only where getent cannot tell is the C library asked here.
bool LoginName(uid_t uid, CBString& name) {
#ifndef KVEXEC_FUZZ
    int found = NameFromGetent(uid, name);
    if (found >= 0) return found == 1;
#endif
    struct passwd* pw = getpwuid(uid);
    if (!pw) return false;
    name = pw->pw_name;
    return true;
}
}  // namespace

const CBString& AccountName() {
    if (!bAccountKnown) {
        bAccountKnown = true;
        if (bAccountSet)
            sessionEnv.sAccount = sAccountSet;
        else if (!LoginName(getuid(), sessionEnv.sAccount))
            sessionEnv.sAccount = sUserSet;
    }
    return sessionEnv.sAccount;
}

KavroEnv* Kavro = &sessionEnv;
std::vector<CBString> t_asCmdargs;

int t_Init(int argc, char** argv, int /*mode*/, bool /*bQuiet*/) {
    t_asCmdargs.clear();
    for (int i = 0; i < argc; ++i) t_asCmdargs.emplace_back(argv[i]);
    NoteAccountSources();
    sessionEnv.cDateStyle = EnvLetter("KVEXEC_DATE_STYLE", 'Y');
    sessionEnv.iYearMode = static_cast<int>(EnvNumber("KVEXEC_YEAR_MODE", 1));
    sessionEnv.uiSerial1 = static_cast<uint16_t>(EnvNumber("KVEXEC_SERIAL1", 0));
    sessionEnv.uiSerial2 = static_cast<uint16_t>(EnvNumber("KVEXEC_SERIAL2", 0));
    sessionEnv.cCaseMode = EnvLetter("KVEXEC_CASE", 'M');
    const char* plain = getenv("KVEXEC_PLAIN");
    sessionEnv.bPlain = plain && *plain;
    TermInit();
    return argc;
}

int getintenv(const char* name) {
    const char* v = getenv(name);
    return v ? static_cast<int>(strtol(v, nullptr, 10)) : 0;
}

}  // namespace kavro
