// Line dispatch: decides what a script line is (comment, label, assignment, statement or
// command line) and runs it. Also the statement table and the two statements that do little.
#include <strings.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "char_classes.h"
#include "diagnostics.h"
#include "kavro.h"
#include "statements.h"
#include "variables.h"

using W = StatementWord;

// In the order of the statement words.
constexpr Statement aStatements[] = {
    {W::Begstack, ParseBegstack}, {W::Begtype, ParseBegtype},   {W::Break, ParseBreak},     {W::Call, ParseCall},
    {W::Crt, ParseCrt},           {W::Continue, ParseContinue}, {W::Control, ParseControl}, {W::Elseif, ParseElseif},
    {W::Else, ParseElse},         {W::End, ParseEnd},           {W::Endif, ParseIfend},     {W::Error, ParseError},
    {W::Esc, ParseEsc},           {W::For, ParseFor},           {W::Goto, ParseGoto},       {W::If, ParseIf},
    {W::Ifend, ParseIfend},       {W::Loop, ParseLoop},         {W::Menu, ParseMenu},       {W::Next, ParseNext},
    {W::Quit, ParseQuit},         {W::Read, ParseRead},         {W::Return, ParseReturn},   {W::Shift, ParseShift},
    {W::Skip, ParseSkip},         {W::Sleep, ParseSleep},       {W::Space, ParseSpace},     {W::Stack, ParseStack},
    {W::Type, ParseType},         {W::Until, ParseUntil},       {W::Wait, ParseWait},       {W::Wend, ParseWend},
    {W::While, ParseWhile},
};

namespace {

static_assert(RowsInWordOrder<W>(aStatements), "one statement row per statement word, in order");

int iNesting = 0;
int iMaxNesting = kMaxNesting;

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
    CBString command = Expand(p->LineText());
    SkipLine(p);
    if (strncasecmp(command, "set ", 4) == 0) {
        SetEnvironment(command);
        return;
    }
    kavro::t_StackSave();
    int status = Exec(p, command);
    kavro::t_StackClear();
    if (status != 0 && !p->sOnError.empty()) {
        // Owned, so that it is freed however the line ends.
        std::unique_ptr<char, void (*)(void*)> copy(strdup(p->sOnError), free);
        if (!copy) MEMORY_ERROR(Src::Kvexec, At::ErrorCopy);
        _Parse_Line(p, copy.get());
    }
}

// A variable named first on the line: an assignment when "=" follows, else a command line.
void VariableLine(Parser* p) {
    Variable* v = GetVar(p->sToken);
    GetNextToken(p);
    if (p->eTokenType == TokenEqual) {
        GetNextToken(p);
        Evaluate(p, &v->value, false);
        return;
    }
    RunCommandLine(p);
}

bool IsWordStart(char c) { return chars::IsAlpha(c) || c == '.' || c == '/' || c == '_'; }

}  // namespace

const Statement* GetStatement(const char* name) {
    int row = kStatementWords.Find(name);
    return row < 0 ? nullptr : &aStatements[row];
}

void LimitNesting(int depth) { iMaxNesting = depth; }

NestingGuard::NestingGuard() {
    if (++iNesting > iMaxNesting) {
        errno = ENOMEM;
        MEMORY_ERROR(Src::Kvexec, At::AllocBuf);
    }
}

NestingGuard::~NestingGuard() { --iNesting; }

void _Parse_Line(Parser* p, const char* line) {
    NestingGuard guard;
    p->bFirstToken = true;

    while (*line && chars::IsSpace(*line)) ++line;
    if (*line == '\0' || *line == ';') return;
    const ScriptReader* script = p->pScript;
    SetLine(p, line, script->LineRepeated(), line == script->Line() ? script->LineSerial() : 0);

    while (*p->pPos) {
        p->sToken.clear();
        const char* s = p->pPos;
        char c = *s;

        if (IsWordStart(c)) {
            const char* e = s + 1;
            bool alnum = true;
            while (*e && *e != ' ' && *e != ';' && *e != '=' && *e != ':') {
                if (!chars::IsAlnum(*e)) alnum = false;
                ++e;
            }
            p->sToken.assign(s, static_cast<size_t>(e - s));
            p->pPos = e;
            if (alnum && *e == ':') {
                p->eTokenType = TokenLabel;
                ++p->pPos;
                skip_spaces(p);
                if (*p->pPos == '\0' || *p->pPos == ';') return;
                SYNTAX_ERROR(Src::Kvexec, At::LabelTrailing);
            }
            if (alnum && *e == ';') {
                SkipLine(p);
                RunCommandLine(p);
                return;
            }
            const char* after = e;
            while (*after && chars::IsSpace(*after)) ++after;
            if (alnum && *after == '=') {
                p->sToken.str().insert(0, 1, '&');
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
            p->bFirstToken = false;
            GetReferenceToken(p);
            TraceToken(p);
            switch (p->eTokenType) {
                case TokenVar: VariableLine(p); continue;
                case TokenStatement: aStatements[p->iWord].pHandler(p); continue;
                case TokenEol: continue;
                default: SYNTAX_ERROR(Src::Kvexec, At::AmpersandWord);
            }
        }

        if (c == ';' || c == '#') {
            SkipLine(p);
            p->eTokenType = TokenEol;
            if (p->bDebug) kavro::TermPrintf("token type = %s|\r", aszTokenTypes[TokenEol]);
            return;
        }
        SYNTAX_ERROR(Src::Kvexec, At::LineStart);
    }
}

// &MENU does nothing: the scan position stays right after the keyword.
void ParseMenu(Parser* /*p*/) {}

int CountArgument(Parser* p) {
    GetNextToken(p);
    Const count;
    Evaluate(p, &count, false);
    ToInteger(&count);
    return count.iValue;
}

void ParseWait(Parser* p) {
    kavro::pagewait();
    SkipLine(p);
}
