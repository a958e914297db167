// The plain type tags every layer above the runtime shares: the value tag, the comparison kinds
// and the 16-bit integer that every integer of the language is kept in. No behaviour lives here.
#pragma once

#include <cstdint>

// Type tag shared by variables, values and block entries.
enum XVarType : int32_t { VarUndef = 0, VarInteger = 1, VarFloat = 2, VarString = 3 };

enum CompType : int32_t {
    CompNone = 0,
    CompEqual = 1,
    CompNotEqual = 2,
    CompGreater = 3,
    CompLess = 4,
    CompGreaterEqual = 5,
    CompLessEqual = 6,
};

// The 16-bit integer that every integer of the language is kept in.
inline int16_t Int16(long v) { return static_cast<int16_t>(static_cast<uint16_t>(static_cast<unsigned long>(v))); }
