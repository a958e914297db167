// The tokenizer: cuts the next token at the scan position and classifies it.
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tokenizer.h"

#include "char_classes.h"
#include "kavro.h"
#include "keywords.h"

const char* const aszTokenTypes[] = {
    "NotAToken",     "TokenStatement", "TokenFunction",   "TokenInteger",    "TokenFloat",
    "TokenString",   "TokenSemiColon", "TokenBeginGroup", "TokenEndGroup",   "TokenBeginIndex",
    "TokenEndIndex", "TokenEqual",     "TokenComma",      "TokenBackslash",  "TokenLabel",
    "TokenEol",      "TokenLogical",   "TokenOperator",   "TokenComparator", "TokenVar",
    "TokenUndef",    "TokenSpace",     "TokenCommand",    "TokenBadString",  "TokenBadNumber",
};

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The marks a word may begin with and hold besides letters and digits.
bool IsWordMark(char c) { return c == '.' || c == '/' || c == ':' || c == '_'; }

}  // namespace

const char* TokenEnd(const char* s) {
    char c = *s;
    switch (c) {
        case '!':
        case '>': return s + (s[1] == '=' ? 2 : 1);
        case '<': return s + ((s[1] == '=' || s[1] == '>') ? 2 : 1);
        case '=': return s + ((s[1] == '=' || s[1] == '>' || s[1] == '<') ? 2 : 1);
        case ';': return s + 1;
        case '"': {
            // Up to the next quote that is not doubled, or the end of the line.
            const char* q = s + 1;
            for (;;) {
                if (*q == '\0') return q;
                if (*q == '"') {
                    if (q[1] == '"') {
                        q += 2;
                        continue;
                    }
                    return q + 1;
                }
                ++q;
            }
        }
        case '&': return ReferenceEnd(s);
        case '+':
        case '-':
        case '*':
        case '/':
        case '(':
        case ')':
        case '|':
        case '^':
        case '%': return s + 1;
        default: break;
    }
    if (IsDigit(c)) {
        const char* q = s;
        while (IsDigit(*q)) ++q;
        if (*q == '.') {
            ++q;
            while (IsDigit(*q)) ++q;
        }
        return q;
    }
    if (chars::IsAlpha(c) || IsWordMark(c)) {
        const char* q = s + 1;
        while (chars::IsAlnum(*q) || IsWordMark(*q) || *q == '&') ++q;
        return q;
    }
    return s + 1;
}

namespace {

TokenType QuotedType(TokenScan* p) {
    const std::string& t = p->sToken.str();
    size_t len = t.size();
    if (len == 1) return TokenString;
    if (t[len - 1] != '"') return TokenBadString;
    // Every inner quote must be doubled for the text to be rewritten.
    for (size_t i = 1; i + 1 < len; ++i) {
        if (t[i] != '"') continue;
        if (i + 2 < len && t[i + 1] == '"') {
            ++i;
            continue;
        }
        return TokenString;
    }
    std::string inside;
    inside.reserve(len);
    for (size_t i = 1; i + 1 < len; ++i) {
        if (t[i] == '"') {
            inside += "\\\"";
            ++i;
        } else if (t[i] == '\\') {
            inside += "\\\\";
        } else {
            inside += t[i];
        }
    }
    p->sToken = CBString(inside);
    return TokenString;
}

TokenType NumberType(const std::string& t) {
    bool point = t[0] == '.';
    bool digit = false;
    for (size_t i = 1; i < t.size(); ++i) {
        char c = t[i];
        if (IsDigit(c)) {
            digit = true;
        } else if (c == '.') {
            if (point) return TokenBadNumber;
            point = true;
        } else {
            return TokenBadString;
        }
    }
    if (point && !digit) return TokenBadNumber;
    return point ? TokenFloat : TokenInteger;
}

}  // namespace

void skip_spaces(TokenScan* p) {
    while (*p->pPos && chars::IsSpace(*p->pPos)) ++p->pPos;
}

bool IsConst(const TokenType& t) { return t == TokenInteger || t == TokenFloat || t == TokenString; }

