// What each one-byte screen code does on a terminal in ansi mode: a terminfo capability, an
// attribute switched on or off, a box-drawing character, a new line, or nothing.
#pragma once

#include <cstddef>

namespace kavro {

enum class TermAction { Capability, AttrOn, AttrOff, Box, Newline, Text, Drop };

enum : unsigned {
    kAttrStandout = 1u << 0,
    kAttrUnderline = 1u << 1,
    kAttrReverse = 1u << 2,
    kAttrBlink = 1u << 3,
    kAttrDim = 1u << 4,
    kAttrBold = 1u << 5,
};

struct TermCode {
    unsigned char bCode;
    TermAction eAction;
    const char* pszCap;      // terminfo capability name, for Capability
    unsigned uiAttr;         // attribute bit, for AttrOn/AttrOff
    const char* pszUnicode;  // box-drawing character in UTF-8, for Box
    const char* pszAscii;    // its stand-in without UTF-8, for Box
};

// The row for a code byte, or null for a byte that is not a screen code.
const TermCode* FindTermCode(unsigned char code);
extern const TermCode aTermCodes[];
extern const size_t nTermCodes;

}  // namespace kavro
