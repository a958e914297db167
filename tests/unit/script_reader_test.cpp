// The script reader: lines as fgets cuts them, blocks as a buffered file holds them, the line
// counter, and the label index, which must land where reading line by line lands.
#include "script_reader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <fstream>
#include <string>

#include "test_support.h"

namespace {

class Reader : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        ASSERT_FALSE(dir.sPath.empty());
        sPath = dir / "script.kvx";
        Write("");
    }
    void Write(const std::string& text) { std::ofstream(sPath, std::ios::binary | std::ios::trunc) << text; }
    // Overwrites bytes in place, as a program rewriting the script would.
    void Patch(long offset, const std::string& text) {
        FILE* f = fopen(sPath.c_str(), "r+");
        fseek(f, offset, SEEK_SET);
        fwrite(text.data(), 1, text.size(), f);
        fclose(f);
    }
    kvtest::TempDir dir;
    std::string sPath;
};

TEST_P(Reader, LinesAreTrimmedAndCounted) {
    Write("  first  \n\tsecond\n\nlast");
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_STREQ(r.GetLine(), "first");
    EXPECT_EQ(r.iLine, 1);
    EXPECT_EQ(r.LineStart(), 0);
    EXPECT_STREQ(r.GetLine(), "second");
    EXPECT_STREQ(r.GetLine(), "");
    EXPECT_STREQ(r.GetLine(), "last");
    EXPECT_EQ(r.iLine, 4);
    EXPECT_EQ(r.GetLine(), nullptr);
    EXPECT_EQ(r.iLine, 4);
    EXPECT_EQ(r.GetLine(), nullptr);  // the end stays the end until the script is repositioned
    r.Rewind();
    EXPECT_STREQ(r.GetLine(), "first");
}

TEST_P(Reader, LongLinesAreReadInPiecesOf1023) {
    Write(std::string(2500, 'x') + "\nnext\n");
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_EQ(std::string(r.GetLine()), std::string(1023, 'x'));
    EXPECT_EQ(std::string(r.GetLine()), std::string(1023, 'x'));
    EXPECT_EQ(std::string(r.GetLine()), std::string(454, 'x'));
    EXPECT_STREQ(r.GetLine(), "next");
    EXPECT_EQ(r.iLine, 4);
}

TEST_P(Reader, TheLineCounterWrapsInsteadOfOverflowing) {
    Write("a\nb\n");
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    r.iLine = INT_MAX;
    r.GetLine();
    EXPECT_EQ(r.iLine, INT_MIN);
}

// Between two repositionings the block held is read as it was; a repositioning reads the file
// as it is now, however often it happens within the same block.
TEST_P(Reader, ABlockIsHeldUntilTheScriptIsRepositioned) {
    Write("one\ntwo\nthree\n");
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_STREQ(r.GetLine(), "one");
    Patch(4, "TWO");
    EXPECT_STREQ(r.GetLine(), "two");
    r.Seek(4);
    EXPECT_STREQ(r.GetLine(), "TWO");
    Patch(4, "Two");
    r.Seek(4);
    EXPECT_STREQ(r.GetLine(), "Two");
    Patch(0, "ONE");
    r.Rewind();
    EXPECT_STREQ(r.GetLine(), "ONE");
}

// Bytes past the block held are read when reading reaches them.
TEST_P(Reader, BytesPastTheBlockComeFromTheFileAsItIsThen) {
    std::string text;
    for (int i = 0; i < 600; ++i) text += "line " + std::to_string(1000 + i) + "\n";  // 10 bytes each
    Write(text);
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_STREQ(r.GetLine(), "line 1000");
    Patch(5000, "LINE 1500");
    Patch(10, "LINE 1001");
    EXPECT_STREQ(r.GetLine(), "line 1001");  // in the block held
    for (int i = 2; i < 500; ++i) r.GetLine();
    EXPECT_STREQ(r.GetLine(), "LINE 1500");  // in a block read later
}

