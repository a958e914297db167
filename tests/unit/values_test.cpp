// Typed values: the conversions, the operand stack and the comparison of two values.
#include <cmath>
#include <limits>

#include "report_support.h"
#include "test_support.h"

using kvtest::Dbl;
using kvtest::Int;
using kvtest::Str;

namespace {

Const Null() { return Const{}; }

// A double whose integer slot still holds an older value.
Const DblWithStaleInt(double d, int stale) {
    Const c = Dbl(d);
    c.iValue = Int16(stale);
    return c;
}

bool Compare(Const left, Const right, CompType c) { return ConstCompare(&left, &right, c); }

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// ---- A new value -------------------------------------------------------------------------

TEST(Values, NewValueIsNull) {
    Const c;
    EXPECT_EQ(c.eType, VarUndef);
    EXPECT_EQ(c.iValue, 0);
    EXPECT_EQ(c.dValue, 0.0);
    EXPECT_EQ(c.sValue, "");
}

TEST(Values, TypeTagValues) {
    EXPECT_EQ(VarUndef, 0);
    EXPECT_EQ(VarInteger, 1);
    EXPECT_EQ(VarFloat, 2);
    EXPECT_EQ(VarString, 3);
}

// ---- ToString ----------------------------------------------------------------------------

std::string AsString(Const c) {
    ToString(&c);
    EXPECT_EQ(c.eType, VarString);
    return c.sValue.str();
}

TEST(ToString, Integers) {
    EXPECT_EQ(AsString(Int(-5)), "-5");
    EXPECT_EQ(AsString(Int(0)), "0");
    EXPECT_EQ(AsString(Int(32767)), "32767");
    EXPECT_EQ(AsString(Int(-32768)), "-32768");
}

TEST(ToString, DoublesShowSixSignificantDigits) {
    EXPECT_EQ(AsString(Dbl(2.5)), "2.5");
    EXPECT_EQ(AsString(Dbl(3.0)), "3");
    EXPECT_EQ(AsString(Dbl(0.1)), "0.1");
    EXPECT_EQ(AsString(Dbl(1234567.0)), "1.23457e+06");
    EXPECT_EQ(AsString(Dbl(1e20)), "1e+20");
    EXPECT_EQ(AsString(Dbl(123456.0)), "123456");
    EXPECT_EQ(AsString(Dbl(-0.5)), "-0.5");
    EXPECT_EQ(AsString(Dbl(1.0 / 3.0)), "0.333333");
    EXPECT_EQ(AsString(Dbl(0.0001)), "0.0001");
    EXPECT_EQ(AsString(Dbl(0.00001)), "1e-05");
    EXPECT_EQ(AsString(Dbl(kInf)), "inf");
}

TEST(ToString, StringUnchanged) {
    EXPECT_EQ(AsString(Str("abc")), "abc");
    EXPECT_EQ(AsString(Str("")), "");
}

TEST(ToString, NullIsEmpty) { EXPECT_EQ(AsString(Null()), ""); }

TEST(ToString, OtherTagIsEmpty) {
    Const c = Str("kept?");
    c.eType = static_cast<XVarType>(9);
    ToString(&c);
    EXPECT_EQ(c.eType, VarString);
    EXPECT_EQ(c.sValue, "");
}

TEST(ToString, OtherSlotsKept) {
    Const c = Int(7);
    c.dValue = 4.5;
    ToString(&c);
    EXPECT_EQ(c.sValue, "7");
    EXPECT_EQ(c.iValue, 7);
    EXPECT_EQ(c.dValue, 4.5);
}

// ---- ToDouble ----------------------------------------------------------------------------

double AsDouble(Const c) {
    ToDouble(&c);
    EXPECT_EQ(c.eType, VarFloat);
    return c.dValue;
}

TEST(ToDouble, Strings) {
    EXPECT_EQ(AsDouble(Str("2.5")), 2.5);
    EXPECT_EQ(AsDouble(Str("  3.5x")), 3.5);
    EXPECT_EQ(AsDouble(Str("-12")), -12.0);
    EXPECT_EQ(AsDouble(Str("1e3")), 1000.0);
    EXPECT_EQ(AsDouble(Str("abc")), 0.0);
    EXPECT_EQ(AsDouble(Str("")), 0.0);
    EXPECT_EQ(AsDouble(Str("12abc")), 12.0);
}

TEST(ToDouble, Integers) {
    EXPECT_EQ(AsDouble(Int(-4)), -4.0);
    EXPECT_EQ(AsDouble(Int(32767)), 32767.0);
}

TEST(ToDouble, NullIsZero) { EXPECT_EQ(AsDouble(Null()), 0.0); }

TEST(ToDouble, DoubleUnchanged) {
    Const c = DblWithStaleInt(2.75, 9);
    ToDouble(&c);
    EXPECT_EQ(c.dValue, 2.75);
    EXPECT_EQ(c.iValue, 9);
}

TEST(ToDouble, OtherSlotsKept) {
    Const c = Str("1.5");
    c.iValue = 3;
    ToDouble(&c);
    EXPECT_EQ(c.dValue, 1.5);
    EXPECT_EQ(c.sValue, "1.5");
    EXPECT_EQ(c.iValue, 3);
}

// ---- ToInteger ---------------------------------------------------------------------------

int AsInteger(Const c) {
    ToInteger(&c);
    EXPECT_EQ(c.eType, VarInteger);
    return c.iValue;
}

TEST(ToInteger, StringsKeepLow16Bits) {
    EXPECT_EQ(AsInteger(Str("70000")), 4464);
    EXPECT_EQ(AsInteger(Str("32768")), -32768);
    EXPECT_EQ(AsInteger(Str("40000")), -25536);
    EXPECT_EQ(AsInteger(Str("65536")), 0);
    EXPECT_EQ(AsInteger(Str("-1")), -1);
    EXPECT_EQ(AsInteger(Str("99999999999")), -6145);  // 0x174876E7FF, low bits 0xE7FF
}

TEST(ToInteger, StringsReadAsBase10) {
    EXPECT_EQ(AsInteger(Str("abc")), 0);
    EXPECT_EQ(AsInteger(Str("")), 0);
    EXPECT_EQ(AsInteger(Str("  12x")), 12);
    EXPECT_EQ(AsInteger(Str("1.9")), 1);
    EXPECT_EQ(AsInteger(Str("010")), 10);
    EXPECT_EQ(AsInteger(Str("0x10")), 0);
}

TEST(ToInteger, DoublesTruncateTowardZero) {
    EXPECT_EQ(AsInteger(Dbl(-2.9)), -2);
    EXPECT_EQ(AsInteger(Dbl(2.9)), 2);
    EXPECT_EQ(AsInteger(Dbl(5.9)), 5);
    EXPECT_EQ(AsInteger(Dbl(70000.9)), 4464);
    EXPECT_EQ(AsInteger(Dbl(65537.0)), 1);
    EXPECT_EQ(AsInteger(Dbl(2147483647.0)), -1);  // 0x7FFFFFFF, low bits 0xFFFF
}

TEST(ToInteger, DoublesOutside32BitsGiveZero) {
    EXPECT_EQ(AsInteger(Dbl(2147483648.0)), 0);
    EXPECT_EQ(AsInteger(Dbl(-2147483649.0)), 0);
    EXPECT_EQ(AsInteger(Dbl(1e10)), 0);
    EXPECT_EQ(AsInteger(Dbl(-1e10)), 0);
    EXPECT_EQ(AsInteger(Dbl(1e20)), 0);
    EXPECT_EQ(AsInteger(Dbl(kInf)), 0);
    EXPECT_EQ(AsInteger(Dbl(-kInf)), 0);
}

TEST(ToInteger, NullIsZero) { EXPECT_EQ(AsInteger(Null()), 0); }

TEST(ToInteger, IntegerUnchanged) {
    Const c = Int(-77);
    c.dValue = 8.5;
    ToInteger(&c);
    EXPECT_EQ(c.iValue, -77);
    EXPECT_EQ(c.dValue, 8.5);
}

TEST(ToInteger, OtherSlotsKept) {
    Const c = Dbl(6.5);
    c.sValue = "old";
    ToInteger(&c);
    EXPECT_EQ(c.iValue, 6);
    EXPECT_EQ(c.dValue, 6.5);
    EXPECT_EQ(c.sValue, "old");
}

// ---- Operand stack -----------------------------------------------------------------------

class OperandStack : public ::testing::Test {
protected:
    Const PopOne() {
        Const c;
        Pop(&ctx.p, &c);
        return c;
    }
    kvtest::Context ctx;
};

TEST_F(OperandStack, StartsEmpty) {
    EXPECT_EQ(ctx.p.uiStack, 0u);
    EXPECT_EQ(kStackSize, 32u);
}

TEST_F(OperandStack, FreshEntriesAreNull) {
    for (unsigned i = 0; i < kStackSize; ++i) {
        EXPECT_EQ(ctx.p.pStack[i].iReserved, 0);
        EXPECT_EQ(ctx.p.pStack[i].value.eType, VarUndef);
        EXPECT_EQ(ctx.p.pStack[i].value.sValue, "");
    }
}

TEST_F(OperandStack, PushAndPopEachKind) {
    PushInteger(&ctx.p, 12);
    PushDouble(&ctx.p, 2.5);
    PushString(&ctx.p, "abc");
    PushNull(&ctx.p);
    EXPECT_EQ(ctx.p.uiStack, 4u);
    EXPECT_EQ(PopOne().eType, VarUndef);
    Const s = PopOne();
    EXPECT_EQ(s.eType, VarString);
    EXPECT_EQ(s.sValue, "abc");
    Const d = PopOne();
    EXPECT_EQ(d.eType, VarFloat);
    EXPECT_EQ(d.dValue, 2.5);
    Const i = PopOne();
    EXPECT_EQ(i.eType, VarInteger);
    EXPECT_EQ(i.iValue, 12);
    EXPECT_EQ(ctx.p.uiStack, 0u);
}

TEST_F(OperandStack, PushIntegerKeepsLow16Bits) {
    PushInteger(&ctx.p, 70000);
    PushInteger(&ctx.p, 32768);
    PushInteger(&ctx.p, -1);
    EXPECT_EQ(PopOne().iValue, -1);
    EXPECT_EQ(PopOne().iValue, -32768);
    EXPECT_EQ(PopOne().iValue, 4464);
}

TEST_F(OperandStack, PushStringCopiesTheText) {
    char text[] = "abc";
    PushString(&ctx.p, text);
    text[0] = 'X';
    EXPECT_EQ(PopOne().sValue, "abc");
}

TEST_F(OperandStack, PushOfAValueDispatchesOnItsType) {
    Const values[] = {Int(5), Dbl(1.25), Str("xy"), Null()};
    for (Const& v : values) Push(&ctx.p, &v);
    EXPECT_EQ(ctx.p.uiStack, 4u);
    EXPECT_EQ(PopOne().eType, VarUndef);
    EXPECT_EQ(PopOne().sValue, "xy");
    EXPECT_EQ(PopOne().dValue, 1.25);
    EXPECT_EQ(PopOne().iValue, 5);
}

TEST_F(OperandStack, PushOfAnOtherTagPushesNull) {
    Const c = Int(5);
    c.eType = static_cast<XVarType>(9);
    Push(&ctx.p, &c);
    EXPECT_EQ(PopOne().eType, VarUndef);
}

TEST_F(OperandStack, PushCopiesOnlyTheSlotOfTheType) {
    Const c = Int(3);
    c.dValue = 9.5;
    c.sValue = "zz";
    Push(&ctx.p, &c);
    Const out = PopOne();
    EXPECT_EQ(out.eType, VarInteger);
    EXPECT_EQ(out.iValue, 3);
    EXPECT_EQ(out.dValue, 0.0);
    EXPECT_EQ(out.sValue, "");
}

TEST_F(OperandStack, PopCopiesAllSlotsIncludingStaleOnes) {
    PushDouble(&ctx.p, 2.5);
    PopOne();
    PushString(&ctx.p, "old");
    PopOne();
    PushInteger(&ctx.p, 7);
    Const out = PopOne();
    EXPECT_EQ(out.eType, VarInteger);
    EXPECT_EQ(out.iValue, 7);
    EXPECT_EQ(out.dValue, 2.5);
    EXPECT_EQ(out.sValue, "old");
}

TEST_F(OperandStack, NullPushSetsOnlyTheType) {
    PushInteger(&ctx.p, 5);
    PopOne();
    PushNull(&ctx.p);
    Const out = PopOne();
    EXPECT_EQ(out.eType, VarUndef);
    EXPECT_EQ(out.iValue, 5);
}

TEST_F(OperandStack, PopOverwritesTheWholeRecord) {
    PushInteger(&ctx.p, 1);
    Const out = Str("mine");
    out.dValue = 4.0;
    Pop(&ctx.p, &out);
    EXPECT_EQ(out.eType, VarInteger);
    EXPECT_EQ(out.iValue, 1);
    EXPECT_EQ(out.dValue, 0.0);
    EXPECT_EQ(out.sValue, "");
}

TEST_F(OperandStack, ThirtyTwoValuesFit) {
    for (int i = 0; i < 32; ++i) PushInteger(&ctx.p, i);
    EXPECT_EQ(ctx.p.uiStack, 32u);
    for (int i = 31; i >= 0; --i) EXPECT_EQ(PopOne().iValue, i);
    EXPECT_EQ(ctx.p.uiStack, 0u);
}

// A stack overflow or underflow exits with 256, which a parent sees as 0.
void FillStack(Parser* p) {
    for (int i = 0; i < 32; ++i) PushInteger(p, i);
}

TEST_F(OperandStack, OverflowOnIntegerPush) {
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), PushInteger(&ctx.p, 1)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 107));
}

