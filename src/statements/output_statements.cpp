// Typed output and the keyboard stack: &TYPE, &BEGTYPE, &BEGSTACK, &STACK, &SPACE, &SLEEP.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "diagnostics.h"
#include "kavro.h"
#include "statements.h"
#include "variables.h"

// &TYPE text: the rest of the line up to a ";", with variable references replaced. A trailing
// backslash keeps the cursor on the line. Double quotes are printed as they are.
void ParseType(Parser* p) {
    const char* text = p->pPos;
    const char* end = strchr(text, ';');
    if (!end) end = text + strlen(text);
    while (text < end && (*text == ' ' || *text == '\t')) ++text;
    while (end > text && strchr(" \t\r\n", end[-1])) --end;

    CBString out;
    bool newline = true;
    for (const char* s = text; s < end;) {
        if (*s == '&') {
            const char* start = s;
            s = ReferenceEnd(s, end);
            out += GetVarValue(CBString(start, static_cast<size_t>(s - start)));
            continue;
        }
        if (*s == '\\' && s + 1 == end) {
            newline = false;
            break;
        }
        out += *s++;
    }
    kavro::TermPrintf("%s", out.data());
    if (newline) kavro::TermWrite("\r");
    SkipLine(p);
}

namespace {

// Reads lines up to one whose first word is "&END" (or the end of the file), as they are.
template <typename Use>
void VerbatimLines(Parser* p, Use use) {
    p->pScript->ReadUntil({"&END"}, use);
    SkipLine(p);
}

}  // namespace

void ParseBegtype(Parser* p) {
    VerbatimLines(p, [](const char* line) { kavro::TermPrintf("%s\r", line); });
}

void ParseBegstack(Parser* p) {
    VerbatimLines(p, [](const char* line) {
        kavro::t_StackWrite(line);
        kavro::t_StackWrite("\n");
    });
}

// &STACK values…: the values joined by blanks and ended by a line feed, unless a backslash ends
// the list. An undefined value empties what was collected so far.
void ParseStack(Parser* p) {
    CBString text;
    GetNextToken(p);
    for (;;) {
        if (p->eTokenType == TokenEol) {
            text += "\n";
            break;
        }
        if (p->eTokenType == TokenBackslash) break;
        if (!text.empty()) text += " ";
        Const v;
        Evaluate(p, &v, false);
        switch (v.eType) {
            case VarInteger: text.formata("%d", v.iValue); break;
            case VarFloat: text.formata("%.14g", v.dValue); break;
            case VarString: text += v.sValue; break;
            case VarUndef: text.clear(); break;
            default: SYNTAX_ERROR(Src::Kvexec, At::StackValue);
        }
    }
    kavro::t_StackWrite(text);
    if (p->pScript->bTrace && kavro::t_bStackShow) kavro::TermPrintf("<stack \"%s\">\r", text.data());
    SkipLine(p);
}

void ParseSpace(Parser* p) {
    int count = CountArgument(p);
    for (int i = 0; i < count; ++i) kavro::TermWrite("\r");
    SkipLine(p);
}

// &SLEEP seconds. A clock time ("hh:mm:ss") is read and midnight worked out, but neither is
// used: that form returns at once.
void ParseSleep(Parser* p) {
    GetNextToken(p);
    Const v;
    Evaluate(p, &v, false);
    unsigned seconds = 0;
    switch (v.eType) {
        case VarInteger:
        case VarFloat:
            ToInteger(&v);
            seconds = static_cast<unsigned>(static_cast<int>(v.iValue));
            break;
        case VarString:
            if (strchr(v.sValue, ':')) {
                int h = 0, m = 0, s = 0;
                if (!v.sValue.empty()) sscanf(v.sValue, "%d:%d:%d", &h, &m, &s);
                time_t now = time(nullptr);
                struct tm t;
                localtime_r(&now, &t);
                t.tm_sec = t.tm_min = t.tm_hour = 0;
                mktime(&t);
                seconds = 0;
            } else {
                ToInteger(&v);
                seconds = static_cast<unsigned>(static_cast<int>(v.iValue));
            }
            break;
        default: SYNTAX_ERROR(Src::Kvexec, At::SleepValue);
    }
    kavro::TermFlush();
#ifndef KVEXEC_FUZZ
    sleep(seconds);
#else
    (void)seconds;  // the fuzzing build does not sleep
#endif
    ++kavro::uiOutsideTurns;
    SkipLine(p);
}