void SkipLine(TokenScan* p) { p->pPos = p->LineText() + p->LineLength(); }

// ---- Kept cuts ------------------------------------------------------------------------------

// One cut: where the scan was, what it gave and where it left the scan. Offsets are into the line.
struct Cut {
    uint16_t uiFrom;
    uint16_t uiNext;
    uint8_t eType;    // a TokenType
    bool bReference;  // ReferenceEnd's cut rather than TokenEnd's
    bool bFirst;      // bFirstToken when cut
    bool bSetsWord;   // the classification set iWord (to iWord)
    int16_t iWord;
    std::unique_ptr<TokenNote> pNote;  // for a reference or a number of the line's own text
    CBString sToken;                   // what the cut gave, copied whole into the scan's token
};

struct LineTokens {
    std::string sText;
    std::vector<Cut> aCuts;  // by uiFrom, then bReference, then bFirst
};

namespace {

bool bKeepTokens = false;
// The kept lines by text. Entries stay until ForgetKeptTokens (scans read lines in them and point
// at their cuts); past the budget no more lines are kept.
std::unordered_map<std::string_view, std::unique_ptr<LineTokens>> mapLineTokens;
// What is kept, roughly in bytes: past the limit no more lines or cuts are kept (what is kept
// stays). A line or cut costs its record, its text and its share of the tables around it.
size_t uiKeptBytes = 0;
constexpr size_t kMaxKeptBytes = size_t{2} << 20;
constexpr size_t kLineCost = sizeof(LineTokens) + 64;
constexpr size_t kNoteCost = sizeof(TokenNote) + 16;

// Lines the reader keeps come back at the same address: a small table by address finds their
// cuts without hashing the text (the text is still compared).
struct Recent {
    const char* pText = nullptr;
    LineTokens* pTokens = nullptr;
};
Recent aRecent[64];
// Lines named by a serial number (see SetLine), by that number.
struct BySerial {
    uint64_t uiSerial = 0;
    LineTokens* pTokens = nullptr;
};
BySerial aBySerial[256];

bool Before(const Cut& c, uint32_t from, bool reference, bool first) {
    if (c.uiFrom != from) return c.uiFrom < from;
    if (c.bReference != reference) return c.bReference < reference;
    return c.bFirst < first;
}

inline __attribute__((always_inline)) void Replay(TokenScan* p, const LineTokens* lt, size_t i) {
    const Cut& c = lt->aCuts[i];
    p->sToken = c.sToken;
    p->pPos = p->LineText() + c.uiNext;
    p->eTokenType = static_cast<TokenType>(c.eType);
    if (c.bSetsWord) p->iWord = c.iWord;
    p->uiNextCut = i + 1;
    p->pNote = c.pNote.get();
}

// Whether the cut the scan most likely wants next is the one it wants; if so, replays it.
inline __attribute__((always_inline)) bool ReplayExpected(TokenScan* p, bool reference) {
    const LineTokens* lt = p->pTokens;
    const size_t i = p->uiNextCut;
    // SetLine sets the line and its cuts together: they always belong to each other.
    if (i >= lt->aCuts.size()) return false;
    const Cut& c = lt->aCuts[i];
    if (p->LineText() + c.uiFrom != p->pPos || c.bReference != reference || c.bFirst != p->bFirstToken) return false;
    Replay(p, lt, i);
    return true;
}

// The kept cut for the scan as it stands, or a new one made by cut(p), the plain way.
void CutThroughKept(TokenScan* p, bool reference, void (*cut)(TokenScan*)) {
    LineTokens* lt = p->pTokens;
    const char* base = p->LineText();
    // Compared as addresses: the scan may have been moved to another text.
    const size_t offset = reinterpret_cast<uintptr_t>(p->pPos) - reinterpret_cast<uintptr_t>(base);
    if (!lt || p->LineLength() != lt->sText.size() || offset > lt->sText.size()) {
        p->pNote = nullptr;
        cut(p);
        return;
    }
    uint32_t from = static_cast<uint32_t>(offset);
    std::vector<Cut>& cuts = lt->aCuts;
    size_t i = p->uiNextCut;
    if (i >= cuts.size() || cuts[i].uiFrom != from || cuts[i].bReference != reference ||
        cuts[i].bFirst != p->bFirstToken) {
        auto at = std::lower_bound(cuts.begin(), cuts.end(), 0,
                                   [&](const Cut& c, int) { return Before(c, from, reference, p->bFirstToken); });
        i = static_cast<size_t>(at - cuts.begin());
        if (at == cuts.end() || at->uiFrom != from || at->bReference != reference || at->bFirst != p->bFirstToken) {
            // Not cut before: cut now, and keep what it gave.
            const int before = p->iWord;
            p->iWord = INT_MIN;
            cut(p);
            const bool setsWord = p->iWord != INT_MIN;
            Cut c{};
            c.uiFrom = static_cast<uint16_t>(from);
            c.uiNext = static_cast<uint16_t>(p->pPos - base);
            c.eType = static_cast<uint8_t>(p->eTokenType);
            c.bReference = reference;
            c.bFirst = p->bFirstToken;
            c.bSetsWord = setsWord;
            c.iWord = static_cast<int16_t>(setsWord ? p->iWord : 0);
            if (!setsWord) p->iWord = before;
            // A reference or a number that is the line's own text gets a note, which points at the
            // kept text.
            const size_t length = p->sToken.str().size();
            const bool noted =
                p->eTokenType == TokenVar || p->eTokenType == TokenInteger || p->eTokenType == TokenFloat;
            const char* own =
                !noted || length == 0
                    ? nullptr
                    : static_cast<const char*>(memmem(base + from, lt->sText.size() - from, p->sToken.data(), length));
            size_t cost = sizeof(Cut) + (length > 15 ? length + 1 : 0) + (own ? kNoteCost : 0);
            if (uiKeptBytes + cost > kMaxKeptBytes || lt->sText.size() > UINT16_MAX) {
                p->pNote = nullptr;
                return;
            }
            uiKeptBytes += cost;
            if (own) {
                c.pNote = std::make_unique<TokenNote>();
                c.pNote->pText = lt->sText.data() + (own - base);
                c.pNote->uiLength = length;
            }
            c.sToken = p->sToken;
            p->pNote = c.pNote.get();
            cuts.insert(cuts.begin() + static_cast<std::ptrdiff_t>(i), std::move(c));
            p->uiNextCut = i + 1;
            return;
        }
    }
    Replay(p, lt, i);
}

// GetNextToken's cut where the scan is not at the end of the line (GetNextToken takes that case).
void CutToken(TokenScan* p) {
    const char* s = p->pPos;
    while (chars::IsSpace(*s)) ++s;
    const char* e = TokenEnd(s);
    p->sToken.assign(s, static_cast<size_t>(e - s));
    p->pPos = e;
    p->eTokenType = GetTokenType(p);
}

void CutReference(TokenScan* p) {
    const char* s = p->pPos;
    const char* e = ReferenceEnd(s);
    p->sToken.assign(s, static_cast<size_t>(e - s));
    p->pPos = e;
    p->eTokenType = GetTokenType(p);
}

}  // namespace

