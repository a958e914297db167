// The operand stack: 32 entries allocated once. A push overwrites only the slot of its type, so
// an entry's other slots keep what an earlier use left; a pop copies all four.
#include "diagnostics.h"
#include "expression.h"

StackEntry* AllocOperandStack() { return new StackEntry[kStackSize]; }

namespace {

StackEntry* Next(Parser* p, int line) {
    if (p->uiStack > kStackSize - 1) STACK_OVERFLOW_ERROR(Src::Expression, line);
    return &p->pStack[p->uiStack++];
}

}  // namespace

void PushInteger(Parser* p, int value) {
    StackEntry* e = Next(p, At::PushInteger);
    e->value.eType = VarInteger;
    e->value.iValue = Int16(value);
}

void PushDouble(Parser* p, double value) {
    StackEntry* e = Next(p, At::PushDouble);
    e->value.eType = VarFloat;
    e->value.dValue = value;
}

void PushString(Parser* p, const char* value) {
    StackEntry* e = Next(p, At::PushString);
    e->value.eType = VarString;
    e->value.sValue = value;
}

void PushNull(Parser* p) {
    StackEntry* e = Next(p, At::PushNull);
    e->value.eType = VarUndef;
}

void Push(Parser* p, Const* value) {
    switch (value->eType) {
        case VarInteger: PushInteger(p, value->iValue); break;
        case VarFloat: PushDouble(p, value->dValue); break;
        case VarString: {
            StackEntry* e = Next(p, At::PushString);
            e->value.eType = VarString;
            e->value.sValue = value->sValue;
            break;
        }
        default: PushNull(p); break;
    }
}

void Pop(Parser* p, Const* out) {
    if (p->uiStack == 0) STACK_UNDERFLOW_ERROR(Src::Expression, At::Pop);
    const Const& v = p->pStack[--p->uiStack].value;
    out->eType = v.eType;
    out->iValue = v.iValue;
    out->dValue = v.dValue;
    if (out->sValue != v.sValue) out->sValue = v.sValue;  // most often both empty
}