TEST_F(OperandStack, OverflowOnDoublePush) {
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), PushDouble(&ctx.p, 1.5)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 120));
}

TEST_F(OperandStack, OverflowOnStringPush) {
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), PushString(&ctx.p, "x")), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 133));
}

TEST_F(OperandStack, OverflowOnNullPush) {
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), PushNull(&ctx.p)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 145));
}

TEST_F(OperandStack, OverflowOnPushOfAValueNamesItsKind) {
    Const i = Int(1), d = Dbl(1.0), s = Str("s"), n = Null();
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), Push(&ctx.p, &i)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 107));
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), Push(&ctx.p, &d)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 120));
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), Push(&ctx.p, &s)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 133));
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), Push(&ctx.p, &n)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 145));
}

TEST_F(OperandStack, OverflowReportNamesTheScriptLine) {
    ctx.script.iLine = 12;
    EXPECT_REPORT_EXIT((FillStack(&ctx.p), PushInteger(&ctx.p, 1)), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 107, 12));
}

TEST_F(OperandStack, UnderflowOnEmptyPop) {
    Const c;
    EXPECT_REPORT_EXIT(Pop(&ctx.p, &c), 0, kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(OperandStack, UnderflowAfterPoppingEverything) {
    Const c;
    EXPECT_REPORT_EXIT((PushInteger(&ctx.p, 1), Pop(&ctx.p, &c), Pop(&ctx.p, &c)), 0,
                       kvtest::Report("CStack underflow", "../src/expression", 173));
}

// ---- ConstCompare ------------------------------------------------------------------------

TEST(ConstCompare, TwoNullsAreZeroAndZero) {
    EXPECT_TRUE(Compare(Null(), Null(), CompEqual));
    EXPECT_FALSE(Compare(Null(), Null(), CompNotEqual));
    EXPECT_FALSE(Compare(Null(), Null(), CompLess));
    EXPECT_TRUE(Compare(Null(), Null(), CompLessEqual));
    Const l, r;
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarInteger);
    EXPECT_EQ(l.iValue, 0);
    EXPECT_EQ(r.eType, VarInteger);
    EXPECT_EQ(r.iValue, 0);
}

// Rule 1: a string against an integer is read as an integer.
TEST(ConstCompare, StringAgainstInteger) {
    EXPECT_TRUE(Compare(Str("10"), Int(9), CompGreater));
    EXPECT_TRUE(Compare(Str("1.5"), Int(1), CompEqual));
    EXPECT_TRUE(Compare(Str("70000"), Int(4464), CompEqual));
    EXPECT_TRUE(Compare(Str("abc"), Int(0), CompEqual));
    Const l = Str("42"), r = Int(1);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarInteger);
    EXPECT_EQ(l.iValue, 42);
}

