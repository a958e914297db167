// Text helpers of the runtime and the pattern matcher behind screen-code names.
#include <cstring>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

TEST(KavroText, StripspaceRemovesTrailingWhiteSpace) {
    char text[] = "abc  \t\r\n";
    EXPECT_EQ(kavro::stripspace(text), text);
    EXPECT_STREQ(text, "abc");
}

TEST(KavroText, StripspaceKeepsLeadingAndInnerSpace) {
    char text[] = "  a b  ";
    kavro::stripspace(text);
    EXPECT_STREQ(text, "  a b");
}

TEST(KavroText, StripspaceOfBlanksOnlyAndEmpty) {
    char blanks[] = " \t \r\n";
    kavro::stripspace(blanks);
    EXPECT_STREQ(blanks, "");
    char empty[] = "";
    kavro::stripspace(empty);
    EXPECT_STREQ(empty, "");
    char none[] = "word";
    kavro::stripspace(none);
    EXPECT_STREQ(none, "word");
}

TEST(KavroText, StrendPointsAtTheTerminator) {
    const char* text = "hello";
    EXPECT_EQ(kavro::strend(text), text + 5);
    EXPECT_EQ(*kavro::strend(text), '\0');
    const char* empty = "";
    EXPECT_EQ(kavro::strend(empty), empty);
}

TEST(KavroText, StruprConvertsInPlace) {
    char text[] = "abc Def-9z";
    EXPECT_EQ(kavro::strupr(text), text);
    EXPECT_STREQ(text, "ABC DEF-9Z");
    char empty[] = "";
    EXPECT_STREQ(kavro::strupr(empty), "");
}

TEST(KavroText, CharacterClasses) {
    EXPECT_TRUE(kavro::t_isalpha('a'));
    EXPECT_TRUE(kavro::t_isalpha('Z'));
    EXPECT_FALSE(kavro::t_isalpha('1'));
    EXPECT_TRUE(kavro::t_isalnum('1'));
    EXPECT_TRUE(kavro::t_isalnum('q'));
    EXPECT_FALSE(kavro::t_isalnum('-'));
    EXPECT_TRUE(kavro::t_isupper('Q'));
    EXPECT_FALSE(kavro::t_isupper('q'));
    EXPECT_TRUE(kavro::t_islower('q'));
    EXPECT_FALSE(kavro::t_islower('Q'));
    EXPECT_EQ(kavro::t_toupper('a'), 'A');
    EXPECT_EQ(kavro::t_toupper('A'), 'A');
    EXPECT_EQ(kavro::t_toupper('5'), '5');
    EXPECT_EQ(kavro::t_tolower('Q'), 'q');
    EXPECT_EQ(kavro::t_tolower('q'), 'q');
}

// ---- patterns of screen-code names ---------------------------------------------------------

struct Forms {
    const char* pszPattern;
    std::vector<const char*> names;
};

void ExpectAll(const Forms& f) {
    for (const char* name : f.names) EXPECT_TRUE(kavro::strmatch(name, f.pszPattern)) << name << " ~ " << f.pszPattern;
}

TEST(KavroText, StrmatchFixedPartAndSpelledOutForms) {
    const Forms all[] = {
        {"BEL*?", {"BEL", "BELL"}},
        {"C*?", {"C", "CL", "CLS", "CLR", "CLEAR"}},
        {"D*?", {"D", "DN", "DOWN"}},
        {"H*?", {"H", "HM", "HOME"}},
        {"L*?", {"L", "LF", "LFT", "LEFT"}},
        {"R*?", {"R", "RT", "RGT", "RIGHT"}},
        {"U*?", {"U", "UP"}},
        {"HOR*?", {"HOR", "HORIZ", "HORIZONTAL"}},
        {"DHOR*?", {"DHOR", "DHORIZ", "DHORIZONTAL"}},
        {"VER*?", {"VER", "VERT", "VERTICAL"}},
        {"DVER*.", {"DVER.", "DVERT.", "DVERTICAL."}},
    };
    for (const Forms& f : all) ExpectAll(f);
}

TEST(KavroText, StrmatchOffForms) {
    const Forms all[] = {
        {"BOF*?", {"BOF", "BOFF"}},    {"FOF*?", {"FOF", "FOFF"}},    {"GOF*?", {"GOF", "GOFF"}},
        {"HOF*?", {"HOF", "HOFF"}},    {"KOF*?", {"KOF", "KOFF"}},    {"MOF*?", {"MOF", "MOFF"}},
        {"POF*?", {"POF", "POFF"}},    {"RVOF*?", {"RVOF", "RVOFF"}}, {"SOF*?", {"SOF", "SOFF"}},
        {"ULOF*?", {"ULOF", "ULOFF"}},
    };
    for (const Forms& f : all) ExpectAll(f);
}

// A pattern not of the abbreviation form is a plain wildcard match, case ignored.
TEST(KavroText, StrmatchPlainWildcards) {
    struct Case {
        const char* text;
        const char* pattern;
        bool bMatches;
    };
    for (const Case& c :
         {Case{"abxyc", "AB*C", true}, Case{"ABC", "AB*C", true}, Case{"abxy", "AB*C", false}, Case{"A", "A*", true},
          Case{"Anything", "A*", true}, Case{"", "A*", false}, Case{"x.y", "*.*", true}, Case{"xy", "*.*", false}})
        EXPECT_EQ(kavro::strmatch(c.text, c.pattern), c.bMatches) << c.text << " " << c.pattern;
}

TEST(KavroText, StrmatchRejectsOtherNames) {
    EXPECT_FALSE(kavro::strmatch("CR", "C*?"));
    EXPECT_FALSE(kavro::strmatch("ULC", "U*?"));
    EXPECT_FALSE(kavro::strmatch("RI", "R*?"));
    EXPECT_FALSE(kavro::strmatch("HOR", "H*?"));
    EXPECT_FALSE(kavro::strmatch("DVER", "DVER*."));
    EXPECT_FALSE(kavro::strmatch("DVERT", "DVER*."));
    EXPECT_FALSE(kavro::strmatch("HOME", "HOF*?"));
    EXPECT_FALSE(kavro::strmatch("DL", "D*?"));
    EXPECT_FALSE(kavro::strmatch("DC", "D*?"));
    EXPECT_FALSE(kavro::strmatch("LI", "L*?"));
    EXPECT_FALSE(kavro::strmatch("UI", "U*?"));
    EXPECT_FALSE(kavro::strmatch("DDI", "D*?"));
    EXPECT_FALSE(kavro::strmatch("DHOR", "D*?"));
    EXPECT_FALSE(kavro::strmatch("BE", "BEL*?"));
    EXPECT_FALSE(kavro::strmatch("BON", "BOF*?"));
    EXPECT_FALSE(kavro::strmatch("RVON", "RVOF*?"));
    EXPECT_FALSE(kavro::strmatch("RVON", "R*?"));
    EXPECT_FALSE(kavro::strmatch("X", "C*?"));
}

}  // namespace
