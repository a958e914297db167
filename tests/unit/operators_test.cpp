// The operator routines: arithmetic in double precision, 16-bit bit operators and the remainder,
// and comparisons that push 1 or 0.
#include <cmath>
#include <csignal>

#include "report_support.h"
#include "test_support.h"

using kvtest::Dbl;
using kvtest::Int;
using kvtest::Str;

namespace {

class Operators : public ::testing::Test {
protected:
    // Pushes the left then the right operand, runs the routine and pops its one result.
    template <typename Routine, typename Op>
    Const Apply(Const left, Const right, Routine routine, Op op) {
        Push(&ctx.p, &left);
        Push(&ctx.p, &right);
        routine(&ctx.p, op);
        EXPECT_EQ(ctx.p.uiStack, 1u);
        Const out;
        Pop(&ctx.p, &out);
        return out;
    }

    double Arith(Const left, char op, Const right) {
        Const out = Apply(left, right, Operation, op);
        EXPECT_EQ(out.eType, VarFloat);
        return out.dValue;
    }

    int Bits(Const left, char op, Const right) {
        Const out = Apply(left, right, Logical, op);
        EXPECT_EQ(out.eType, VarInteger);
        return out.iValue;
    }

    int Cmp(Const left, CompType c, Const right) {
        Const out = Apply(left, right, Comparison, c);
        EXPECT_EQ(out.eType, VarInteger);
        return out.iValue;
    }