// Rule 2: a string against a double is read as a double.
TEST(ConstCompare, StringAgainstDouble) {
    EXPECT_TRUE(Compare(Str("2.5"), Dbl(2.5), CompEqual));
    EXPECT_TRUE(Compare(Str("1e1"), Dbl(10.0), CompEqual));
    EXPECT_TRUE(Compare(Str("1.5"), Dbl(1.75), CompLess));
    Const l = Str("0.25"), r = Dbl(1.0);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarFloat);
    EXPECT_EQ(l.dValue, 0.25);
}

// Rule 3: an integer against a double becomes a double.
TEST(ConstCompare, IntegerAgainstDouble) {
    EXPECT_TRUE(Compare(Int(2), Dbl(2.0), CompEqual));
    EXPECT_TRUE(Compare(Int(2), Dbl(2.5), CompLess));
    EXPECT_FALSE(Compare(Int(2), Dbl(2.5), CompEqual));
    Const l = Int(-3), r = Dbl(0.0);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarFloat);
    EXPECT_EQ(l.dValue, -3.0);
}

// Rule 4: an integer against a string reads the string as an integer.
TEST(ConstCompare, IntegerAgainstString) {
    EXPECT_TRUE(Compare(Int(9), Str("10"), CompLess));
    EXPECT_TRUE(Compare(Int(5), Str("abc"), CompGreater));
    EXPECT_TRUE(Compare(Int(1), Str("1.9"), CompEqual));
    Const l = Int(1), r = Str("7");
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(r.eType, VarInteger);
    EXPECT_EQ(r.iValue, 7);
}

