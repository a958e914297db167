// The block stack: the structured statements open while the script runs.
#pragma once

#include "types.h"

CBlock* PushBlock(BlockType type, XVarType varType, unsigned line, unsigned pos);
XVarType PopBlock();
CBlock* GetBlock();
BlockType GetBlockType();
XVarType GetBlockVarType();
unsigned GetBlockLinePos();
unsigned GetBlockCharPos();
bool IsLoop(BlockType type);
int UnterminatedBlocks(Parser* p);
// The name reports print for a block kind ("&CALL" … "&WHILE"), or null outside 1…7.
const char* BlockName(BlockType type);
// For tests: empties the stack.
void ResetBlocks();
