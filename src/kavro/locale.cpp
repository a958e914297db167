// When the character-type locale is read (see kavro.h).
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "kavro.h"

namespace kavro {

namespace {

bool bDeferred = false;

// The name the C library would take for LC_CTYPE: LC_ALL, else LC_CTYPE, else LANG; "" if none.
const char* CharacterTypeName() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = getenv(name);
        if (value && *value) return value;
    }
    return "";
}

// Languages whose locales fold the ASCII letters I and i otherwise than the C locale (dotted and
// dotless i): in them "I" and "i" are not the same letter to the interpreter.
const char* const aszOwnCaseLanguages[] = {"az", "crh", "ku", "tr", "tt"};

}  // namespace

bool LocaleDeferrable(const char* name) {
    if (*name == '\0' || strcmp(name, "C") == 0 || strcmp(name, "POSIX") == 0) return true;
    if (strchr(name, '/')) return false;
    const size_t language = strcspn(name, "_.@");
    for (const char* own : aszOwnCaseLanguages)
        if (strlen(own) == language && strncmp(name, own, language) == 0) return false;
    // language[_territory][.codeset][@modifier]; the codeset compared as the C library
    // normalises it: letters and digits only, case ignored.
    const char* dot = strchr(name, '.');
    if (!dot) return false;
    char codeset[8];
    size_t n = 0;
    for (const char* c = dot + 1; *c && *c != '@'; ++c) {
        if (!t_isalnum(*c)) continue;
        if (n + 1 == sizeof codeset) return false;
        codeset[n++] = static_cast<char>(t_tolower(*c));
    }
    codeset[n] = '\0';
    return strcmp(codeset, "utf8") == 0;
}

void LocaleInit(bool defer) {
    if (defer && LocaleDeferrable(CharacterTypeName()))
        bDeferred = true;
    else
        setlocale(LC_CTYPE, "");
}

void LocaleUse() {
    if (!bDeferred) return;
    bDeferred = false;
    setlocale(LC_CTYPE, "");
}

}  // namespace kavro