// Rule 5: a double against a string reads the string as a double.
TEST(ConstCompare, DoubleAgainstString) {
    EXPECT_TRUE(Compare(Dbl(2.5), Str("2.5"), CompEqual));
    EXPECT_TRUE(Compare(Dbl(1.5), Str("1.25"), CompGreater));
    Const l = Dbl(1.0), r = Str("3.5");
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(r.eType, VarFloat);
    EXPECT_EQ(r.dValue, 3.5);
}

// Rule 6: a double against an integer makes the integer a double.
TEST(ConstCompare, DoubleAgainstInteger) {
    EXPECT_TRUE(Compare(Dbl(2.5), Int(2), CompGreater));
    EXPECT_TRUE(Compare(Dbl(3.0), Int(3), CompEqual));
    EXPECT_TRUE(Compare(Dbl(-0.5), Int(0), CompLess));
    Const l = Dbl(1.0), r = Int(4);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(r.eType, VarFloat);
    EXPECT_EQ(r.dValue, 4.0);
}

// Rule 7: null against a string is the empty string.
TEST(ConstCompare, NullAgainstString) {
    EXPECT_TRUE(Compare(Null(), Str(""), CompEqual));
    EXPECT_TRUE(Compare(Null(), Str("a"), CompLess));
    EXPECT_FALSE(Compare(Null(), Str("a"), CompEqual));
    Const l, r = Str("x");
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarString);
    EXPECT_EQ(l.sValue, "");
}

