// The script reader: the one place script lines come from. It owns the script, the offset of the
// next line, the line counter, the trace of lines read and the flush of waiting output before a
// line is read. Lines are handed out as views of its own storage, valid until the next read.
//
// The script is read as a buffered file is, in blocks of kBlockSize bytes: between two
// repositionings the reader sees the block it already holds, even when the file changed on disk
// meanwhile; bytes past that block come from the file as it is when they are reached; every
// repositioning (a loop's restart, &GOTO, &RETURN) drops the block, so the next line comes from
// the file as it is then. A script that cannot be repositioned (a pipe, a FIFO, a terminal) is
// kept in memory as it is read, so that loops and jumps work on it as on a file.
//
// Unless KVEXEC_PLAIN is set, the reader keeps what it reads again (the blocks and lines of loops
// and subroutines) and uses it while the file is unchanged (size, modification and change times,
// inode), which it checks at every repositioning and block boundary after anything else could
// have run. A jump finds its label through an index of the lines' places instead of reading every
// line in between, except while tracing, which must print every line read. A script read straight
// through keeps nothing.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tokenizer.h"

class ScriptReader {
public:
    // Lines are cut after this many characters minus one; each piece counts as a line.
    static constexpr unsigned long kLineSize = 1024;
    static constexpr long kBlockSize = 4096;

    ScriptReader() = default;
    ScriptReader(const ScriptReader&) = delete;
    ScriptReader& operator=(const ScriptReader&) = delete;
    ~ScriptReader() { Close(); }

    // Opens the script read-only; false, with errno set, when it cannot be opened or is a
    // directory. bKeep: keep and reuse what was read (off for the plain reader).
    bool Open(const char* path, bool keep = true);
    void Close();

    // Reads the next line: remembers where it starts, counts it, trims it and traces it. Returns
    // its first non-blank character, or null at the end of the script (nothing else changes then).
    // A read error ends the run with the system's message and the error number as status.
    const char* GetLine();
    // Whether the last line GetLine gave lies in a block read before: a line likely to be read
    // again, worth keeping more of.
    bool LineRepeated() const { return bLineRepeated; }
    // A number for the text of the last line GetLine gave when it is a kept line: the same each
    // time that line is given again, never the number of another text (in any reader of the
    // process); 0 for a line not kept.
    uint64_t LineSerial() const { return pszLine == pSerialLine ? uiLineSerial : 0; }
    // The last line read, trimmed.
    const char* Line() const { return pszLine; }
    // The offset of the next line, and of the start of the last line read.
    long Tell() const { return lOffset; }
    long LineStart() const { return lLinePos; }
    void Seek(long offset);
    void Rewind() { Seek(0); }

    // Reads lines up to one whose first word is one of words (case ignored) and returns it, or
    // null at the end of the script; each line before it is handed to each.
    template <typename Each>
    const char* ReadUntil(std::initializer_list<const char*> words, Each each) {
        while (const char* line = GetLine()) {
            size_t length = FirstWordLength(line);
            for (const char* w : words)
                if (FirstWordIs(line, length, w)) return line;
            each(line);
        }
        return nullptr;
    }
    const char* ReadUntil(std::initializer_list<const char*> words) {
        return ReadUntil(words, [](const char*) {});
    }

    // Reads on from the current position to the first line whose first word is target (the label
    // with its ":"). True when found, with the position after that line; false at the end, with
    // every line counted as read.
    bool FindLabel(const char* target);

    int iLine = 0;        // number of the last line read, counted from 1; jumps set it again
    bool bTrace = false;  // &CONTROL TRACE: every line read is printed as "<n: text>"

private:
    // A line as it was read (kept by its start): its trimmed text, in aTextChunks, and the bytes it
    // took, line feed included.
    struct KeptLine {
        const char* pText;
        uint32_t uiLength;
        uint64_t uiSerial;  // see LineSerial
    };
    struct KeptBlock {
        std::unique_ptr<char[]> pData;
        long lLength;
    };
    struct Segment {  // what one read of an unrepositionable script gave
        long lStart;
        long lLength;
        std::unique_ptr<char[]> pData;
    };

