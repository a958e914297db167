// A script as kvexec's reader cuts it: lines of at most 1023 bytes, each trimmed, each knowing
// where it lies in the file as an editor shows it (physical line, byte column).
#pragma once

#include <string>
#include <vector>

// One line as kvexec reads it: a whole physical line, or a piece of a longer one.
struct Piece {
    int iLine;          // the physical line it lies in, counted from 1
    int iColumn;        // the column of the first byte of sText in that physical line, from 1
    std::string sText;  // up to a NUL byte, without leading and trailing white space
};

// A physical line that kvexec reads as more than one line.
struct LongLine {
    int iLine;
    long lBytes;   // before the line feed
    long lPieces;  // the lines kvexec makes of it
};

struct Script {
    std::vector<Piece> aPieces;
    std::vector<LongLine> aLongLines;
};

// The whole content of path ("-": standard input). False, with errno set, when it cannot be read.
bool ReadScript(const std::string& path, std::string* bytes);
Script SplitScript(const std::string& bytes);
