// The block stack. Each open block remembers the line that opened it and a file offset, which is
// all that is needed to go back to a loop head or return from a subroutine.
#include "blocks.h"

#include <vector>

#include "diagnostics.h"

namespace {

std::vector<CBlock> aBlocks;
// Read by UnterminatedBlocks and written nowhere.
int32_t uiBlocks = 0;

const char* const aszBlockNames[] = {"&CALL", "&IF", "&ELSEIF", "&ELSE", "&FOR", "&UNTIL", "&WHILE"};

}  // namespace

const char* BlockName(BlockType type) {
    return (type >= BlockCall && type <= BlockWhile) ? aszBlockNames[type - 1] : nullptr;
}

CBlock* PushBlock(BlockType type, XVarType varType, unsigned line, unsigned pos) {
    aBlocks.push_back(CBlock{type, varType, line, pos});
    return &aBlocks.back();
}

XVarType PopBlock() {
    if (aBlocks.empty()) return VarUndef;
    XVarType t = aBlocks.back().eVarType;
    aBlocks.pop_back();
    return t;
}

CBlock* GetBlock() { return aBlocks.empty() ? aBlocks.data() : &aBlocks.back(); }
BlockType GetBlockType() { return aBlocks.empty() ? BlockNone : aBlocks.back().eType; }
XVarType GetBlockVarType() { return aBlocks.empty() ? VarUndef : aBlocks.back().eVarType; }
unsigned GetBlockLinePos() { return aBlocks.empty() ? 0 : aBlocks.back().uiLinePos; }
unsigned GetBlockCharPos() { return aBlocks.empty() ? 0 : aBlocks.back().uiCharPos; }

bool IsLoop(BlockType type) { return type == BlockFor || type == BlockUntil || type == BlockWhile; }

int UnterminatedBlocks(Parser* p) {
    if (aBlocks.empty()) return 1;
    if (uiBlocks > 0) MISSING_END(p, Src::Blocks, At::Unterminated, &aBlocks[static_cast<size_t>(uiBlocks - 1)]);
    return 0;
}

void ResetBlocks() { aBlocks.clear(); }