void KeepTokens(bool on) { bKeepTokens = on; }

void ForgetKeptTokens() {
    for (Recent& r : aRecent) r = Recent{};
    for (BySerial& b : aBySerial) b = BySerial{};
    mapLineTokens.clear();
    uiKeptBytes = 0;
}

void SetLine(TokenScan* p, const char* text, bool repeated, uint64_t serial) {
    p->pTokens = nullptr;
    p->uiNextCut = 0;
    p->pNote = nullptr;
    BySerial* bySerial = nullptr;
    if (bKeepTokens && repeated && serial != 0) {
        bySerial = &aBySerial[serial % (sizeof aBySerial / sizeof *aBySerial)];
        if (bySerial->uiSerial == serial) {
            // The same text, kept: read there, without a copy.
            LineTokens* lt = bySerial->pTokens;
            p->pLine = lt->sText.data();
            p->uiLineLength = lt->sText.size();
            p->pPos = p->pLine;
            p->pTokens = lt;
            return;
        }
    }
    p->sLineCopy.assign(text, strlen(text));
    p->pLine = p->sLineCopy.data();
    p->uiLineLength = p->sLineCopy.str().size();
    p->pPos = p->pLine;
    if (!bKeepTokens || !repeated) return;
    const std::string& copy = p->sLineCopy.str();
    Recent& recent = aRecent[(reinterpret_cast<uintptr_t>(text) >> 3) % (sizeof aRecent / sizeof *aRecent)];
    if (recent.pText == text && recent.pTokens->sText == copy) {
        p->pTokens = recent.pTokens;
    } else {
        std::string_view key(copy);
        auto it = mapLineTokens.find(key);
        if (it != mapLineTokens.end()) {
            p->pTokens = it->second.get();
        } else {
            if (uiKeptBytes + kLineCost + key.size() > kMaxKeptBytes) return;
            auto kept = std::make_unique<LineTokens>();
            kept->sText.assign(key);
            LineTokens* made = kept.get();
            mapLineTokens.emplace(std::string_view(made->sText), std::move(kept));
            uiKeptBytes += kLineCost + key.size();
            p->pTokens = made;
        }
        recent = Recent{text, p->pTokens};
    }
    if (bySerial) *bySerial = BySerial{serial, p->pTokens};
}

