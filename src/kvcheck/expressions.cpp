// Conditions and expressions, read as kvexec's evaluator reads them: alternating operand and
// operator positions.
#include <cstdint>
#include <cstdlib>

#include "checker.h"

namespace {

constexpr size_t npos = std::string::npos;

enum class Stop { Ended, Stopped, Logical };

struct Scan {
    Stop eStop;
    size_t uiAt;    // the end token, or the logical operator
    bool bOperand;  // in operand position when it ended
};

size_t MatchingClose(const Tokens& t, size_t open) {
    int depth = 0;
    for (size_t i = open; t[i].eKind != Kind::End; ++i) {
        if (t[i].eKind == Kind::Open) ++depth;
        if (t[i].eKind == Kind::Close && --depth == 0) return i;
    }
    return npos;
}

size_t NextOfKind(const Tokens& t, size_t from, Kind k) {
    for (size_t i = from; t[i].eKind != Kind::End; ++i)
        if (t[i].eKind == k) return i;
    return npos;
}

// One step in operand position: the next index to look at in operator position, or a result.
bool OperandStep(const Tokens& t, size_t* i, bool commaIsOperand, Scan* result) {
    const Token& k = t[*i];
    if (k.eKind == Kind::End || k.eKind == Kind::Close || (k.eKind == Kind::Comma && !commaIsOperand)) {
        *result = Scan{Stop::Ended, *i, true};
        return false;
    }
    if (k.IsOperand() || k.eKind == Kind::Comma) return true;
    if (k.eKind == Kind::Open) {
        *i = MatchingClose(t, *i);
        if (*i != npos) return true;
    }
    *result = Scan{Stop::Stopped, *i, true};
    return false;
}

// One step in operator position: true to go on in operand position.
bool OperatorStep(const Tokens& t, size_t* i, Scan* result) {
    const Token& k = t[*i];
    if (k.eKind == Kind::Arithmetic || k.eKind == Kind::Comparator) return true;
    if (k.eKind == Kind::Logical) {
        *result = Scan{Stop::Logical, *i, false};
        return false;
    }
    *result = Scan{Stop::Ended, *i, false};
    return false;
}

// From `from` in operand position up to the token that ends the expression, or to where the
// evaluator would leave the way the checker can follow.
Scan ScanPositions(const Tokens& t, size_t from, bool commaIsOperand) {
    Scan result{Stop::Stopped, npos, true};
    bool operand = true;
    for (size_t i = from;; ++i) {
        if (operand) {
            if (t[i].Is("-")) continue;  // a sign
            if (!OperandStep(t, &i, commaIsOperand, &result)) return result;
            operand = false;
        } else if (t[i].eKind == Kind::OpenIndex) {
            i = NextOfKind(t, i, Kind::CloseIndex);
            if (i == npos) return result;
        } else {
            if (!OperatorStep(t, &i, &result)) return result;
            operand = true;
        }
    }
}

size_t FirstStatementWord(const Tokens& t) {
    size_t i = 0;
    while (t[i].eKind != Kind::End && t[i].eKind != Kind::Statement) ++i;
    return i;
}

// A "-" after these (or first) is a sign.
bool SignBefore(const Token& t) {
    return t.IsOperator() || t.eKind == Kind::Open || t.eKind == Kind::Comma || t.eKind == Kind::OpenIndex;
}

}  // namespace

size_t Checker::ScanCondition(const Statement& s, Message missing) {
    const Tokens& t = s.aRest;
    if (t[0].eKind == Kind::End) {
        Add(s, s.word, missing, {kStatementWords.Name(s.word.iWord)});
        return npos;
    }
    size_t end = npos;
    if (t[0].eKind == Kind::Function || t[0].eKind == Kind::Open) {
        Add(s, t[0], Message::ConditionFunction, {t[0].sText});
    } else {
        Scan scan = ScanPositions(t, 0, true);
        if (scan.eStop == Stop::Logical) Add(s, t[scan.uiAt], Message::ConditionLogical, {t[scan.uiAt].sText});
        if (scan.eStop == Stop::Ended) end = scan.uiAt;
    }
    CheckExpression(s.uiPiece, t, 0, end == npos ? FirstStatementWord(t) : end);
    return end;
}

// "&FOR &variable = start , limit": the start expression must end at the comma.
void Checker::CheckForHead(const Statement& s) {
    const Tokens& t = s.aRest;
    size_t failed = npos;
    if (t[0].eKind != Kind::Variable) {
        failed = 0;
    } else if (!t[1].Is("=")) {
        failed = 1;
    } else {
        Scan scan = ScanPositions(t, 2, false);
        // A function word or a logical operator takes the evaluator where the check does not follow.
        if (scan.eStop != Stop::Ended || (!scan.bOperand && t[scan.uiAt].eKind == Kind::Comma)) return;
        failed = scan.uiAt;
    }
    Add(s, t[failed].eKind == Kind::End ? s.word : t[failed], Message::ForForm);
}

void Checker::CheckExpression(size_t piece, const Tokens& t, size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
        if (t[i].eKind == Kind::Integer) CheckInteger(piece, t, i, from);
        // Only a function word that starts an operand is called.
        if (t[i].eKind == Kind::Function && i > from && t[i - 1].IsOperator())
            Add(piece, t[i].uiStart, Message::FunctionAfterOperator, {t[i].sText});
    }
}

// Integers are 16 bits wide: a larger literal keeps its low 16 bits.
void Checker::CheckInteger(size_t piece, const Tokens& t, size_t at, size_t from) {
    long value = strtol(t[at].sText.c_str(), nullptr, 10);
    bool sign = at > from && t[at - 1].Is("-") && (at - 1 == from || SignBefore(t[at - 2]));
    if (sign) value = -value;
    if (value >= -32768 && value <= 32767) return;
    int16_t becomes = static_cast<int16_t>(static_cast<uint16_t>(static_cast<unsigned long>(value)));
    std::string written = (sign ? "-" : "") + t[at].sText;
    Add(piece, t[at].uiStart, Message::IntegerRange, {written, std::to_string(becomes), written});
}

int Checker::KnownCondition(const Tokens& t, size_t end) {
    if (end != 1 || t[0].eKind != Kind::Integer) return -1;
    long value = strtol(t[0].sText.c_str(), nullptr, 10);
    return static_cast<uint16_t>(static_cast<unsigned long>(value)) != 0 ? 1 : 0;
}
