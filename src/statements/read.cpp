// &READ: lines of keyboard input into variables.
#include "kavro.h"
#include "line_editor.h"
#include "statements.h"
#include "variables.h"

// &READ &a &b …: one line per variable; anything after the variables is ignored.
void ParseRead(Parser* p) {
    GetNextToken(p);
    while (p->eTokenType == TokenVar) {
        Variable* v = GetVar(p->sToken);
        const CBString& prompt = kavro::Kavro->sPrompt;
        kavro::TermWrite(prompt.data(), static_cast<size_t>(prompt.length()));
        kavro::t_StackSave();
        kavro::t_StackLoad();
        char line[4096];
        Read(line, sizeof line, p->iAutoCr);
        v->value.eType = VarString;
        v->value.sValue = line;
        GetNextToken(p);
    }
    SkipLine(p);
}
