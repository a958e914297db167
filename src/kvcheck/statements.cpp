// Statements: each statement word's rules, bound to the words by a table in the words' order.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "checker.h"

using W = StatementWord;

void Checker::TakeStatement(size_t piece, const Token& word, Context ctx) {
    struct Row {
        StatementWord eWord;
        void (Checker::*pfnHandler)(const Statement&);
    };
    static constexpr Row aRows[] = {
        {W::Begstack, &Checker::ParseBegtype}, {W::Begtype, &Checker::ParseBegtype},
        {W::Break, &Checker::ParseBreak},      {W::Call, &Checker::ParseCall},
        {W::Crt, &Checker::ParseExpression},   {W::Continue, &Checker::ParseContinue},
        {W::Control, &Checker::Nothing},       {W::Elseif, &Checker::ParseElseif},
        {W::Else, &Checker::ParseElse},        {W::End, &Checker::ParseEnd},
        {W::Endif, &Checker::ParseEndif},      {W::Error, &Checker::ParseError},
        {W::Esc, &Checker::Nothing},           {W::For, &Checker::ParseFor},
        {W::Goto, &Checker::ParseGoto},        {W::If, &Checker::ParseIf},
        {W::Ifend, &Checker::ParseIfend},      {W::Loop, &Checker::ParseLoop},
        {W::Menu, &Checker::Nothing},          {W::Next, &Checker::ParseNext},
        {W::Quit, &Checker::ParseQuit},        {W::Read, &Checker::ParseRead},
        {W::Return, &Checker::ParseReturn},    {W::Shift, &Checker::ParseShift},
        {W::Skip, &Checker::ParseExpression},  {W::Sleep, &Checker::ParseSleep},
        {W::Space, &Checker::ParseExpression}, {W::Stack, &Checker::ParseExpression},
        {W::Type, &Checker::ParseType},        {W::Until, &Checker::ParseUntil},
        {W::Wait, &Checker::Nothing},          {W::Wend, &Checker::ParseWend},
        {W::While, &Checker::ParseWhile},
    };
    static_assert(RowsInWordOrder<W>(aRows), "one row per statement word, in order");
    Statement s{piece, word, Tokenize(PieceAt(piece).sText, word.uiStart + word.sText.size()), ctx};
    (this->*aRows[word.iWord].pfnHandler)(s);
}

// The action of a one-line &IF is taken with an &IF entry on top of the blocks, for that action
// only; what the action opens stays open.
void Checker::TakeAction(size_t piece, size_t at, Context ctx) {
    if (!ctx.bBlocks) {
        TakeLine(piece, at, Context{false, true});
        return;
    }
    size_t mark = Stack().size();
    Stack().push_back(Entry{Block::If, PieceAt(piece).iLine, PieceAt(piece).iColumn, W::If});
    TakeLine(piece, at, Context{true, true});
    Stack().erase(Stack().begin() + static_cast<long>(mark));
}

namespace {

bool HasStatementWord(const Tokens& t) {
    for (const Token& k : t)
        if (k.eKind == Kind::Statement) return true;
    return false;
}

}  // namespace

// ---- Conditionals -------------------------------------------------------------------------

// The block form. A condition that is a number alone is known: kvexec then skips the branch
// that does not run, and so does the check.
void Checker::OpenIf(const Statement& s, int known) {
    if (!s.ctx.bBlocks) return;
    Push(s, Block::If);
    Stack().back().bTaken = known == 1;
    if (known == 0) StartSkip(Skip::Branch);
}

void Checker::ParseIf(const Statement& s) {
    size_t end = ScanCondition(s, Message::ConditionMissingSyntax);
    if (end == std::string::npos) {
        // What the evaluator makes of the condition is not known; the line's form is.
        if (!HasStatementWord(s.aRest)) OpenIf(s, -1);
        return;
    }
    const Token& t = s.aRest[end];
    switch (t.eKind) {
        case Kind::End: OpenIf(s, KnownCondition(s.aRest, end)); return;
        case Kind::Statement:
        case Kind::Variable:
            if (KnownCondition(s.aRest, end) != 0) TakeAction(s.uiPiece, t.uiStart, s.ctx);
            return;
        default: Add(s, t, Message::IfAction, {t.sText});
    }
}

// After a branch known to run, kvexec skips from the next &ELSE or &ELSEIF to the end.
bool Checker::EndsTakenBranch(const Statement& s) {
    if (!s.ctx.bBlocks || !Closes(s)) return false;
    DropLingering();
    if (!TopIs(Block::If) || !Stack().back().bTaken) return false;
    StartSkip(Skip::Rest);
    return true;
}

