// The block stack: the structured statements open while a script runs.
#include "test_support.h"

namespace {

class Blocks : public ::testing::Test {
protected:
    void SetUp() override { ResetBlocks(); }
    void TearDown() override { ResetBlocks(); }
};

TEST_F(Blocks, EmptyStackGettersGiveZero) {
    EXPECT_EQ(GetBlockType(), BlockNone);
    EXPECT_EQ(GetBlockLinePos(), 0u);
    EXPECT_EQ(GetBlockCharPos(), 0u);
}

TEST_F(Blocks, PopOnEmptyGivesZeroAndChangesNothing) {
    EXPECT_EQ(PopBlock(), VarUndef);
    EXPECT_EQ(PopBlock(), VarUndef);
    EXPECT_EQ(GetBlockType(), BlockNone);
    PushBlock(BlockIf, VarUndef, 3, 0);
    EXPECT_EQ(GetBlockType(), BlockIf);
}

TEST_F(Blocks, PushFillsTheEntry) {
    CBlock* b = PushBlock(BlockFor, VarFloat, 12, 345);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->eType, BlockFor);
    EXPECT_EQ(b->eVarType, VarFloat);
    EXPECT_EQ(b->uiLinePos, 12u);
    EXPECT_EQ(b->uiCharPos, 345u);
    EXPECT_EQ(GetBlockType(), BlockFor);
    EXPECT_EQ(GetBlockLinePos(), 12u);
    EXPECT_EQ(GetBlockCharPos(), 345u);
}

TEST_F(Blocks, GettersReadTheTop) {
    PushBlock(BlockCall, VarUndef, 1, 100);
    PushBlock(BlockWhile, VarUndef, 5, 200);
    EXPECT_EQ(GetBlockType(), BlockWhile);
    EXPECT_EQ(GetBlockLinePos(), 5u);
    EXPECT_EQ(GetBlockCharPos(), 200u);
    PopBlock();
    EXPECT_EQ(GetBlockType(), BlockCall);
    EXPECT_EQ(GetBlockLinePos(), 1u);
    EXPECT_EQ(GetBlockCharPos(), 100u);
    PopBlock();
    EXPECT_EQ(GetBlockType(), BlockNone);
}

TEST_F(Blocks, PopGivesTheVariableTypeNotTheKind) {
    PushBlock(BlockFor, VarInteger, 1, 0);
    PushBlock(BlockFor, VarString, 2, 0);
    PushBlock(BlockIf, VarUndef, 3, 0);
    EXPECT_EQ(PopBlock(), VarUndef);
    EXPECT_EQ(PopBlock(), VarString);
    EXPECT_EQ(PopBlock(), VarInteger);
    EXPECT_EQ(PopBlock(), VarUndef);
}

TEST_F(Blocks, GrowsWithoutLimitOfItsOwn) {
    for (unsigned i = 1; i <= 1000; ++i) PushBlock(BlockWhile, VarUndef, i, i * 10);
    EXPECT_EQ(GetBlockLinePos(), 1000u);
    EXPECT_EQ(GetBlockCharPos(), 10000u);
    for (unsigned i = 1000; i >= 1; --i) {
        EXPECT_EQ(GetBlockLinePos(), i);
        PopBlock();
    }
    EXPECT_EQ(GetBlockType(), BlockNone);
}

TEST_F(Blocks, LargeOffsetsKeepAllThirtyTwoBits) {
    PushBlock(BlockFor, VarInteger, 4000000000u, 0xfffffffeu);
    EXPECT_EQ(GetBlockLinePos(), 4000000000u);
    EXPECT_EQ(GetBlockCharPos(), 0xfffffffeu);
}

TEST_F(Blocks, ResetEmptiesTheStack) {
    PushBlock(BlockFor, VarInteger, 1, 2);
    PushBlock(BlockIf, VarUndef, 3, 0);
    ResetBlocks();
    EXPECT_EQ(GetBlockType(), BlockNone);
    EXPECT_EQ(PopBlock(), VarUndef);
}

}  // namespace