bool GetNextToken(TokenScan* p) {
    if (p->pTokens && ReplayExpected(p, false)) {
        if (p->bDebug) kavro::TermPrintf("token type = %s|%s|\r", aszTokenTypes[p->eTokenType], p->sToken.data());
        return true;
    }
    const char* s = p->pPos;
    while (*s && chars::IsSpace(*s)) ++s;
    if (*s == '\0') {
        p->sToken.clear();
        p->eTokenType = TokenEol;
        p->pNote = nullptr;
        if (p->bDebug) kavro::TermPrintf("token type = %s|\r", aszTokenTypes[TokenEol]);
        return true;
    }
    if (p->pTokens) {
        CutThroughKept(p, false, CutToken);
    } else {
        p->pNote = nullptr;
        const char* e = TokenEnd(s);
        p->sToken.assign(s, static_cast<size_t>(e - s));
        p->pPos = e;
        p->eTokenType = GetTokenType(p);
    }
    if (p->bDebug) kavro::TermPrintf("token type = %s|%s|\r", aszTokenTypes[p->eTokenType], p->sToken.data());
    return true;
}

void GetReferenceToken(TokenScan* p) {
    if (p->pTokens && ReplayExpected(p, true)) return;
    if (p->pTokens) {
        CutThroughKept(p, true, CutReference);
    } else {
        p->pNote = nullptr;
        CutReference(p);
    }
}

TokenNote* CurrentNote(TokenScan* p) {
    TokenNote* n = p->pNote;
    if (!n) return nullptr;
    const std::string& t = p->sToken.str();
    return t.size() == n->uiLength && memcmp(t.data(), n->pText, n->uiLength) == 0 ? n : nullptr;
}

namespace {

// The value convert gives the current token, kept in its note where it has one.
template <typename T>
T NotedValue(TokenScan* p, bool TokenNote::*known, T TokenNote::*value, T (*convert)(const char*)) {
    TokenNote* n = CurrentNote(p);
    if (!n) return convert(p->sToken);
    if (!(n->*known)) {
        n->*value = convert(p->sToken);
        n->*known = true;
    }
    return n->*value;
}

}  // namespace

long CurrentIntegerValue(TokenScan* p) {
    return NotedValue(p, &TokenNote::bInteger, &TokenNote::lInteger, IntegerValue);
}

double CurrentFloatValue(TokenScan* p) { return NotedValue(p, &TokenNote::bFloat, &TokenNote::dFloat, FloatValue); }

