// Reading the script line by line, in blocks as a buffered file reads it, and keeping what was
// read while the file stays as it was.
#include "script_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>

#include "char_classes.h"
#include "kavro.h"

namespace {

// A file changed this recently may change again within the same tick of the clock that stamps
// it, leaving its times as they were: what is read of it is not kept until it has been still
// for this long.
#ifndef KVEXEC_FUZZ
constexpr long long kSettleNs = 20'000'000;
#else
// The fuzzing build's scripts are written just before they run and never change while they do:
// they count as settled at once, so that what is kept is used.
constexpr long long kSettleNs = 0;
#endif
// While nothing else ran, the file is checked again no more often than this (on the coarse
// clock, which moves in ticks of a few milliseconds).
constexpr long long kRecheckNs = 1'000'000;
// Numbers kept lines, in every reader of the process (see LineSerial).
uint64_t uiKeptLineSerials = 0;
// At most this many label lines are kept with their text.
constexpr size_t kKeptLabelLines = 4096;

long long Nanoseconds(clockid_t clock) {
    struct timespec t;
    clock_gettime(clock, &t);
    return static_cast<long long>(t.tv_sec) * 1'000'000'000LL + t.tv_nsec;
}

long long Nanoseconds(const struct timespec& t) {
    return static_cast<long long>(t.tv_sec) * 1'000'000'000LL + t.tv_nsec;
}

bool SameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           Nanoseconds(a.st_mtim) == Nanoseconds(b.st_mtim) && Nanoseconds(a.st_ctim) == Nanoseconds(b.st_ctim);
}

// The first word of a line folded as a case-ignoring comparison folds it.
std::string FoldedFirstWord(const char* line) {
    std::string word;
    for (const char* s = line; *s && !chars::IsSpace(*s); ++s) word += static_cast<char>(chars::Lower(*s));
    return word;
}

}  // namespace

bool ScriptReader::Open(const char* path, bool keep) {
    Close();
    sPath = path;
    iFd = open(path, O_RDONLY | O_CLOEXEC);
    if (iFd < 0) return false;
    struct stat st;
    if (fstat(iFd, &st) == 0 && S_ISDIR(st.st_mode)) {
        Close();
        errno = EISDIR;
        return false;
    }
    bMemory = fstat(iFd, &st) != 0 || !S_ISREG(st.st_mode);
    bKeep = keep;
    pOwnBlock.reset(new char[kBlockSize]);
    pBlock = pOwnBlock.get();
    lBlockStart = lBlockLength = 0;
    lOffset = lLinePos = 0;
    bEof = false;
    bBlockKept = false;
    return true;
}

void ScriptReader::Close() {
    if (iFd >= 0) close(iFd);
    iFd = -1;
    Forget();
    aSegments.clear();
    lMemoryEnd = 0;
    bMemoryDone = false;
    bTrusted = false;
}

void ScriptReader::ReadFailed() {
    int e = errno;
    kavro::TermFlush();
    perror(sPath.c_str());
#ifdef KVEXEC_FUZZ
    kavro::FuzzEndRun(e);
#endif
    exit(e);
}

// An unrepositionable script: the segment that holds start, reading more when start is the end
// of what was read so far. Each read takes what is there, as a buffered file's would.
void ScriptReader::ReadMemory(long start, const char** data, long* length) {
    if (start >= lMemoryEnd && !bMemoryDone) {
        std::unique_ptr<char[]> chunk(new char[kBlockSize]);
        ssize_t n;
        do {
            n = read(iFd, chunk.get(), kBlockSize);
        } while (n < 0 && errno == EINTR);
        if (n < 0) ReadFailed();
        if (n == 0)
            bMemoryDone = true;
        else {
            aSegments.push_back(Segment{lMemoryEnd, static_cast<long>(n), std::move(chunk)});
            lMemoryEnd += n;
        }
    }
    *data = nullptr;
    *length = 0;
    auto it = std::upper_bound(aSegments.begin(), aSegments.end(), start,
                               [](long offset, const Segment& s) { return offset < s.lStart; });
    if (it == aSegments.begin()) return;
    --it;
    if (start >= it->lStart + it->lLength) return;
    *data = it->pData.get() + (start - it->lStart);
    *length = it->lLength - (start - it->lStart);
}

