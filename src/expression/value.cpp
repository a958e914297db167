// Typed values: conversions and comparison.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "expression.h"

void ToString(Const* c) {
    char buffer[23];
    switch (c->eType) {
        case VarInteger: snprintf(buffer, sizeof buffer, "%d", c->iValue); break;
        case VarFloat: snprintf(buffer, sizeof buffer, "%g", c->dValue); break;
        case VarString: return;
        default: buffer[0] = '\0'; break;
    }
    c->eType = VarString;
    c->sValue = buffer;
}

void ToDouble(Const* c) {
    switch (c->eType) {
        case VarFloat: return;
        case VarString: c->dValue = strtod(c->sValue, nullptr); break;
        case VarInteger: c->dValue = c->iValue; break;
        default: c->dValue = 0.0; break;
    }
    c->eType = VarFloat;
}

void ToInteger(Const* c) {
    switch (c->eType) {
        case VarInteger: return;
        case VarFloat: {
            // Truncated to 32 bits first; a double outside that range gives 0.
            double d = std::trunc(c->dValue);
            c->iValue = (d > -2147483649.0 && d < 2147483648.0) ? Int16(static_cast<int32_t>(d)) : 0;
            break;
        }
        case VarString: c->iValue = Int16(strtol(c->sValue, nullptr, 10)); break;
        default: c->iValue = 0; break;
    }
    c->eType = VarInteger;
}

namespace {

int16_t Magnitude(int16_t v) { return Int16(v < 0 ? -static_cast<int>(v) : v); }

// Brings two values of different types to a common one.
void Unify(Const* l, Const* r) {
    XVarType L = l->eType, R = r->eType;
    if (R == VarInteger && L == VarString)
        ToInteger(l);
    else if (R == VarFloat && L == VarString)
        ToDouble(l);
    else if (L == VarInteger && R == VarFloat)
        ToDouble(l);
    else if (R == VarString && L == VarInteger)
        ToInteger(r);
    else if (R == VarString && L == VarFloat)
        ToDouble(r);
    else if (L == VarFloat && R == VarInteger)
        ToDouble(r);
    else if (L == VarUndef && R == VarString)
        ToString(l);
    else if (R == VarUndef && L == VarString)
        ToString(r);
    else if (L == VarUndef && R == VarInteger) {
        ToInteger(l);
        r->iValue = Magnitude(r->iValue);
    } else if (L == VarInteger && R == VarUndef) {
        ToInteger(r);
        l->iValue = Magnitude(l->iValue);
    } else if (L == VarUndef && R == VarFloat) {
        // The integer slot is read here, not the double: whatever it last held.
        ToDouble(l);
        r->dValue = std::fabs(static_cast<double>(r->iValue));
    } else if (L == VarFloat && R == VarUndef) {
        ToDouble(r);
        l->dValue = std::fabs(static_cast<double>(l->iValue));
    }
}

template <typename T>
bool Ordered(const T& a, const T& b, CompType c) {
    switch (c) {
        case CompEqual: return a == b;
        case CompNotEqual: return a != b;
        case CompGreater: return a > b;
        case CompLess: return a < b;
        case CompGreaterEqual: return a >= b;
        case CompLessEqual: return a <= b;
        default: return false;
    }
}

}  // namespace

bool ConstCompare(Const* left, Const* right, CompType c) {
    if (left->eType == VarUndef && right->eType == VarUndef) {
        ToInteger(left);
        ToInteger(right);
    } else if (left->eType != right->eType) {
        Unify(left, right);
    }
    switch (left->eType) {
        case VarInteger: return Ordered(left->iValue, right->iValue, c);
        case VarFloat: return Ordered(left->dValue, right->dValue, c);
        case VarString: return Ordered(left->sValue, right->sValue, c);
        default: return false;
    }
}