TokenType GetTokenType(TokenScan* p) {
    const std::string& t = p->sToken.str();
    if (t.empty()) return TokenEol;
    if (t.size() == 1) {
        switch (t[0]) {
            case '(': return TokenBeginGroup;
            case ')': return TokenEndGroup;
            case ',': return TokenComma;
            case '=': return TokenEqual;
            case '[': return TokenBeginIndex;
            case ']': return TokenEndIndex;
            case '\\': return TokenBackslash;
            case ';':
                // The rest of the line is a comment.
                p->sToken.clear();
                SkipLine(p);
                return TokenEol;
            default: break;
        }
    }
    if (t.back() == ':' && p->bFirstToken) return TokenLabel;
    if (t[0] == '"') return QuotedType(p);
    if (IsDigit(t[0]) || (t[0] == '.' && t.size() > 1)) return NumberType(t);
    if (t.size() == 1 && t[0] == '.') return TokenBadNumber;
    if (t.size() == 1) {
        switch (t[0]) {
            case '&':
            case '|':
            case '^':
            case '%': return TokenLogical;
            case '+':
            case '-':
            case '*':
            case '/': return TokenOperator;
            default: break;
        }
    }
    if (GetComparator(t.c_str())) return TokenComparator;
    // Every statement and function word begins with "&", which no other byte folds to.
    if (t[0] == '&' && (p->iWord = kFunctionWords.Find(t.c_str(), t.size())) >= 0) return TokenFunction;
    if (t[0] == '&' && (p->iWord = kStatementWords.Find(t.c_str(), t.size())) >= 0) return TokenStatement;
    if (p->bFirstToken) return TokenVar;
    return t[0] == '&' ? TokenVar : TokenString;
}

int Second(const char* hms) {
    if (!hms || !*hms) return 0;
    int h = 0, m = 0, s = 0;
    sscanf(hms, "%d:%d:%d", &h, &m, &s);
    return h * 3600 + m * 60 + s;
}

CBString ExtractFirstWord(const char* text) {
    const char* e = text;
    while (*e && !chars::IsSpace(*e)) ++e;
    return CBString(text, static_cast<size_t>(e - text));
}

size_t FirstWordLength(const char* line) {
    size_t n = 0;
    while (line[n] && !chars::IsSpace(line[n])) ++n;
    return n;
}

bool FirstWordIs(const char* line, size_t length, const char* keyword) {
    return chars::EqualFolded(line, keyword, length) && keyword[length] == '\0';
}

bool FirstWordIs(const char* line, const char* keyword) { return FirstWordIs(line, FirstWordLength(line), keyword); }

long IntegerValue(const char* digits) {
    unsigned long v = 0;
    for (const char* s = digits; IsDigit(*s); ++s) {
        unsigned d = static_cast<unsigned>(*s - '0');
        if (v > (static_cast<unsigned long>(LONG_MAX) - d) / 10) return strtol(digits, nullptr, 10);
        v = v * 10 + d;
    }
    return static_cast<long>(v);
}

double FloatValue(const char* text) {
    // Up to 15 significant digits and 22 after the point, the digits and the power of ten are
    // both exact doubles and one division rounds correctly, as strtod does; anything longer is
    // left to strtod.
    static const double aPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                     1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    unsigned long long mantissa = 0;
    int significant = 0;
    int fraction = 0;
    bool point = false;
    for (const char* s = text; *s; ++s) {
        if (*s == '.' && !point) {
            point = true;
            continue;
        }
        if (!IsDigit(*s)) return strtod(text, nullptr);
        if (point) ++fraction;
        if (mantissa != 0 || *s != '0') ++significant;
        mantissa = mantissa * 10 + static_cast<unsigned>(*s - '0');
        if (significant > 15 || fraction > 22) return strtod(text, nullptr);
    }
    return static_cast<double>(mantissa) / aPowers[fraction];
}

const char* ReferenceEnd(const char* s, const char* end) {
    while (s != end && *s == '&') ++s;
    while (s != end && *s && chars::IsAlnum(*s)) ++s;
    return s;
}

CBString ArgumentName(int i) {
    CBString name;
    name.format("&%d", i);
    return name;
}