TEST_P(Reader, AppendedLinesAreRead) {
    Write("one\n");
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_STREQ(r.GetLine(), "one");
    std::ofstream(sPath, std::ios::app) << "two\n";
    EXPECT_STREQ(r.GetLine(), "two");
}

// The label index (kept mode, no trace) lands on the line, count and position that reading line
// by line reaches: first match below the start, case ignored, lines cut at 1023 counted.
TEST_P(Reader, FindLabelLandsWhereReadingLands) {
    std::string text =
        "start\n" + std::string(1500, 'y') + "\nLoop: first\n  loop:\nx\n" + std::string(5000, ' ') + "later:\nend\n";
    Write(text);
    for (const char* target : {"loop:", "LOOP:", "later:", "start:", "missing:", "y:"}) {
        ScriptReader plain, kept;
        ASSERT_TRUE(plain.Open(sPath.c_str(), false));
        ASSERT_TRUE(kept.Open(sPath.c_str(), GetParam()));
        for (ScriptReader* r : {&plain, &kept}) {
            r->GetLine();
            r->iLine = 10;
        }
        bool a = plain.FindLabel(target);
        bool b = kept.FindLabel(target);
        EXPECT_EQ(a, b) << target;
        EXPECT_EQ(plain.iLine, kept.iLine) << target;
        if (a) {
            EXPECT_EQ(plain.Tell(), kept.Tell()) << target;
            EXPECT_EQ(plain.LineStart(), kept.LineStart()) << target;
            EXPECT_STREQ(plain.Line(), kept.Line()) << target;
            const char* p = plain.GetLine();
            const char* k = kept.GetLine();
            EXPECT_STREQ(p ? p : "(end)", k ? k : "(end)") << target;
        }
    }
}

// A kept line has a number of its own, the same whenever it is given again; a line not kept, or
// no longer the last line given, has none.
TEST_P(Reader, KeptLinesAreNumberedForGood) {
    Write("alpha\nbeta\nlabel:\n");
    usleep(50000);  // a file changed within the last clock tick is not kept
    ScriptReader r;
    ASSERT_TRUE(r.Open(sPath.c_str(), GetParam()));
    EXPECT_STREQ(r.GetLine(), "alpha");
    EXPECT_EQ(r.LineSerial(), 0u);  // read once: nothing kept yet
    r.Rewind();
    EXPECT_STREQ(r.GetLine(), "alpha");
    const uint64_t alpha = r.LineSerial();
    EXPECT_STREQ(r.GetLine(), "beta");
    const uint64_t beta = r.LineSerial();
    for (int pass = 0; pass < 2; ++pass) {
        r.Rewind();
        EXPECT_STREQ(r.GetLine(), "alpha");
        EXPECT_EQ(r.LineSerial(), alpha);
        EXPECT_STREQ(r.GetLine(), "beta");
        EXPECT_EQ(r.LineSerial(), beta);
    }
    if (GetParam()) {
        EXPECT_NE(alpha, 0u);
        EXPECT_NE(beta, 0u);
        EXPECT_NE(alpha, beta);
    } else {
        EXPECT_EQ(alpha, 0u);
        EXPECT_EQ(beta, 0u);
    }
    r.Rewind();
    ASSERT_TRUE(r.FindLabel("label:"));
    EXPECT_EQ(r.LineSerial(), 0u);  // the line now held is the label's, not a line given
    // Another reader's lines are numbered apart.
    ScriptReader other;
    ASSERT_TRUE(other.Open(sPath.c_str(), GetParam()));
    other.GetLine();
    other.Rewind();
    other.GetLine();
    if (GetParam()) {
        EXPECT_NE(other.LineSerial(), alpha);
    }
}

TEST_P(Reader, ADirectoryIsRefused) {
    ScriptReader r;
    EXPECT_FALSE(r.Open("/tmp", GetParam()));
    EXPECT_EQ(errno, EISDIR);
}

INSTANTIATE_TEST_SUITE_P(PlainAndKept, Reader, ::testing::Values(false, true));

}  // namespace
