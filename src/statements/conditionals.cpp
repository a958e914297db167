// &IF, &ELSEIF, &ELSE and the closers. The opening handler reads the following lines itself,
// dispatches the taken branch and reads past the others, counting nested &IF blocks.
#include <strings.h>

#include "blocks.h"
#include "diagnostics.h"
#include "statements.h"

namespace {

bool IsIfCloser(const char* line) { return FirstWordIs(line, "&IFEND") || FirstWordIs(line, "&ENDIF"); }
bool IsElse(const char* line) { return FirstWordIs(line, "&ELSE") || FirstWordIs(line, "&ELSEIF"); }

// Conditions are read as the 16-bit integer slot of the result, without conversion.
bool Condition(Parser* p) {
    Const c;
    Evaluate(p, &c, true);
    return c.iValue != 0;
}

// Reads past lines up to one whose first word is one of stops ("&IF" among them), passing over
// each nested conditional whole; returns that line, or null at the end of the script.
const char* SkipBranch(Parser* p, std::initializer_list<const char*> stops) {
    while (const char* line = p->pScript->ReadUntil(stops)) {
        if (!FirstWordIs(line, "&IF")) return line;
        _DiscardFullIfBlock(p);
    }
    return nullptr;
}

// Dispatches lines up to one whose first word is one of stops; returns it, or null at the end.
const char* RunBranch(Parser* p, std::initializer_list<const char*> stops) {
    return p->pScript->ReadUntil(stops, [p](const char* line) { _Parse_Line(p, line); });
}

// &ELSEIF and &ELSE take the block over from the &IF or &ELSEIF before them.
void TakeOver(Parser* p, BlockType kind, int detectedAt) {
    BlockType top = GetBlockType();
    if (top != BlockIf && top != BlockElseIf) NO_PENDING(Src::Kvexec, detectedAt, "&IF or &ELSEIF");
    PopBlock();
    PushBlock(kind, VarUndef, static_cast<unsigned>(p->pScript->iLine), 0);
}

}  // namespace

// A skipped nested conditional ends only at "&IFEND": one closed with "&ENDIF" makes the skip run
// on to the next "&IFEND".
void _DiscardFullIfBlock(Parser* p) {
    NestingGuard guard;
    SkipBranch(p, {"&IF", "&IFEND"});
    SkipLine(p);
}

const char* _DiscardIfBlock(Parser* p) {
    const char* stop = SkipBranch(p, {"&IF", "&IFEND", "&ENDIF", "&ELSE", "&ELSEIF"});
    SkipLine(p);
    return stop;
}

CBString _DiscardElseIfBlock(Parser* p) {
    const char* stop = _DiscardIfBlock(p);
    return stop ? ExtractFirstWord(stop) : CBString();
}

void _DiscardElseBlock(Parser* p) {
    SkipBranch(p, {"&IF", "&IFEND", "&ENDIF"});
    SkipLine(p);
}

void ParseIf(Parser* p) {
    PushBlock(BlockIf, VarUndef, static_cast<unsigned>(p->pScript->iLine), 0);
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(Src::Kvexec, At::IfCondition);
    bool taken = Condition(p);

    switch (p->eTokenType) {
        case TokenStatement:
        case TokenVar:
        case TokenCommand:
            // One-line form: the action is the token after the condition and the rest of the line.
            if (taken) {
                CBString action = p->sToken;
                action += p->pPos;
                _Parse_Line(p, action);
            }
            PopBlock();
            SkipLine(p);
            return;
        case TokenEol: break;
        default: SYNTAX_ERROR(Src::Kvexec, At::IfTrailing);
    }

    if (taken) {
        if (const char* line = RunBranch(p, {"&IFEND", "&ENDIF", "&ELSE", "&ELSEIF"})) {
            if (IsElse(line)) _DiscardElseBlock(p);
            PopBlock();
        }
        SkipLine(p);
        return;
    }

    // The skip stops only at a closer or at the next branch, which takes the block over.
    if (const char* line = _DiscardIfBlock(p)) {
        if (IsElse(line))
            _Parse_Line(p, line);
        else
            PopBlock();
    }
    SkipLine(p);
}

void ParseElseif(Parser* p) {
    TakeOver(p, BlockElseIf, At::ElseifPending);
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(Src::Kvexec, At::ElseifCondition);
    bool taken = Condition(p);
    if (p->eTokenType != TokenEol) SYNTAX_ERROR(Src::Kvexec, At::ElseifTrailing);

    if (!taken) {
        CBString word = _DiscardElseIfBlock(p);
        if (strcasecmp(word, "&ELSEIF") == 0 || strcasecmp(word, "&ELSE") == 0)
            _Parse_Line(p, p->pScript->Line());
        else if (strcasecmp(word, "&IFEND") == 0 || strcasecmp(word, "&ENDIF") == 0)
            PopBlock();
        SkipLine(p);
        return;
    }
    if (const char* line = RunBranch(p, {"&IFEND", "&ENDIF", "&ELSE", "&ELSEIF"})) {
        if (IsIfCloser(line)) {
            SkipLine(p);
            PopBlock();
        } else {
            // The &ELSEIF entry stays on the stack here, unlike the same case of &IF.
            _DiscardElseBlock(p);
        }
    }
    SkipLine(p);
}

// An &ELSE branch ends only at "&IFEND": an "&ENDIF" inside it is dispatched, accepted without
// popping, and the branch goes on.
void ParseElse(Parser* p) {
    TakeOver(p, BlockElse, At::ElsePending);
    if (RunBranch(p, {"&IFEND"})) PopBlock();
    SkipLine(p);
}

void ParseIfend(Parser* /*p*/) {
    BlockType top = GetBlockType();
    if (top != BlockIf && top != BlockElseIf && top != BlockElse)
        NO_PENDING(Src::Kvexec, At::IfendPending, "&IF, &ELSEIF or &ELSE");
}
