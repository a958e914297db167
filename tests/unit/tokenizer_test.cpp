// The tokenizer: how GetNextToken cuts a line into tokens and how GetTokenType classifies them.
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"

// Token kinds print by name in failure messages.
static void PrintTo(TokenType t, std::ostream* os) {
    if (t >= NotAToken && t <= TokenBadNumber)
        *os << aszTokenTypes[t];
    else
        *os << "TokenType(" << static_cast<int>(t) << ")";
}

namespace {

using TokenList = std::vector<std::pair<TokenType, std::string>>;

class Tokenizer : public ::testing::Test {
protected:
    // Reads the next token of the current line and returns its type.
    TokenType Next() {
        EXPECT_TRUE(GetNextToken(&ctx.p));
        return ctx.p.eTokenType;
    }

    // The text of the current token.
    std::string Text() const { return ctx.p.sToken.str(); }

    // The first token of a line.
    TokenType First(const char* line) {
        ctx.SetLine(line);
        return Next();
    }

    // Classifies a whole text as one token.
    TokenType Classify(const char* text, bool firstToken = false) {
        ctx.SetLine(text);
        ctx.p.sToken = text;
        ctx.p.bFirstToken = firstToken;
        return GetTokenType(&ctx.p);
    }

    // Every token of a line up to (not including) the end of line.
    TokenList Tokens(const char* line) {
        ctx.SetLine(line);
        TokenList out;
        for (int guard = 0; guard < 100; ++guard) {
            if (Next() == TokenEol) return out;
            out.emplace_back(ctx.p.eTokenType, Text());
        }
        ADD_FAILURE() << "no end of line in: " << line;
        return out;
    }

    // Offset of the scan position in the current line.
    long Offset() const { return static_cast<long>(ctx.p.pPos - ctx.p.LineText()); }

