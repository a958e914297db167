// Command execution, &ERROR and &QUIT.
#include <cctype>
#include <cerrno>
#include <cmath>

#include "diagnostics.h"
#include "kavro.h"
#include "statements.h"
#include "variables.h"

namespace {

// A command with any lower-case letter has its upper-case letters outside double quotes lowered;
// a command all in capitals runs as written.
void FoldCase(CBString& command) {
    std::string& s = command.str();
    bool lower = false;
    for (char c : s)
        if (islower(static_cast<unsigned char>(c))) lower = true;
    if (!lower) return;
    bool quoted = false;
    for (char& c : s) {
        if (c == '"')
            quoted = !quoted;
        else if (!quoted && isupper(static_cast<unsigned char>(c)))
            c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    }
}

}  // namespace

int Exec(Parser* p, CBString& command) {
    FoldCase(command);
    if (p->bEcho) kavro::TermPrintf("\r%s\r", command.data());
    if (p->pScript->bTrace && kavro::t_bStackShow) kavro::t_StackDump();
    kavro::t_system(command);
    int status = errno;
    Variable* rc = FindVar("&retcode");
    if (!rc) rc = AddVar("&retcode");
    rc->value.eType = VarInteger;
    rc->value.iValue = Int16(status);
    return status;
}

// &ERROR line: registers a line to dispatch after every command that fails. It is kept as
// written and expanded only when it runs.
void ParseError(Parser* p) {
    skip_spaces(p);
    if (*p->pPos == '\0') SYNTAX_ERROR(Src::Kvexec, At::ErrorLine);
    p->sOnError = p->pPos;
    SkipLine(p);
}

void ParseQuit(Parser* p) {
    Const value;
    GetNextToken(p);
    if (p->eTokenType == TokenEol) {
        kavro::t_StackClear();
        ExitRun(0);
    }
    Evaluate(p, &value, false);
    switch (value.eType) {
        case VarInteger: kavro::t_StackClear(); ExitRun(value.iValue);
        case VarFloat: {
            double d = std::trunc(value.dValue);
            int status = (d > -2147483648.0 && d < 2147483648.0) ? static_cast<int>(d) : 0;
            kavro::t_StackClear();
            ExitRun(status);
        }
        case VarString:
            Exec(p, value.sValue);
            kavro::t_StackClear();
            ExitRun(0);
        default: kavro::t_StackClear(); ExitRun(0);
    }
}
