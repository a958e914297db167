// Start-up and the script read loop.
#include "startup.h"

#include <libgen.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <string>

#include "diagnostics.h"
#include "expression.h"
#include "kavro.h"
#include "script_reader.h"
#include "statements.h"
#include "usage.h"
#include "variables.h"

extern char** environ;

// The script path exactly as given on the command line; every report names it.
char* szScript = nullptr;

namespace {

constexpr const char* kHelpViewer = "/home/system/disks/s/kavro/bin/help";
// The viewer's command line was formatted into 50 bytes: the name it is given is cut to fit.
constexpr size_t kHelpNameMax = 50 - 1 - sizeof "/home/system/disks/s/kavro/bin/help " + 1;

// Runs the viewer with the program's base name as its one argument, and waits for it as system()
// would: interrupt and quit are ignored meanwhile.
void RunHelpViewer(const char* name) {
    std::string arg(name, strnlen(name, kHelpNameMax));
    char* argv[] = {const_cast<char*>(kHelpViewer), arg.data(), nullptr};
    kavro::InterruptsIgnored ignored;
    posix_spawnattr_t attr;
    posix_spawnattr_init(&attr);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGQUIT);
    posix_spawnattr_setsigdefault(&attr, &defaults);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF);
    pid_t pid = 0;
    if (posix_spawn(&pid, kHelpViewer, nullptr, &attr, argv, environ) == 0) {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    posix_spawnattr_destroy(&attr);
}

[[noreturn]] void Help(const char* argv0) {
    char* copy = strdup(argv0);
    // Without the viewer, the usage text takes the place of the shell's complaint that the
    // command was not found: standard output stays as empty as it would be.
    if (access(kHelpViewer, X_OK) == 0)
        RunHelpViewer(basename(copy));
    else
        fputs(kUsageText, stderr);
    free(copy);
    exit(0);
}

[[noreturn]] void Version(const char* argv0) {
    char* copy = strdup(argv0);
    printf("%s %s %s\n", basename(copy), kVersion, kVersionNotice);
    free(copy);
    exit(0);
}

}  // namespace

int RunMain(int argc, char** argv) {
    if (argc < 2) {
        fputs("Syntax error\n", stderr);
        exit(1);
    }
    if (strcmp(argv[1], "--help") == 0) Help(argv[0]);
    if (strcmp(argv[1], "--version") == 0) Version(argv[0]);
    // KVEXEC_PLAIN turns off what is kept to go faster: the reader's blocks, lines and label
    // index, and the variable index.
    const char* plain = getenv("KVEXEC_PLAIN");
    static ScriptReader script;
    return RunScript(script, argc, argv, plain && *plain);
}

int RunScript(ScriptReader& script, int argc, char** argv, bool bPlain) {
    szScript = argv[1];

    kavro::LocaleInit(!bPlain);
    tzset();

    if (!script.Open(argv[1], !bPlain)) {
        int e = errno;
        perror(argv[1]);
        exit(e);
    }
    SetReportSource(szScript, &script.iLine);

    Parser parser;
    Parser* p = &parser;
    p->pScript = &script;
    InitVariables(!bPlain);
    KeepTokens(!bPlain);
    std::unique_ptr<StackEntry[]> stack(AllocOperandStack());
    p->pStack = stack.get();
    SetIntegerVar("&retcode", 0);

    int mode = kavro::getintenv("kvwm") != 0 ? 3 : 2;
    iArgs = kavro::t_Init(argc - 1, argv + 1, mode, false);
    kavro::Kavro->sPrompt = " :";

    for (int i = 0; i < iArgs; ++i) {
        Variable* v = AddVar(ArgumentName(i));
        v->value.eType = VarString;
        v->value.sValue = kavro::t_asCmdargs.at(static_cast<size_t>(i));
    }

    try {
        while (const char* line = script.GetLine()) _Parse_Line(p, line);
    } catch (const CBStringException& e) {
        STRING_INDEX_ERROR(e.what());
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        MEMORY_ERROR(Src::Kvexec, At::AllocBuf);
    }

    script.Close();
    p->pStack = nullptr;
    return 0;
}
