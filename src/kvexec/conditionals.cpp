// &IF, &ELSEIF, &ELSE and the closers. The opening handler reads the following lines itself,
// dispatches the taken branch and reads past the others, counting nested &IF blocks.
#include <cstring>

#include "blocks.h"
#include "diagnostics.h"
#include "expression.h"
#include "kvexec.h"
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

}  // namespace

// A skipped nested conditional ends only at "&IFEND": one closed with "&ENDIF" makes the skip run
// on to the next "&IFEND".
void _DiscardFullIfBlock(Parser* p) {
    NestingGuard guard(p);
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, "&IF"))
            _DiscardFullIfBlock(p);
        else if (FirstWordIs(line, "&IFEND"))
            break;
    }
    SkipLine(p);
}

char* _DiscardIfBlock(Parser* p) {
    char* stop = nullptr;
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, "&IF")) {
            _DiscardFullIfBlock(p);
        } else if (IsIfCloser(line) || IsElse(line)) {
            stop = line;
            break;
        }
    }
    SkipLine(p);
    return stop;
}

CBString _DiscardElseIfBlock(Parser* p) {
    CBString word;
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, "&IF")) {
            _DiscardFullIfBlock(p);
        } else if (IsIfCloser(line) || IsElse(line)) {
            word = ExtractFirstWord(line);
            break;
        }
    }
    SkipLine(p);
    return word;
}

void _DiscardElseBlock(Parser* p) {
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, "&IF"))
            _DiscardFullIfBlock(p);
        else if (IsIfCloser(line))
            break;
    }
    SkipLine(p);
}

void ParseIf(Parser* p) {
    PushBlock(BlockIf, VarUndef, static_cast<unsigned>(p->iLine), 0);
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(p, Src::Kvexec, At::IfCondition);
    bool taken = Condition(p);

    switch (p->eTokenType) {
        case TokenStatement:
        case TokenVar:
        case TokenCommand:
            // One-line form: the action is the token after the condition and the rest of the line.
            if (taken) {
                CBString action = p->sToken;
                action += p->pPos;
                strncpy(szLine, action, sizeof szLine - 1);
                szLine[sizeof szLine - 1] = '\0';
                _Parse_Line(p, szLine);
            }
            PopBlock();
            SkipLine(p);
            return;
        case TokenEol: break;
        default: SYNTAX_ERROR(p, Src::Kvexec, At::IfTrailing);
    }

    if (taken) {
        while (char* line = GetLine(p, szLine, sizeof szLine)) {
            if (IsIfCloser(line)) {
                PopBlock();
                break;
            }
            if (IsElse(line)) {
                _DiscardElseBlock(p);
                PopBlock();
                break;
            }
            _Parse_Line(p, line);
        }
        SkipLine(p);
        return;
    }

    char* line = _DiscardIfBlock(p);
    while (line) {
        if (IsElse(line)) {
            // &ELSEIF or &ELSE takes the block over.
            _Parse_Line(p, line);
            break;
        }
        if (IsIfCloser(line)) {
            PopBlock();
            break;
        }
        if (FirstWordIs(line, "&IF")) {
            _DiscardFullIfBlock(p);
            break;
        }
        line = GetLine(p, szLine, sizeof szLine);
    }
    SkipLine(p);
}

void ParseElseif(Parser* p) {
    BlockType top = GetBlockType();
    if (top != BlockIf && top != BlockElseIf) NO_PENDING(p, Src::Kvexec, At::ElseifPending, "&IF or &ELSEIF");
    PopBlock();
    PushBlock(BlockElseIf, VarUndef, static_cast<unsigned>(p->iLine), 0);
    GetNextToken(p);
    if (p->eTokenType == TokenEol) SYNTAX_ERROR(p, Src::Kvexec, At::ElseifCondition);
    bool taken = Condition(p);
    if (p->eTokenType != TokenEol) SYNTAX_ERROR(p, Src::Kvexec, At::ElseifTrailing);

    if (!taken) {
        CBString word = _DiscardElseIfBlock(p);
        if (strcasecmp(word, "&ELSEIF") == 0 || strcasecmp(word, "&ELSE") == 0)
            _Parse_Line(p, szLine);
        else if (strcasecmp(word, "&IFEND") == 0 || strcasecmp(word, "&ENDIF") == 0)
            PopBlock();
        SkipLine(p);
        return;
    }
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (IsIfCloser(line)) {
            SkipLine(p);
            PopBlock();
            break;
        }
        if (IsElse(line)) {
            // The &ELSEIF entry stays on the stack here, unlike the same case of &IF.
            _DiscardElseBlock(p);
            break;
        }
        _Parse_Line(p, line);
    }
    SkipLine(p);
}

// An &ELSE branch ends only at "&IFEND": an "&ENDIF" inside it is dispatched, accepted without
// popping, and the branch goes on.
void ParseElse(Parser* p) {
    BlockType top = GetBlockType();
    if (top != BlockIf && top != BlockElseIf) NO_PENDING(p, Src::Kvexec, At::ElsePending, "&IF or &ELSEIF");
    PopBlock();
    PushBlock(BlockElse, VarUndef, static_cast<unsigned>(p->iLine), 0);
    while (char* line = GetLine(p, szLine, sizeof szLine)) {
        if (FirstWordIs(line, "&IFEND")) {
            PopBlock();
            break;
        }
        _Parse_Line(p, line);
    }
    SkipLine(p);
}

void ParseIfend(Parser* p) {
    BlockType top = GetBlockType();
    if (top != BlockIf && top != BlockElseIf && top != BlockElse)
        NO_PENDING(p, Src::Kvexec, At::IfendPending, "&IF, &ELSEIF or &ELSE");
}