    bool Refill(long start);
    void ReadBlock(long start, const char** data, long* length, bool* kept);
    void ReadMemory(long start, const char** data, long* length);
    [[noreturn]] void ReadFailed();
    bool Unchanged();
    void Forget();
    const char* Assemble();
    const char* Count(const char* text);
    void IndexLabels();
    void LoadLine(long start, long length);

    std::string sPath;
    int iFd = -1;
    bool bKeep = false;
    bool bMemory = false;  // a script that cannot be repositioned, kept as read
    std::vector<Segment> aSegments;
    long lMemoryEnd = 0;
    bool bMemoryDone = false;

    // The block held, as a buffered file holds it.
    const char* pBlock = nullptr;
    long lBlockStart = 0;
    long lBlockLength = 0;
    bool bLineRepeated = false;
    uint64_t uiLineSerial = 0;
    const char* pSerialLine = nullptr;  // the line uiLineSerial names
    bool bBlockKept = false;            // the block held is one of aBlocks, so its lines may be kept
    unsigned uiBlockGeneration = 0;     // uiGeneration when the block held was read
    bool bEof = false;                  // the end was met; only a repositioning reads again
    std::unique_ptr<char[]> pOwnBlock;

    long lOffset = 0;   // offset of the next byte to read
    long lLinePos = 0;  // offset of the start of the last line read
    char szLine[kLineSize] = {};
    char szHeldLine[kLineSize] = {};  // a kept last line, when what was kept is forgotten
    const char* pszLine = szLine;

    // What was kept, and the state of the file it was read from.
    bool bTrusted = false;
    unsigned uiGeneration = 0;  // counts what was kept and forgotten: a new state of the file
    bool bHold = false;         // while the index is built or used, what was found unchanged stays so
    struct stat stSeen {};
    long long llCheckedNs = 0;
    unsigned uiCheckedTurns = 0;
    std::unordered_set<long> aReadOnce;           // blocks read once: kept when read again
    std::unordered_map<long, KeptBlock> aBlocks;  // by start offset
    std::unordered_map<long, KeptLine> aLines;    // by start offset
    // The texts of the kept lines, end to end in chunks that never move: a text stays where it was
    // put until everything kept is forgotten.
    static constexpr size_t kTextChunk = 16384;
    std::vector<std::unique_ptr<char[]>> aTextChunks;
    size_t uiChunkUsed = kTextChunk;
    static_assert(kLineSize <= kTextChunk, "a line's text fits a chunk");
    const char* KeepText(const char* text);
    std::unordered_map<long, std::string> aLabelLines;  // label lines jumped to, trimmed, by start
    // The label index: where every line from offset 0 to the end lies, in order, and the lines
    // whose first word ends in ":" by that word folded.
    // Line n runs from aLineStarts[n] to aLineStarts[n + 1] (the last entry is where the last
    // line ends); aLineNewlines[n]: it ends with a line feed (the lines lie end to end, so their
    // lengths need not be kept).
    bool bIndexed = false;
    std::vector<long> aLineStarts;
    std::vector<bool> aLineNewlines;
    std::unordered_map<std::string, std::vector<size_t>> aLabels;
    // The labels last looked up, as given, and their rows in aLineStarts (null: none): a loop jumps
    // to the same few labels again and again. Each is valid while uiGeneration is its own.
    struct RecentLabel {
        std::string sName;
        const std::vector<size_t>* pRows = nullptr;
        unsigned uiGeneration = ~0u;
    };
    RecentLabel aRecentLabels[4];
    size_t uiNextRecentLabel = 0;
    const std::vector<size_t>* LabelRows(const char* target);
};
