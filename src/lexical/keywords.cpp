// The word tables and their lookups.
#include "keywords.h"

#include "char_classes.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstring>

KeywordTable::KeywordTable(const char* const* names) {
    for (const char* const* n = names; *n; ++n) {
        apszNames.push_back(*n);
        uiLongest = std::max(uiLongest, strlen(*n));
    }
}

// Rows by length and the low five bits of the folded last character: a compact table, and both
// cases of an ASCII letter share a slot.
size_t KeywordTable::Slot(size_t length, unsigned char last) { return length * 32 + (last & 31u); }

void KeywordTable::Group() const {
    std::vector<std::vector<int>> slots(Slot(uiLongest, 255) + 1);
    for (size_t row = 0; row < apszNames.size(); ++row) {
        const char* n = apszNames[row];
        size_t len = strlen(n);
        unsigned char last = len ? chars::Lower(n[len - 1]) : 0;
        slots[Slot(len, last)].push_back(static_cast<int>(row));
    }
    aSlotStart.push_back(0);
    for (const std::vector<int>& rows : slots) {
        aSlotRows.insert(aSlotRows.end(), rows.begin(), rows.end());
        aSlotStart.push_back(static_cast<uint16_t>(aSlotRows.size()));
    }
}

int KeywordTable::Find(const char* text) const { return Find(text, strnlen(text, uiLongest + 1)); }

int KeywordTable::Find(const char* text, size_t length) const {
    if (length > uiLongest) return -1;
    if (aSlotStart.empty()) Group();
    size_t slot = Slot(length, length ? chars::Lower(text[length - 1]) : 0);
    for (size_t i = aSlotStart[slot]; i < aSlotStart[slot + 1]; ++i) {
        int row = aSlotRows[i];
        if (chars::EqualFolded(apszNames[static_cast<size_t>(row)], text)) return row;
    }
    return -1;
}

namespace {

const char* const aszStatementNames[] = {
    "&BEGSTACK", "&BEGTYPE", "&BREAK", "&CALL", "&CRT",    "&CONTINUE", "&CONTROL", "&ELSEIF", "&ELSE",
    "&END",      "&ENDIF",   "&ERROR", "&ESC",  "&FOR",    "&GOTO",     "&IF",      "&IFEND",  "&LOOP",
    "&MENU",     "&NEXT",    "&QUIT",  "&READ", "&RETURN", "&SHIFT",    "&SKIP",    "&SLEEP",  "&SPACE",
    "&STACK",    "&TYPE",    "&UNTIL", "&WAIT", "&WEND",   "&WHILE",    nullptr,
};
static_assert(sizeof aszStatementNames / sizeof *aszStatementNames == static_cast<size_t>(StatementWord::Count) + 1,
              "one name per statement word");

const char* const aszFunctionNames[] = {
    "&CAT", "&ENV", "&EXIST", "&FILESIZE", "&INDEX", "&LEN", "&LIT", "&SUB", "&TYP", "&SYSTEM", nullptr,
};
static_assert(sizeof aszFunctionNames / sizeof *aszFunctionNames == static_cast<size_t>(FunctionWord::Count) + 1,
              "one name per function word");

}  // namespace

const KeywordTable kStatementWords(aszStatementNames);
const KeywordTable kFunctionWords(aszFunctionNames);

const Comparator aComparators[] = {
    {"=", CompEqual}, {"==", CompEqual},        {"<>", CompNotEqual},  {"!=", CompNotEqual}, {">", CompGreater},
    {"<", CompLess},  {">=", CompGreaterEqual}, {"<=", CompLessEqual}, {nullptr, CompNone},
};

const Comparator* GetComparator(const char* text) {
    // Comparators have no letters, so the exact comparison is the case-free one.
    switch (text[0]) {
        case '=':
        case '<':
        case '>':
        case '!': break;
        default: return nullptr;
    }
    for (const Comparator* c = aComparators; c->pszName; ++c)
        if (c->pszName[0] == text[0] && strcmp(c->pszName, text) == 0) return c;
    return nullptr;
}

const char* GetOperator(const char* text) {
    if (!text[0] || text[1]) return nullptr;
    return strchr("+-*/&|^", text[0]);
}

const char* GetLogical(const char* text) {
    if (!text[0] || text[1]) return nullptr;
    return strchr("&|^%", text[0]);
}

const char* const aszSystemWords[] = {
    "ACCOUNT", "CWD",  "DATE", "DAY",   "FTIME", "PID",   "PORT",    "PRIV",  "SERIAL",
    "TASKS",   "TIME", "TOD",  "TODAY", "UID",   "USERS", "WEEKDAY", nullptr,
};
static_assert(sizeof aszSystemWords / sizeof *aszSystemWords == static_cast<size_t>(SystemWord::Count) + 1,
              "one name per &SYSTEM keyword");

namespace {

// The first row of names (ended by a null) that compare equal to text, or -1.
int FindWord(const char* const* names, const char* text, int (*compare)(const char*, const char*)) {
    for (int i = 0; names[i]; ++i)
        if (compare(names[i], text) == 0) return i;
    return -1;
}

}  // namespace

int FindSystemWord(const char* text) { return FindWord(aszSystemWords, text, strcmp); }

const char* const aszControlWords[] = {
    "AUTOCR", "CASE", "NOSTACK", "NOTRACE", "OFF", "ON", "PROMPT", "STACK", "TRACE", "DEBUG", "NODEBUG", nullptr,
};
static_assert(sizeof aszControlWords / sizeof *aszControlWords == static_cast<size_t>(ControlWord::Count) + 1,
              "one name per &CONTROL option");

int FindControlWord(const char* text) { return FindWord(aszControlWords, text, strcasecmp); }
