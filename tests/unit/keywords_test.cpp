// The word tables: whole-word lookups, case ignored, first match in table order, each table on
// its own.
#include "keywords.h"

#include <gtest/gtest.h>

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
