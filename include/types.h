// Types shared by every unit of the interpreter: value tags, token kinds, comparison and block
// kinds, the typed value Const, the block-stack entry and the interpreter context Parser.
#pragma once

#include <cstdint>
#include <cstdio>

#include "cbstring.h"

// Type tag shared by variables, values and block entries.
enum XVarType : int32_t { VarUndef = 0, VarInteger = 1, VarFloat = 2, VarString = 3 };

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

enum CompType : int32_t {
    CompNone = 0,
    CompEqual = 1,
    CompNotEqual = 2,
    CompGreater = 3,
    CompLess = 4,
    CompGreaterEqual = 5,
    CompLessEqual = 6,
};

enum BlockType : int32_t {
    BlockNone = 0,
    BlockCall = 1,
    BlockIf = 2,
    BlockElseIf = 3,
    BlockElse = 4,
    BlockFor = 5,
    BlockUntil = 6,
    BlockWhile = 7,
};

// A typed value. The slots are kept side by side, not in a union: a conversion writes the new
// slot and the tag and leaves the others as they were, and one comparison reads a stale slot.
struct Const {
    XVarType eType = VarUndef;
    int16_t iValue = 0;
    double dValue = 0.0;
    CBString sValue;
};

// One operand-stack entry: a leading word that nothing uses, then the value.
struct StackEntry {
    int16_t iReserved = 0;
    Const value;
};

// A variable record: the name with its leading "&", and its value.
struct Variable {
    CBString sName;
    Const value;
};

// One open block: kind, loop-variable type, opening line and the file offset to come back to.
struct CBlock {
    BlockType eType;
    XVarType eVarType;
    uint32_t uiLinePos;
    uint32_t uiCharPos;
};

// The interpreter context: one exists for the whole run and is passed to every handler.
struct Parser {
    FILE* pScript = nullptr;
    TokenType eTokenType = NotAToken;
    CBString sToken;
    CBString sLine;
    CBString sSpare;
    CBString sOnError;
    const char* pPos = nullptr;
    const char* pTokenStart = nullptr;
    uint64_t uiReserved1 = 0;
    uint32_t uiReserved2 = 0;
    StackEntry* pStack = nullptr;
    uint32_t uiStack = 0;
    void* pTerms = nullptr;
    uint32_t uiTerms = 0;
    int iLine = 0;
    long lLinePos = 0;
    uint64_t uiTokenLen = 0;
    bool bDebug = false;
    bool bFirstToken = false;
    bool bWordScan = false;
    bool bLineStart = false;
    bool bLiteral = false;
    bool bUnused = false;
    bool bEcho = true;
    bool bTrace = false;
    int iAutoCr = 0;
};

// The 16-bit integer that every integer of the language is kept in.
inline int16_t Int16(long v) { return static_cast<int16_t>(static_cast<uint16_t>(static_cast<unsigned long>(v))); }
