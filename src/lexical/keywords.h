// The language's words, by name only: statement words, function words, comparators, operator and
// logical characters, and the words of &SYSTEM and &CONTROL. Nothing here knows a handler: the
// layers above bind handlers to these words by their position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kvtypes.h"

// A table of names looked up as whole words, case ignored (strcasecmp), first match in table order.
// Each table keeps its own rows grouped by length and by their last character as the running
// locale folds it (grouped at the first lookup, after start-up has chosen the locale), so only a
// name that can be equal is compared.
class KeywordTable {
public:
    // names: the rows in table order, ended by a null.
    explicit KeywordTable(const char* const* names);
    // The row of the first name equal to text, or -1.
    int Find(const char* text) const;
    // The same for a text of the given length (a C string: text[length] is its end).
    int Find(const char* text, size_t length) const;
    const char* Name(int row) const { return apszNames[static_cast<size_t>(row)]; }
    int Size() const { return static_cast<int>(apszNames.size()); }

private:
    static size_t Slot(size_t length, unsigned char last);
    void Group() const;
    std::vector<const char*> apszNames;
    size_t uiLongest = 0;
    // The rows of slot n, in table order: aSlotRows[aSlotStart[n]] up to aSlotRows[aSlotStart[n + 1]].
    mutable std::vector<uint16_t> aSlotStart;
    mutable std::vector<int> aSlotRows;
};

// Whether a table binding handlers to words has one row per word, in the words' order.
template <typename Word, typename Row, size_t N>
constexpr bool RowsInWordOrder(const Row (&rows)[N]) {
    for (size_t i = 0; i < N; ++i)
        if (static_cast<size_t>(rows[i].eWord) != i) return false;
    return N == static_cast<size_t>(Word::Count);
}

// ---- Statement words, in table order ------------------------------------------------------

enum class StatementWord : int {
    Begstack,
    Begtype,
    Break,
    Call,
    Crt,
    Continue,
    Control,
    Elseif,
    Else,
    End,
    Endif,
    Error,
    Esc,
    For,
    Goto,
    If,
    Ifend,
    Loop,
    Menu,
    Next,
    Quit,
    Read,
    Return,
    Shift,
    Skip,
    Sleep,
    Space,
    Stack,
    Type,
    Until,
    Wait,
    Wend,
    While,
    Count,
};
extern const KeywordTable kStatementWords;

// ---- Function words, in table order: alphabetical, except that &SYSTEM comes last --------

enum class FunctionWord : int { Cat, Env, Exist, Filesize, Index, Len, Lit, Sub, Typ, System, Count };
extern const KeywordTable kFunctionWords;

// ---- Comparators --------------------------------------------------------------------------

struct Comparator {
    const char* pszName;
    CompType eType;
};
// In the order they are compared: "=" "==" "<>" "!=" ">" "<" ">=" "<=".
extern const Comparator aComparators[];
const Comparator* GetComparator(const char* text);
// Non-null when the text is one character of "+-*/&|^" (operators) or of "&|^%" (logical).
const char* GetOperator(const char* text);
const char* GetLogical(const char* text);

// ---- &SYSTEM keywords, compared exactly after upper-casing ---------------------------------

enum class SystemWord : int {
    Account,
    Cwd,
    Date,
    Day,
    Ftime,
    Pid,
    Port,
    Priv,
    Serial,
    Tasks,
    Time,
    Tod,
    Today,
    Uid,
    Users,
    Weekday,
    Count,
};
extern const char* const aszSystemWords[];
// The keyword spelled exactly as text (already upper-cased by the caller), or -1.
int FindSystemWord(const char* text);

// ---- &CONTROL options, case ignored, in the order they are compared ----------------------

enum class ControlWord : int { Autocr, Case, NoStack, NoTrace, Off, On, Prompt, Stack, Trace, Debug, NoDebug, Count };
extern const char* const aszControlWords[];
int FindControlWord(const char* text);
