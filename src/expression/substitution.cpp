// Variable substitution: references replaced by their values, and the line expansion.
#include <cstring>

#include "variables.h"

CBString SubstVarValue(CBString text, int position) {
    Variable* v = FindVar(text.data() + position);
    if (!v) return text.midstr(0, position);
    CBString result;
    switch (v->value.eType) {
        case VarUndef: return result;  // a null value discards the whole text
        case VarInteger:
            result = text.midstr(0, position);
            result.formata("%d", v->value.iValue);
            return result;
        case VarFloat:
            result = text.midstr(0, position);
            result.formata("%.14g", v->value.dValue);
            return result;
        case VarString:
            result = text.midstr(0, position);
            result += v->value.sValue;
            return result;
    }
    return text;
}

CBString GetVarValue(CBString reference) {
    // Right to left: what a value brings in is not scanned again, except that an "&" just before
    // a reference joins the value to form a new name.
    int pos = reference.length();
    for (;;) {
        int amp = reference.reversefindchr('&', pos);
        if (amp < 0) break;
        reference = SubstVarValue(reference, amp);
        pos = amp - 1;
    }
    return reference;
}

CBString Expand(const char* text) {
    CBString out;
    bool quoted = false;
    const char* s = text;
    while (*s) {
        // Text without a comment mark, quote or reference is copied as a whole.
        size_t plain = strcspn(s, ";\"&");
        if (plain > 0) {
            out.append(s, plain);
            s += plain;
            continue;
        }
        char c = *s;
        if (c == ';' && !quoted) break;
        if (c == '"') {
            quoted = !quoted;
            out += c;
            ++s;
            continue;
        }
        if (c != '&') {
            out += c;
            ++s;
            continue;
        }
        const char* start = s;
        while (*s == '&') ++s;
        if (*s == '*') {
            ++s;
            for (int i = 1; i < iArgs; ++i) {
                out += " ";
                out += GetVarValue(ArgumentName(i));
            }
            continue;
        }
        s = ReferenceEnd(s);
        out += GetVarValue(CBString(start, static_cast<size_t>(s - start)));
    }
    return out;
}
