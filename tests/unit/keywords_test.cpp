// The word tables: whole-word lookups, case ignored, first match in table order, each table on
// its own.
#include "keywords.h"

#include <gtest/gtest.h>
#include <strings.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "char_classes.h"
#include "expression.h"
#include "statements.h"
#include "tokenizer.h"

namespace {

TEST(KeywordTable, FindsWholeWordsCaseIgnored) {
    EXPECT_EQ(kStatementWords.Find("&IF"), static_cast<int>(StatementWord::If));
    EXPECT_EQ(kStatementWords.Find("&if"), static_cast<int>(StatementWord::If));
    EXPECT_EQ(kStatementWords.Find("&IfEnD"), static_cast<int>(StatementWord::Ifend));
    EXPECT_EQ(kStatementWords.Find("&I"), -1);
    EXPECT_EQ(kStatementWords.Find("&IFX"), -1);
    EXPECT_EQ(kStatementWords.Find(""), -1);
    EXPECT_EQ(kFunctionWords.Find("&len"), static_cast<int>(FunctionWord::Len));
    EXPECT_EQ(kFunctionWords.Find("&SYSTEM"), static_cast<int>(FunctionWord::System));
    EXPECT_EQ(kFunctionWords.Find("&LEN$"), -1);
    EXPECT_EQ(kFunctionWords.Find("&IF"), -1);
}

TEST(KeywordTable, StatementRowByName) {
    const Statement* s = GetStatement("&if");
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->eWord, StatementWord::If);
    EXPECT_EQ(s->pHandler, &ParseIf);
    s = GetStatement("&QUIT");
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->pHandler, &ParseQuit);
    EXPECT_EQ(GetStatement("&LEN"), nullptr);
    EXPECT_EQ(GetStatement("&IFX"), nullptr);
    EXPECT_EQ(GetStatement(""), nullptr);
}

TEST(KeywordTable, FunctionRowByName) {
    const Function* f = GetFunction("&Cat");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->eWord, FunctionWord::Cat);
    EXPECT_EQ(f->pHandler, &ParseCat);
    EXPECT_EQ(f->iId, 1);
    f = GetFunction("&SYSTEM");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->pHandler, &ParseSystem);
    EXPECT_EQ(f->iId, 11);
    EXPECT_EQ(f->iMinArgs, 1);
    EXPECT_EQ(f->iMaxArgs, 3);
    EXPECT_EQ(GetFunction("&LEN$"), nullptr);
    EXPECT_EQ(GetFunction("&IF"), nullptr);
    EXPECT_EQ(GetFunction(""), nullptr);
}

TEST(KeywordTable, EveryRowIsFoundUnderItsOwnName) {
    for (const KeywordTable* t : {&kStatementWords, &kFunctionWords})
        for (int i = 0; i < t->Size(); ++i) EXPECT_EQ(t->Find(t->Name(i)), i) << t->Name(i);
}

// Two tables of the same kind of row keep their own names: a lookup in one never uses what was
// learnt of the other.
TEST(KeywordTable, EachTableKeepsItsOwnRows) {
    const char* const first[] = {"&AB", "&CDEF", nullptr};
    const char* const second[] = {"&XYZW", "&Q", "&RS", nullptr};
    KeywordTable a(first);
    KeywordTable b(second);
    EXPECT_EQ(a.Find("&cdef"), 1);
    EXPECT_EQ(a.Find("&ab"), 0);
    EXPECT_EQ(b.Find("&q"), 1);
    EXPECT_EQ(b.Find("&rs"), 2);
    EXPECT_EQ(b.Find("&xyzw"), 0);
    EXPECT_EQ(a.Find("&q"), -1);
    EXPECT_EQ(b.Find("&ab"), -1);
}

// The lookup of a text of known length answers as the table order and strcasecmp say.
TEST(KeywordTable, AsAScanWithStrcasecmp) {
    std::mt19937 random(11);
    const char letters[] = "&aAeEfFiInNoOrRtTlL$\xc3\xa9";
    for (const KeywordTable* t : {&kStatementWords, &kFunctionWords}) {
        for (int i = 0; i < 20000; ++i) {
            std::string text;
            if (random() % 2) {
                text = t->Name(static_cast<int>(random() % static_cast<unsigned>(t->Size())));
                for (char& c : text)
                    if (random() % 2) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
                if (random() % 4 == 0) text.pop_back();
            } else {
                size_t length = random() % 9;
                for (size_t k = 0; k < length; ++k) text += letters[random() % (sizeof letters - 1)];
            }
            int want = -1;
            for (int row = 0; row < t->Size() && want < 0; ++row)
                if (strcasecmp(t->Name(row), text.c_str()) == 0) want = row;
            EXPECT_EQ(t->Find(text.c_str(), text.size()), want) << text;
            EXPECT_EQ(t->Find(text.c_str()), want) << text;
        }
    }
}