// The block that starts at start, read now or, while the file is unchanged, as it was kept.
void ScriptReader::ReadBlock(long start, const char** data, long* length, bool* kept) {
    if (bMemory) {
        ReadMemory(start, data, length);
        *kept = bKeep;
        return;
    }
    *kept = false;
    char* to = pOwnBlock.get();
    bool keep = Unchanged();
    if (keep) {
        auto it = aBlocks.find(start);
        if (it != aBlocks.end()) {
            *data = it->second.pData.get();
            *length = it->second.lLength;
            *kept = true;
            return;
        }
    }
    // A block is kept when it is read a second time: a script read straight through keeps nothing.
    if (keep && aReadOnce.insert(start).second) keep = false;
    std::unique_ptr<char[]> fresh;
    if (keep) {
        fresh.reset(new char[kBlockSize]);
        to = fresh.get();
    }
    ssize_t n;
    do {
        n = pread(iFd, to, kBlockSize, start);
    } while (n < 0 && errno == EINTR);
    if (n < 0) ReadFailed();
    *data = to;
    *length = n;
    if (keep) {
        aBlocks[start] = KeptBlock{std::move(fresh), static_cast<long>(n)};
        *kept = true;
    }
}

bool ScriptReader::Refill(long start) {
    const char* data;
    long length;
    bool kept;
    ReadBlock(start, &data, &length, &kept);
    if (length == 0) {
        bEof = true;
        return false;
    }
    pBlock = data;
    lBlockStart = start;
    lBlockLength = length;
    bBlockKept = kept;
    uiBlockGeneration = uiGeneration;
    return true;
}

void ScriptReader::Seek(long offset) {
    // As fseek does: a negative offset fails and changes nothing.
    if (offset < 0) return;
    long start = bMemory ? offset : offset & ~(kBlockSize - 1);
    const char* data;
    long length;
    bool kept;
    ReadBlock(start, &data, &length, &kept);
    uiBlockGeneration = uiGeneration;
    if (offset < start + length) {
        pBlock = data;
        lBlockStart = start;
        lBlockLength = length;
        bBlockKept = kept;
    } else {
        lBlockStart = offset;
        lBlockLength = 0;
        bBlockKept = false;
    }
    lOffset = offset;
    bEof = false;
}

bool ScriptReader::Unchanged() {
    if (!bKeep) return false;
    if (bMemory || bHold) return bMemory || bTrusted;
    long long now = Nanoseconds(CLOCK_MONOTONIC_COARSE);
    if (bTrusted && uiCheckedTurns == kavro::uiOutsideTurns && now - llCheckedNs < kRecheckNs) return true;
    struct stat st;
    if (fstat(iFd, &st) != 0) {
        Forget();
        bTrusted = false;
        return false;
    }
    if (!bTrusted || !SameFile(st, stSeen)) {
        Forget();
        stSeen = st;
        long long settled = Nanoseconds(CLOCK_REALTIME) - kSettleNs;
        bTrusted = Nanoseconds(st.st_mtim) < settled && Nanoseconds(st.st_ctim) < settled;
    }
    llCheckedNs = now;
    uiCheckedTurns = kavro::uiOutsideTurns;
    return bTrusted;
}

void ScriptReader::Forget() {
    if (bBlockKept && pOwnBlock) {
        // The block held stays as it was read.
        memcpy(pOwnBlock.get(), pBlock, static_cast<size_t>(lBlockLength));
        pBlock = pOwnBlock.get();
        bBlockKept = false;
    }
    // The last line read stays readable when it was one of the kept lines.
    // (Into a buffer of its own: the line buffer may be half filled with the line being read.)
    auto within = [this](const char* buffer) {
        return !std::less<const char*>()(pszLine, buffer) && std::less<const char*>()(pszLine, buffer + kLineSize);
    };
    if (!within(szLine) && !within(szHeldLine)) {
        snprintf(szHeldLine, sizeof szHeldLine, "%s", pszLine);
        pszLine = szHeldLine;
    }
    ++uiGeneration;
    // No kept line is held any more: the numbers of the lines given so far name nothing.
    uiLineSerial = 0;
    pSerialLine = nullptr;
    aReadOnce.clear();
    aBlocks.clear();
    aLines.clear();
    aTextChunks.clear();
    uiChunkUsed = kTextChunk;
    bIndexed = false;
    aLineStarts.clear();
    aLineNewlines.clear();
    aLabels.clear();
    aLabelLines.clear();
}

