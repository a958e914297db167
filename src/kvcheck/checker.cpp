// Line dispatch: what each line is, decided as kvexec decides it.
#include "checker.h"

#include <cstring>

#include "tokenizer.h"

namespace {

bool IsWordStart(char c) { return IsLetter(c) || c == '.' || c == '/' || c == '_'; }

// The end of the word a line starts with: up to a blank, ";", "=", ":" or the end (a tab does
// not end it); alnum tells whether every byte after the first is alphanumeric.
size_t WordEnd(const std::string& text, size_t at, bool* alnum) {
    size_t end = at + 1;
    *alnum = true;
    for (; end < text.size() && !strchr(" ;=:", text[end]); ++end)
        if (!IsAlnum(text[end])) *alnum = false;
    return end;
}

}  // namespace

void Checker::Run() {
    IndexLabels();
    for (size_t i = 0; i < pScript->aPieces.size(); ++i) TakePiece(i);
    EndOfFile();
    for (const LongLine& l : pScript->aLongLines)
        pReport->Add(l.iLine, 1, Message::LongLine, {std::to_string(l.lBytes), std::to_string(l.lPieces)});
}

void Checker::TakePiece(size_t piece) {
    const std::string& text = PieceAt(piece).sText;
    if (eSkip != Skip::None) {
        SkipPiece(piece);
        return;
    }
    if (bDead && IsLabelLine(text)) {
        // Where the jumps come in: a jump does not take the label's line, the lines after it run.
        bDead = false;
        return;
    }
    if (bDead && EndsDeadRun(piece)) bDead = false;
    if (TopIs(Block::Text)) {
        // &BEGTYPE and &BEGSTACK read their lines themselves, up to the first &END.
        if (FirstWordIs(text.c_str(), "&END")) Stack().pop_back();
        return;
    }
    TakeLine(piece, 0, Context{true, false});
    if (bJumped && !bDead) {
        bDead = true;
        aDeadStack.clear();
    }
    bJumped = false;
}

void Checker::Add(size_t piece, size_t offset, Message m, std::initializer_list<std::string> args) {
    const Piece& p = PieceAt(piece);
    pReport->Add(p.iLine, p.iColumn + static_cast<int>(offset), m, args);
}

void Checker::TakeLine(size_t piece, size_t from, Context ctx) {
    const std::string& text = PieceAt(piece).sText;
    size_t at = from;
    while (at < text.size() && IsBlank(text[at])) ++at;
    if (at == text.size() || text[at] == ';' || text[at] == '#') return;
    char c = text[at];
    if (IsWordStart(c))
        TakeWordLine(piece, at);
    else if (c == '&')
        TakeAmpersandLine(piece, at, ctx);
    else
        Add(piece, at, Message::LineStart, {std::string(1, c)});
}

bool Checker::IsLabelLine(const std::string& text) {
    if (text.empty() || !IsWordStart(text[0])) return false;
    bool alnum;
    size_t end = WordEnd(text, 0, &alnum);
    return alnum && end < text.size() && text[end] == ':';
}

// A line that starts with a letter, ".", "/" or "_": a label, an assignment or a command line.
void Checker::TakeWordLine(size_t piece, size_t at) {
    const std::string& text = PieceAt(piece).sText;
    bool alnum;
    size_t end = WordEnd(text, at, &alnum);
    if (alnum && end < text.size() && text[end] == ':') {
        TakeLabel(piece, at, end);
        return;
    }
    if (alnum && NextToken(text, end).Is("=")) {
        CheckAssignedWord(piece, at, text.substr(at, end - at));
        TakeAssignment(piece, NextToken(text, end).uiStart + 1);
        return;
    }
    TakeCommand(piece, at, nullptr);
}

// After the label's colon only white space or a comment may follow.
void Checker::TakeLabel(size_t piece, size_t at, size_t colon) {
    const std::string& text = PieceAt(piece).sText;
    size_t after = colon + 1;
    while (after < text.size() && IsBlank(text[after])) ++after;
    if (after == text.size() || text[after] == ';') return;
    Add(piece, after, Message::LabelText, {text.substr(at, colon + 1 - at)});
}

// A line that starts with "&": a statement, an assignment or a command line.
void Checker::TakeAmpersandLine(size_t piece, size_t at, Context ctx) {
    const std::string& text = PieceAt(piece).sText;
    Token word = NextToken(text, at);
    switch (word.eKind) {
        case Kind::Logical: Add(piece, at, Message::LoneAmpersand); return;
        case Kind::Function: Add(piece, at, Message::FunctionFirst, {word.sText}); return;
        case Kind::Statement: TakeStatement(piece, word, ctx); return;
        default: break;
    }
    Token next = NextToken(text, at + word.sText.size());
    if (next.Is("="))
        TakeAssignment(piece, next.uiStart + 1);
    else
        TakeCommand(piece, at, &word);
}

void Checker::TakeAssignment(size_t piece, size_t from) {
    Tokens t = Tokenize(PieceAt(piece).sText, from);
    CheckExpression(piece, t, 0, t.size() - 1);
}

// "len = 5" sets &len, which an expression reads as the function &LEN.
void Checker::CheckAssignedWord(size_t piece, size_t at, const std::string& word) {
    std::string name = "&" + word;
    int row = kFunctionWords.Find(name.c_str());
    if (row >= 0) {
        Add(piece, at, Message::AssignedWord, {name, "function", kFunctionWords.Name(row)});
        return;
    }
    row = kStatementWords.Find(name.c_str());
    if (row >= 0) Add(piece, at, Message::AssignedWord, {name, "statement", kStatementWords.Name(row)});
}
