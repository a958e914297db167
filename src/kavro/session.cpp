// Session start-up: the argument list and the session record, taken from the environment.
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "kavro.h"

namespace kavro {

namespace {
KavroEnv g_env;

char EnvLetter(const char* name, char fallback) {
    const char* v = getenv(name);
    return (v && *v) ? *v : fallback;
}

long EnvNumber(const char* name, long fallback) {
    const char* v = getenv(name);
    return (v && *v) ? strtol(v, nullptr, 10) : fallback;
}

CBString LoginName() {
    if (const char* v = getenv("KVEXEC_ACCOUNT")) return v;
    if (struct passwd* pw = getpwuid(getuid())) return pw->pw_name;
    if (const char* v = getenv("USER")) return v;
    return "";
}
}  // namespace

KavroEnv* Kavro = &g_env;
std::vector<CBString> t_asCmdargs;

int t_Init(int argc, char** argv, int /*mode*/, bool /*bQuiet*/) {
    t_asCmdargs.clear();
    for (int i = 0; i < argc; ++i) t_asCmdargs.emplace_back(argv[i]);
    g_env.sAccount = LoginName();
    g_env.cDateStyle = EnvLetter("KVEXEC_DATE_STYLE", 'Y');
    g_env.iYearMode = static_cast<int>(EnvNumber("KVEXEC_YEAR_MODE", 1));
    g_env.uiSerial1 = static_cast<uint16_t>(EnvNumber("KVEXEC_SERIAL1", 0));
    g_env.uiSerial2 = static_cast<uint16_t>(EnvNumber("KVEXEC_SERIAL2", 0));
    g_env.cCaseMode = EnvLetter("KVEXEC_CASE", 'M');
    const char* plain = getenv("KVEXEC_PLAIN");
    g_env.bPlain = plain && *plain;
    TermInit();
    return argc;
}

int getintenv(const char* name) {
    const char* v = getenv(name);
    return v ? static_cast<int>(strtol(v, nullptr, 10)) : 0;
}

}  // namespace kavro