TEST(KeywordTable, FirstMatchInTableOrder) {
    const char* const names[] = {"&one", "&ONE", "&two", nullptr};
    KeywordTable t(names);
    EXPECT_EQ(t.Find("&One"), 0);
    EXPECT_EQ(t.Find("&TWO"), 2);
}

TEST(Words, SystemAndControlWords) {
    EXPECT_EQ(FindSystemWord("FTIME"), static_cast<int>(SystemWord::Ftime));
    EXPECT_EQ(FindSystemWord("ftime"), -1);  // upper-cased by the caller first
    EXPECT_EQ(FindSystemWord("PORT"), static_cast<int>(SystemWord::Port));
    EXPECT_EQ(FindControlWord("trace"), static_cast<int>(ControlWord::Trace));
    EXPECT_EQ(FindControlWord("NoDebug"), static_cast<int>(ControlWord::NoDebug));
    EXPECT_EQ(FindControlWord("TRACES"), -1);
}

TEST(Words, ComparatorsOperatorsAndLogicals) {
    ASSERT_NE(GetComparator("<>"), nullptr);
    EXPECT_EQ(GetComparator("<>")->eType, CompNotEqual);
    EXPECT_EQ(GetComparator("!=")->eType, CompNotEqual);
    EXPECT_EQ(GetComparator("==")->eType, CompEqual);
    EXPECT_EQ(GetComparator("=>"), nullptr);
    for (const char* t : {"+", "-", "*", "/", "&", "|", "^"}) EXPECT_NE(GetOperator(t), nullptr) << t;
    for (const char* t : {"%", "++", "x", "="}) EXPECT_EQ(GetOperator(t), nullptr) << t;
    for (const char* t : {"&", "|", "^", "%"}) EXPECT_NE(GetLogical(t), nullptr) << t;
    for (const char* t : {"+", "-", "&&", "x"}) EXPECT_EQ(GetLogical(t), nullptr) << t;
}

}  // namespace

// Number literals are converted as strtol and strtod convert them, including at the edges.
TEST(Literals, AsTheCLibraryConvertsThem) {
    std::mt19937_64 random(12345);
    std::vector<std::string> samples = {"0",
                                        "1",
                                        "32767",
                                        "32768",
                                        "99999999999999999999",
                                        "9223372036854775807",
                                        "9223372036854775808",
                                        "000123",
                                        "0.5",
                                        ".5",
                                        "1.",
                                        "100000.0",
                                        "0.1",
                                        "123456789012345.5",
                                        "1234567890123456",
                                        "0.0000000000000000000001",
                                        "0.00000000000000000000001",
                                        "9007199254740993.0",
                                        "1.7976931348623157"};
    for (int i = 0; i < 20000; ++i) {
        std::string s;
        int digits = 1 + static_cast<int>(random() % 20);
        for (int d = 0; d < digits; ++d) s += static_cast<char>('0' + random() % 10);
        if (random() % 2) s.insert(random() % (s.size() + 1), ".");
        samples.push_back(s);
    }
    for (const std::string& s : samples) {
        if (s.find('.') == std::string::npos) {
            EXPECT_EQ(IntegerValue(s.c_str()), strtol(s.c_str(), nullptr, 10)) << s;
        }
        double mine = FloatValue(s.c_str());
        double theirs = strtod(s.c_str(), nullptr);
        EXPECT_EQ(memcmp(&mine, &theirs, sizeof mine), 0) << s;
    }
}

// Case-free equality through the character table answers as strcasecmp and strncasecmp do.
TEST(Chars, EqualFoldedAsTheCLibrary) {
    std::mt19937 random(7);
    const char letters[] = "aAbBzZ&_:09 \t\xc3\xa9\xff";
    for (int i = 0; i < 20000; ++i) {
        std::string a, b;
        size_t la = random() % 6, lb = random() % 6;
        for (size_t k = 0; k < la; ++k) a += letters[random() % (sizeof letters - 1)];
        b = a;
        if (random() % 2) {
            b.clear();
            for (size_t k = 0; k < lb; ++k) b += letters[random() % (sizeof letters - 1)];
        } else {
            for (char& c : b)
                if (random() % 2) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
        }
        EXPECT_EQ(chars::EqualFolded(a.c_str(), b.c_str()), strcasecmp(a.c_str(), b.c_str()) == 0) << a << "|" << b;
        size_t n = random() % 7;
        EXPECT_EQ(chars::EqualFolded(a.c_str(), b.c_str(), n), strncasecmp(a.c_str(), b.c_str(), n) == 0)
            << a << "|" << b << "|" << n;
    }
}
