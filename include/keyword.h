// Case-insensitive whole-word lookup in the language's tables (statements, functions,
// comparators). Equal text needs equal length, so rows of another length are passed over before
// the comparison proper; the answer is that of a plain scan with strcasecmp.
#pragma once

#include <strings.h>

#include <cstring>
#include <vector>

template <typename Row>
const Row* FindKeyword(const Row* table, const char* text) {
    static const std::vector<size_t> lengths = [table] {
        std::vector<size_t> v;
        for (const Row* r = table; r->pszName; ++r) v.push_back(strlen(r->pszName));
        return v;
    }();
    size_t n = strlen(text);
    for (size_t i = 0; i < lengths.size(); ++i)
        if (lengths[i] == n && strcasecmp(table[i].pszName, text) == 0) return &table[i];
    return nullptr;
}
