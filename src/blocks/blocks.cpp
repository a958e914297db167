// The block stack. Each open block remembers the line that opened it and a file offset, which is
// all that is needed to go back to a loop head or return from a subroutine. No statement reports
// blocks left open: a script that ends inside one ends normally.
#include "blocks.h"

#include <deque>

namespace {

// A deque: it grows by chunks, never copying what it holds to a larger place (a vector doubling
// would hold the old and the new copy at once).
std::deque<CBlock> aBlocks;

}  // namespace

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

BlockType GetBlockType() { return aBlocks.empty() ? BlockNone : aBlocks.back().eType; }
unsigned GetBlockLinePos() { return aBlocks.empty() ? 0 : aBlocks.back().uiLinePos; }
unsigned GetBlockCharPos() { return aBlocks.empty() ? 0 : aBlocks.back().uiCharPos; }

void ResetBlocks() { aBlocks.clear(); }
