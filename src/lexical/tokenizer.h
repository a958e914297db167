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

// The scan of the line being dispatched: the line, the position in it and the current token.
struct TokenScan {
    TokenType eTokenType = NotAToken;
    CBString sToken;
    CBString sLine;  // the line being dispatched, from its first non-blank character
    const char* pPos = nullptr;
    bool bDebug = false;       // &CONTROL DEBUG: print every token read
    bool bFirstToken = false;  // set at the start of a line until its first token is classified
    int iWord = -1;            // for a statement or function token: its row among those words
};

bool GetNextToken(TokenScan* p);
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
