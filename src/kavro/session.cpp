// Session start-up: the argument list and the session record, taken from the environment.
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "kavro.h"

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
}  // namespace

const CBString& AccountName() {
    if (!bAccountKnown) {
        bAccountKnown = true;
        if (bAccountSet)
            sessionEnv.sAccount = sAccountSet;
        else if (struct passwd* pw = getpwuid(getuid()))
            sessionEnv.sAccount = pw->pw_name;
        else
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
