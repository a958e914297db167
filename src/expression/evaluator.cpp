// The evaluator: one left-to-right pass over the tokens, alternating between expecting an operand
// and expecting an operator. Operators and comparators apply as soon as their right operand is on
// the stack, with no precedence; a logical operator first evaluates the whole rest of the
// expression.
#include <cstdlib>
#include <cstring>
#include <memory>

#include "diagnostics.h"
#include "expression.h"
#include "variables.h"

namespace {

enum class Step { Operand, Operator };

struct State {
    bool bCondition;
    char cOperator = 0;
    CompType eComparator = CompNone;
    bool bNegate = false;
    bool bMinusAllowed = true;
    bool bAppliedOnPassedOver = false;
};

// The first character of the token text; an empty text raises the string-index exception.
char FirstChar(Parser* p) { return p->sToken.character(0); }

void Settle(Parser* p, State& st) {
    if (st.cOperator) {
        Operation(p, st.cOperator);
        st.cOperator = 0;
    } else if (st.eComparator) {
        Comparison(p, st.eComparator);
        st.eComparator = CompNone;
    }
    GetNextToken(p);
}

// value[n] takes the n-th field split at "." and ":"; value[a b] takes positions a to b.
void IndexForm(Parser* p, Const* result) {
    Const first, second;
    GetNextToken(p);
    Eval(p, &first, false);
    ToInteger(&first);
    Pop(p, result);
    ToString(result);
    if (p->eTokenType == TokenEndIndex) {
        // Owned, so that it is freed however the push ends.
        std::unique_ptr<char, void (*)(void*)> copy(strdup(result->sValue), free);
        if (!copy) MEMORY_ERROR(Src::Expression, At::FieldCopy);
        char* field = strtok(copy.get(), ".:");
        for (int n = first.iValue; n > 1; --n) field = strtok(nullptr, ".:");
        PushString(p, field ? field : "");
        return;
    }
    Eval(p, &second, false);
    ToInteger(&second);
    if (first.iValue <= second.iValue)
        PushString(p, result->sValue.midstr(first.iValue - 1, second.iValue - first.iValue + 1));
    if (p->eTokenType != TokenEndIndex) SYNTAX_ERROR(Src::Expression, At::RangeEnd);
}

// The operand step. Returns false when the expression is finished.
bool OperandStep(Parser* p, Const* result, State& st, Step& step) {
    switch (p->eTokenType) {
        case TokenEol:
        case TokenComma:
            // A missing right operand in a condition is a null.
            if (!st.bCondition) return false;
            PushNull(p);
            Settle(p, st);
            break;
        case TokenInteger: {
            long v = CurrentIntegerValue(p);
            PushInteger(p, st.bNegate ? -v : v);
            st.bNegate = false;
            Settle(p, st);
            break;
        }
        case TokenFloat: {
            double d = CurrentFloatValue(p);
            PushDouble(p, st.bNegate ? -d : d);
            st.bNegate = false;
            Settle(p, st);
            break;
        }
        case TokenString:
            p->sToken = Expand(p->sToken);
            PushString(p, p->sToken);
            Settle(p, st);
            break;
        case TokenBeginGroup:
            GetNextToken(p);
            Eval(p, result, false);
            Push(p, result);
            Settle(p, st);
            break;
        case TokenFunction:
            // A function word later in an expression is passed over: only a leading call runs
            // its handler.
            GetNextToken(p);
            Eval(p, result, false);
            Settle(p, st);
            break;
        case TokenEndGroup: step = Step::Operator; return true;
        case TokenVar: {
            Variable* v = GetTokenVar(p);
            Push(p, &v->value);
            if (!st.bAppliedOnPassedOver) st.bMinusAllowed = true;
            Settle(p, st);
            break;
        }
        default:
            if (FirstChar(p) == '-' && st.bMinusAllowed) {
                GetNextToken(p);
                st.bNegate = true;
                return true;
            }
            if (st.cOperator) {
                Operation(p, st.cOperator);
                st.bAppliedOnPassedOver = true;
            } else if (st.eComparator) {
                Comparison(p, st.eComparator);
                st.bAppliedOnPassedOver = true;
            }
            GetNextToken(p);
            return true;
    }
    step = Step::Operator;
    return true;
}

// The operator step. Returns false when the expression is finished.
bool OperatorStep(Parser* p, Const* result, State& st, Step& step) {
    switch (p->eTokenType) {
        case TokenOperator:
            st.cOperator = FirstChar(p);
            GetNextToken(p);
            step = Step::Operand;
            return true;
        case TokenEqual:
        case TokenComparator: {
            const Comparator* c = GetComparator(p->sToken);
            st.eComparator = c ? c->eType : CompNone;
            GetNextToken(p);
            step = Step::Operand;
            return true;
        }
        case TokenLogical: {
            char op = FirstChar(p);
            GetNextToken(p);
            Eval(p, result, false);
            Push(p, result);
            Logical(p, op);
            GetNextToken(p);
            step = Step::Operand;
            return true;
        }
        case TokenBeginIndex:
            IndexForm(p, result);
            GetNextToken(p);
            return true;
        default: return false;
    }
}

}  // namespace

void Eval(Parser* p, Const* result, bool condition) {
    State st{condition};
    Step step = Step::Operand;

    switch (p->eTokenType) {
        case TokenFunction:
            if (condition) NO_EXPRESSION(Src::Expression, At::FunctionInCondition);
            aFunctions[p->iWord].pHandler(p, result);
            GetNextToken(p);
            step = Step::Operator;
            break;
        case TokenBeginGroup:
            // A leading group's value stays in the result and is not pushed, unlike a group met
            // later in the expression.
            if (condition) NO_EXPRESSION(Src::Expression, At::GroupInCondition);
            GetNextToken(p);
            Eval(p, result, false);
            GetNextToken(p);
            st.bMinusAllowed = false;
            step = Step::Operator;
            break;
        case TokenVar: break;
        case TokenEol:
            PushNull(p);
            GetNextToken(p);
            break;
        default:
            if (IsConst(p->eTokenType)) break;
            if (FirstChar(p) == '-' && st.bMinusAllowed) {
                GetNextToken(p);
                st.bNegate = true;
                break;
            }
            SYNTAX_ERROR(Src::Expression, At::ExpressionStart);
    }

    for (;;) {
        bool more = step == Step::Operand ? OperandStep(p, result, st, step) : OperatorStep(p, result, st, step);
        if (!more) break;
    }
    Pop(p, result);
}

void Evaluate(Parser* p, Const* result, bool condition) {
    Eval(p, result, condition);
    if (p->uiStack != 0) EXEC_ERROR(Src::Expression, At::ValuesLeft);
}