void Checker::ParseElseif(const Statement& s) {
    if (s.ctx.bAction || EndsTakenBranch(s)) return;
    size_t end = ScanCondition(s, Message::ConditionMissingSyntax);
    if (end != std::string::npos && s.aRest[end].eKind != Kind::End)
        Add(s, s.aRest[end], Message::ElseifAction, {s.aRest[end].sText});
    if (!s.ctx.bBlocks) return;
    DropLingering();
    if (!TopIs(Block::If)) {
        NoPending(s, "&IF or &ELSEIF");
        return;
    }
    int known = end == std::string::npos ? -1 : KnownCondition(s.aRest, end);
    Stack().back().bTaken = Stack().back().bElseif = known == 1;
    if (known == 0) StartSkip(Skip::Branch);
}

void Checker::ParseElse(const Statement& s) {
    if (s.ctx.bAction || !s.ctx.bBlocks || EndsTakenBranch(s)) return;
    DropLingering();
    if (TopIs(Block::If))
        Stack().back() = Entry{Block::Else, Stack().back().iLine, Stack().back().iColumn, W::If};
    else
        NoPending(s, "&IF or &ELSEIF");
}

// A closer that is not its line's first word (written "&IFEND;note" or as an action) is
// dispatched: it only checks that a conditional is open.
bool Checker::GluedIfCloser(const Statement& s) {
    if (Closes(s)) return false;
    if (!TopIsIf() && !TopIsLingering()) NoPending(s, "&IF, &ELSEIF or &ELSE");
    return true;
}

void Checker::ParseIfend(const Statement& s) {
    if (s.ctx.bAction || !s.ctx.bBlocks || GluedIfCloser(s) || CloseLeftEntry()) return;
    if (TopIsIf() || TopIs(Block::ElseAfterEndif))
        Stack().pop_back();
    else
        NoPending(s, "&IF, &ELSEIF or &ELSE");
}

// &ENDIF ends an &IF branch as &IFEND does, but a skip over a nested block and an &ELSE branch
// both run on to the next &IFEND.
void Checker::ParseEndif(const Statement& s) {
    if (s.ctx.bAction || !s.ctx.bBlocks || GluedIfCloser(s) || CloseLeftEntry()) return;
    if (TopIs(Block::ElseAfterEndif)) return;
    if (TopIs(Block::If)) {
        Stack().pop_back();
        if (Innermost([](Block b) { return b == Block::If || b == Block::Else || b == Block::ElseAfterEndif; }))
            Note(s, Message::NestedEndif);
    } else if (TopIs(Block::Else)) {
        Note(s, Message::ElseEndif);
        Stack().back().eBlock = Block::ElseAfterEndif;
    } else {
        NoPending(s, "&IF, &ELSEIF or &ELSE");
    }
}

// ---- Loops --------------------------------------------------------------------------------

// The start and limit expressions follow the "=".
void Checker::ParseFor(const Statement& s) {
    CheckForHead(s);
    size_t from = s.aRest[0].eKind == Kind::Variable && s.aRest[1].Is("=") ? 2 : 0;
    CheckExpression(s.uiPiece, s.aRest, from, s.aRest.size() - 1);
    Push(s, Block::For);
}

void Checker::ParseNext(const Statement& s) {
    if (!s.ctx.bBlocks) return;
    DropLingering();
    if (!TopIs(Block::For))
        NoPending(s, "&FOR");
    else if (Closes(s))
        Stack().pop_back();
}

void Checker::ParseWhile(const Statement& s) {
    ScanCondition(s, Message::ConditionMissingInternal);
    OpenLoop(s, Block::While, "&WEND");
}

void Checker::ParseUntil(const Statement& s) {
    ScanCondition(s, Message::ConditionMissingInternal);
    OpenLoop(s, Block::Until, "&LOOP");
}

void Checker::ParseWend(const Statement& s) { CloseLoop(s, Block::While, "&WHILE"); }
void Checker::ParseLoop(const Statement& s) { CloseLoop(s, Block::Until, "&UNTIL"); }
void Checker::ParseBreak(const Statement& s) { LoopControl(s, Message::BreakInLoop); }
void Checker::ParseContinue(const Statement& s) { LoopControl(s, Message::ContinueInLoop); }

// ---- Jumps --------------------------------------------------------------------------------

// A jump at the start of a line: the lines after it are reached only through a label or a skip.
void Checker::Jumps(const Statement& s) {
    if (!s.ctx.bAction && s.ctx.bBlocks) bJumped = true;
}

void Checker::ParseGoto(const Statement& s) {
    Jumps(s);
    std::string target;
    if (!Target(s.aRest[0], &target) || LabelLines(target)) return;
    const Token& at = s.aRest[0].eKind == Kind::End ? s.word : s.aRest[0];
    Add(s, at, Message::GotoLabel, {target, target});
}

