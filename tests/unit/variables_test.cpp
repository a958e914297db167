// The variable table: one table of named values, found without regard to case, created on
// first use and grown 128 records at a time.
#include <string>

#include "report_support.h"
#include "test_support.h"

namespace {

class Variables : public ::testing::Test {
protected:
    // Reads the first token of a line and converts it with GetValue.
    Const ValueOf(const char* line) {
        ctx.SetLine(line);
        GetNextToken(&ctx.p);
        Const c;
        GetValue(&ctx.p, &c);
        return c;
    }

    static std::string Name(int i) { return "&v" + std::to_string(i); }

    kvtest::Context ctx;
};

// ---- The table at start --------------------------------------------------------------------

TEST_F(Variables, RetcodeIsTheFirstRecord) {
    EXPECT_EQ(uiVars, 1u);
    EXPECT_EQ(uiMaxVars, 128u);
    Variable* v = VarAt(0);
    EXPECT_EQ(v->sName, "&retcode");
    EXPECT_EQ(v->value.eType, VarInteger);
    EXPECT_EQ(v->value.iValue, 0);
}

// ---- Lookup --------------------------------------------------------------------------------

TEST_F(Variables, LookupIgnoresCase) {
    Variable* v = FindVar("&retcode");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(FindVar("&RETCODE"), v);
    EXPECT_EQ(FindVar("&RetCode"), v);
}

TEST_F(Variables, OneVariableWhateverTheCase) {
    SetIntegerVar("&Total", 5);
    SetIntegerVar("&TOTAL", 6);
    EXPECT_EQ(uiVars, 2u);
    Variable* v = FindVar("&total");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->value.iValue, 6);
    EXPECT_EQ(v->sName, "&Total");  // the name as first written
}

TEST_F(Variables, FindVarNeverCreates) {
    EXPECT_EQ(FindVar("&missing"), nullptr);
    EXPECT_EQ(uiVars, 1u);
}

TEST_F(Variables, FindVarMatchesWholeNames) {
    SetIntegerVar("&abc", 1);
    EXPECT_EQ(FindVar("&ab"), nullptr);
    EXPECT_EQ(FindVar("&abcd"), nullptr);
    EXPECT_EQ(FindVar("abc"), nullptr);
}

TEST_F(Variables, AddVarCreatesANullRecord) {
    Variable* v = AddVar("&new");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->sName, "&new");
    EXPECT_EQ(v->value.eType, VarUndef);
    EXPECT_EQ(uiVars, 2u);
    EXPECT_EQ(VarAt(1), v);
}

TEST_F(Variables, AddVarReturnsAnExistingRecordUnchanged) {
    SetStringVar("&s", "keep");
    Variable* v = AddVar("&S");
    EXPECT_EQ(v->value.eType, VarString);
    EXPECT_EQ(v->value.sValue, "keep");
    EXPECT_EQ(uiVars, 2u);
}

TEST_F(Variables, GetVarFindsOrCreates) {
    Variable* v = GetVar("&x");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->value.eType, VarUndef);
    EXPECT_EQ(uiVars, 2u);
    EXPECT_EQ(GetVar("&X"), v);
    EXPECT_EQ(GetVar(CBString("&x")), v);
    EXPECT_EQ(uiVars, 2u);
}

TEST_F(Variables, GetVarUsesTheNameAsGiven) {
    SetStringVar("&b", "x");
    Variable* v = GetVar("&a&b");
    EXPECT_EQ(v->sName, "&a&b");
    EXPECT_EQ(FindVar("&ax"), nullptr);
    EXPECT_EQ(FindVar("&a&b"), v);
}

TEST_F(Variables, RecordsInOrderOfCreation) {
    AddVar("&a");
    SetIntegerVar("&b", 2);
    GetVar("&c");
    EXPECT_EQ(uiVars, 4u);
    EXPECT_EQ(VarAt(1)->sName, "&a");
    EXPECT_EQ(VarAt(2)->sName, "&b");
    EXPECT_EQ(VarAt(3)->sName, "&c");
}

// ---- Setting values ------------------------------------------------------------------------

TEST_F(Variables, SetIntegerVarKeepsLow16Bits) {
    SetIntegerVar("&i", 70000);
    EXPECT_EQ(FindVar("&i")->value.iValue, 4464);
    SetIntegerVar("&i", -1);
    EXPECT_EQ(FindVar("&i")->value.iValue, -1);
    SetIntegerVar("&i", 32768);
    EXPECT_EQ(FindVar("&i")->value.iValue, -32768);
    SetIntegerVar("&i", 65536);
    EXPECT_EQ(FindVar("&i")->value.iValue, 0);
    EXPECT_EQ(FindVar("&i")->value.eType, VarInteger);
}

