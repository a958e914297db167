// The character classes of the running locale, byte by byte, as tables: the same answers as the
// C library's isspace, the runtime's t_isalpha and t_isalnum, and tolower, without a call per
// byte. The tables are read at their first use, after start-up has chosen the locale.
#pragma once

#include <cstddef>
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

// strcasecmp(a, b) == 0 and strncasecmp(a, b, n) == 0, byte by byte through the same table.
inline bool EqualFolded(const char* a, const char* b) {
    const unsigned char* lower = Get().aLower;
    for (;; ++a, ++b) {
        if (lower[static_cast<unsigned char>(*a)] != lower[static_cast<unsigned char>(*b)]) return false;
        if (*a == '\0') return true;
    }
}
inline bool EqualFolded(const char* a, const char* b, size_t n) {
    const unsigned char* lower = Get().aLower;
    for (size_t i = 0; i < n; ++i) {
        if (lower[static_cast<unsigned char>(a[i])] != lower[static_cast<unsigned char>(b[i])]) return false;
        if (a[i] == '\0') return true;
    }
    return true;
}

}  // namespace chars
