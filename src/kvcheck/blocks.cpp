// The blocks a run from the top to the bottom of the script would open and close.
#include "checker.h"

#include "tokenizer.h"

void Checker::Push(const Statement& s, Block b) {
    if (!s.ctx.bBlocks) return;
    const Piece& p = PieceAt(s.uiPiece);
    Stack().push_back(Entry{b, p.iLine, p.iColumn + static_cast<int>(s.word.uiStart), s.Word()});
}

const Checker::Entry* Checker::Innermost(bool (*match)(Block)) const {
    const std::vector<Entry>& stack = Stack();
    for (auto e = stack.rbegin(); e != stack.rend(); ++e)
        if (match(e->eBlock)) return &*e;
    return nullptr;
}

// Entries that may or may not still be open are forgotten before a statement that needs the top.
void Checker::DropLingering() {
    while (TopIsLingering()) Stack().pop_back();
}

bool Checker::Closes(const Statement& s) const {
    const std::string& text = PieceAt(s.uiPiece).sText;
    return !s.ctx.bAction && s.word.uiStart == 0 && FirstWordLength(text.c_str()) == s.word.sText.size();
}

// The entry a taken &ELSEIF left on top: the closer of an &IF directly around it, read by that
// &IF's handler, pops it and ends the outer block; without one the closer does nothing (true:
// the closer is used up).
bool Checker::CloseLeftEntry() {
    if (!TopIs(Block::ElseifLeft)) return false;
    std::vector<Entry>& stack = Stack();
    Block below = stack.size() > 1 ? stack[stack.size() - 2].eBlock : Block::ElseifLeft;
    if (below != Block::If && below != Block::Else && below != Block::ElseAfterEndif) return true;
    stack.pop_back();
    return false;
}

// &WEND and &LOOP end their loop only as the first word of a line that the loop reads itself;
// reached otherwise they always fail.
void Checker::CloseLoop(const Statement& s, Block loop, const char* what) {
    if (!s.ctx.bBlocks) return;
    DropLingering();
    if (Closes(s) && TopIs(loop))
        Stack().pop_back();
    else
        NoPending(s, what);
}

// &BREAK and &CONTINUE work only as lines a &WHILE or &UNTIL reads itself.
void Checker::LoopControl(const Statement& s, Message inLoop) {
    if (!s.ctx.bBlocks) return;
    DropLingering();
    if (Closes(s) && TopIs(Block::While))
        Note(s, inLoop, {"&WEND", "&WHILE"});
    else if (Closes(s) && TopIs(Block::Until))
        Note(s, inLoop, {"&LOOP", "&UNTIL"});
    else
        NoPending(s, "&FOR, &UNTIL or &WHILE");
}

// &WHILE and &UNTIL: a loop of the same kind inside another ends the outer loop's search for its
// closer early.
void Checker::OpenLoop(const Statement& s, Block loop, const char* closer) {
    if (!s.ctx.bBlocks) return;
    const std::vector<Entry>& stack = Stack();
    for (auto e = stack.rbegin(); e != stack.rend(); ++e) {
        if (e->eBlock != loop) continue;
        Note(s, Message::NestedLoop, {Name(s), Name(s), std::to_string(e->iLine), closer, closer});
        break;
    }
    Push(s, loop);
}

void Checker::EndOfFile() {
    for (const Entry& e : aStack) {
        switch (e.eBlock) {
            case Block::For: pReport->Add(e.iLine, e.iColumn, Message::ForOpen); break;
            case Block::While: pReport->Add(e.iLine, e.iColumn, Message::LoopOpen, {"&WHILE", "&WEND"}); break;
            case Block::Until: pReport->Add(e.iLine, e.iColumn, Message::LoopOpen, {"&UNTIL", "&LOOP"}); break;
            case Block::If:
            case Block::Else: pReport->Add(e.iLine, e.iColumn, Message::IfOpen); break;
            case Block::Text:
                pReport->Add(e.iLine, e.iColumn,
                             e.eWord == StatementWord::Begstack ? Message::BegstackOpen : Message::BegtypeOpen);
                break;
            case Block::ElseAfterEndif:
            case Block::ElseifLeft: break;
        }
    }
    if (bCallSeen) return;
    for (const auto& r : aReturns) Add(r.first, r.second, Message::NoPending, {"&RETURN", "&CALL"});
}

// ---- Skips ------------------------------------------------------------------------------

// A line of a branch kvexec skips: only its first word counts. A nested &IF is passed over whole,
// up to its &IFEND (not &ENDIF).
void Checker::SkipPiece(size_t piece) {
    const char* text = PieceAt(piece).sText.c_str();
    size_t n = FirstWordLength(text);
    auto is = [&](const char* word) { return FirstWordIs(text, n, word); };
    if (iNestedSkip > 0) {
        if (is("&IF")) ++iNestedSkip;
        if (is("&IFEND")) --iNestedSkip;
        return;
    }
    if (is("&IF")) {
        iNestedSkip = 1;
    } else if (is("&IFEND") || is("&ENDIF")) {
        EndSkip();
    } else if (eSkip == Skip::Branch && (is("&ELSE") || is("&ELSEIF"))) {
        eSkip = Skip::None;
        TakeLine(piece, 0, Context{true, false});
    }
}

// The closer that ends a skip ends the block, except after a taken &ELSEIF, whose entry stays.
void Checker::EndSkip() {
    Entry& top = Stack().back();
    if (eSkip == Skip::Rest && top.bElseif)
        top.eBlock = Block::ElseifLeft;
    else
        Stack().pop_back();
    eSkip = Skip::None;
}

// ---- Lines reached only by a jump ---------------------------------------------------------

// After an unconditional jump, the lines that follow are reached again through a label, or
// through the skip of a block open before the jump: a skip stops at that block's closer (or
// branch word) and passes over everything opened in between.
bool Checker::EndsDeadRun(size_t piece) {
    if (!aDeadStack.empty()) return false;
    const char* text = PieceAt(piece).sText.c_str();
    size_t n = FirstWordLength(text);
    bool (*closes)(Block) = nullptr;
    if (FirstWordIs(text, n, "&ELSE") || FirstWordIs(text, n, "&ELSEIF") || FirstWordIs(text, n, "&IFEND") ||
        FirstWordIs(text, n, "&ENDIF"))
        closes = [](Block b) { return b == Block::If || b == Block::Else || b == Block::ElseAfterEndif; };
    else if (FirstWordIs(text, n, "&WEND"))
        closes = [](Block b) { return b == Block::While; };
    else if (FirstWordIs(text, n, "&LOOP"))
        closes = [](Block b) { return b == Block::Until; };
    if (!closes) return false;
    size_t keep = aStack.size();
    while (keep > 0 && !closes(aStack[keep - 1].eBlock)) --keep;
    if (keep == 0) return false;
    aStack.resize(keep);
    return true;
}
