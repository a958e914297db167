#include "cbstring.h"

#include <gtest/gtest.h>

TEST(CBString, CharacterOutOfBoundsThrows) {
    CBString s("ab");
    EXPECT_EQ(s.character(1), 'b');
    try {
        s.character(2);
        FAIL() << "no exception";
    } catch (const CBStringException& e) {
        EXPECT_STREQ(e.what(), "CBString::character index out of bounds");
    }
    EXPECT_THROW(CBString().character(0), CBStringException);
    EXPECT_THROW(s.character(-1), CBStringException);
}

TEST(CBString, AssigningANullTextEmpties) {
    CBString s("abc");
    const char* none = nullptr;
    s = none;
    EXPECT_TRUE(s.empty());
    EXPECT_EQ(s, "");
}

TEST(CBString, ReverseFindFromMinusOneFindsNothing) {
    CBString s("&a&b");
    EXPECT_EQ(s.reversefindchr('&', -1), -1);
    EXPECT_EQ(s.reversefindchr('&', 3), 2);
    EXPECT_EQ(s.reversefindchr('&', 1), 0);
    EXPECT_EQ(s.reversefindchr('&', 100), 2);
}

TEST(CBString, MidstrClipsToTheString) {
    CBString s("ABCDEF");
    EXPECT_EQ(s.midstr(1, 3), "BCD");
    EXPECT_EQ(s.midstr(4, 10), "EF");
    EXPECT_EQ(s.midstr(6, 1), "");
    EXPECT_EQ(s.midstr(2, 0), "");
    EXPECT_EQ(s.midstr(-2, 3), "A");
}

TEST(CBString, FormatAndFormata) {
    CBString s;
    s.format("%d-%s", 12, "x");
    EXPECT_EQ(s, "12-x");
    s.formata("%.14g", 0.1);
    EXPECT_EQ(s, "12-x0.1");
    CBString big;
    big.format("%0300d", 7);
    EXPECT_EQ(big.length(), 300);
}

TEST(CBString, TrimUpperInsertFind) {
    CBString s("  a b \t");
    s.ltrim();
    s.rtrim();
    EXPECT_EQ(s, "a b");
    s.toupper();
    EXPECT_EQ(s, "A B");
    s.insertchrs(1, 2, '-');
    EXPECT_EQ(s, "A-- B");
    EXPECT_EQ(s.find("B"), 4);
    EXPECT_EQ(s.find('Z'), -1);
    s.trunc(2);
    EXPECT_EQ(s, "A-");
    s.clear();
    EXPECT_TRUE(s.empty());
}

TEST(CBString, ComparesBytesCaseSensitively) {
    EXPECT_FALSE(CBString("ABC") == CBString("abc"));
    EXPECT_TRUE(CBString("10") < CBString("9"));
    EXPECT_TRUE(CBString("\xe9") > CBString("z"));
    EXPECT_TRUE(CBString("a") + "b" == CBString("ab"));
    EXPECT_EQ(CBString('x'), "x");
}
