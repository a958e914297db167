// The block stack: the structured statements open while the script runs. It records kinds, line
// numbers and file offsets; it knows nothing of values beyond their type tag.
#pragma once

#include "kvtypes.h"

enum BlockType : int32_t {
    BlockNone = 0,
    BlockCall = 1,
    BlockIf = 2,
    BlockElseIf = 3,
    BlockElse = 4,
    BlockFor = 5,
    BlockUntil = 6,  // in the table of names, but no statement opens it: &UNTIL opens BlockWhile
    BlockWhile = 7,
};

// One open block: kind, loop-variable type, opening line and the file offset to come back to.
// Twelve bytes: a &CALL leaves its entry behind, so a script may hold very many.
struct CBlock {
    BlockType eType : 8;
    XVarType eVarType : 8;
    uint32_t uiLinePos;
    uint32_t uiCharPos;
};
static_assert(sizeof(CBlock) == 12, "a block entry stays small");

CBlock* PushBlock(BlockType type, XVarType varType, unsigned line, unsigned pos);
// Removes the top entry and returns its variable type; an empty stack is left as it is (0).
XVarType PopBlock();
BlockType GetBlockType();
unsigned GetBlockLinePos();
unsigned GetBlockCharPos();
// For tests: empties the stack.
void ResetBlocks();
