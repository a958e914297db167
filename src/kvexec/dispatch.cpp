// Line dispatch: decides what a script line is (comment, label, assignment, statement or
// command line) and runs it. Also the statement table and the two statements that do little.
#include <strings.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "diagnostics.h"
#include "expression.h"
#include "kavro.h"
#include "keyword.h"
#include "kvexec.h"
#include "statements.h"

// In table order; looked up by whole keyword, case ignored.
const Statement aStatements[] = {
    {"&BEGSTACK", ParseBegstack}, {"&BEGTYPE", ParseBegtype},   {"&BREAK", ParseBreak},     {"&CALL", ParseCall},
    {"&CRT", ParseCrt},           {"&CONTINUE", ParseContinue}, {"&CONTROL", ParseControl}, {"&ELSEIF", ParseElseif},
    {"&ELSE", ParseElse},         {"&END", ParseEnd},           {"&ENDIF", ParseIfend},     {"&ERROR", ParseError},
    {"&ESC", ParseEsc},           {"&FOR", ParseFor},           {"&GOTO", ParseGoto},       {"&IF", ParseIf},
    {"&IFEND", ParseIfend},       {"&LOOP", ParseLoop},         {"&MENU", ParseMenu},       {"&NEXT", ParseNext},
    {"&QUIT", ParseQuit},         {"&READ", ParseRead},         {"&RETURN", ParseReturn},   {"&SHIFT", ParseShift},
    {"&SKIP", ParseSkip},         {"&SLEEP", ParseSleep},       {"&SPACE", ParseSpace},     {"&STACK", ParseStack},
    {"&TYPE", ParseType},         {"&UNTIL", ParseUntil},       {"&WAIT", ParseWait},       {"&WEND", ParseWend},
    {"&WHILE", ParseWhile},       {nullptr, nullptr},
};

const Statement* GetStatement(const char* name) { return FindKeyword(aStatements, name); }

namespace {

int g_iNesting = 0;

void TraceToken(Parser* p) {
    if (p->bDebug) kavro::TermPrintf("token type = %s|%s\r", aszTokenTypes[p->eTokenType], p->sToken.data());
}

// "set name=value" changes the interpreter's own environment instead of running.
void SetEnvironment(CBString& text) {
    char* save = text.str().data();
    strtok(save, " ");
    char* name = strtok(nullptr, " =");
    if (!name) return;
    kavro::strupr(name);
    char* value = strtok(nullptr, "=\" ");
    if (value && *value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

void RunCommandLine(Parser* p) {
    p->eTokenType = TokenCommand;
    CBString command = Expand(p->sLine);
    SkipLine(p);
    if (strncasecmp(command, "set ", 4) == 0) {
        SetEnvironment(command);
        return;
    }
    kavro::t_StackSave();
    int status = Exec(p, command);
    kavro::t_StackClear();
    if (status != 0 && !p->sOnError.empty()) {
        char* copy = strdup(p->sOnError);
        if (!copy) MEMORY_ERROR(p, Src::Kvexec, At::ErrorCopy);
        _Parse_Line(p, copy);
        free(copy);
    }
}

// A variable named first on the line: an assignment when "=" follows, else a command line.
void VariableLine(Parser* p) {
    Variable* v = GetVar(p, p->sToken);
    GetNextToken(p);
    if (p->eTokenType == TokenEqual) {
        GetNextToken(p);
        Evaluate(p, &v->value, false);
        return;
    }
    GetVarValue(v->sName);
    RunCommandLine(p);
}

bool IsWordStart(char c) { return kavro::t_isalpha(c) || c == '.' || c == '/' || c == '_'; }

}  // namespace

NestingGuard::NestingGuard(Parser* p) {
    if (++g_iNesting > kMaxNesting) {
        errno = ENOMEM;
        MEMORY_ERROR(p, Src::Kvexec, At::AllocBuf);
    }
}

NestingGuard::~NestingGuard() { --g_iNesting; }

void _Parse_Line(Parser* p, char* line) {
    NestingGuard guard(p);
    p->bFirstToken = true;
    p->bLineStart = true;
    p->bLiteral = false;

    while (*line && isspace(static_cast<unsigned char>(*line))) ++line;
    if (*line == '\0' || *line == ';') return;
    p->sLine = line;
    p->pPos = p->sLine.data();

    while (*p->pPos) {
        p->sToken.clear();
        const char* s = p->pPos;
        char c = *s;

        if (IsWordStart(c)) {
            const char* e = s + 1;
            bool alnum = true;
            while (*e && !strchr(" ;=:", *e)) {
                if (!kavro::t_isalnum(*e)) alnum = false;
                ++e;
            }
            p->sToken.assign(s, static_cast<size_t>(e - s));
            p->pPos = e;
            if (alnum && *e == ':') {
                p->eTokenType = TokenLabel;
                ++p->pPos;
                skip_spaces(p);
                if (*p->pPos == '\0' || *p->pPos == ';') return;
                SYNTAX_ERROR(p, Src::Kvexec, At::LabelTrailing);
            }
            if (alnum && *e == ';') {
                SkipLine(p);
                RunCommandLine(p);
                return;
            }
            const char* after = e;
            while (*after && isspace(static_cast<unsigned char>(*after))) ++after;
            if (alnum && *after == '=') {
                p->sToken = CBString("&") + p->sToken;
                p->eTokenType = TokenVar;
                p->bFirstToken = false;
                TraceToken(p);
                VariableLine(p);
                continue;
            }
            p->eTokenType = TokenCommand;
            p->bFirstToken = false;
            TraceToken(p);
            RunCommandLine(p);
            return;
        }

        if (c == '&') {
            const char* e = s;
            while (*e == '&') ++e;
            while (*e && kavro::t_isalnum(*e)) ++e;
            p->sToken.assign(s, static_cast<size_t>(e - s));
            p->pPos = e;
            p->bFirstToken = false;
            p->eTokenType = GetTokenType(p);
            TraceToken(p);
            switch (p->eTokenType) {
                case TokenVar: VariableLine(p); continue;
                case TokenStatement: GetStatement(p->sToken)->pHandler(p); continue;
                case TokenEol: continue;
                default: SYNTAX_ERROR(p, Src::Kvexec, At::AmpersandWord);
            }
        }

        if (c == ';' || c == '#') {
            SkipLine(p);
            p->eTokenType = TokenEol;
            if (p->bDebug) kavro::TermPrintf("token type = %s|\r", aszTokenTypes[TokenEol]);
            return;
        }
        SYNTAX_ERROR(p, Src::Kvexec, At::LineStart);
    }
}

CBString ParseCommand(Parser* p, const char* text) {
    CBString expanded = Expand(text);
    SkipLine(p);
    return expanded;
}

// &MENU does nothing: the scan position stays right after the keyword.
void ParseMenu(Parser* /*p*/) {}

void ParseWait(Parser* p) {
    kavro::pagewait();
    SkipLine(p);
}
