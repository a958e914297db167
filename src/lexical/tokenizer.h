// The tokenizer: cuts the next token of the current line at the scan position and classifies it,
// and the small word helpers that read script lines.
#pragma once

#include <cstdint>

#include "cbstring.h"

// Token kinds, in the order their printed names appear in aszTokenTypes.
enum TokenType : int32_t {
    NotAToken,
    TokenStatement,
    TokenFunction,
    TokenInteger,
    TokenFloat,
    TokenString,
    TokenSemiColon,
    TokenBeginGroup,
    TokenEndGroup,
    TokenBeginIndex,
    TokenEndIndex,
    TokenEqual,
    TokenComma,
    TokenBackslash,
    TokenLabel,
    TokenEol,
    TokenLogical,
    TokenOperator,
    TokenComparator,
    TokenVar,
    TokenUndef,
    TokenSpace,
    TokenCommand,
    TokenBadString,
    TokenBadNumber,
};

extern const char* const aszTokenTypes[];

struct LineTokens;
struct TokenScan;

// Makes text the line being dispatched, scanned from its start. The cuts of a line read again and
// again (repeated: the reader serves it from what it keeps) are kept by the line's text, so that
// the next line of the same text gets each token without scanning and classifying it again: the
// cut depends on nothing but the text, the position and bFirstToken. serial: where not 0, a
// number that names text and no other (the reader's LineSerial), by which the cuts are found
// without reading the text.
void SetLine(TokenScan* p, const char* text, bool repeated, uint64_t serial = 0);

// What a layer above works out of a token once, kept with a kept cut: the variable a reference
// names (pBound, valid while uiGeneration is that layer's own), a number's value. Each is a
// function of the token's text, which is the cut's own.
struct TokenNote {
    const char* pText = nullptr;  // the token, in the kept line's text
    size_t uiLength = 0;
    void* pBound = nullptr;
    uint64_t uiGeneration = 0;
    bool bInteger = false;
    bool bFloat = false;
    long lInteger = 0;
    double dFloat = 0.0;
};

// The scan of the line being dispatched: the line, the position in it and the current token.
struct TokenScan {
    TokenType eTokenType = NotAToken;
    CBString sToken;
    const char* pPos = nullptr;
    bool bDebug = false;            // &CONTROL DEBUG: print every token read
    bool bFirstToken = false;       // set at the start of a line until its first token is classified
    int iWord = -1;                 // for a statement or function token: its row among those words
    LineTokens* pTokens = nullptr;  // the cuts kept for a line of the line's text, if any
    size_t uiNextCut = 0;           // where in them the next cut is likely to be
    TokenNote* pNote = nullptr;     // the note of the last token cut through them, if any

    // The line being dispatched; SetLine sets it, so that what is kept of its cuts goes with it.
    // It is the text of a kept line, which never changes or goes, or a copy of its own.
    const char* LineText() const { return pLine; }
    size_t LineLength() const { return uiLineLength; }

private:
    friend void SetLine(TokenScan* p, const char* text, bool repeated, uint64_t serial);
    const char* pLine = "";
    size_t uiLineLength = 0;
    CBString sLineCopy;
};

// Turns the keeping of cuts on or off; off, every token is scanned afresh.
void KeepTokens(bool on);
// Drops every kept cut, as at start; no scan may be under way (it would point at them).
void ForgetKeptTokens();

bool GetNextToken(TokenScan* p);
// The note of the current token: there is one when the token was cut from a kept line and is
// the same text still; else null.
TokenNote* CurrentNote(TokenScan* p);
// The value of the current token, an integer or a float token (IntegerValue, FloatValue), worked
// out once for a kept cut.
long CurrentIntegerValue(TokenScan* p);
double CurrentFloatValue(TokenScan* p);

// Cuts the reference that starts at the scan position (ReferenceEnd's cut) and classifies it: the
// first word of a line that begins with "&".
void GetReferenceToken(TokenScan* p);
// Where the token that starts at s ends: s is at the token's first byte (not a blank, not the end
// of the text). The cut GetNextToken makes, for readers of script lines that keep no TokenScan.
const char* TokenEnd(const char* s);
TokenType GetTokenType(TokenScan* p);
void skip_spaces(TokenScan* p);
// Moves the scan position to the end of the current line, so nothing more of it is interpreted.
void SkipLine(TokenScan* p);
bool IsConst(const TokenType& t);
int Second(const char* hms);
CBString ExtractFirstWord(const char* text);
// Whether the first word of a line (up to white space) is keyword, case ignored.
bool FirstWordIs(const char* line, const char* keyword);
// The length of the first word of a line, and whether that word is keyword, case ignored.
size_t FirstWordLength(const char* line);
bool FirstWordIs(const char* line, size_t length, const char* keyword);

// ---- Number literals ----------------------------------------------------------------------

// The value of an integer token (digits only), as strtol gives it: LONG_MAX past the range.
long IntegerValue(const char* digits);
// The value of a float token (digits, a point, digits), as strtod gives it: correctly rounded.
double FloatValue(const char* text);

// ---- Variable references ------------------------------------------------------------------

// The end of the reference that starts at s: every "&", then every alphanumeric character
// (t_isalnum). With an end, the scan stops there as well.
const char* ReferenceEnd(const char* s, const char* end = nullptr);
// The name of positional argument i: "&0", "&1", …
CBString ArgumentName(int i);