// &CALL searches forward from the line after it.
void Checker::ParseCall(const Statement& s) {
    bCallSeen = true;
    const Entry* loop = s.ctx.bBlocks ? Innermost(IsLoop) : nullptr;
    if (loop)
        Note(s, Message::CallInLoop,
             {kStatementWords.Name(static_cast<int>(loop->eWord)), std::to_string(loop->iLine)});
    std::string target;
    if (!Target(s.aRest[0], &target)) return;
    const std::vector<size_t>* lines = LabelLines(target);
    if (lines && lines->back() > s.uiPiece) return;
    const Token& at = s.aRest[0].eKind == Kind::End ? s.word : s.aRest[0];
    if (lines)
        Add(s, at, Message::CallAbove, {target, std::to_string(PieceAt(lines->front()).iLine), target});
    else
        Add(s, at, Message::CallLabel, {target, target});
}

// Whether &RETURN has a &CALL to return to is known at the end of the file.
void Checker::ParseReturn(const Statement& s) {
    Jumps(s);
    if (!s.ctx.bBlocks || bDead) return;
    DropLingering();
    if (Stack().empty())
        aReturns.emplace_back(s.uiPiece, s.word.uiStart);
    else
        NoPending(s, "&CALL");
}

void Checker::ParseQuit(const Statement& s) {
    Jumps(s);
    ParseExpression(s);
}

void Checker::ParseEnd(const Statement& s) {
    if (s.ctx.bBlocks) NoPending(s, "&BEGSTACK or &BEGTYPE");
}

// &BEGTYPE and &BEGSTACK: the lines up to &END are text.
void Checker::ParseBegtype(const Statement& s) { Push(s, Block::Text); }

// ---- The rest -----------------------------------------------------------------------------

// &ERROR keeps the rest of its line, to take it as a line whenever a command fails.
void Checker::ParseError(const Statement& s) {
    const std::string& text = PieceAt(s.uiPiece).sText;
    size_t at = s.word.uiStart + s.word.sText.size();
    while (at < text.size() && IsBlank(text[at])) ++at;
    if (at == text.size()) {
        Add(s, s.word, Message::ErrorMissing);
        return;
    }
    TakeLine(s.uiPiece, at, Context{false, false});
}

void Checker::ParseSleep(const Statement& s) {
    if (s.aRest[0].eKind == Kind::End) Add(s, s.word, Message::SleepMissing);
    if (NegativeCount(s)) Add(s, s.aRest[0], Message::SleepNegative);
    ParseExpression(s);
}

void Checker::ParseShift(const Statement& s) {
    if (NegativeCount(s)) Add(s, s.aRest[0], Message::ShiftNegative);
    ParseExpression(s);
}

// "-" and a number that kvexec takes as a negative count: truncated to a whole number, then to
// its low 16 bits ("-0.5" is 0, "-40000" is 25536).
bool Checker::NegativeCount(const Statement& s) const {
    const Tokens& t = s.aRest;
    if (!t[0].Is("-") || (t[1].eKind != Kind::Integer && t[1].eKind != Kind::Float)) return false;
    double value = std::trunc(strtod(t[1].sText.c_str(), nullptr));
    if (value >= 2147483648.0) return false;
    return static_cast<int16_t>(static_cast<uint16_t>(-static_cast<int32_t>(value))) < 0;
}

// &READ stops at the first word that is no variable.
void Checker::ParseRead(const Statement& s) {
    for (const Token& t : s.aRest) {
        if (t.eKind == Kind::Function) {
            Add(s, t, Message::ReadWord, {t.sText, "function", kFunctionWords.Name(t.iWord)});
            return;
        }
        if (t.eKind == Kind::Statement) {
            Add(s, t, Message::ReadWord, {t.sText, "statement", kStatementWords.Name(t.iWord)});
            return;
        }
    }
}

// &TYPE expands references but not "&*".
void Checker::ParseType(const Statement& s) {
    const std::string& text = PieceAt(s.uiPiece).sText;
    size_t i = s.word.uiStart + s.word.sText.size();
    while (i < text.size() && text[i] != ';') {
        if (text[i] != '&') {
            ++i;
            continue;
        }
        size_t run = i;
        while (i < text.size() && text[i] == '&') ++i;
        if (i < text.size() && text[i] == '*') Add(s.uiPiece, run, Message::TypeStar, {text.substr(run, i + 1 - run)});
    }
}

void Checker::ParseExpression(const Statement& s) { CheckExpression(s.uiPiece, s.aRest, 0, s.aRest.size() - 1); }