    kvtest::Context ctx;
};

TEST_F(Tokenizer, TypeNamesInOrder) {
    const char* expected[] = {
        "NotAToken",     "TokenStatement", "TokenFunction",   "TokenInteger",    "TokenFloat",
        "TokenString",   "TokenSemiColon", "TokenBeginGroup", "TokenEndGroup",   "TokenBeginIndex",
        "TokenEndIndex", "TokenEqual",     "TokenComma",      "TokenBackslash",  "TokenLabel",
        "TokenEol",      "TokenLogical",   "TokenOperator",   "TokenComparator", "TokenVar",
        "TokenUndef",    "TokenSpace",     "TokenCommand",    "TokenBadString",  "TokenBadNumber",
    };
    for (int i = 0; i <= TokenBadNumber; ++i) EXPECT_STREQ(aszTokenTypes[i], expected[i]) << i;
    EXPECT_EQ(TokenBadNumber, 24);
    EXPECT_EQ(TokenVar, 19);
    EXPECT_EQ(TokenEol, 15);
}

// ---- One token of each kind ----------------------------------------------------------------

TEST_F(Tokenizer, StatementKeywords) {
    const char* keywords[] = {"&BEGSTACK", "&BEGTYPE", "&BREAK", "&CALL",  "&CRT",   "&CONTINUE", "&CONTROL",
                              "&ELSEIF",   "&ELSE",    "&END",   "&ENDIF", "&ERROR", "&ESC",      "&FOR",
                              "&GOTO",     "&IF",      "&IFEND", "&LOOP",  "&MENU",  "&NEXT",     "&QUIT",
                              "&READ",     "&RETURN",  "&SHIFT", "&SKIP",  "&SLEEP", "&SPACE",    "&STACK",
                              "&TYPE",     "&UNTIL",   "&WAIT",  "&WEND",  "&WHILE"};
    for (const char* k : keywords) {
        EXPECT_EQ(First(k), TokenStatement) << k;
        EXPECT_EQ(Text(), k);
    }
}

TEST_F(Tokenizer, StatementKeywordsIgnoreCase) {
    EXPECT_EQ(First("&if"), TokenStatement);
    EXPECT_EQ(Text(), "&if");
    EXPECT_EQ(First("&EndIf"), TokenStatement);
    EXPECT_EQ(First("&gOtO label"), TokenStatement);
    EXPECT_EQ(Text(), "&gOtO");
}

TEST_F(Tokenizer, NoAbbreviatedStatements) {
    EXPECT_EQ(First("&GOT"), TokenVar);
    EXPECT_EQ(First("&IFX"), TokenVar);
}

TEST_F(Tokenizer, FunctionNames) {
    const char* names[] = {"&CAT", "&ENV", "&EXIST", "&FILESIZE", "&INDEX", "&LEN", "&LIT", "&SUB", "&TYP", "&SYSTEM"};
    for (const char* n : names) {
        EXPECT_EQ(First(n), TokenFunction) << n;
        EXPECT_EQ(Text(), n);
    }
    EXPECT_EQ(First("&len"), TokenFunction);
    EXPECT_EQ(First("&SyStEm"), TokenFunction);
}

TEST_F(Tokenizer, Numbers) {
    EXPECT_EQ(First("12"), TokenInteger);
    EXPECT_EQ(Text(), "12");
    EXPECT_EQ(First("0"), TokenInteger);
    EXPECT_EQ(First("007"), TokenInteger);
    EXPECT_EQ(First("70000"), TokenInteger);
    EXPECT_EQ(First("1.5"), TokenFloat);
    EXPECT_EQ(Text(), "1.5");
    EXPECT_EQ(First(".5"), TokenFloat);
    EXPECT_EQ(Text(), ".5");
    EXPECT_EQ(First("5."), TokenBadNumber);
    EXPECT_EQ(Text(), "5.");
    EXPECT_EQ(First("."), TokenBadNumber);
    EXPECT_EQ(Text(), ".");
}

TEST_F(Tokenizer, NumberFollowedByLetterIsCutThere) {
    EXPECT_EQ(Tokens("12ab"), (TokenList{{TokenInteger, "12"}, {TokenString, "ab"}}));
    EXPECT_EQ(Tokens("1.2.3"), (TokenList{{TokenFloat, "1.2"}, {TokenFloat, ".3"}}));
    EXPECT_EQ(Tokens("5.x"), (TokenList{{TokenBadNumber, "5."}, {TokenString, "x"}}));
    EXPECT_EQ(Tokens("1.5."), (TokenList{{TokenFloat, "1.5"}, {TokenBadNumber, "."}}));
}

TEST_F(Tokenizer, WholeTextsClassifiedAsNumbers) {
    EXPECT_EQ(Classify("12ab"), TokenBadString);
    EXPECT_EQ(Classify("1.5x"), TokenBadString);
    EXPECT_EQ(Classify("1.2.3"), TokenBadNumber);
    EXPECT_EQ(Classify("1..2"), TokenBadNumber);
    EXPECT_EQ(Classify("5."), TokenBadNumber);
    EXPECT_EQ(Classify("."), TokenBadNumber);
    EXPECT_EQ(Classify(".5"), TokenFloat);
    EXPECT_EQ(Classify(".a"), TokenBadString);
    EXPECT_EQ(Classify("123"), TokenInteger);
    EXPECT_EQ(Classify("3.25"), TokenFloat);
}

TEST_F(Tokenizer, BareWordsAreStrings) {
    EXPECT_EQ(First("abc"), TokenString);
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(First("ON"), TokenString);
    EXPECT_EQ(First("TRACE"), TokenString);
    EXPECT_EQ(First("_tmp"), TokenString);
    EXPECT_EQ(Text(), "_tmp");
    EXPECT_EQ(First("abc.def:ghi"), TokenString);
    EXPECT_EQ(Text(), "abc.def:ghi");
    EXPECT_EQ(First("a&b rest"), TokenString);
    EXPECT_EQ(Text(), "a&b");
    EXPECT_EQ(First("!"), TokenString);
    EXPECT_EQ(First("=>"), TokenString);
    EXPECT_EQ(Text(), "=>");
    EXPECT_EQ(First("=<"), TokenString);
    EXPECT_EQ(Text(), "=<");
}

TEST_F(Tokenizer, Punctuation) {
    EXPECT_EQ(First("("), TokenBeginGroup);
    EXPECT_EQ(First(")"), TokenEndGroup);
    EXPECT_EQ(First("["), TokenBeginIndex);
    EXPECT_EQ(First("]"), TokenEndIndex);
    EXPECT_EQ(First("="), TokenEqual);
    EXPECT_EQ(Text(), "=");
    EXPECT_EQ(First(","), TokenComma);
    EXPECT_EQ(First("\\"), TokenBackslash);
    EXPECT_EQ(Text(), "\\");
}

TEST_F(Tokenizer, Label) {
    ctx.SetLine("loop:");
    ctx.p.bFirstToken = true;
    EXPECT_EQ(Next(), TokenLabel);
    EXPECT_EQ(Text(), "loop:");
    // Only the first token of a line can be a label.
    ctx.p.bFirstToken = false;
    EXPECT_EQ(First("loop:"), TokenString);
    EXPECT_EQ(Classify("loop:", true), TokenLabel);
    EXPECT_EQ(Classify("loop:", false), TokenString);
    EXPECT_EQ(Classify("12:", true), TokenLabel);
}

TEST_F(Tokenizer, EndOfLine) {
    EXPECT_EQ(First(""), TokenEol);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(First("    "), TokenEol);
    EXPECT_EQ(Classify(""), TokenEol);
}

TEST_F(Tokenizer, Logicals) {
    for (const char* t : {"&", "|", "^", "%"}) {
        EXPECT_EQ(First(t), TokenLogical) << t;
        EXPECT_EQ(Text(), t);
    }
}

TEST_F(Tokenizer, Operators) {
    for (const char* t : {"+", "-", "*", "/"}) {
        EXPECT_EQ(First(t), TokenOperator) << t;
        EXPECT_EQ(Text(), t);
    }
}

TEST_F(Tokenizer, Comparators) {
    for (const char* t : {"==", "<>", "!=", ">", "<", ">=", "<="}) {
        EXPECT_EQ(First(t), TokenComparator) << t;
        EXPECT_EQ(Text(), t);
    }
    // A lone "=" has a kind of its own.
    EXPECT_EQ(First("="), TokenEqual);
}

TEST_F(Tokenizer, Variables) {
    EXPECT_EQ(First("&x"), TokenVar);
    EXPECT_EQ(Text(), "&x");
    EXPECT_EQ(First("&Total"), TokenVar);
    EXPECT_EQ(First("&1"), TokenVar);
    EXPECT_EQ(Text(), "&1");
    EXPECT_EQ(First("&&x"), TokenVar);
    EXPECT_EQ(Text(), "&&x");
    EXPECT_EQ(First("&retcode"), TokenVar);
}

TEST_F(Tokenizer, BadStrings) {
    EXPECT_EQ(First("\"abc"), TokenBadString);
    EXPECT_EQ(Text(), "\"abc");
    EXPECT_EQ(Classify("\"abc"), TokenBadString);
    EXPECT_EQ(Classify("12ab"), TokenBadString);
}

TEST_F(Tokenizer, KindsNeverProduced) {
    // Texts of every shape; none of them yields the kinds that only dispatch sets or nothing sets.
    const char* lines[] = {"&IF (1 + 2) * 3 = 9, \"a\" [1] \\ x: ; y", "abc 1.5 .5 5. . 12ab &x &LEN <> != >= <= == =>",
                           "% ^ | & + - / * ! # $ @ ~ ?"};
    for (const char* line : lines) {
        ctx.SetLine(line);
        for (int i = 0; i < 100; ++i) {
            TokenType t = Next();
            EXPECT_NE(t, NotAToken);
            EXPECT_NE(t, TokenSemiColon);
            EXPECT_NE(t, TokenUndef);
            EXPECT_NE(t, TokenSpace);
            EXPECT_NE(t, TokenCommand);
            if (t == TokenEol) break;
        }
    }
}

// ---- Cutting a line ------------------------------------------------------------------------

TEST_F(Tokenizer, CutsAnExpression) {
    EXPECT_EQ(Tokens("(1+2)*3"), (TokenList{{TokenBeginGroup, "("},
                                            {TokenInteger, "1"},
                                            {TokenOperator, "+"},
                                            {TokenInteger, "2"},
                                            {TokenEndGroup, ")"},
                                            {TokenOperator, "*"},
                                            {TokenInteger, "3"}}));
}

TEST_F(Tokenizer, CutsComparatorsGreedily) {
    EXPECT_EQ(Tokens("a==b"), (TokenList{{TokenString, "a"}, {TokenComparator, "=="}, {TokenString, "b"}}));
    EXPECT_EQ(Tokens("x=1"), (TokenList{{TokenString, "x"}, {TokenEqual, "="}, {TokenInteger, "1"}}));
    EXPECT_EQ(Tokens("1<>2"), (TokenList{{TokenInteger, "1"}, {TokenComparator, "<>"}, {TokenInteger, "2"}}));
    EXPECT_EQ(Tokens("1<=>2"),
              (TokenList{{TokenInteger, "1"}, {TokenComparator, "<="}, {TokenComparator, ">"}, {TokenInteger, "2"}}));
    EXPECT_EQ(Tokens("!x"), (TokenList{{TokenString, "!"}, {TokenString, "x"}}));
    EXPECT_EQ(Tokens("=>="), (TokenList{{TokenString, "=>"}, {TokenEqual, "="}}));
}

TEST_F(Tokenizer, CutsAmpersandRuns) {
    EXPECT_EQ(Tokens("&&&x,y"), (TokenList{{TokenVar, "&&&x"}, {TokenComma, ","}, {TokenString, "y"}}));
    EXPECT_EQ(Tokens("&*"), (TokenList{{TokenLogical, "&"}, {TokenOperator, "*"}}));
    EXPECT_EQ(Tokens("1 & 2"), (TokenList{{TokenInteger, "1"}, {TokenLogical, "&"}, {TokenInteger, "2"}}));
    EXPECT_EQ(Tokens("&a+&b"), (TokenList{{TokenVar, "&a"}, {TokenOperator, "+"}, {TokenVar, "&b"}}));
}

TEST_F(Tokenizer, SlashIsAnOperatorBeforeAWord) {
    EXPECT_EQ(Tokens("/tmp"), (TokenList{{TokenOperator, "/"}, {TokenString, "tmp"}}));
    EXPECT_EQ(Tokens("a+b"), (TokenList{{TokenString, "a"}, {TokenOperator, "+"}, {TokenString, "b"}}));
}

TEST_F(Tokenizer, OtherCharactersAreOneCharacterTokens) {
    EXPECT_EQ(Tokens("#$"), (TokenList{{TokenString, "#"}, {TokenString, "$"}}));
    EXPECT_EQ(Tokens("a\\b"), (TokenList{{TokenString, "a"}, {TokenBackslash, "\\"}, {TokenString, "b"}}));
}

TEST_F(Tokenizer, PositionAndLength) {
    ctx.SetLine("   abc  12");
    EXPECT_EQ(Next(), TokenString);
    EXPECT_EQ(ctx.p.sToken, "abc");
    EXPECT_EQ(Offset(), 6);
    EXPECT_EQ(Next(), TokenInteger);
    EXPECT_EQ(ctx.p.sToken, "12");
    EXPECT_EQ(Offset(), 10);
}

TEST_F(Tokenizer, TrailingBlanksGiveEndOfLineWithoutMoving) {
    ctx.SetLine("12   ");
    EXPECT_EQ(Next(), TokenInteger);
    EXPECT_EQ(Offset(), 2);
    EXPECT_EQ(Next(), TokenEol);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Offset(), 2);
    EXPECT_EQ(Next(), TokenEol);
    EXPECT_EQ(Offset(), 2);
}

