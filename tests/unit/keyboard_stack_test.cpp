// The keyboard type-ahead stack: text stacked by the script and read back a line at a time.
#include <string>

#include "test_support.h"

namespace {

class KeyboardStack : public ::testing::Test {
protected:
    void SetUp() override { kavro::t_StackClear(); }
    void TearDown() override {
        kavro::t_StackClear();
        kavro::t_bStackShow = false;
    }
};

TEST_F(KeyboardStack, EmptyAtFirst) {
    EXPECT_EQ(kavro::StackContents(), "");
    EXPECT_FALSE(kavro::t_StackReady(true));
    EXPECT_FALSE(kavro::t_StackReady(false));
}

TEST_F(KeyboardStack, WriteAppends) {
    kavro::t_StackWrite("one");
    kavro::t_StackWrite("\n");
    kavro::t_StackWrite(CBString("two\n"));
    EXPECT_EQ(kavro::StackContents(), "one\ntwo\n");
    EXPECT_TRUE(kavro::t_StackReady(true));
}

TEST_F(KeyboardStack, ReadTakesLinesInOrder) {
    kavro::t_StackWrite("abc\ndef\n");
    bool complete = false;
    EXPECT_EQ(kavro::t_StackRead(0, &complete, true), "abc");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "def\n");
    EXPECT_TRUE(kavro::t_StackReady(true));
    complete = false;
    EXPECT_EQ(kavro::t_StackRead(0, &complete, true), "def");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "");
    EXPECT_FALSE(kavro::t_StackReady(true));
}

TEST_F(KeyboardStack, ReadWithoutRemoveLeavesTheLine) {
    kavro::t_StackWrite("keep\nnext\n");
    bool complete = false;
    EXPECT_EQ(kavro::t_StackRead(0, &complete, false), "keep");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "keep\nnext\n");
    EXPECT_EQ(kavro::t_StackRead(0, &complete, true), "keep");
    EXPECT_EQ(kavro::StackContents(), "next\n");
}

TEST_F(KeyboardStack, EmptyLine) {
    kavro::t_StackWrite("\nx\n");
    bool complete = false;
    EXPECT_EQ(kavro::t_StackRead(0, &complete, true), "");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "x\n");
}

TEST_F(KeyboardStack, TextWithoutLineFeedIsAnIncompleteLine) {
    kavro::t_StackWrite("partial");
    bool complete = true;
    EXPECT_EQ(kavro::t_StackRead(0, &complete, true), "partial");
    EXPECT_FALSE(complete);
    EXPECT_EQ(kavro::StackContents(), "");
}

TEST_F(KeyboardStack, AutoCountTakesThatManyCharacters) {
    kavro::t_StackWrite("abcdef\nz\n");
    bool complete = true;
    EXPECT_EQ(kavro::t_StackRead(2, &complete, true), "ab");
    EXPECT_FALSE(complete);
    EXPECT_EQ(kavro::StackContents(), "cdef\nz\n");
    EXPECT_EQ(kavro::t_StackRead(3, &complete, true), "cde");
    EXPECT_FALSE(complete);
    EXPECT_EQ(kavro::t_StackRead(3, &complete, true), "f");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "z\n");
}

TEST_F(KeyboardStack, AutoCountOfTheLineLengthTakesTheWholeLine) {
    kavro::t_StackWrite("abc\nd\n");
    bool complete = false;
    EXPECT_EQ(kavro::t_StackRead(3, &complete, true), "abc");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "d\n");
}

TEST_F(KeyboardStack, AutoCountLongerThanTheLine) {
    kavro::t_StackWrite("ab\n");
    bool complete = false;
    EXPECT_EQ(kavro::t_StackRead(10, &complete, true), "ab");
    EXPECT_TRUE(complete);
    EXPECT_EQ(kavro::StackContents(), "");
}

TEST_F(KeyboardStack, ReadAcceptsNoFlag) {
    kavro::t_StackWrite("x\n");
    EXPECT_EQ(kavro::t_StackRead(0, nullptr, true), "x");
    EXPECT_EQ(kavro::StackContents(), "");
}

TEST_F(KeyboardStack, ClearEmptiesTheStack) {
    kavro::t_StackWrite("a\nb\n");
    kavro::t_StackClear();
    EXPECT_EQ(kavro::StackContents(), "");
    EXPECT_FALSE(kavro::t_StackReady(true));
}

TEST_F(KeyboardStack, LoadBringsBackWhatWasSaved) {
    kavro::t_StackWrite("saved\n");
    kavro::t_StackSave();
    EXPECT_EQ(kavro::StackContents(), "saved\n");
    EXPECT_EQ(kavro::t_StackRead(0, nullptr, true), "saved");
    EXPECT_FALSE(kavro::t_StackReady(true));
    kavro::t_StackLoad();
    EXPECT_EQ(kavro::StackContents(), "saved\n");
}

TEST_F(KeyboardStack, LoadKeepsWhatIsStacked) {
    kavro::t_StackWrite("old\n");
    kavro::t_StackSave();
    kavro::t_StackRead(0, nullptr, true);
    kavro::t_StackWrite("new\n");
    kavro::t_StackLoad();
    EXPECT_EQ(kavro::StackContents(), "new\n");
}

TEST_F(KeyboardStack, SaveThenLoadChangesNothing) {
    kavro::t_StackWrite("line\n");
    kavro::t_StackSave();
    kavro::t_StackLoad();
    EXPECT_EQ(kavro::StackContents(), "line\n");
    kavro::t_StackClear();
    kavro::t_StackSave();
    kavro::t_StackLoad();
    EXPECT_EQ(kavro::StackContents(), "");
}

TEST_F(KeyboardStack, ClearForgetsWhatWasSaved) {
    kavro::t_StackWrite("x\n");
    kavro::t_StackSave();
    kavro::t_StackClear();
    kavro::t_StackLoad();
    EXPECT_EQ(kavro::StackContents(), "");
}

TEST_F(KeyboardStack, DumpShowsTheContents) {
    kvtest::Context ctx;
    kavro::t_StackWrite("1 2\n");
    kavro::t_StackDump();
    EXPECT_EQ(ctx.Output(), "<stack \"1 2\n\">\r");
    EXPECT_EQ(kavro::StackContents(), "1 2\n");
}

TEST_F(KeyboardStack, DumpOfEmptyStack) {
    kvtest::Context ctx;
    kavro::t_StackDump();
    EXPECT_EQ(ctx.Output(), "<stack \"\">\r");
}

}  // namespace