// Rule 8: a string against null compares with the empty string.
TEST(ConstCompare, StringAgainstNull) {
    EXPECT_TRUE(Compare(Str("a"), Null(), CompGreater));
    EXPECT_TRUE(Compare(Str(""), Null(), CompEqual));
    Const l = Str("x"), r;
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(r.eType, VarString);
    EXPECT_EQ(r.sValue, "");
}

// Rule 9: null against an integer is 0 against the integer's magnitude.
TEST(ConstCompare, NullAgainstInteger) {
    EXPECT_TRUE(Compare(Null(), Int(-3), CompLess));
    EXPECT_FALSE(Compare(Null(), Int(-3), CompGreater));
    EXPECT_TRUE(Compare(Null(), Int(3), CompLess));
    EXPECT_TRUE(Compare(Null(), Int(0), CompEqual));
    // The magnitude of -32768 is -32768 in 16 bits.
    EXPECT_TRUE(Compare(Null(), Int(-32768), CompGreater));
    Const l, r = Int(-3);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarInteger);
    EXPECT_EQ(l.iValue, 0);
    EXPECT_EQ(r.iValue, 3);
}

// Rule 10: an integer against null is its magnitude against 0.
TEST(ConstCompare, IntegerAgainstNull) {
    EXPECT_TRUE(Compare(Int(-3), Null(), CompGreater));
    EXPECT_TRUE(Compare(Int(3), Null(), CompGreater));
    EXPECT_TRUE(Compare(Int(0), Null(), CompEqual));
    EXPECT_TRUE(Compare(Int(-32768), Null(), CompLess));
    Const l = Int(-7), r;
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.iValue, 7);
    EXPECT_EQ(r.eType, VarInteger);
    EXPECT_EQ(r.iValue, 0);
}

