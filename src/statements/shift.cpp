// &SHIFT: the positional arguments move down one place per round.
#include "kavro.h"
#include "statements.h"
#include "variables.h"

// Each round copies &2 to &1, &3 to &2 and so on; its last copy reads the reference one past the
// last argument, and the variable at that index is then emptied (and created if need be).
void ParseShift(Parser* p) {
    GetNextToken(p);
    int count = 1;
    if (p->eTokenType != TokenEol) {
        Const c;
        Evaluate(p, &c, false);
        ToInteger(&c);
        count = c.iValue != 0 ? c.iValue : 1;
    }
    // A negative count runs down through zero by wrapping around.
    uint32_t rounds = static_cast<uint32_t>(count < iArgs ? count : iArgs);
    while (rounds != 0) {
#ifdef KVEXEC_FUZZ
        // A negative count does not finish: the fuzzing build counts the rounds against its budget.
        kavro::FuzzStep();
#endif
        int i = 1;
        if (iArgs > 1) {
            for (;;) {
                SetStringVar(ArgumentName(i), GetVarValue(ArgumentName(i + 1)));
                if (!(i + 1 < iArgs)) break;
                ++i;
            }
            ++i;
        }
        SetStringVar(ArgumentName(i), "");
        iArgs = static_cast<int>(static_cast<uint32_t>(iArgs) - 1u);
        --rounds;
    }
    SkipLine(p);
}
