// Cutting and sorting tokens. The cut is the interpreter's own (TokenEnd); the kinds are the
// checker's.
#include "tokens.h"

#include <cstring>

#include "char_classes.h"
#include "keywords.h"
#include "tokenizer.h"

bool IsBlank(char c) { return chars::IsSpace(c); }
bool IsAlnum(char c) { return chars::IsAlnum(c); }
bool IsLetter(char c) { return chars::IsAlpha(c); }

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

Kind NumberKind(const std::string& t) {
    size_t i = 0;
    while (i < t.size() && IsDigit(t[i])) ++i;
    if (i == t.size()) return Kind::Integer;
    if (t[i] != '.' || i + 1 == t.size()) return Kind::Other;
    for (++i; i < t.size(); ++i)
        if (!IsDigit(t[i])) return Kind::Other;
    return Kind::Float;
}

Kind AmpersandKind(const std::string& t, int* word) {
    if (t.size() == 1) return Kind::Logical;
    if ((*word = kFunctionWords.Find(t.c_str())) >= 0) return Kind::Function;
    if ((*word = kStatementWords.Find(t.c_str())) >= 0) return Kind::Statement;
    return Kind::Variable;
}

// Tokens of one byte, and the comparators.
Kind SymbolKind(const std::string& t) {
    struct Symbol {
        const char* pszText;
        Kind eKind;
    };
    static const Symbol aSymbols[] = {
        {"|", Kind::Logical},    {"^", Kind::Logical},     {"%", Kind::Logical},     {"+", Kind::Arithmetic},
        {"-", Kind::Arithmetic}, {"*", Kind::Arithmetic},  {"/", Kind::Arithmetic},  {"(", Kind::Open},
        {")", Kind::Close},      {",", Kind::Comma},       {"[", Kind::OpenIndex},   {"]", Kind::CloseIndex},
        {"=", Kind::Comparator}, {"==", Kind::Comparator}, {"<>", Kind::Comparator}, {"!=", Kind::Comparator},
        {">", Kind::Comparator}, {"<", Kind::Comparator},  {">=", Kind::Comparator}, {"<=", Kind::Comparator},
    };
    for (const Symbol& s : aSymbols)
        if (t == s.pszText) return s.eKind;
    return Kind::Other;
}

Kind Classify(const std::string& t, int* word) {
    char c = t[0];
    if (c == '&') return AmpersandKind(t, word);
    if (c == '"') return Kind::Quoted;
    if (IsDigit(c)) return NumberKind(t);
    if (IsLetter(c) || strchr("./:_", c)) return Kind::Word;
    return SymbolKind(t);
}

}  // namespace

bool Token::IsOperand() const {
    switch (eKind) {
        case Kind::Integer:
        case Kind::Float:
        case Kind::Quoted:
        case Kind::Variable:
        case Kind::Word: return true;
        default: return false;
    }
}

Token NextToken(const std::string& text, size_t from) {
    size_t at = from;
    while (at < text.size() && IsBlank(text[at])) ++at;
    if (at == text.size() || text[at] == ';') return Token{Kind::End, at, std::string()};
    const char* s = text.c_str() + at;
    Token t{Kind::Other, at, std::string(s, static_cast<size_t>(TokenEnd(s) - s))};
    t.eKind = Classify(t.sText, &t.iWord);
    return t;
}

Tokens Tokenize(const std::string& text, size_t from) {
    Tokens out;
    for (;;) {
        out.push_back(NextToken(text, from));
        const Token& t = out.back();
        if (t.eKind == Kind::End) return out;
        from = t.uiStart + t.sText.size();
    }
}
