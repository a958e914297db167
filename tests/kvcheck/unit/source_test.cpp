// The checker cuts a script into lines exactly as kvexec's reader does, and knows where each lies.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "script_reader.h"
#include "source.h"

namespace {

// The lines kvexec's reader hands out for these bytes.
std::vector<std::string> ReaderLines(const std::string& bytes) {
    char path[] = "/tmp/kvcheck_source_XXXXXX";
    int fd = mkstemp(path);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(fd);
    std::vector<std::string> lines;
    ScriptReader reader;
    EXPECT_TRUE(reader.Open(path, false));
    while (const char* line = reader.GetLine()) lines.emplace_back(line);
    reader.Close();
    unlink(path);
    return lines;
}

std::vector<std::string> CheckerLines(const std::string& bytes) {
    std::vector<std::string> lines;
    for (const Piece& p : SplitScript(bytes).aPieces) lines.push_back(p.sText);
    return lines;
}

// A script of random lines, some long, with blanks, tabs, carriage returns and NUL bytes.
std::string RandomScript(std::mt19937* random) {
    static const char kBytes[] = "ab &;\t\r\n\n\n\v\f:=\"";
    std::string bytes;
    int lines = static_cast<int>((*random)() % 40);
    for (int i = 0; i < lines; ++i) {
        size_t length = (*random)() % 8 == 0 ? 1000 + (*random)() % 2200 : (*random)() % 40;
        for (size_t j = 0; j < length; ++j) {
            unsigned pick = (*random)() % 200;
            bytes += pick == 0 ? '\0' : kBytes[pick % (sizeof kBytes - 1)];
        }
        if ((*random)() % 5 != 0) bytes += '\n';
    }
    return bytes;
}

}  // namespace

TEST(SplitScript, CutsAsTheReader) {
    std::mt19937 random(20260114);
    for (int i = 0; i < 300; ++i) {
        std::string bytes = RandomScript(&random);
        ASSERT_EQ(CheckerLines(bytes), ReaderLines(bytes)) << "script " << i;
    }
}

TEST(SplitScript, EdgesOfTheLineSize) {
    for (size_t n : {1021, 1022, 1023, 1024, 2045, 2046, 2047}) {
        std::string line(n, 'x');
        EXPECT_EQ(CheckerLines(line + "\nend\n"), ReaderLines(line + "\nend\n")) << n;
        EXPECT_EQ(CheckerLines(line), ReaderLines(line)) << n;
    }
}

TEST(SplitScript, PiecesKnowTheirPhysicalLineAndColumn) {
    std::string bytes = "  a\n" + std::string(1023, 'b') + "  c \n\t d\n";
    Script s = SplitScript(bytes);
    ASSERT_EQ(s.aPieces.size(), 4u);
    EXPECT_EQ(s.aPieces[0].iLine, 1);
    EXPECT_EQ(s.aPieces[0].iColumn, 3);
    EXPECT_EQ(s.aPieces[1].iLine, 2);
    EXPECT_EQ(s.aPieces[1].iColumn, 1);
    EXPECT_EQ(s.aPieces[2].iLine, 2);
    EXPECT_EQ(s.aPieces[2].iColumn, 1026);
    EXPECT_EQ(s.aPieces[2].sText, "c");
    EXPECT_EQ(s.aPieces[3].iLine, 3);
    EXPECT_EQ(s.aPieces[3].iColumn, 3);
}

TEST(SplitScript, NulEndsTheText) {
    Script s = SplitScript(std::string("ab\0cd\n", 6));
    ASSERT_EQ(s.aPieces.size(), 1u);
    EXPECT_EQ(s.aPieces[0].sText, "ab");
}

TEST(SplitScript, LongLines) {
    std::string bytes = std::string(1022, 'a') + "\n" + std::string(1023, 'b') + "\n" + std::string(2046, 'c') + "\n" +
                        std::string(1023, 'd');
    Script s = SplitScript(bytes);
    ASSERT_EQ(s.aLongLines.size(), 2u);
    EXPECT_EQ(s.aLongLines[0].iLine, 2);
    EXPECT_EQ(s.aLongLines[0].lBytes, 1023);
    EXPECT_EQ(s.aLongLines[0].lPieces, 2);
    EXPECT_EQ(s.aLongLines[1].iLine, 3);
    EXPECT_EQ(s.aLongLines[1].lBytes, 2046);
    EXPECT_EQ(s.aLongLines[1].lPieces, 3);
    Script last = SplitScript(std::string(1024, 'e'));
    ASSERT_EQ(last.aLongLines.size(), 1u);
    EXPECT_EQ(last.aLongLines[0].lPieces, 2);
}
