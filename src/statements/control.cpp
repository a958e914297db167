// &CONTROL: run-time options, applied left to right. An unknown word is ignored.
#include <strings.h>

#include <cstdlib>

#include "diagnostics.h"
#include "kavro.h"
#include "statements.h"
#include "variables.h"

namespace {

void Autocr(Parser* p) {
    GetNextToken(p);
    if (p->eTokenType != TokenInteger && p->eTokenType != TokenFloat && p->eTokenType != TokenString)
        SYNTAX_ERROR(Src::Kvexec, At::ControlAutocr);
    p->iAutoCr = static_cast<int>(strtol(Expand(p->sToken), nullptr, 10));
}

void Case(Parser* p) {
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(Src::Kvexec, At::ControlCase);
    if (strcasecmp(p->sToken, "U") != 0 && strcasecmp(p->sToken, "M") != 0) SYNTAX_ERROR(Src::Kvexec, At::ControlCase);
    p->sToken = Expand(p->sToken);
    // Stored as written: "u" stores a lower-case letter.
    kavro::Kavro->cCaseMode = p->sToken.character(0);
}

void Prompt(Parser* p) {
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(Src::Kvexec, At::ControlPrompt);
    kavro::Kavro->sPrompt = Expand(p->sToken);
}

void Echo(Parser* p) { p->bEcho = true; }
void NoEcho(Parser* p) { p->bEcho = false; }
void Trace(Parser* p) { p->pScript->bTrace = true; }
void NoTrace(Parser* p) { p->pScript->bTrace = false; }
void Debug(Parser* p) { p->bDebug = true; }
void NoDebug(Parser* p) { p->bDebug = false; }
void StackShow(Parser*) { kavro::t_bStackShow = true; }
void NoStackShow(Parser*) { kavro::t_bStackShow = false; }

// In the order of the &CONTROL words.
void (*const apfnControlOptions[])(Parser*) = {
    Autocr, Case, NoStackShow, NoTrace, NoEcho, Echo, Prompt, StackShow, Trace, Debug, NoDebug,
};
static_assert(sizeof apfnControlOptions / sizeof *apfnControlOptions == static_cast<size_t>(ControlWord::Count),
              "one handler per &CONTROL word");

}  // namespace

void ParseControl(Parser* p) {
    for (;;) {
        GetNextToken(p);
        if (p->eTokenType == TokenEol) return;
        p->sToken = Expand(p->sToken);
        int word = FindControlWord(p->sToken);
        if (word >= 0) apfnControlOptions[word](p);
    }
}