const char* ScriptReader::Count(const char* text) {
    // Past 2^31 lines the counter wraps to negative numbers instead of overflowing.
    iLine = static_cast<int>(static_cast<unsigned>(iLine) + 1u);
    pszLine = text;
    if (bTrace) kavro::TermPrintf("<%d: %s>\r", iLine, text);
    return text;
}

// As fgets does: at most kLineSize - 1 characters, up to and including a line feed.
const char* ScriptReader::Assemble() {
    long start = lOffset;
    bool oneKeptBlock = bBlockKept;
    unsigned long n = 0;
    while (n + 1 < kLineSize) {
        if (lOffset >= lBlockStart + lBlockLength) {
            if (!Refill(lBlockStart + lBlockLength)) break;
            oneKeptBlock = false;
            continue;
        }
        char c = pBlock[lOffset - lBlockStart];
        szLine[n++] = c;
        ++lOffset;
        if (c == '\n') break;
    }
    if (n == 0) return nullptr;
    szLine[n] = '\0';
    char* s = szLine;
    while (*s && chars::IsSpace(*s)) ++s;
    kavro::stripspace(s);
    if (oneKeptBlock && bKeep) {
        auto kept = aLines.find(start);
        if (kept == aLines.end())
            kept = aLines.emplace(start, KeptLine{KeepText(s), static_cast<uint32_t>(n), ++uiKeptLineSerials}).first;
        uiLineSerial = kept->second.uiSerial;
        pSerialLine = kept->second.pText;
        return Count(pSerialLine);
    }
    return Count(s);
}

const char* ScriptReader::KeepText(const char* text) {
    const size_t size = strlen(text) + 1;  // at most kLineSize
    if (uiChunkUsed + size > kTextChunk) {
        aTextChunks.emplace_back(new char[kTextChunk]);
        uiChunkUsed = 0;
    }
    char* to = aTextChunks.back().get() + uiChunkUsed;
    memcpy(to, text, size);
    uiChunkUsed += size;
    return to;
}

const char* ScriptReader::GetLine() {
#ifdef KVEXEC_FUZZ
    kavro::FuzzStep();
#endif
    kavro::TermFlushIfStale();
    lLinePos = lOffset;
    if (bEof) return nullptr;
    uiLineSerial = 0;
    pSerialLine = nullptr;
    if (bBlockKept) {
        auto it = aLines.find(lOffset);
        if (it != aLines.end() && lOffset + it->second.uiLength <= lBlockStart + lBlockLength) {
            lOffset += it->second.uiLength;
            bLineRepeated = true;
            uiLineSerial = it->second.uiSerial;
            pSerialLine = it->second.pText;
            return Count(pSerialLine);
        }
    }
    const char* line = Assemble();
    bLineRepeated = bBlockKept;
    return line;
}

// Where every line from the top to the end lies, as reading them one by one would cut them, and
// which of them could be labels. The blocks are read afresh and not kept.
void ScriptReader::IndexLabels() {
    std::unique_ptr<char[]> block(new char[kBlockSize]);
    long blockStart = -1;
    long blockLength = 0;
    long offset = 0;
    std::string word;
    for (;;) {
        long at = offset;
        long length = 0;
        bool newline = false;
        bool inWord = true;
        word.clear();
        bool leading = true;
        while (static_cast<unsigned long>(length) + 1 < kLineSize && !newline) {
            if (at >= blockStart + blockLength || at < blockStart) {
                if (blockStart >= 0 && blockLength < kBlockSize) break;  // the end
                blockStart = at & ~(kBlockSize - 1);
                ssize_t n;
                do {
                    n = pread(iFd, block.get(), kBlockSize, blockStart);
                } while (n < 0 && errno == EINTR);
                if (n < 0) ReadFailed();
                blockLength = n;
                if (at >= blockStart + blockLength) break;
            }
            char c = block[at - blockStart];
            ++at;
            ++length;
            if (c == '\n') newline = true;
            bool space = chars::IsSpace(c);
            if (leading && space) continue;
            leading = false;
            if (inWord && (space || c == '\0')) inWord = false;
            if (inWord) word += static_cast<char>(chars::Lower(c));
        }
        if (length == 0) break;
        if (!word.empty() && word.back() == ':') aLabels[word].push_back(aLineNewlines.size());
        aLineStarts.push_back(offset);
        aLineNewlines.push_back(newline);
        offset += length;
    }
    aLineStarts.push_back(offset);  // where the last line ends
    bIndexed = true;
}

