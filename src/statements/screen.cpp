// &CRT: a screen code by name, or a cursor move.
#include "expression.h"
#include "kavro.h"
#include "screen_codes.h"
#include "statements.h"

// &CRT value: with a string the name looked up is the token that ended the expression (so
// "&CRT x DL" writes DL's code and "&CRT DL" alone writes nothing); with numbers it moves the
// cursor, the second number first.
void ParseCrt(Parser* p) {
    GetNextToken(p);
    Const first;
    Evaluate(p, &first, false);
    if (first.eType == VarString) {
        CBString code = Crt(p->sToken);
        kavro::TermWrite(code.data(), static_cast<size_t>(code.length()));
        return;
    }
    Const second;
    Evaluate(p, &second, false);
    kavro::TermMove(second.iValue, first.iValue);
}