TEST_F(Tokenizer, EndOfLineRepeats) {
    ctx.SetLine("x");
    EXPECT_EQ(Next(), TokenString);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Next(), TokenEol);
        EXPECT_EQ(Text(), "");
    }
}

// ---- Semicolons ----------------------------------------------------------------------------

TEST_F(Tokenizer, SemicolonEndsTheLine) {
    ctx.SetLine("1 ; 2 3");
    EXPECT_EQ(Next(), TokenInteger);
    EXPECT_EQ(Next(), TokenEol);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(*ctx.p.pPos, '\0');
    EXPECT_EQ(Next(), TokenEol);
    EXPECT_EQ(Text(), "");
}

TEST_F(Tokenizer, SemicolonRightAfterAWord) {
    EXPECT_EQ(Tokens("abc;def"), (TokenList{{TokenString, "abc"}}));
    EXPECT_EQ(*ctx.p.pPos, '\0');
    EXPECT_EQ(Tokens(";;;"), TokenList{});
}

TEST_F(Tokenizer, SemicolonClassifiedMovesToEndOfLine) {
    ctx.SetLine("; rest of line");
    ctx.p.sToken = ";";
    EXPECT_EQ(GetTokenType(&ctx.p), TokenEol);
    EXPECT_EQ(ctx.p.sToken, "");
    EXPECT_EQ(*ctx.p.pPos, '\0');
    EXPECT_EQ(Offset(), 14);
}

