#include "char_classes.h"

#include <cctype>

#include "kavro.h"

namespace chars {

const Tables* pTables = nullptr;

const Tables& Load() {
    static Tables tables;
    for (int c = 0; c < 256; ++c) {
        uint8_t k = 0;
        if (isspace(c)) k |= kSpace;
        if (kavro::t_isalpha(c)) k |= kAlpha;
        if (kavro::t_isalnum(c)) k |= kAlnum;
        tables.aClass[c] = k;
        tables.aLower[c] = static_cast<unsigned char>(tolower(c));
    }
    pTables = &tables;
    return tables;
}

}  // namespace chars