// Rule 11: null against a double reads the double's integer slot, not its double.
TEST(ConstCompare, NullAgainstDoubleReadsTheIntegerSlot) {
    // The integer slot holds 0, so the double 5.0 compares as 0.0.
    EXPECT_TRUE(Compare(Null(), DblWithStaleInt(5.0, 0), CompEqual));
    EXPECT_FALSE(Compare(Null(), DblWithStaleInt(5.0, 0), CompLess));
    // The integer slot holds -7, so the double compares as 7.0, whatever it holds.
    EXPECT_TRUE(Compare(Null(), DblWithStaleInt(0.0, -7), CompLess));
    EXPECT_FALSE(Compare(Null(), DblWithStaleInt(0.0, -7), CompEqual));
    Const l, r = DblWithStaleInt(5.0, -7);
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarFloat);
    EXPECT_EQ(l.dValue, 0.0);
    EXPECT_EQ(r.eType, VarFloat);
    EXPECT_EQ(r.dValue, 7.0);
}

// Rule 12: a double against null reads the double's integer slot, not its double.
TEST(ConstCompare, DoubleAgainstNullReadsTheIntegerSlot) {
    EXPECT_TRUE(Compare(DblWithStaleInt(5.0, 0), Null(), CompEqual));
    EXPECT_TRUE(Compare(DblWithStaleInt(-5.0, -2), Null(), CompGreater));
    EXPECT_FALSE(Compare(DblWithStaleInt(-5.0, -2), Null(), CompLess));
    Const l = DblWithStaleInt(5.0, -2), r;
    ConstCompare(&l, &r, CompEqual);
    EXPECT_EQ(l.eType, VarFloat);
    EXPECT_EQ(l.dValue, 2.0);
    EXPECT_EQ(r.eType, VarFloat);
    EXPECT_EQ(r.dValue, 0.0);
}

TEST(ConstCompare, IntegersAreSigned) {
    EXPECT_TRUE(Compare(Int(-1), Int(1), CompLess));
    EXPECT_TRUE(Compare(Int(-32768), Int(32767), CompLess));
    EXPECT_TRUE(Compare(Int(3), Int(3), CompEqual));
}

TEST(ConstCompare, EachOperatorOnIntegers) {
    EXPECT_FALSE(Compare(Int(3), Int(5), CompEqual));
    EXPECT_TRUE(Compare(Int(3), Int(5), CompNotEqual));
    EXPECT_FALSE(Compare(Int(3), Int(5), CompGreater));
    EXPECT_TRUE(Compare(Int(3), Int(5), CompLess));
    EXPECT_FALSE(Compare(Int(3), Int(5), CompGreaterEqual));
    EXPECT_TRUE(Compare(Int(3), Int(5), CompLessEqual));
    EXPECT_TRUE(Compare(Int(5), Int(5), CompGreaterEqual));
    EXPECT_TRUE(Compare(Int(5), Int(5), CompLessEqual));
    EXPECT_FALSE(Compare(Int(5), Int(5), CompNotEqual));
}

TEST(ConstCompare, EachOperatorOnDoubles) {
    EXPECT_TRUE(Compare(Dbl(1.5), Dbl(1.5), CompEqual));
    EXPECT_TRUE(Compare(Dbl(1.5), Dbl(2.5), CompNotEqual));
    EXPECT_TRUE(Compare(Dbl(2.5), Dbl(1.5), CompGreater));
    EXPECT_TRUE(Compare(Dbl(1.5), Dbl(2.5), CompLess));
    EXPECT_TRUE(Compare(Dbl(2.5), Dbl(2.5), CompGreaterEqual));
    EXPECT_FALSE(Compare(Dbl(2.5), Dbl(3.5), CompGreaterEqual));
    EXPECT_TRUE(Compare(Dbl(2.5), Dbl(2.5), CompLessEqual));
}