TEST_F(Tokenizer, SemicolonInsideQuotesIsText) {
    EXPECT_EQ(Tokens("\"a;b\" c"), (TokenList{{TokenString, "a;b"}, {TokenString, "c"}}));
}

// ---- Quoted strings ------------------------------------------------------------------------

TEST_F(Tokenizer, QuotedStringLosesItsQuotes) {
    EXPECT_EQ(First("\"hello world\" x"), TokenString);
    EXPECT_EQ(Text(), "hello world");
    EXPECT_EQ(Next(), TokenString);
    EXPECT_EQ(Text(), "x");
}

TEST_F(Tokenizer, DoubledQuoteBecomesBackslashQuote) {
    EXPECT_EQ(First("\"ab\"\"c\""), TokenString);
    EXPECT_EQ(Text(), "ab\\\"c");
    EXPECT_EQ(Next(), TokenEol);
}

TEST_F(Tokenizer, BackslashInsideQuotesIsDoubled) {
    EXPECT_EQ(First("\"a\\b\""), TokenString);
    EXPECT_EQ(Text(), "a\\\\b");
    EXPECT_EQ(First("\"say \"\"hi\"\" \\ ok\""), TokenString);
    EXPECT_EQ(Text(), "say \\\"hi\\\" \\\\ ok");
}

