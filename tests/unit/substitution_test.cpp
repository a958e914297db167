// Variable substitution: references replaced by values from right to left, indirect "&&name"
// references, and the line expansion that stops at an unquoted ";" and expands "&*".
#include <string>

#include "test_support.h"

namespace {

class Substitution : public ::testing::Test {
protected:
    void SetUp() override { iSavedArgs = iArgs; }
    void TearDown() override { iArgs = iSavedArgs; }

    std::string Value(const char* reference) { return GetVarValue(reference).str(); }
    std::string Expanded(const char* text) { return Expand(text).str(); }

    // Positional arguments as start-up makes them: &0 the script, then the arguments.
    void Arguments(std::initializer_list<const char*> args) {
        SetStringVar("&0", "unit.kvx");
        int i = 1;
        for (const char* a : args) SetStringVar(("&" + std::to_string(i++)).c_str(), a);
        iArgs = i;
    }

    kvtest::Context ctx;
    int iSavedArgs = 0;
};

// ---- GetVarValue ---------------------------------------------------------------------------

TEST_F(Substitution, ValueOfEachType) {
    SetStringVar("&x", "abc");
    EXPECT_EQ(Value("&x"), "abc");
    SetIntegerVar("&x", 5);
    EXPECT_EQ(Value("&x"), "5");
    SetIntegerVar("&x", -32768);
    EXPECT_EQ(Value("&x"), "-32768");
    SetDoubleVar("&x", 0.1);
    EXPECT_EQ(Value("&x"), "0.1");
    SetDoubleVar("&x", 1e20);
    EXPECT_EQ(Value("&x"), "1e+20");
}

TEST_F(Substitution, DoublesShowFourteenSignificantDigits) {
    SetDoubleVar("&d", 1234567.0);
    EXPECT_EQ(Value("&d"), "1234567");
    SetDoubleVar("&d", 2.0 / 3.0);
    EXPECT_EQ(Value("&d"), "0.66666666666667");
    SetDoubleVar("&d", -0.5);
    EXPECT_EQ(Value("&d"), "-0.5");
    SetDoubleVar("&d", 3.0);
    EXPECT_EQ(Value("&d"), "3");
}

TEST_F(Substitution, NamesIgnoreCase) {
    SetStringVar("&Name", "v");
    EXPECT_EQ(Value("&NAME"), "v");
    EXPECT_EQ(Value("&name"), "v");
}

TEST_F(Substitution, TextBeforeTheReferenceIsKept) {
    SetStringVar("&x", "abc");
    EXPECT_EQ(Value("pre&x"), "preabc");
    EXPECT_EQ(Value("no reference"), "no reference");
    EXPECT_EQ(Value(""), "");
}

TEST_F(Substitution, TheReferenceRunsToTheEndOfTheText) {
    SetStringVar("&x", "abc");
    // The name looked up is "&x.txt", which does not exist.
    EXPECT_EQ(Value("&x.txt"), "");
    EXPECT_EQ(Value("&x1"), "");
}

TEST_F(Substitution, UndefinedVariableIsDropped) {
    EXPECT_EQ(Value("&x"), "");
    EXPECT_EQ(Value("&&x"), "");
    EXPECT_EQ(Value("ab&x"), "ab");
    // Looking up never creates a variable.
    EXPECT_EQ(FindVar("&x"), nullptr);
}

TEST_F(Substitution, IndirectReference) {
    SetStringVar("&x", "y");
    SetStringVar("&y", "z");
    EXPECT_EQ(Value("&&x"), "z");
}

TEST_F(Substitution, IndirectReferenceThroughANumber) {
    SetIntegerVar("&n", 2);
    SetStringVar("&2", "second");
    EXPECT_EQ(Value("&&n"), "second");
}

TEST_F(Substitution, TwoLevelsOfIndirection) {
    SetStringVar("&a", "b");
    SetStringVar("&b", "c");
    SetStringVar("&c", "end");
    EXPECT_EQ(Value("&&&a"), "end");
}

TEST_F(Substitution, NullVariableEmptiesTheWholeText) {
    AddVar("&n");
    EXPECT_EQ(Value("&n"), "");
    EXPECT_EQ(Value("abc&n"), "");
}

TEST_F(Substitution, IndirectReferenceToAnUndefinedName) {
    SetStringVar("&x", "value");
    // "&&x" becomes "&value", which names no variable.
    EXPECT_EQ(Value("&&x"), "");
    EXPECT_EQ(Value("ab&&x"), "ab");
}

TEST_F(Substitution, ValueContainingAnAmpersandIsNotScannedAgain) {
    SetStringVar("&v", "a&b");
    SetStringVar("&b", "no");
    EXPECT_EQ(Value("&v"), "a&b");
    EXPECT_EQ(Value("x&v"), "xa&b");
}

TEST_F(Substitution, SubstVarValueReplacesFromThePosition) {
    SetIntegerVar("&x", 5);
    EXPECT_EQ(SubstVarValue("ab&x", 2), "ab5");
    EXPECT_EQ(SubstVarValue("&x", 0), "5");
    EXPECT_EQ(SubstVarValue("ab&zz", 2), "ab");
    SetStringVar("&s", "S");
    EXPECT_EQ(SubstVarValue("&x&s", 2), "&xS");
    SetDoubleVar("&f", 0.1);
    EXPECT_EQ(SubstVarValue("f=&f", 2), "f=0.1");
}

TEST_F(Substitution, SubstVarValueOfANullVariable) {
    AddVar("&n");
    EXPECT_EQ(SubstVarValue("keep&n", 4), "");
}

TEST_F(Substitution, SubstVarValueOfAnOtherTypeLeavesTheText) {
    Variable* v = AddVar("&odd");
    v->value.eType = static_cast<XVarType>(7);
    EXPECT_EQ(SubstVarValue("x&odd", 1), "x&odd");
}

// ---- Expand --------------------------------------------------------------------------------

TEST_F(Substitution, ExpandReplacesReferences) {
    SetStringVar("&x", "abc");
    SetIntegerVar("&i", 5);
    SetDoubleVar("&d", 0.1);
    EXPECT_EQ(Expanded("copy &x /tmp"), "copy abc /tmp");
    EXPECT_EQ(Expanded("n=&i"), "n=5");
    EXPECT_EQ(Expanded("v=&d"), "v=0.1");
    EXPECT_EQ(Expanded("&x&i"), "abc5");
}

TEST_F(Substitution, ExpandEndsTheNameAtANonAlphanumeric) {
    SetStringVar("&x", "abc");
    EXPECT_EQ(Expanded("&x.txt"), "abc.txt");
    EXPECT_EQ(Expanded("/dir/&x/file"), "/dir/abc/file");
}

TEST_F(Substitution, ExpandWithoutReferences) {
    EXPECT_EQ(Expanded(""), "");
    EXPECT_EQ(Expanded("ls -l /tmp"), "ls -l /tmp");
    EXPECT_EQ(Expanded("100%"), "100%");
}

TEST_F(Substitution, ExpandUndefinedAndNullVariables) {
    AddVar("&n");
    EXPECT_EQ(Expanded("x &u y"), "x  y");
    // Only the reference itself is handed to substitution, so only it disappears.
    EXPECT_EQ(Expanded("x &n y"), "x  y");
}

TEST_F(Substitution, ExpandLoneAmpersand) { EXPECT_EQ(Expanded("a & b"), "a  b"); }

TEST_F(Substitution, ExpandIndirectReference) {
    SetStringVar("&x", "y");
    SetStringVar("&y", "z");
    EXPECT_EQ(Expanded("a&&x b"), "az b");
}

TEST_F(Substitution, ExpandStopsAtASemicolon) {
    EXPECT_EQ(Expanded("ls; rm x"), "ls");
    EXPECT_EQ(Expanded("ls ; rm x"), "ls ");
    EXPECT_EQ(Expanded(";everything"), "");
}

TEST_F(Substitution, ExpandKeepsASemicolonInQuotes) {
    EXPECT_EQ(Expanded("echo \"a;b\""), "echo \"a;b\"");
    EXPECT_EQ(Expanded("echo \"a;b\";c"), "echo \"a;b\"");
    EXPECT_EQ(Expanded("a \"b\" ; c"), "a \"b\" ");
    EXPECT_EQ(Expanded("\"a;b"), "\"a;b");
}

TEST_F(Substitution, ExpandReplacesReferencesInsideQuotes) {
    SetStringVar("&x", "abc");
    EXPECT_EQ(Expanded("echo \"&x;\""), "echo \"abc;\"");
}

TEST_F(Substitution, ExpandSemicolonFromAValueIsKept) {
    SetStringVar("&x", "a;b");
    EXPECT_EQ(Expanded("echo &x c"), "echo a;b c");
}

TEST_F(Substitution, ExpandAllArguments) {
    Arguments({"x", "y"});
    EXPECT_EQ(Expanded("run &*"), "run  x y");
    EXPECT_EQ(Expanded("a&*b"), "a x yb");
}

TEST_F(Substitution, ExpandAllArgumentsWithNone) {
    Arguments({});
    EXPECT_EQ(Expanded("run &*"), "run ");
}

TEST_F(Substitution, ExpandAllArgumentsFollowsTheCount) {
    Arguments({"x", "y", "z"});
    // The count decides, not which variables exist: with a count of 3 only &1 and &2 are used.
    iArgs = 3;
    EXPECT_EQ(Expanded("run &*"), "run  x y");
}

TEST_F(Substitution, ExpandArgumentReferences) {
    Arguments({"first", "second"});
    EXPECT_EQ(Expanded("&0 &1 &2"), "unit.kvx first second");
    EXPECT_EQ(Expanded("&3"), "");
}

}  // namespace