TEST(ConstCompare, StringsCompareBytesCaseSensitively) {
    EXPECT_FALSE(Compare(Str("ABC"), Str("abc"), CompEqual));
    EXPECT_TRUE(Compare(Str("ABC"), Str("abc"), CompNotEqual));
    EXPECT_TRUE(Compare(Str("ABC"), Str("abc"), CompLess));
    EXPECT_FALSE(Compare(Str("10"), Str("9"), CompGreater));
    EXPECT_TRUE(Compare(Str("10"), Str("9"), CompLess));
    EXPECT_TRUE(Compare(Str("abc"), Str("abd"), CompLess));
    EXPECT_TRUE(Compare(Str("b"), Str("a"), CompGreaterEqual));
    EXPECT_TRUE(Compare(Str("a"), Str("a"), CompLessEqual));
    EXPECT_TRUE(Compare(Str("ab"), Str("a"), CompGreater));
}

TEST(ConstCompare, NaNEqualsNothing) {
    EXPECT_FALSE(Compare(Dbl(kNaN), Dbl(kNaN), CompEqual));
    EXPECT_TRUE(Compare(Dbl(kNaN), Dbl(kNaN), CompNotEqual));
    EXPECT_FALSE(Compare(Dbl(kNaN), Dbl(1.0), CompEqual));
    EXPECT_TRUE(Compare(Dbl(kNaN), Dbl(1.0), CompNotEqual));
    EXPECT_TRUE(Compare(Dbl(1.0), Dbl(kNaN), CompNotEqual));
}

TEST(ConstCompare, NaNIsNeitherLessNorGreater) {
    for (CompType c : {CompGreater, CompLess, CompGreaterEqual, CompLessEqual}) {
        EXPECT_FALSE(Compare(Dbl(kNaN), Dbl(1.0), c)) << c;
        EXPECT_FALSE(Compare(Dbl(1.0), Dbl(kNaN), c)) << c;
        EXPECT_FALSE(Compare(Dbl(kNaN), Dbl(kNaN), c)) << c;
    }
    EXPECT_FALSE(Compare(Int(1), Dbl(kNaN), CompEqual));
    EXPECT_TRUE(Compare(Int(1), Dbl(kNaN), CompNotEqual));
}

TEST(ConstCompare, Infinities) {
    EXPECT_TRUE(Compare(Dbl(kInf), Dbl(kInf), CompEqual));
    EXPECT_TRUE(Compare(Dbl(-kInf), Int(-32768), CompLess));
}

TEST(ConstCompare, OperatorOutsideOneToSixIsFalse) {
    EXPECT_FALSE(Compare(Int(1), Int(1), CompNone));
    EXPECT_FALSE(Compare(Int(1), Int(1), static_cast<CompType>(7)));
    EXPECT_FALSE(Compare(Int(1), Int(2), static_cast<CompType>(7)));
    EXPECT_FALSE(Compare(Str("a"), Str("a"), static_cast<CompType>(-1)));
    EXPECT_FALSE(Compare(Dbl(1.0), Dbl(2.0), CompNone));
}

TEST(ConstCompare, OtherTagsAreNeverEqual) {
    Const a = Int(1), b = Int(1);
    a.eType = b.eType = static_cast<XVarType>(9);
    EXPECT_FALSE(ConstCompare(&a, &b, CompEqual));
    a.eType = b.eType = static_cast<XVarType>(9);
    EXPECT_FALSE(ConstCompare(&a, &b, CompNotEqual));
}

TEST(ConstCompare, CompTypeValues) {
    EXPECT_EQ(CompEqual, 1);
    EXPECT_EQ(CompNotEqual, 2);
    EXPECT_EQ(CompGreater, 3);
    EXPECT_EQ(CompLess, 4);
    EXPECT_EQ(CompGreaterEqual, 5);
    EXPECT_EQ(CompLessEqual, 6);
}

}  // namespace
