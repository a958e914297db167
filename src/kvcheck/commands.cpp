// Command lines: what substitution, the ";" comment and the lower-casing of a command do to it.
#include <strings.h>

#include <cstring>

#include "checker.h"

// The part of a command line that kvexec expands and runs: up to the first ";" outside double
// quotes, with each byte marked as part of a reference (replaced by its value) or as quoted.
struct Checker::CommandText {
    const std::string& sText;
    size_t uiStart;
    size_t uiEnd;  // the ";" that starts the comment, or the end of the text
    std::vector<bool> aReference;
    std::vector<bool> aQuoted;
    std::vector<size_t> aBareRuns;  // runs of "&" that name nothing: where each starts

    CommandText(const std::string& text, size_t at);
    bool Plain(size_t i) const { return !aReference[i] && !aQuoted[i]; }
};

namespace {

bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsSpaceOrTab(char c) { return c == ' ' || c == '\t'; }

// Whether a and b (already in one case) are one edit apart: one byte inserted, removed or
// replaced, or two neighbouring bytes swapped.
bool OneEditApart(const std::string& a, const std::string& b) {
    if (a.size() > b.size()) return OneEditApart(b, a);
    if (b.size() - a.size() > 1) return false;
    size_t i = 0;
    while (i < a.size() && a[i] == b[i]) ++i;
    if (i == a.size()) return a.size() != b.size();
    if (a.size() < b.size()) return a.compare(i, std::string::npos, b, i + 1, std::string::npos) == 0;
    if (a.compare(i + 1, std::string::npos, b, i + 1, std::string::npos) == 0) return true;
    return i + 1 < a.size() && a[i] == b[i + 1] && a[i + 1] == b[i] &&
           a.compare(i + 2, std::string::npos, b, i + 2, std::string::npos) == 0;
}

std::string Upper(std::string s) {
    for (char& c : s)
        if (IsLower(c)) c = static_cast<char>(c - 'a' + 'A');
    return s;
}

}  // namespace

Checker::CommandText::CommandText(const std::string& text, size_t at)
    : sText(text), uiStart(at), aReference(text.size()), aQuoted(text.size()) {
    bool quoted = false;
    size_t i = at;
    while (i < text.size() && (text[i] != ';' || quoted)) {
        if (text[i] == '"') quoted = !quoted;
        aQuoted[i] = quoted;
        if (text[i] != '&') {
            ++i;
            continue;
        }
        // A reference: every "&", then a "*" or the alphanumeric bytes after them.
        size_t end = i;
        while (end < text.size() && text[end] == '&') ++end;
        if (end < text.size() && text[end] == '*') {
            ++end;
        } else {
            if (end == text.size() || !IsAlnum(text[end])) aBareRuns.push_back(i);
            while (end < text.size() && IsAlnum(text[end])) ++end;
        }
        for (; i < end; ++i) aReference[i] = true;
    }
    uiEnd = i;
}

void Checker::TakeCommand(size_t piece, size_t at, const Token* variable) {
    const std::string& text = PieceAt(piece).sText;
    // "set name=value" changes kvexec's own environment and runs nothing.
    if (strncasecmp(text.c_str() + at, "set ", 4) == 0) return;
    if (variable) CheckMisspelt(piece, *variable);
    CommandText c(text, at);
    CheckSemicolon(piece, c);
    CheckLowerCased(piece, c);
    CheckAmpersands(piece, c);
}

void Checker::CheckMisspelt(size_t piece, const Token& variable) {
    std::string word = Upper(variable.sText);
    for (int row = 0; row < kStatementWords.Size(); ++row) {
        if (!OneEditApart(word, kStatementWords.Name(row))) continue;
        Add(piece, variable.uiStart, Message::Misspelt, {variable.sText, kStatementWords.Name(row)});
        return;
    }
}

// "sleep 1; kill $$": the ";" ends what runs. Written after a blank it reads as a comment.
void Checker::CheckSemicolon(size_t piece, const CommandText& c) {
    const std::string& text = c.sText;
    if (c.uiEnd == text.size() || c.uiEnd == c.uiStart || IsSpaceOrTab(text[c.uiEnd - 1])) return;
    size_t from = c.uiEnd + 1;
    while (from < text.size() && IsBlank(text[from])) ++from;
    if (from == text.size()) return;
    Add(piece, c.uiEnd, Message::Semicolon, {text.substr(from)});
}

// A command with a lower-case letter has its upper-case letters outside quotes lowered.
void Checker::CheckLowerCased(size_t piece, const CommandText& c) {
    const std::string& text = c.sText;
    bool lower = false;
    size_t upper = c.uiEnd;
    for (size_t i = c.uiStart; i < c.uiEnd; ++i) {
        if (c.aReference[i]) continue;
        if (IsLower(text[i])) lower = true;
        if (upper == c.uiEnd && IsUpper(text[i]) && !c.aQuoted[i]) upper = i;
    }
    if (!lower || upper == c.uiEnd) return;
    size_t from = upper;
    while (from > c.uiStart && !IsSpaceOrTab(text[from - 1])) --from;
    size_t to = upper;
    while (to < c.uiEnd && !IsSpaceOrTab(text[to])) ++to;
    std::string word = text.substr(from, to - from);
    std::string runs = word;
    for (size_t i = from; i < to; ++i)
        if (c.Plain(i) && IsUpper(text[i])) runs[i - from] = static_cast<char>(text[i] - 'A' + 'a');
    Add(piece, upper, Message::LowerCased, {word, runs});
}

// "make && make install": a run of "&" that names nothing is substituted away.
void Checker::CheckAmpersands(size_t piece, const CommandText& c) {
    for (size_t at : c.aBareRuns) {
        size_t end = at;
        while (end < c.sText.size() && c.sText[end] == '&') ++end;
        Add(piece, at, Message::Ampersand, {c.sText.substr(at, end - at)});
    }
}
