// The expression evaluator: one left-to-right pass with no precedence, logical operators that
// take the whole rest of the expression, unary minus, groups, index forms and condition mode.
#include <string>

#include "report_support.h"
#include "test_support.h"

namespace {

class Evaluator : public ::testing::Test {
protected:
    double AsDouble(const char* expression) {
        Const c = ctx.Eval(expression);
        EXPECT_EQ(c.eType, VarFloat) << expression;
        EXPECT_EQ(ctx.p.uiStack, 0u) << expression;
        return c.dValue;
    }

    int AsInteger(const char* expression, bool condition = false) {
        Const c = ctx.Eval(expression, condition);
        EXPECT_EQ(c.eType, VarInteger) << expression;
        EXPECT_EQ(ctx.p.uiStack, 0u) << expression;
        return c.iValue;
    }

    std::string AsString(const char* expression) {
        Const c = ctx.Eval(expression);
        EXPECT_EQ(c.eType, VarString) << expression;
        EXPECT_EQ(ctx.p.uiStack, 0u) << expression;
        return c.sValue.str();
    }

    // N operands joined by " & ".
    static std::string AndChain(int n) {
        std::string s = "1";
        for (int i = 1; i < n; ++i) s += " & 1";
        return s;
    }

    kvtest::Context ctx;
};

// ---- Literals ------------------------------------------------------------------------------

TEST_F(Evaluator, IntegerLiteral) {
    EXPECT_EQ(AsInteger("42"), 42);
    EXPECT_EQ(AsInteger("70000"), 4464);
}

TEST_F(Evaluator, FloatLiteral) { EXPECT_EQ(AsDouble("2.25"), 2.25); }

TEST_F(Evaluator, StringLiterals) {
    EXPECT_EQ(AsString("abc"), "abc");
    EXPECT_EQ(AsString("\"hello world\""), "hello world");
}

TEST_F(Evaluator, StringLiteralsAreExpanded) {
    SetStringVar("&B", "xy");
    EXPECT_EQ(AsString("\"a&B\""), "axy");
    EXPECT_EQ(ctx.p.sToken, "");  // the end of line is current
    EXPECT_EQ(AsString("abc&B"), "abcxy");
}

TEST_F(Evaluator, ExpandedLiteralBecomesTheTokenText) {
    SetStringVar("&B", "xy");
    ctx.SetLine("\"a&B\" x");
    GetNextToken(&ctx.p);
    Const c;
    Eval(&ctx.p, &c, false);
    EXPECT_EQ(c.sValue, "axy");
    EXPECT_EQ(ctx.p.sToken, "x");
}

// ---- Unary minus ---------------------------------------------------------------------------

TEST_F(Evaluator, NegativeLiterals) {
    EXPECT_EQ(AsInteger("-5"), -5);
    EXPECT_EQ(AsDouble("- 2.5"), -2.5);
    EXPECT_EQ(AsInteger("-32768"), -32768);
    EXPECT_EQ(AsInteger("-32769"), 32767);
}

TEST_F(Evaluator, MinusBeforeANegativeOperand) { EXPECT_EQ(AsDouble("3 - -2"), 5.0); }

TEST_F(Evaluator, MinusBeforeAVariableWaitsForTheNextNumber) {
    SetIntegerVar("&A", 10);
    // - &A + 1 computes &A + (-1).
    EXPECT_EQ(AsDouble("- &A + 1"), 9.0);
    EXPECT_EQ(AsDouble("- &A + 1 + 2"), 11.0);
    // With no number after it, the minus is lost.
    EXPECT_EQ(AsInteger("- &A"), 10);
}

// ---- Arithmetic from left to right ---------------------------------------------------------

TEST_F(Evaluator, NoPrecedence) {
    EXPECT_EQ(AsDouble("1 + 2 * 3"), 9.0);
    EXPECT_EQ(AsDouble("10 - 4 - 3"), 3.0);
    EXPECT_EQ(AsDouble("2 + 3 * 4 - 5"), 15.0);
    EXPECT_EQ(AsDouble("8 / 2 / 2"), 2.0);
}

TEST_F(Evaluator, ArithmeticGivesDoubles) {
    EXPECT_EQ(AsDouble("7 / 2"), 3.5);
    Const c = ctx.Eval("2 * 3");
    EXPECT_EQ(c.eType, VarFloat);
    EXPECT_EQ(c.dValue, 6.0);
    ToString(&c);
    EXPECT_EQ(c.sValue, "6");
    EXPECT_EQ(AsDouble("1+2"), 3.0);
}

TEST_F(Evaluator, VariablesAsOperands) {
    SetStringVar("&N", "4");
    SetDoubleVar("&D", 0.5);
    EXPECT_EQ(AsDouble("&N + 1"), 5.0);
    EXPECT_EQ(AsDouble("&n * &d"), 2.0);
}

TEST_F(Evaluator, VariableAloneKeepsItsType) {
    SetStringVar("&S", "text");
    EXPECT_EQ(AsString("&S"), "text");
    SetIntegerVar("&I", -3);
    EXPECT_EQ(AsInteger("&i"), -3);
}

TEST_F(Evaluator, UnknownVariableIsNullAndCreated) {
    EXPECT_EQ(FindVar("&nope"), nullptr);
    Const c = ctx.Eval("&nope");
    EXPECT_EQ(c.eType, VarUndef);
    Variable* v = FindVar("&NOPE");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->value.eType, VarUndef);
}

