// The two-operand operators: arithmetic (always double), the 16-bit bit operators and the
// remainder, and the comparators.
#include <csignal>

#include "expression.h"
#include "kavro.h"

namespace {

void PopOperands(Parser* p, Const* left, Const* right) {
    Pop(p, right);
    Pop(p, left);
}

}  // namespace

void Operation(Parser* p, char op) {
    Const left, right;
    PopOperands(p, &left, &right);
    ToDouble(&left);
    ToDouble(&right);
    double r = 0.0;
    switch (op) {
        case '+': r = left.dValue + right.dValue; break;
        case '-': r = left.dValue - right.dValue; break;
        case '*': r = left.dValue * right.dValue; break;
        case '/': r = left.dValue / right.dValue; break;
        default: break;
    }
    PushDouble(p, r);
}

void Logical(Parser* p, char op) {
    Const left, right;
    PopOperands(p, &left, &right);
    ToInteger(&left);
    ToInteger(&right);
    int l = left.iValue, r = right.iValue, v = 0;
    switch (op) {
        case '^': v = l ^ r; break;
        case '%':
            if (r == 0) {
                // The remainder by zero traps, as the division instruction does: the process
                // ends on the arithmetic signal with no report.
                kavro::TermFlush();
#ifdef KVEXEC_FUZZ
                kavro::FuzzEndRun(128 + SIGFPE);
#endif
                std::signal(SIGFPE, SIG_DFL);
                kavro::CoverageFlush();
                std::raise(SIGFPE);
            }
            v = l % r;
            break;
        case '&': v = l & r; break;
        case '|': v = l | r; break;
        default: break;
    }
    PushInteger(p, v);
}

void Comparison(Parser* p, CompType c) {
    Const left, right;
    PopOperands(p, &left, &right);
    PushInteger(p, ConstCompare(&left, &right, c) ? 1 : 0);
}
