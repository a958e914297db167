// Start-up, the script read loop and the reading of script lines.
#include <libgen.h>
#include <unistd.h>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "diagnostics.h"
#include "expression.h"
#include "kavro.h"
#include "kvexec.h"
#include "usage.h"

char* szScript = nullptr;
int iArgs = 0;
char szLine[1024];
int iRetCode = 0;

namespace {

// Offset of the next byte to read from the script. Kept here rather than asked of the stream,
// so that reading a line costs no system call.
long g_lOffset = 0;

constexpr const char* kHelpViewer = "/home/system/disks/s/kavro/bin/help";

[[noreturn]] void Help(const char* argv0) {
    char szCommand[50];
    char* copy = strdup(argv0);
    snprintf(szCommand, sizeof szCommand, "%s %s", kHelpViewer, basename(copy));
    free(copy);
    // Without the viewer, the usage text takes the place of the shell's complaint that the
    // command was not found: standard output stays as empty as it would be.
    if (access(kHelpViewer, X_OK) == 0) {
        int ignored = system(szCommand);
        (void)ignored;
    } else {
        fputs(kUsageText, stderr);
    }
    exit(0);
}

[[noreturn]] void Version(const char* argv0) {
    char* copy = strdup(argv0);
    printf("%s %s %s\n", basename(copy), kVersion, kVersionNotice);
    free(copy);
    exit(0);
}

}  // namespace

long ScriptTell(Parser* /*p*/) { return g_lOffset; }

void ScriptSeek(Parser* p, long offset) {
    fseek(p->pScript, offset, SEEK_SET);
    g_lOffset = ftell(p->pScript);
}

void ScriptRewind(Parser* p) {
    rewind(p->pScript);
    g_lOffset = 0;
}

char* GetLine(Parser* p, char* buffer, unsigned long size) {
    kavro::TermFlushIfStale();
    p->lLinePos = g_lOffset;
    // As fgets does: at most size - 1 characters, up to and including a line feed.
    FILE* f = p->pScript;
    unsigned long n = 0;
    int c = EOF;
    while (n + 1 < size && (c = getc_unlocked(f)) != EOF) {
        buffer[n++] = static_cast<char>(c);
        if (c == '\n') break;
    }
    if (n == 0 && size > 1) return nullptr;
    buffer[n] = '\0';
    g_lOffset += static_cast<long>(n);
    ++p->iLine;
    char* s = buffer;
    while (*s && isspace(static_cast<unsigned char>(*s))) ++s;
    kavro::stripspace(s);
    if (p->bTrace) kavro::TermPrintf("<%d: %s>\r", p->iLine, s);
    return s;
}

void SkipLine(Parser* p) { p->pPos = p->sLine.data() + p->sLine.length(); }

bool FirstWordIs(const char* line, const char* keyword) {
    size_t n = 0;
    while (line[n] && !isspace(static_cast<unsigned char>(line[n]))) ++n;
    return n == strlen(keyword) && strncasecmp(line, keyword, n) == 0;
}

int RunMain(int argc, char** argv) {
    Parser parser;
    Parser* p = &parser;

    if (argc < 2) {
        fputs("Syntax error\n", stderr);
        exit(1);
    }
    if (strcmp(argv[1], "--help") == 0) Help(argv[0]);
    if (strcmp(argv[1], "--version") == 0) Version(argv[0]);
    szScript = argv[1];

    setlocale(LC_CTYPE, "");
    tzset();

    p->pScript = fopen(argv[1], "r");
    if (!p->pScript) {
        int e = errno;
        perror(argv[1]);
        exit(e);
    }

    InitVariables();
    p->pStack = AllocOperandStack();
    SetIntegerVar(p, "&retcode", 0);

    int mode = kavro::getintenv("kvwm") != 0 ? 3 : 2;
    iArgs = kavro::t_Init(argc - 1, argv + 1, mode, false);
    kavro::Kavro->sPrompt = " :";

    for (int i = 0; i < iArgs; ++i) {
        char name[16];
        snprintf(name, sizeof name, "&%d", i);
        Variable* v = AddVar(p, name);
        v->value.eType = VarString;
        v->value.sValue = kavro::t_asCmdargs.at(static_cast<size_t>(i));
    }

    try {
        while (char* line = GetLine(p, szLine, sizeof szLine)) _Parse_Line(p, line);
    } catch (const CBStringException& e) {
        STRING_INDEX_ERROR(p, e.what());
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        MEMORY_ERROR(p, Src::Kvexec, At::AllocBuf);
    }

    fclose(p->pScript);
    delete[] p->pStack;
    p->pStack = nullptr;
    return 0;
}