// ---- Comparisons ---------------------------------------------------------------------------

TEST_F(Evaluator, ComparisonsGiveOneOrZero) {
    EXPECT_EQ(AsInteger("1 < 2"), 1);
    EXPECT_EQ(AsInteger("2 < 1"), 0);
    EXPECT_EQ(AsInteger("3 >= 3"), 1);
    EXPECT_EQ(AsInteger("3 <= 2"), 0);
    EXPECT_EQ(AsInteger("1 <> 2"), 1);
    EXPECT_EQ(AsInteger("1 != 1"), 0);
    EXPECT_EQ(AsInteger("2 == 2.0"), 1);
    EXPECT_EQ(AsInteger("2 = 2"), 1);
    EXPECT_EQ(AsInteger("5 > 4"), 1);
}

TEST_F(Evaluator, ComparisonsOfStrings) {
    EXPECT_EQ(AsInteger("\"abc\" = \"abc\""), 1);
    EXPECT_EQ(AsInteger("\"ABC\" = \"abc\""), 0);
    EXPECT_EQ(AsInteger("\"10\" > \"9\""), 0);
    EXPECT_EQ(AsInteger("10 > \"9\""), 1);
}

TEST_F(Evaluator, ComparisonAppliedAsSoonAsItsOperandIsThere) {
    SetIntegerVar("&A", 1);
    // (&A = 1) + 2
    EXPECT_EQ(AsDouble("&A = 1 + 2"), 3.0);
    SetIntegerVar("&A", 3);
    EXPECT_EQ(AsDouble("&A = 1 + 2"), 2.0);
    // (1 + 2) = 3
    EXPECT_EQ(AsInteger("1 + 2 = 3"), 1);
}

// ---- Logical operators ---------------------------------------------------------------------

TEST_F(Evaluator, LogicalTakesTheRestOfTheExpression) {
    // 1 & (2 + 3)
    EXPECT_EQ(AsInteger("1 & 2 + 3"), 1);
    // 6 | (1 + 2)
    EXPECT_EQ(AsInteger("6 | 1 + 2"), 7);
    // 6 % (4 % 3)
    EXPECT_EQ(AsInteger("6 % 4 % 3"), 0);
}

TEST_F(Evaluator, LogicalAfterArithmetic) {
    // (2 * 3) ^ 5
    EXPECT_EQ(AsInteger("2 * 3 ^ 5"), 3);
}

TEST_F(Evaluator, ComparisonsJoinedByAnd) {
    SetIntegerVar("&a", 1);
    SetIntegerVar("&b", 2);
    EXPECT_EQ(AsInteger("&a = 1 & &b = 2"), 1);
    EXPECT_EQ(AsInteger("&a = 1 & &b = 3"), 0);
    EXPECT_EQ(AsInteger("&a = 2 | &b = 2"), 1);
    EXPECT_EQ(AsInteger("2 & 1"), 0);
}

TEST_F(Evaluator, ThirtyTwoPendingOperandsFit) { EXPECT_EQ(AsInteger(AndChain(32).c_str()), 1); }

TEST_F(Evaluator, ThirtyThreePendingOperandsOverflow) {
    std::string chain = AndChain(33);
    EXPECT_REPORT_EXIT(ctx.Eval(chain.c_str()), 0, kvtest::Report("CStack overflow", "../src/expression", 107));
}

// ---- Groups --------------------------------------------------------------------------------

TEST_F(Evaluator, GroupLaterInTheExpressionIsAnOperand) {
    EXPECT_EQ(AsDouble("1 + (2 * 3)"), 7.0);
    EXPECT_EQ(AsDouble("10 - (1 + 2) * 2"), 14.0);
    EXPECT_EQ(AsDouble("1 + (2 * (3 + 1))"), 9.0);
}

