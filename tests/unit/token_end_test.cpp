// TokenEnd: the cut of one token, as GetNextToken makes it, for readers that keep no TokenScan.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tokenizer.h"

namespace {

// The text of the token that starts at the beginning of s.
std::string Cut(const char* s) { return std::string(s, static_cast<size_t>(TokenEnd(s) - s)); }

// Every token of a line as GetNextToken cuts it, ";" included.
std::vector<std::string> ScanTokens(const char* line) {
    TokenScan scan;
    SetLine(&scan, line, false);
    std::vector<std::string> out;
    for (;;) {
        const char* s = scan.pPos;
        while (*s == ' ' || *s == '\t') ++s;
        if (*s == '\0') return out;
        if (*s == ';') {
            out.emplace_back(";");
            return out;
        }
        GetNextToken(&scan);
        out.emplace_back(s, static_cast<size_t>(scan.pPos - s));
    }
}

// The same line cut with TokenEnd alone.
std::vector<std::string> CutTokens(const char* line) {
    std::vector<std::string> out;
    const char* s = line;
    for (;;) {
        while (*s == ' ' || *s == '\t') ++s;
        if (*s == '\0') return out;
        if (*s == ';') {
            out.emplace_back(";");
            return out;
        }
        const char* e = TokenEnd(s);
        out.emplace_back(s, static_cast<size_t>(e - s));
        s = e;
    }
}

}  // namespace

TEST(TokenEnd, ComparatorsTakeTheirSecondByte) {
    EXPECT_EQ(Cut("!=1"), "!=");
    EXPECT_EQ(Cut("!x"), "!");
    EXPECT_EQ(Cut(">=1"), ">=");
    EXPECT_EQ(Cut("<>1"), "<>");
    EXPECT_EQ(Cut("<=1"), "<=");
    EXPECT_EQ(Cut("<1"), "<");
    EXPECT_EQ(Cut("==1"), "==");
    EXPECT_EQ(Cut("=>1"), "=>");
    EXPECT_EQ(Cut("=<1"), "=<");
    EXPECT_EQ(Cut("= 1"), "=");
}

TEST(TokenEnd, QuotedStrings) {
    EXPECT_EQ(Cut("\"a b\" c"), "\"a b\"");
    EXPECT_EQ(Cut("\"a\"\"b\" c"), "\"a\"\"b\"");
    EXPECT_EQ(Cut("\"open to the end"), "\"open to the end");
}

TEST(TokenEnd, References) {
    EXPECT_EQ(Cut("&&x1 y"), "&&x1");
    EXPECT_EQ(Cut("& x"), "&");
    EXPECT_EQ(Cut("&TYPE&*"), "&TYPE");
}

TEST(TokenEnd, SingleBytes) {
    for (const char* s : {"+1", "-1", "*1", "/1", "(1", ")1", "|1", "^1", "%1", ",1", "[1", "]1", "\\1", "$x"})
        EXPECT_EQ(Cut(s), std::string(1, s[0])) << s;
}

TEST(TokenEnd, NumbersAndWords) {
    EXPECT_EQ(Cut("12ab"), "12");
    EXPECT_EQ(Cut("1.5.2"), "1.5");
    EXPECT_EQ(Cut("5.x"), "5.");
    EXPECT_EQ(Cut("/bin/ls -l"), "/");  // an operator first
    EXPECT_EQ(Cut("./tool -l"), "./tool");
    EXPECT_EQ(Cut("a:b&c.d_e+1"), "a:b&c.d_e");
    EXPECT_EQ(Cut(".5"), ".5");
}

TEST(TokenEnd, CutsAsGetNextTokenDoes) {
    const char* lines[] = {
        "&IF &a = 1 | &b <> \"x\"\"y\" &TYPE yes",
        "n = (&LEN &1 + 3) * -2 ; note",
        "&FOR &i = 1.5 , 32767",
        "x[1,2] => 5. 12ab &&&q",
        "weird !x ~y $z {a} 'q'",
    };
    for (const char* line : lines) EXPECT_EQ(CutTokens(line), ScanTokens(line)) << line;
}