TEST_F(Tokenizer, EmptyQuotedString) {
    EXPECT_EQ(First("\"\" x"), TokenString);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Next(), TokenString);
    EXPECT_EQ(Text(), "x");
}

TEST_F(Tokenizer, UnclosedQuoteRunsToEndOfLine) {
    EXPECT_EQ(First("\"abc def"), TokenBadString);
    EXPECT_EQ(Text(), "\"abc def");
    EXPECT_EQ(Next(), TokenEol);
}

TEST_F(Tokenizer, LoneQuoteIsAString) {
    EXPECT_EQ(First("\""), TokenString);
    EXPECT_EQ(Text(), "\"");
    EXPECT_EQ(Classify("\""), TokenString);
    EXPECT_EQ(ctx.p.sToken, "\"");
}

TEST_F(Tokenizer, UndoubledInnerQuoteKeepsTheText) {
    EXPECT_EQ(Classify("\"a\"b\""), TokenString);
    EXPECT_EQ(ctx.p.sToken, "\"a\"b\"");
}

TEST_F(Tokenizer, QuotedStringEndsAtFirstSingleQuote) {
    EXPECT_EQ(Tokens("\"a\"b"), (TokenList{{TokenString, "a"}, {TokenString, "b"}}));
}

// ---- Classification rules in their order ---------------------------------------------------

TEST_F(Tokenizer, FirstTokenWordsAreVariables) {
    EXPECT_EQ(Classify("abc", true), TokenVar);
    EXPECT_EQ(Classify("ON", true), TokenVar);
    // Earlier rules still win.
    EXPECT_EQ(Classify("&if", true), TokenStatement);
    EXPECT_EQ(Classify("&len", true), TokenFunction);
    EXPECT_EQ(Classify("12", true), TokenInteger);
    EXPECT_EQ(Classify("(", true), TokenBeginGroup);
    EXPECT_EQ(Classify("+", true), TokenOperator);
    EXPECT_EQ(Classify("<>", true), TokenComparator);
}

TEST_F(Tokenizer, AmpersandIsLogicalNeverOperator) {
    EXPECT_EQ(Classify("&"), TokenLogical);
    EXPECT_EQ(Classify("%"), TokenLogical);
    EXPECT_EQ(Classify("-"), TokenOperator);
}

// ---- Token trace ---------------------------------------------------------------------------

TEST_F(Tokenizer, DebugTracePrintsEachToken) {
    ctx.p.bDebug = true;
    ctx.SetLine("x = 12");
    Next();
    Next();
    Next();
    Next();
    EXPECT_EQ(ctx.Output(),
              "token type = TokenString|x|\r"
              "token type = TokenEqual|=|\r"
              "token type = TokenInteger|12|\r"
              "token type = TokenEol|\r");
}

TEST_F(Tokenizer, DebugTraceShowsRewrittenStrings) {
    ctx.p.bDebug = true;
    ctx.SetLine("\"a\"\"b\"");
    Next();
    EXPECT_EQ(ctx.Output(), "token type = TokenString|a\\\"b|\r");
}

TEST_F(Tokenizer, DebugTraceOfASemicolon) {
    ctx.p.bDebug = true;
    ctx.SetLine("; x");
    Next();
    EXPECT_EQ(ctx.Output(), "token type = TokenEol||\r");
}

