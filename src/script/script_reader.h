// The script reader: the one place script lines come from. It owns the script file, the offset of
// the next line, the line counter, the trace of lines read and the flush of waiting output before
// a line is read. Lines are handed out as views of its own buffer, valid until the next read.
#pragma once

#include <cstdio>
#include <initializer_list>

#include "tokenizer.h"

class ScriptReader {
public:
    // Lines are cut after this many characters minus one; each piece counts as a line.
    static constexpr unsigned long kLineSize = 1024;

    ScriptReader() = default;
    ScriptReader(const ScriptReader&) = delete;
    ScriptReader& operator=(const ScriptReader&) = delete;
    ~ScriptReader() { Close(); }

    // Opens the script read-only; false, with errno set, when it cannot be opened.
    bool Open(const char* path);
    void Close();

    // Reads the next line: remembers where it starts, counts it, trims it and traces it. Returns
    // its first non-blank character, or null at the end of the script (nothing else changes then).
    const char* GetLine();
    // The last line read, trimmed.
    const char* Line() const { return pszLine; }
    // The offset of the next line, and of the start of the last line read.
    long Tell() const { return lOffset; }
    long LineStart() const { return lLinePos; }
    void Seek(long offset);
    void Rewind();

    // Reads lines up to one whose first word is one of words (case ignored) and returns it, or
    // null at the end of the script; each line before it is handed to each.
    template <typename Each>
    const char* ReadUntil(std::initializer_list<const char*> words, Each each) {
        while (const char* line = GetLine()) {
            for (const char* w : words)
                if (FirstWordIs(line, w)) return line;
            each(line);
        }
        return nullptr;
    }
    const char* ReadUntil(std::initializer_list<const char*> words) {
        return ReadUntil(words, [](const char*) {});
    }

    // Reads on from the current position to the first line whose first word is target (the label
    // with its ":"). True when found, with the position after that line; false at the end.
    bool FindLabel(const char* target);

    int iLine = 0;        // number of the last line read, counted from 1; jumps set it again
    bool bTrace = false;  // &CONTROL TRACE: every line read is printed as "<n: text>"

private:
    FILE* pFile = nullptr;
    long lOffset = 0;   // offset of the next byte to read, kept here so a read costs no system call
    long lLinePos = 0;  // offset of the start of the last line read
    char szLine[kLineSize] = {};
    const char* pszLine = szLine;
};