TEST_F(Variables, SetDoubleVar) {
    SetDoubleVar("&d", 2.5);
    Variable* v = FindVar("&d");
    EXPECT_EQ(v->value.eType, VarFloat);
    EXPECT_EQ(v->value.dValue, 2.5);
}

TEST_F(Variables, SetStringVar) {
    SetStringVar("&s", "hello");
    Variable* v = FindVar("&s");
    EXPECT_EQ(v->value.eType, VarString);
    EXPECT_EQ(v->value.sValue, "hello");
}

TEST_F(Variables, NewTypeLeavesOldSlotsBehind) {
    SetStringVar("&s", "abc");
    SetIntegerVar("&s", 4);
    Variable* v = FindVar("&s");
    EXPECT_EQ(v->value.eType, VarInteger);
    EXPECT_EQ(v->value.iValue, 4);
    EXPECT_EQ(v->value.sValue, "abc");
    SetDoubleVar("&s", 1.5);
    EXPECT_EQ(v->value.eType, VarFloat);
    EXPECT_EQ(v->value.iValue, 4);
}

TEST_F(Variables, RetcodeCanBeSetUnderAnyCase) {
    SetIntegerVar("&RETCODE", 3);
    EXPECT_EQ(uiVars, 1u);
    EXPECT_EQ(VarAt(0)->value.iValue, 3);
}

// ---- Growth --------------------------------------------------------------------------------

TEST_F(Variables, TableFullAt128) {
    for (int i = 1; i < 128; ++i) SetIntegerVar(Name(i).c_str(), i);
    EXPECT_EQ(uiVars, 128u);
    EXPECT_EQ(uiMaxVars, 128u);
}

TEST_F(Variables, The129thVariableGrowsTheTable) {
    for (int i = 1; i < 128; ++i) SetIntegerVar(Name(i).c_str(), i);
    SetStringVar("&extra", "x");
    EXPECT_EQ(uiVars, 129u);
    EXPECT_EQ(uiMaxVars, 256u);
    EXPECT_EQ(VarAt(128)->sName, "&extra");
    EXPECT_EQ(VarAt(128)->value.sValue, "x");
    // Every earlier variable keeps its index and value.
    EXPECT_EQ(VarAt(0)->sName, "&retcode");
    for (int i = 1; i < 128; ++i) {
        EXPECT_EQ(VarAt(static_cast<uint32_t>(i))->sName, Name(i).c_str());
        EXPECT_EQ(VarAt(static_cast<uint32_t>(i))->value.iValue, i);
    }
}

TEST_F(Variables, GrowthKeepsEveryValue) {
    SetStringVar("&s", "text");
    SetDoubleVar("&d", 0.25);
    for (int i = 0; i < 500; ++i) SetIntegerVar(Name(i).c_str(), i * 3);
    EXPECT_EQ(uiVars, 503u);
    EXPECT_EQ(uiMaxVars, 512u);
    for (int i = 0; i < 500; ++i) {
        Variable* v = FindVar(Name(i).c_str());
        ASSERT_NE(v, nullptr) << i;
        EXPECT_EQ(v->value.iValue, i * 3) << i;
        EXPECT_EQ(VarAt(static_cast<uint32_t>(i + 3)), v) << i;
    }
    EXPECT_EQ(FindVar("&S")->value.sValue, "text");
    EXPECT_EQ(FindVar("&D")->value.dValue, 0.25);
    EXPECT_EQ(FindVar("&retcode")->value.iValue, 0);
}

TEST_F(Variables, RecordPointerStaysUsableAcrossGrowth) {
    SetStringVar("&keep", "still here");
    Variable* keep = FindVar("&keep");
    ASSERT_NE(keep, nullptr);
    for (int i = 0; i < 300; ++i) SetIntegerVar(Name(i).c_str(), i);
    EXPECT_EQ(uiVars, 302u);
    EXPECT_EQ(uiMaxVars, 384u);
    EXPECT_EQ(keep->sName, "&keep");
    EXPECT_EQ(keep->value.eType, VarString);
    EXPECT_EQ(keep->value.sValue, "still here");
    EXPECT_EQ(FindVar("&KEEP"), keep);
}

// ---- GetValue ------------------------------------------------------------------------------

TEST_F(Variables, GetValueOfNumbers) {
    Const i = ValueOf("12");
    EXPECT_EQ(i.eType, VarInteger);
    EXPECT_EQ(i.iValue, 12);
    EXPECT_EQ(ValueOf("70000").iValue, 4464);
    Const d = ValueOf("1.5");
    EXPECT_EQ(d.eType, VarFloat);
    EXPECT_EQ(d.dValue, 1.5);
    EXPECT_EQ(ValueOf(".25").dValue, 0.25);
}

TEST_F(Variables, GetValueOfStrings) {
    Const s = ValueOf("abc");
    EXPECT_EQ(s.eType, VarString);
    EXPECT_EQ(s.sValue, "abc");
    Const q = ValueOf("\"a\"\"b\"");
    EXPECT_EQ(q.eType, VarString);
    EXPECT_EQ(q.sValue, "a\\\"b");
}