TEST_F(Tokenizer, NoTraceWithoutDebug) {
    ctx.SetLine("&x + 1");
    Next();
    Next();
    Next();
    Next();
    EXPECT_EQ(ctx.Output(), "");
}

// ---- Helpers -------------------------------------------------------------------------------

TEST_F(Tokenizer, ComparatorTable) {
    const std::pair<const char*, CompType> rows[] = {
        {"=", CompEqual},   {"==", CompEqual}, {"<>", CompNotEqual},     {"!=", CompNotEqual},
        {">", CompGreater}, {"<", CompLess},   {">=", CompGreaterEqual}, {"<=", CompLessEqual},
    };
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_STREQ(aComparators[i].pszName, rows[i].first) << i;
        EXPECT_EQ(aComparators[i].eType, rows[i].second) << i;
    }
}

TEST_F(Tokenizer, GetComparator) {
    EXPECT_EQ(GetComparator("=")->eType, CompEqual);
    EXPECT_EQ(GetComparator("==")->eType, CompEqual);
    EXPECT_EQ(GetComparator("<>")->eType, CompNotEqual);
    EXPECT_EQ(GetComparator("!=")->eType, CompNotEqual);
    EXPECT_EQ(GetComparator(">")->eType, CompGreater);
    EXPECT_EQ(GetComparator("<")->eType, CompLess);
    EXPECT_EQ(GetComparator(">=")->eType, CompGreaterEqual);
    EXPECT_EQ(GetComparator("<=")->eType, CompLessEqual);
    EXPECT_EQ(GetComparator("=>"), nullptr);
    EXPECT_EQ(GetComparator("=<"), nullptr);
    EXPECT_EQ(GetComparator("<=="), nullptr);
    EXPECT_EQ(GetComparator("x"), nullptr);
}

TEST_F(Tokenizer, IsConst) {
    EXPECT_TRUE(IsConst(TokenInteger));
    EXPECT_TRUE(IsConst(TokenFloat));
    EXPECT_TRUE(IsConst(TokenString));
    for (TokenType t : {TokenVar, TokenFunction, TokenBadString, TokenBadNumber, TokenEol, TokenStatement})
        EXPECT_FALSE(IsConst(t)) << aszTokenTypes[t];
}

TEST_F(Tokenizer, Second) {
    EXPECT_EQ(Second("1:02:03"), 3723);
    EXPECT_EQ(Second("0:0:59"), 59);
    EXPECT_EQ(Second("10:00:00"), 36000);
    EXPECT_EQ(Second(nullptr), 0);
    EXPECT_EQ(Second(""), 0);
}

TEST_F(Tokenizer, ExtractFirstWord) {
    EXPECT_EQ(ExtractFirstWord("copy a b"), "copy");
    EXPECT_EQ(ExtractFirstWord("word"), "word");
    EXPECT_EQ(ExtractFirstWord("&ELSEIF\t0"), "&ELSEIF");
    EXPECT_EQ(ExtractFirstWord(""), "");
}

// ---- Kept cuts ------------------------------------------------------------------------------

// One step of a scan, and what it saw.
struct Seen {
    TokenType eType;
    std::string sToken;
    long lPos;
    int iWord;
    bool operator==(const Seen& o) const {
        return eType == o.eType && sToken == o.sToken && lPos == o.lPos && iWord == o.iWord;
    }
};

std::ostream& operator<<(std::ostream& os, const Seen& s) {
    return os << aszTokenTypes[s.eType] << " \"" << s.sToken << "\" at " << s.lPos << " word " << s.iWord;
}

// Scans a line as a statement might: tokens, references where a "&" starts, the first-token flag
// turned on and off, blanks skipped and the rest of the line dropped, chosen by the seed.
std::vector<Seen> Scan(const std::string& line, bool repeated, unsigned seed) {
    TokenScan p;
    p.iWord = 7;
    SetLine(&p, line.c_str(), repeated);
    std::vector<Seen> seen;
    for (int step = 0; step < 40; ++step) {
        seed = seed * 1103515245u + 12345u;
        unsigned choice = (seed >> 16) % 16;
        if (choice == 0) p.bFirstToken = !p.bFirstToken;
        if (choice == 1) skip_spaces(&p);
        if (choice == 2 && step > 20) SkipLine(&p);
        if (choice == 3 && *p.pPos == '&')
            GetReferenceToken(&p);
        else
            GetNextToken(&p);
        seen.push_back(Seen{p.eTokenType, p.sToken.str(), static_cast<long>(p.pPos - p.LineText()), p.iWord});
        if (p.eTokenType == TokenEol && choice > 12) break;
    }
    return seen;
}