    kvtest::Context ctx;
};

// ---- Operation -----------------------------------------------------------------------------

TEST_F(Operators, ArithmeticIsInDoubles) {
    EXPECT_EQ(Arith(Int(7), '/', Int(2)), 3.5);
    EXPECT_EQ(Arith(Int(2), '+', Int(3)), 5.0);
    EXPECT_EQ(Arith(Int(6), '*', Int(7)), 42.0);
    EXPECT_EQ(Arith(Int(10), '-', Int(4)), 6.0);
    EXPECT_EQ(Arith(Int(4), '-', Int(10)), -6.0);
    EXPECT_EQ(Arith(Dbl(0.5), '+', Int(1)), 1.5);
}

TEST_F(Operators, NoIntegerOverflow) {
    EXPECT_EQ(Arith(Int(32767), '+', Int(1)), 32768.0);
    EXPECT_EQ(Arith(Int(300), '*', Int(300)), 90000.0);
}

TEST_F(Operators, ResultPrintsWithoutDecimals) {
    Const out = Apply(Int(6), Int(7), Operation, '*');
    ToString(&out);
    EXPECT_EQ(out.sValue, "42");
}

TEST_F(Operators, StringsAreReadAsNumbers) {
    EXPECT_EQ(Arith(Str("ab"), '+', Str("1")), 1.0);
    EXPECT_EQ(Arith(Str("12abc"), '+', Int(1)), 13.0);
    EXPECT_EQ(Arith(Str(" 2.5"), '*', Str("2")), 5.0);
}

TEST_F(Operators, NullIsZero) {
    EXPECT_EQ(Arith(Const{}, '-', Int(3)), -3.0);
    EXPECT_EQ(Arith(Int(3), '+', Const{}), 3.0);
}

TEST_F(Operators, DivisionByZeroFollowsIeee) {
    double inf = Arith(Int(1), '/', Int(0));
    EXPECT_TRUE(std::isinf(inf));
    EXPECT_GT(inf, 0.0);
    double negInf = Arith(Int(-1), '/', Int(0));
    EXPECT_TRUE(std::isinf(negInf));
    EXPECT_LT(negInf, 0.0);
    EXPECT_TRUE(std::isnan(Arith(Int(0), '/', Int(0))));
}

TEST_F(Operators, NaNComparesUnequalToEverything) {
    PushInteger(&ctx.p, 0);
    PushInteger(&ctx.p, 0);
    Operation(&ctx.p, '/');
    PushDouble(&ctx.p, 1.0);
    Comparison(&ctx.p, CompNotEqual);
    Const out;
    Pop(&ctx.p, &out);
    EXPECT_EQ(out.iValue, 1);
}

TEST_F(Operators, UnknownArithmeticOperatorGivesZero) {
    EXPECT_EQ(Arith(Int(5), '?', Int(3)), 0.0);
    EXPECT_EQ(Arith(Int(5), '%', Int(3)), 0.0);
}

// ---- Logical -------------------------------------------------------------------------------

TEST_F(Operators, BitOperators) {
    EXPECT_EQ(Bits(Int(32767), '|', Int(1)), 32767);
    EXPECT_EQ(Bits(Int(32767), '^', Int(-1)), -32768);
    EXPECT_EQ(Bits(Int(12), '|', Int(3)), 15);
    EXPECT_EQ(Bits(Int(12), '&', Int(10)), 8);
    EXPECT_EQ(Bits(Int(12), '^', Int(10)), 6);
    EXPECT_EQ(Bits(Int(2), '&', Int(1)), 0);
    EXPECT_EQ(Bits(Int(-1), '&', Int(255)), 255);
}

TEST_F(Operators, RemainderHasTheSignOfTheLeftOperand) {
    EXPECT_EQ(Bits(Int(7), '%', Int(3)), 1);
    EXPECT_EQ(Bits(Int(-7), '%', Int(3)), -1);
    EXPECT_EQ(Bits(Int(7), '%', Int(-3)), 1);
    EXPECT_EQ(Bits(Int(-7), '%', Int(-3)), -1);
    EXPECT_EQ(Bits(Int(6), '%', Int(3)), 0);
}

TEST_F(Operators, OperandsBecomeIntegers) {
    EXPECT_EQ(Bits(Dbl(5.9), '&', Int(3)), 1);
    EXPECT_EQ(Bits(Dbl(-5.9), '&', Int(-1)), -5);
    EXPECT_EQ(Bits(Str("12"), '|', Str("3")), 15);
    EXPECT_EQ(Bits(Str("7x"), '%', Int(4)), 3);
    EXPECT_EQ(Bits(Const{}, '|', Int(5)), 5);
    EXPECT_EQ(Bits(Dbl(70000.0), '&', Int(-1)), 4464);
    EXPECT_EQ(Bits(Dbl(1e10), '|', Int(0)), 0);
}

TEST_F(Operators, UnknownLogicalOperatorGivesZero) {
    EXPECT_EQ(Bits(Int(5), '+', Int(3)), 0);
    EXPECT_EQ(Bits(Int(5), '?', Int(3)), 0);
}

TEST_F(Operators, RemainderByZeroTraps) {
    EXPECT_EXIT(
        {
            PushInteger(&ctx.p, 7);
            PushInteger(&ctx.p, 0);
            Logical(&ctx.p, '%');
        },
        ::testing::KilledBySignal(SIGFPE), "");
}

TEST_F(Operators, RemainderByATextThatReadsAsZeroTraps) {
    EXPECT_EXIT(
        {
            PushInteger(&ctx.p, 7);
            PushString(&ctx.p, "abc");
            Logical(&ctx.p, '%');
        },
        ::testing::KilledBySignal(SIGFPE), "");
}

// ---- Comparison ----------------------------------------------------------------------------

TEST_F(Operators, ComparisonPushesOneOrZero) {
    EXPECT_EQ(Cmp(Int(2), CompEqual, Dbl(2.0)), 1);
    EXPECT_EQ(Cmp(Int(2), CompNotEqual, Dbl(2.0)), 0);
    EXPECT_EQ(Cmp(Int(3), CompLess, Int(5)), 1);
    EXPECT_EQ(Cmp(Int(3), CompGreater, Int(5)), 0);
    EXPECT_EQ(Cmp(Int(5), CompGreaterEqual, Int(5)), 1);
    EXPECT_EQ(Cmp(Int(6), CompLessEqual, Int(5)), 0);
    EXPECT_EQ(Cmp(Str("10"), CompGreater, Int(9)), 1);
    EXPECT_EQ(Cmp(Str("10"), CompGreater, Str("9")), 0);
}

TEST_F(Operators, ComparisonWithoutAValidOperatorPushesZero) {
    EXPECT_EQ(Cmp(Int(1), CompNone, Int(1)), 0);
    EXPECT_EQ(Cmp(Int(1), static_cast<CompType>(7), Int(1)), 0);
    EXPECT_EQ(Cmp(Str("a"), static_cast<CompType>(7), Str("a")), 0);
}

TEST_F(Operators, ComparisonsWorkAsBooleansForBitOperators) {
    // (1 = 1) & (2 = 2)
    EXPECT_EQ(Bits(Int(Cmp(Int(1), CompEqual, Int(1))), '&', Int(Cmp(Int(2), CompEqual, Int(2)))), 1);
    // (1 = 1) & (2 = 3)
    EXPECT_EQ(Bits(Int(Cmp(Int(1), CompEqual, Int(1))), '&', Int(Cmp(Int(2), CompEqual, Int(3)))), 0);
}

// ---- Operands and the stack ----------------------------------------------------------------

TEST_F(Operators, LeavesDeeperValuesAlone) {
    PushString(&ctx.p, "below");
    PushInteger(&ctx.p, 1);
    PushInteger(&ctx.p, 2);
    Operation(&ctx.p, '+');
    EXPECT_EQ(ctx.p.uiStack, 2u);
    Const top, below;
    Pop(&ctx.p, &top);
    Pop(&ctx.p, &below);
    EXPECT_EQ(top.dValue, 3.0);
    EXPECT_EQ(below.sValue, "below");
}

TEST_F(Operators, OperationUnderflowsWithOneValue) {
    EXPECT_REPORT_EXIT((PushInteger(&ctx.p, 1), Operation(&ctx.p, '+')), 0,
                       kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Operators, LogicalUnderflowsOnAnEmptyStack) {
    EXPECT_REPORT_EXIT(Logical(&ctx.p, '&'), 0, kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Operators, ComparisonUnderflowsWithOneValue) {
    EXPECT_REPORT_EXIT((PushInteger(&ctx.p, 1), Comparison(&ctx.p, CompEqual)), 0,
                       kvtest::Report("CStack underflow", "../src/expression", 173));
}

}  // namespace