TEST_F(Variables, GetValueOfAStringIsNotExpanded) {
    SetStringVar("&x", "no");
    EXPECT_EQ(ValueOf("\"a&x\"").sValue, "a&x");
}

TEST_F(Variables, GetValueOfAnUndefinedVariableIsEmptyAndCreatesIt) {
    Const c = ValueOf("&x");
    EXPECT_EQ(c.eType, VarString);
    EXPECT_EQ(c.sValue, "");
    Variable* v = FindVar("&x");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->value.eType, VarUndef);
}

TEST_F(Variables, GetValueCopiesEveryMemberOfAVariable) {
    SetStringVar("&x", "old");
    SetDoubleVar("&x", 2.5);
    SetIntegerVar("&x", 5);
    Const c = ValueOf("&X");
    EXPECT_EQ(c.eType, VarInteger);
    EXPECT_EQ(c.iValue, 5);
    EXPECT_EQ(c.dValue, 2.5);
    EXPECT_EQ(c.sValue, "old");
}

TEST_F(Variables, GetValueOfOtherTokensIsASyntaxError) {
    Const c;
    const std::string report = kvtest::Report("Syntax error", "../src/kvexec", 395);
    EXPECT_REPORT_EXIT((ctx.SetLine("("), GetNextToken(&ctx.p), GetValue(&ctx.p, &c)), 255, report);
    EXPECT_REPORT_EXIT((ctx.SetLine("+"), GetNextToken(&ctx.p), GetValue(&ctx.p, &c)), 255, report);
    EXPECT_REPORT_EXIT((ctx.SetLine(""), GetNextToken(&ctx.p), GetValue(&ctx.p, &c)), 255, report);
    EXPECT_REPORT_EXIT((ctx.SetLine("&LEN"), GetNextToken(&ctx.p), GetValue(&ctx.p, &c)), 255, report);
    EXPECT_REPORT_EXIT((ctx.SetLine("5."), GetNextToken(&ctx.p), GetValue(&ctx.p, &c)), 255, report);
}

// ---- Variables kept with kept tokens ------------------------------------------------------------

// The scanner on a line read again and again, its cuts and notes kept.
class KeptVariables : public Variables {
protected:
    void SetUp() override { KeepTokens(true); }
    void TearDown() override { KeepTokens(false); }

    // The variable the first token of line names, as an expression finds it.
    Variable* Named(const char* line) {
        ::SetLine(&ctx.p, line, true);
        GetNextToken(&ctx.p);
        return GetTokenVar(&ctx.p);
    }
};

TEST_F(KeptVariables, AKeptTokenFindsItsVariableAgain) {
    Variable* first = Named("&kept + 1");
    EXPECT_EQ(first, FindVar("&kept"));
    EXPECT_EQ(Named("&kept + 1"), first);
    EXPECT_NE(CurrentNote(&ctx.p), nullptr);  // the second time through what was kept
    EXPECT_EQ(Named("&KEPT + 1"), first);     // another text, the same variable
}

// A new table has new variables: what was kept with a token of the old one is not used.
TEST_F(KeptVariables, ANewTableIsNotAnsweredFromTheOldOne) {
    Variable* old = Named("&fresh");
    old->value.eType = VarInteger;
    old->value.iValue = 5;
    InitVariables();
    Variable* now = Named("&fresh");
    EXPECT_EQ(now, FindVar("&fresh"));
    EXPECT_EQ(now->value.eType, VarUndef);
}

// A name with a reference inside is a name as it stands, whatever the other variable holds.
TEST_F(KeptVariables, ANameHoldingAReferenceIsItsOwnName) {
    SetStringVar("&b", "&c");
    Variable* whole = Named("&&b");
    EXPECT_EQ(whole, FindVar("&&b"));
    EXPECT_EQ(FindVar("&c"), nullptr);
    SetStringVar("&b", "&d");
    EXPECT_EQ(Named("&&b"), whole);
}

// Numbers are converted once, and the same as without keeping.
TEST_F(KeptVariables, NumbersKeptWithTheirTokens) {
    for (int pass = 0; pass < 2; ++pass) {
        ::SetLine(&ctx.p, "12 2.5", true);
        GetNextToken(&ctx.p);
        EXPECT_EQ(CurrentIntegerValue(&ctx.p), 12);
        GetNextToken(&ctx.p);
        EXPECT_EQ(CurrentFloatValue(&ctx.p), 2.5);
    }
    // The token changed since it was cut: no note, converted as it now reads.
    ctx.p.sToken = "7.25";
    EXPECT_EQ(CurrentNote(&ctx.p), nullptr);
    EXPECT_EQ(CurrentFloatValue(&ctx.p), 7.25);
}

}  // namespace
