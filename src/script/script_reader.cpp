// Reading the script line by line.
#include "script_reader.h"

#include <cctype>

#include "kavro.h"

bool ScriptReader::Open(const char* path) {
    Close();
    pFile = fopen(path, "re");
    lOffset = 0;
    return pFile != nullptr;
}

void ScriptReader::Close() {
    if (pFile) fclose(pFile);
    pFile = nullptr;
}

void ScriptReader::Seek(long offset) {
    fseek(pFile, offset, SEEK_SET);
    lOffset = ftell(pFile);
}

void ScriptReader::Rewind() {
    rewind(pFile);
    lOffset = 0;
}

const char* ScriptReader::GetLine() {
    kavro::TermFlushIfStale();
    lLinePos = lOffset;
    // As fgets does: at most kLineSize - 1 characters, up to and including a line feed.
    unsigned long n = 0;
    int c = EOF;
    while (n + 1 < kLineSize && (c = getc_unlocked(pFile)) != EOF) {
        szLine[n++] = static_cast<char>(c);
        if (c == '\n') break;
    }
    if (n == 0) return nullptr;
    szLine[n] = '\0';
    lOffset += static_cast<long>(n);
    ++iLine;
    char* s = szLine;
    while (*s && isspace(static_cast<unsigned char>(*s))) ++s;
    kavro::stripspace(s);
    pszLine = s;
    if (bTrace) kavro::TermPrintf("<%d: %s>\r", iLine, s);
    return s;
}

bool ScriptReader::FindLabel(const char* target) {
    while (const char* line = GetLine())
        if (FirstWordIs(line, target)) return true;
    return false;
}
