// Reading the command line.
#include "options.h"

#include <cstdio>
#include <cstring>

#ifndef KVCHECK_VERSION
#define KVCHECK_VERSION "unknown"
#endif

namespace {

const char kUsage[] =
    "usage: kvcheck [option...] script...\n"
    "\n"
    "Reports the lines of job-control scripts that kvexec will reject (errors) and the lines that\n"
    "will not do what they seem to (warnings), without running anything.\n"
    "\n"
    "  -w, --no-warnings    report errors only\n"
    "  -Werror              warnings make the exit status 1\n"
    "  --warn=CODE,...      report only these warnings\n"
    "  --no-warn=CODE,...   do not report these warnings\n"
    "  --json               print the findings as one JSON array\n"
    "  --help, --version    print this text or the version\n"
    "  -                    as a script: read standard input\n"
    "\n"
    "Exit status: 0 no error, 1 errors (or warnings under -Werror), 2 a script could not be read\n"
    "or the command line is wrong. See \"man kvcheck\" for the codes.\n";

struct Switch {
    const char* pszName;
    bool Options::*pbFlag;
};
const Switch aSwitches[] = {
    {"-w", &Options::bNoWarnings},
    {"--no-warnings", &Options::bNoWarnings},
    {"-Werror", &Options::bWerror},
    {"--json", &Options::bJson},
};

struct List {
    const char* pszPrefix;
    std::set<std::string> Options::*pCodes;
};
const List aLists[] = {
    {"--warn=", &Options::aOnly},
    {"--no-warn=", &Options::aExcluded},
};

// Adds the comma-separated warning codes of list to codes; false after reporting one that is none.
bool AddCodes(const char* list, std::set<std::string>* codes) {
    std::string all = list;
    size_t from = 0;
    for (;;) {
        size_t comma = all.find(',', from);
        std::string code = all.substr(from, comma == std::string::npos ? std::string::npos : comma - from);
        if (!IsWarningCode(code)) {
            fprintf(stderr, "kvcheck: unknown warning code: %s\n", code.c_str());
            return false;
        }
        codes->insert(code);
        if (comma == std::string::npos) return true;
        from = comma + 1;
    }
}

// One option; false after reporting what is wrong with it.
bool TakeOption(const char* arg, Options* o) {
    for (const Switch& s : aSwitches) {
        if (strcmp(arg, s.pszName) != 0) continue;
        o->*s.pbFlag = true;
        return true;
    }
    for (const List& l : aLists) {
        size_t n = strlen(l.pszPrefix);
        if (strncmp(arg, l.pszPrefix, n) != 0) continue;
        if (l.pCodes == &Options::aOnly) o->bOnlyListed = true;
        return AddCodes(arg + n, &(o->*l.pCodes));
    }
    fprintf(stderr, "kvcheck: unknown option: %s\n", arg);
    return false;
}

}  // namespace

bool Options::Reports(const MessageRow& r) const {
    if (r.eSeverity == Severity::Error) return true;
    if (bNoWarnings || aExcluded.count(r.pszCode)) return false;
    return !bOnlyListed || aOnly.count(r.pszCode);
}

Parsed ParseOptions(int argc, char** argv, Options* o) {
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (!options || arg[0] != '-' || strcmp(arg, "-") == 0) {
            o->aFiles.emplace_back(arg);
        } else if (strcmp(arg, "--") == 0) {
            options = false;
        } else if (strcmp(arg, "--help") == 0) {
            fputs(kUsage, stdout);
            return Parsed::Done;
        } else if (strcmp(arg, "--version") == 0) {
            printf("kvcheck %s\n", KVCHECK_VERSION);
            return Parsed::Done;
        } else if (!TakeOption(arg, o)) {
            return Parsed::Wrong;
        }
    }
    if (o->aFiles.empty()) {
        fputs("kvcheck: no script given\n", stderr);
        return Parsed::Wrong;
    }
    return Parsed::Check;
}
