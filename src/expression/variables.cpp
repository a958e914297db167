// The variable table: every variable of the run, found by name without regard to case.
// Records live in blocks of 128 that never move, so a record pointer stays valid however the
// table grows; indexes and values are kept in order of creation. Unless the plain table is asked
// for, an index by folded name finds a record without scanning the table; no two records have
// names equal but for case, so the index finds the one a scan would.

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "variables.h"

#include "char_classes.h"
#include "diagnostics.h"

int iArgs = 0;
uint32_t uiMaxVars = 0;
uint32_t uiVars = 0;

namespace {

constexpr uint32_t kGrowth = 128;
std::vector<std::unique_ptr<Variable[]>> aVarBlocks;

// Names hashed and compared as strcasecmp compares them: byte by byte, folded by tolower.
struct FoldedHash {
    size_t operator()(const char* s) const {
        size_t h = 14695981039346656037ull;
        for (; *s; ++s) {
            h ^= chars::Lower(*s);
            h *= 1099511628211ull;
        }
        return h;
    }
};
struct FoldedEqual {
    bool operator()(const char* a, const char* b) const { return chars::EqualFolded(a, b); }
};
bool bIndexed = false;
// Counts the tables InitVariables made: a variable kept with a token belongs to one of them. A
// table never loses a variable, so the one a name finds stays the one it finds.
uint64_t uiTableGeneration = 0;
std::unordered_map<const char*, Variable*, FoldedHash, FoldedEqual> aVarIndex;

void Grow() {
    aVarBlocks.emplace_back(new Variable[kGrowth]);
    uiMaxVars += kGrowth;
}

// Names found lately, as written: a script names the same few variables over and over, and
// comparing the bytes is cheaper than hashing the folded name. What a name found stays found.
struct RecentVar {
    std::string sName;
    Variable* pVar = nullptr;
    uint64_t uiGeneration = 0;
};
RecentVar aRecentVars[16];

}  // namespace

void InitVariables(bool index) {
    ++uiTableGeneration;
    bIndexed = index;
    aVarIndex.clear();
    aVarBlocks.clear();
    uiMaxVars = 0;
    uiVars = 0;
    Grow();
}

Variable* VarAt(uint32_t index) { return &aVarBlocks[index / kGrowth][index % kGrowth]; }

Variable* FindVar(const char* name) {
    if (bIndexed) {
        const size_t length = strlen(name);
        RecentVar& recent = aRecentVars[(length * 31 + static_cast<unsigned char>(length ? name[length - 1] : 0)) % 16];
        if (recent.uiGeneration == uiTableGeneration && recent.sName.size() == length &&
            memcmp(recent.sName.data(), name, length) == 0)
            return recent.pVar;
        auto it = aVarIndex.find(name);
        if (it == aVarIndex.end()) return nullptr;
        recent.sName.assign(name, length);
        recent.pVar = it->second;
        recent.uiGeneration = uiTableGeneration;
        return it->second;
    }
    for (uint32_t i = 0; i < uiVars; ++i) {
        Variable* v = VarAt(i);
        if (chars::EqualFolded(v->sName.data(), name)) return v;  // as strcasecmp compares
    }
    return nullptr;
}

Variable* AddVar(const char* name) {
    if (Variable* v = FindVar(name)) return v;
    if (uiVars >= uiMaxVars) Grow();
    Variable* v = VarAt(uiVars++);
    v->sName = name;
    v->value.eType = VarUndef;
    if (bIndexed) aVarIndex.emplace(v->sName.data(), v);
    return v;
}

Variable* GetVar(const CBString& name) {
    // A name holding a reference after its first character would be reduced to the referenced
    // value; the search starts before the name, so it never finds one, and the name is used as
    // given without a copy.
    if (name.reversefindchr('&', -1) >= 1) {
        CBString reduced = name;
        int pos;
        while ((pos = reduced.reversefindchr('&', -1)) >= 1) reduced = SubstVarValue(reduced, pos);
        return GetVar(reduced);
    }
    if (Variable* v = FindVar(name)) return v;
    return AddVar(name);
}

Variable* GetTokenVar(Parser* p) {
    TokenNote* note = CurrentNote(p);
    if (note && note->pBound && note->uiGeneration == uiTableGeneration) return static_cast<Variable*>(note->pBound);
    // GetVar uses the name as given (see there): the variable depends on nothing but the text.
    Variable* v = GetVar(p->sToken);
    if (note) {
        note->pBound = v;
        note->uiGeneration = uiTableGeneration;
    }
    return v;
}

void SetIntegerVar(const char* name, int value) {
    Variable* v = AddVar(name);
    v->value.eType = VarInteger;
    v->value.iValue = Int16(value);
}

void SetDoubleVar(const char* name, double value) {
    Variable* v = AddVar(name);
    v->value.eType = VarFloat;
    v->value.dValue = value;
}

void SetStringVar(const char* name, const char* value) {
    Variable* v = AddVar(name);
    v->value.eType = VarString;
    v->value.sValue = value;
}

void GetValue(Parser* p, Const* out) {
    switch (p->eTokenType) {
        case TokenInteger:
            out->eType = VarInteger;
            out->iValue = Int16(CurrentIntegerValue(p));
            break;
        case TokenFloat:
            out->eType = VarFloat;
            out->dValue = CurrentFloatValue(p);
            break;
        case TokenString:
            out->eType = VarString;
            out->sValue = p->sToken;
            break;
        case TokenVar: {
            Variable* v = GetVar(p->sToken);
            if (v->value.eType == VarUndef) {
                out->eType = VarString;
                out->sValue.clear();
            } else {
                *out = v->value;
            }
            break;
        }
        default: SYNTAX_ERROR(Src::Kvexec, At::GetValueOperand);
    }
}