TEST_F(Evaluator, LeadingGroupAloneUnderflows) {
    EXPECT_REPORT_EXIT(ctx.Eval("(5)"), 0, kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Evaluator, LeadingGroupFollowedByAnOperatorUnderflows) {
    EXPECT_REPORT_EXIT(ctx.Eval("(1 + 2) * 3"), 0, kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Evaluator, LeadingGroupValueStaysInTheResult) {
    // Nested inside a group, the inner leading group's value is in the result record only,
    // so it is not on the stack when the outer group finishes.
    ctx.SetLine("(7) x");
    GetNextToken(&ctx.p);
    Const c;
    PushInteger(&ctx.p, 99);  // something for the finishing pop to take
    Eval(&ctx.p, &c, false);
    EXPECT_EQ(c.eType, VarInteger);
    EXPECT_EQ(c.iValue, 99);
    EXPECT_EQ(ctx.p.uiStack, 0u);
    EXPECT_EQ(ctx.p.sToken, "x");
}

// ---- Where an expression ends --------------------------------------------------------------

TEST_F(Evaluator, SpaceSeparatedOperandsEndTheExpression) {
    Const c = ctx.Eval("1 2");
    EXPECT_EQ(c.eType, VarInteger);
    EXPECT_EQ(c.iValue, 1);
    EXPECT_EQ(ctx.p.eTokenType, TokenInteger);
    EXPECT_EQ(ctx.p.sToken, "2");
    EXPECT_EQ(ctx.p.uiStack, 0u);
}

TEST_F(Evaluator, EndingTokenIsLeftCurrent) {
    EXPECT_EQ(ctx.Eval("1 + 2, 5").dValue, 3.0);
    EXPECT_EQ(ctx.p.eTokenType, TokenComma);
    EXPECT_EQ(ctx.Eval("4 ) x").iValue, 4);
    EXPECT_EQ(ctx.p.eTokenType, TokenEndGroup);
    EXPECT_EQ(ctx.Eval("4 ] x").iValue, 4);
    EXPECT_EQ(ctx.p.eTokenType, TokenEndIndex);
    EXPECT_EQ(ctx.Eval("4 ; 5").iValue, 4);
    EXPECT_EQ(ctx.p.eTokenType, TokenEol);
    EXPECT_EQ(ctx.Eval("1 + 2").dValue, 3.0);
    EXPECT_EQ(ctx.p.eTokenType, TokenEol);
}

TEST_F(Evaluator, EmptyExpressionIsNull) {
    Const c = ctx.Eval("");
    EXPECT_EQ(c.eType, VarUndef);
    EXPECT_EQ(ctx.p.uiStack, 0u);
    EXPECT_EQ(ctx.Eval("   ").eType, VarUndef);
}

TEST_F(Evaluator, MissingRightOperandOutsideAConditionLeavesTheLeftValue) {
    SetIntegerVar("&A", 5);
    Const c = ctx.Eval("&A =");
    EXPECT_EQ(c.eType, VarInteger);
    EXPECT_EQ(c.iValue, 5);
    EXPECT_EQ(ctx.p.uiStack, 0u);
}

// ---- Conditions ----------------------------------------------------------------------------

TEST_F(Evaluator, Condition) {
    EXPECT_EQ(AsInteger("1 < 2", true), 1);
    EXPECT_EQ(AsInteger("3 = 4", true), 0);
}

TEST_F(Evaluator, ConditionComparesWithNullWhenTheRightOperandIsMissing) {
    // &A does not exist: null against null.
    EXPECT_EQ(AsInteger("&A =", true), 1);
    SetIntegerVar("&A", 5);
    EXPECT_EQ(AsInteger("&A =", true), 0);
    SetIntegerVar("&A", 0);
    EXPECT_EQ(AsInteger("&A =", true), 1);
    SetStringVar("&A", "");
    EXPECT_EQ(AsInteger("&A =", true), 1);
    SetStringVar("&A", "x");
    EXPECT_EQ(AsInteger("&A =", true), 0);
    SetIntegerVar("&A", -2);
    EXPECT_EQ(AsInteger("&A >", true), 1);
}

TEST_F(Evaluator, ConditionMissingArithmeticOperandIsNull) {
    // In a condition the missing operand is a null, so 1 + null is computed.
    Const c = ctx.Eval("1 +", true);
    EXPECT_EQ(c.eType, VarFloat);
    EXPECT_EQ(c.dValue, 1.0);
    EXPECT_EQ(ctx.p.uiStack, 0u);
    // Elsewhere the expression simply ends and the pending operator is dropped.
    EXPECT_EQ(AsInteger("1 +"), 1);
}

TEST_F(Evaluator, EmptyConditionLeavesAValueBehind) {
    EXPECT_REPORT_EXIT(ctx.Eval("", true), 1, kvtest::Report("Internal error", "../src/expression", 1088));
}

TEST_F(Evaluator, FunctionFirstInAConditionIsRefused) {
    EXPECT_REPORT_EXIT(
        ctx.Eval("&LEN abc", true), 1,
        kvtest::Report("Expression not allowed in &IF, &ELSEIF, &UNTIL, &WHILE", "../src/expression", 940));
}

TEST_F(Evaluator, GroupFirstInAConditionIsRefused) {
    EXPECT_REPORT_EXIT(
        ctx.Eval("(1 = 1)", true), 1,
        kvtest::Report("Expression not allowed in &IF, &ELSEIF, &UNTIL, &WHILE", "../src/expression", 948));
}

// ---- Bad starts ----------------------------------------------------------------------------

TEST_F(Evaluator, OperatorFirstIsASyntaxError) {
    EXPECT_REPORT_EXIT(ctx.Eval("* 2"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
}

TEST_F(Evaluator, OtherBadStartsAreSyntaxErrors) {
    EXPECT_REPORT_EXIT(ctx.Eval(")"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
    EXPECT_REPORT_EXIT(ctx.Eval("+ 1"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
    EXPECT_REPORT_EXIT(ctx.Eval("= 1"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
    EXPECT_REPORT_EXIT(ctx.Eval("5."), 255, kvtest::Report("Syntax error", "../src/expression", 963));
    EXPECT_REPORT_EXIT(ctx.Eval(", 1"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
}

TEST_F(Evaluator, SyntaxErrorNamesTheScriptLine) {
    ctx.script.iLine = 7;
    EXPECT_REPORT_EXIT(ctx.Eval("* 2"), 255, kvtest::Report("Syntax error", "../src/expression", 963, 7));
}

// ---- Index forms ---------------------------------------------------------------------------

TEST_F(Evaluator, FieldForm) {
    EXPECT_EQ(AsString("abc.def:ghi[2]"), "def");
    EXPECT_EQ(AsString("abc.def:ghi[3]"), "ghi");
    EXPECT_EQ(AsString("abc.def:ghi[1]"), "abc");
    EXPECT_EQ(AsString("abc.def:ghi[0]"), "abc");
    EXPECT_EQ(AsString("abc.def:ghi[-1]"), "abc");
}

TEST_F(Evaluator, FieldFormOnVariables) {
    SetStringVar("&D", "2024.01.15");
    EXPECT_EQ(AsString("&D[3]"), "15");
    EXPECT_EQ(AsString("&D[1 + 1]"), "01");
    SetStringVar("&V", "a-b.c");
    EXPECT_EQ(AsString("&V[1]"), "a-b");
    EXPECT_EQ(AsString("&V[2]"), "c");
    // Empty fields are skipped.
    SetStringVar("&W", "a..b::c");
    EXPECT_EQ(AsString("&W[2]"), "b");
    EXPECT_EQ(AsString("&W[3]"), "c");
}

TEST_F(Evaluator, FieldFormOnNumbers) {
    EXPECT_EQ(AsString("12.5[2]"), "5");
    EXPECT_EQ(AsString("12.5[1]"), "12");
    EXPECT_EQ(AsString("70000[1]"), "4464");
}

TEST_F(Evaluator, FieldBeyondTheLastIsAString) {
    Const c = ctx.Eval("abc.def[5]");
    EXPECT_EQ(c.eType, VarString);
    EXPECT_EQ(ctx.p.uiStack, 0u);
}

TEST_F(Evaluator, FieldFormThenAnOperator) {
    SetStringVar("&D", "2024.01.15");
    EXPECT_EQ(AsDouble("&D[3] + 1"), 16.0);
}

TEST_F(Evaluator, RangeForm) {
    EXPECT_EQ(AsString("ABCDEF[2 4]"), "BCD");
    EXPECT_EQ(AsString("ABCDEF[1 1]"), "A");
    EXPECT_EQ(AsString("ABCDEF[5 10]"), "EF");
    EXPECT_EQ(AsString("ABCDEF[1 + 1 2 + 2]"), "BCD");
    EXPECT_EQ(AsString("abc.def[2 6]"), "bc.de");
}

TEST_F(Evaluator, RangeFormFirstAfterSecondPushesNothing) {
    EXPECT_REPORT_EXIT(ctx.Eval("ABCDEF[4 2]"), 0, kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Evaluator, RangeFormMustBeClosed) {
    EXPECT_REPORT_EXIT(ctx.Eval("ABCDEF[2 4 5]"), 255, kvtest::Report("Syntax error", "../src/expression", 1065));
}

TEST_F(Evaluator, RangeFormDoesNotStepOverACommaSeparator) {
    EXPECT_REPORT_EXIT(ctx.Eval("ABCDEF[2, 4]"), 255, kvtest::Report("Syntax error", "../src/expression", 963));
}

}  // namespace
