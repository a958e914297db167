// Text helpers of the runtime, and the pattern matcher used for screen-code names.
#include <strings.h>

#include <cctype>
#include <cstring>

#include "kavro.h"

namespace kavro {

char* stripspace(char* text) {
    size_t n = strlen(text);
    while (n > 0 && isspace(static_cast<unsigned char>(text[n - 1]))) text[--n] = '\0';
    return text;
}

const char* strend(const char* text) { return text + strlen(text); }

char* strupr(char* text) {
    for (char* p = text; *p; ++p) *p = static_cast<char>(toupper(static_cast<unsigned char>(*p)));
    return text;
}

bool t_isalpha(int c) { return isalpha(c & 0xff) != 0; }
bool t_isalnum(int c) { return isalnum(c & 0xff) != 0; }
bool t_isupper(int c) { return isupper(c & 0xff) != 0; }
bool t_islower(int c) { return islower(c & 0xff) != 0; }
int t_toupper(int c) { return toupper(c & 0xff); }
int t_tolower(int c) { return tolower(c & 0xff); }

namespace {

// The words that abbreviation patterns stand for. A pattern "FIXED*?" accepts its fixed part and
// these spellings; "FIXED*." accepts the fixed part followed by a full stop and these spellings.
// Every "...OF*?" pattern also accepts its fixed part followed by one more "F" (RVOF, RVOFF).
struct Spelling {
    const char* pszPattern;
    const char* apszForms[5];
};

const Spelling aSpellings[] = {
    {"BEL*?", {"BELL"}},
    {"C*?", {"CL", "CLS", "CLR", "CLEAR"}},
    {"D*?", {"DN", "DOWN"}},
    {"H*?", {"HM", "HOME"}},
    {"L*?", {"LF", "LFT", "LEFT"}},
    {"R*?", {"RT", "RGT", "RIGHT"}},
    {"U*?", {"UP"}},
    {"HOR*?", {"HORIZ", "HORIZONTAL"}},
    {"DHOR*?", {"DHORIZ", "DHORIZONTAL"}},
    {"VER*?", {"VERT", "VERTICAL"}},
    {"DVER*.", {"DVERT.", "DVERTICAL."}},
};

// Plain wildcard match: "*" any run of characters, "?" any one character, case ignored.
bool Glob(const char* t, const char* p) {
    for (; *p; ++p, ++t) {
        if (*p == '*') {
            for (const char* s = t;; ++s) {
                if (Glob(s, p + 1)) return true;
                if (!*s) return false;
            }
        }
        if (!*t) return false;
        if (*p != '?' && toupper(static_cast<unsigned char>(*p)) != toupper(static_cast<unsigned char>(*t)))
            return false;
    }
    return *t == '\0';
}

}  // namespace

bool strmatch(const char* text, const char* pattern) {
    const char* star = strchr(pattern, '*');
    if (!star || star[1] == '\0' || star[2] != '\0' || (star[1] != '?' && star[1] != '.')) return Glob(text, pattern);

    size_t fixed = static_cast<size_t>(star - pattern);
    size_t len = strlen(text);
    if (len < fixed || strncasecmp(text, pattern, fixed) != 0) return false;
    const char* rest = text + fixed;
    if (star[1] == '.') {
        if (strcmp(rest, ".") == 0) return true;
    } else {
        if (*rest == '\0') return true;
        if (fixed >= 2 && strncasecmp(pattern + fixed - 2, "OF", 2) == 0 && strcasecmp(rest, "F") == 0) return true;
    }
    for (const Spelling& s : aSpellings) {
        if (strcasecmp(s.pszPattern, pattern) != 0) continue;
        for (const char* form : s.apszForms)
            if (form && strcasecmp(form, text) == 0) return true;
    }
    return false;
}

}  // namespace kavro