TEST_F(Tokenizer, KeptCutsGiveWhatScanningGives) {
    const char* const pieces[] = {
        "&IF",  "&if",     "&n", "&&x", "&GOTO", "again:", "a:",   "=",      "==",     "<>",         "<",
        "<=",   ">=",      "!=", "!",   "1",     "2.5",    ".5",   "1.2.3",  "\"q\"",  "\"a\"\"b\"", "\"open",
        "&CAT", "&SYSTEM", "(",  ")",   ",",     "[",      "]",    ";",      "; rest", "+",          "-",
        "*",    "/",       "&",  "|",   "^",     "%",      "word", "/bin/x", "\\",     "#",          "&1",
        "x&y",  "\t",      "  ", "é",   "&ÉTÉ",  "a.b",    "_u"};
    const size_t count = sizeof pieces / sizeof *pieces;
    KeepTokens(true);
    unsigned seed = 12345;
    for (int n = 0; n < 3000; ++n) {
        std::string line;
        seed = seed * 1103515245u + 12345u;
        int words = static_cast<int>((seed >> 16) % 9);
        for (int w = 0; w < words; ++w) {
            seed = seed * 1103515245u + 12345u;
            line += pieces[(seed >> 16) % count];
            seed = seed * 1103515245u + 12345u;
            if ((seed >> 16) % 3) line += ' ';
        }
        const std::vector<Seen> plain = Scan(line, false, seed);
        // Kept: the first scan makes the cuts, later ones (other paths through the line) reuse them.
        for (unsigned pass = 0; pass < 3; ++pass) {
            unsigned path = pass == 2 ? seed ^ 0x5555u : seed;
            const std::vector<Seen> want = pass == 2 ? Scan(line, false, path) : plain;
            ASSERT_EQ(Scan(line, true, path), want) << "line \"" << line << "\" pass " << pass;
        }
    }
    KeepTokens(false);
}

// A scan of lines whose cuts are kept: each test starts on a line, its first token read.
class KeptTokenizer : public ::testing::Test {
protected:
    void SetUp() override { KeepTokens(true); }
    void TearDown() override { KeepTokens(false); }
    void StartOn(const char* line) {
        SetLine(&p, line, true);
        ASSERT_TRUE(GetNextToken(&p));
    }
    TokenScan p;
};

TEST_F(KeptTokenizer, CutsFollowTheTextNotItsPlace) {
    StartOn("&IF 1 &GOTO x");
    EXPECT_EQ(p.eTokenType, TokenStatement);
    // Another text of the same length, very likely in the same buffer: its own cuts.
    StartOn("abc 1 &GOTO x");
    EXPECT_EQ(p.sToken.str(), "abc");
    EXPECT_EQ(p.eTokenType, TokenString);
}

// Forgetting what was kept leaves nothing behind: a line numbered as before is kept afresh.
TEST_F(KeptTokenizer, ForgottenCutsAreGoneWithEverythingThatLedToThem) {
    for (int round = 0; round < 2; ++round) {
        SetLine(&p, "x = &n + 1", true, 4711);
        for (const char* want : {"x", "=", "&n", "+", "1"}) {
            ASSERT_TRUE(GetNextToken(&p));
            EXPECT_EQ(p.sToken.str(), want);
        }
        ForgetKeptTokens();
    }
}

// A scan moved off its line (the position on another text) is cut as it stands, not from what
// was kept for the line.
TEST_F(KeptTokenizer, AScanOffItsLineIsCutPlainly) {
    StartOn("&IF 1");
    static const char other[] = "  &n < 2";
    p.pPos = other;
    ASSERT_TRUE(GetNextToken(&p));
    EXPECT_EQ(p.sToken.str(), "&n");
    EXPECT_EQ(p.eTokenType, TokenVar);
    EXPECT_EQ(p.pPos, other + 4);
    EXPECT_EQ(CurrentNote(&p), nullptr);
}

TEST_F(Tokenizer, SkipSpaces) {
    ctx.SetLine("  \t x");
    skip_spaces(&ctx.p);
    EXPECT_EQ(Offset(), 4);
    EXPECT_EQ(*ctx.p.pPos, 'x');
}

}  // namespace
