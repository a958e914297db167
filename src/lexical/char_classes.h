// The character classes of the running locale, byte by byte, as tables: the same answers as the
// C library's isspace, the runtime's t_isalpha and t_isalnum, and tolower, without a call per
// byte. The tables are read at their first use, after start-up has chosen the locale.
#pragma once

#include <cstdint>

namespace chars {

enum : uint8_t { kSpace = 1, kAlpha = 2, kAlnum = 4 };

struct Tables {
    uint8_t aClass[256];
    unsigned char aLower[256];
};

const Tables& Load();
extern const Tables* pTables;

inline const Tables& Get() { return pTables ? *pTables : Load(); }
inline bool IsSpace(char c) { return (Get().aClass[static_cast<unsigned char>(c)] & kSpace) != 0; }
inline bool IsAlpha(char c) { return (Get().aClass[static_cast<unsigned char>(c)] & kAlpha) != 0; }
inline bool IsAlnum(char c) { return (Get().aClass[static_cast<unsigned char>(c)] & kAlnum) != 0; }
inline unsigned char Lower(char c) { return Get().aLower[static_cast<unsigned char>(c)]; }

}  // namespace chars