// Puts the line at start (length bytes) into the line buffer, trimmed, as the last line read.
void ScriptReader::LoadLine(long start, long length) {
    // The line held is a label's, not one GetLine gave: it has no number.
    uiLineSerial = 0;
    pSerialLine = nullptr;
    auto known = aLines.find(start);
    if (known != aLines.end()) {
        pszLine = known->second.pText;
        return;
    }
    auto label = aLabelLines.find(start);
    if (label != aLabelLines.end()) {
        pszLine = label->second.c_str();
        return;
    }
    long n = 0;
    while (n < length) {
        long blockStart = (start + n) & ~(kBlockSize - 1);
        const char* data;
        long got;
        bool kept;
        ReadBlock(blockStart, &data, &got, &kept);
        long from = start + n - blockStart;
        if (from >= got) break;
        long take = std::min(length - n, got - from);
        memcpy(szLine + n, data + from, static_cast<size_t>(take));
        n += take;
    }
    szLine[n] = '\0';
    char* s = szLine;
    while (*s && chars::IsSpace(*s)) ++s;
    kavro::stripspace(s);
    pszLine = s;
    // Kept for the next jump to it while the file stays as it is (Forget drops them).
    if (aLabelLines.size() < kKeptLabelLines) pszLine = aLabelLines.emplace(start, s).first->second.c_str();
}

const std::vector<size_t>* ScriptReader::LabelRows(const char* target) {
    const size_t length = strlen(target);
    for (const RecentLabel& r : aRecentLabels)
        if (r.uiGeneration == uiGeneration && r.sName.size() == length && memcmp(r.sName.data(), target, length) == 0)
            return r.pRows;
    std::string folded = FoldedFirstWord(target);
    auto label = aLabels.find(folded);
    RecentLabel& r = aRecentLabels[uiNextRecentLabel++ % (sizeof aRecentLabels / sizeof *aRecentLabels)];
    r.pRows = label != aLabels.end() && folded.size() == length ? &label->second : nullptr;
    r.sName = target;
    r.uiGeneration = uiGeneration;
    return r.pRows;
}

bool ScriptReader::FindLabel(const char* target) {
    // The index tells where lines lie in the file as it is now; it serves only while the block
    // held was read from the file as it is now too (a block read before the file changed is
    // read on from as it was).
    if (!bTrace && bKeep && !bMemory && !bEof && Unchanged() && uiBlockGeneration == uiGeneration) {
        struct Hold {
            bool& b;
            explicit Hold(bool& flag) : b(flag) { b = true; }
            ~Hold() { b = false; }
        } hold(bHold);
        if (!bIndexed) IndexLabels();
        const size_t lines = aLineNewlines.size();
        auto from =
            std::lower_bound(aLineStarts.begin(), aLineStarts.begin() + static_cast<std::ptrdiff_t>(lines), lOffset);
        if (from != aLineStarts.begin() + static_cast<std::ptrdiff_t>(lines) && *from == lOffset) {
            size_t first = static_cast<size_t>(from - aLineStarts.begin());
            size_t found = lines;
            if (const std::vector<size_t>* rows = LabelRows(target)) {
                auto at = std::lower_bound(rows->begin(), rows->end(), first);
                if (at != rows->end()) found = *at;
            }
            if (found == lines) {
                // Every line to the end is read, and counted.
                iLine = static_cast<int>(static_cast<unsigned>(iLine) + static_cast<unsigned>(lines - first));
                lOffset = aLineStarts[lines];
                lLinePos = lOffset;
                bEof = true;
                return false;
            }
            const long start = aLineStarts[found];
            const long length = aLineStarts[found + 1] - start;
            iLine = static_cast<int>(static_cast<unsigned>(iLine) + static_cast<unsigned>(found - first) + 1u);
            lLinePos = start;
            lOffset = start + length;
            LoadLine(start, length);
            // The block that holds the line's last byte is the one a reader would now hold; a
            // line that ran into the end of the file has met it.
            long blockStart = (lOffset - 1) & ~(kBlockSize - 1);
            bool kept;
            ReadBlock(blockStart, &pBlock, &lBlockLength, &kept);
            lBlockStart = blockStart;
            bBlockKept = kept;
            uiBlockGeneration = uiGeneration;
            bEof = !aLineNewlines[found] && length < static_cast<long>(kLineSize) - 1 && found + 1 == lines;
            return true;
        }
    }
    while (const char* line = GetLine())
        if (FirstWordIs(line, target)) return true;
    return false;
}
