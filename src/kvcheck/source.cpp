// Reading a script and cutting it into the lines kvexec reads.
#include "source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "char_classes.h"
#include "script_reader.h"

namespace {

// The reader cuts a line after this many bytes when no line feed came first.
constexpr long kPiece = static_cast<long>(ScriptReader::kLineSize) - 1;

bool ReadFd(int fd, std::string* bytes) {
    char buffer[65536];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) return true;
        bytes->append(buffer, static_cast<size_t>(n));
    }
}

// The text of the piece [from, to): up to a NUL byte, trimmed; column is that of `from`.
Piece MakePiece(const std::string& bytes, size_t from, size_t to, int line, int column) {
    const void* nul = memchr(bytes.data() + from, '\0', to - from);
    size_t end = nul ? static_cast<size_t>(static_cast<const char*>(nul) - bytes.data()) : to;
    size_t start = from;
    while (start < end && chars::IsSpace(bytes[start])) ++start;
    while (end > start && chars::IsSpace(bytes[end - 1])) --end;
    return Piece{line, column + static_cast<int>(start - from), bytes.substr(start, end - start)};
}

void FindLongLines(const std::string& bytes, Script* script) {
    int line = 1;
    size_t start = 0;
    while (start < bytes.size()) {
        size_t feed = bytes.find('\n', start);
        bool fed = feed != std::string::npos;
        long n = static_cast<long>((fed ? feed : bytes.size()) - start);
        // The line feed belongs to the last piece: a line of exactly 1023 bytes leaves it alone.
        long read = fed ? n + 1 : n;
        if (read > kPiece) script->aLongLines.push_back(LongLine{line, n, (read + kPiece - 1) / kPiece});
        if (!fed) break;
        start = feed + 1;
        ++line;
    }
}

}  // namespace

bool ReadScript(const std::string& path, std::string* bytes) {
    bytes->clear();
    if (path == "-") return ReadFd(STDIN_FILENO, bytes);
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    bool ok = ReadFd(fd, bytes);
    int e = errno;
    close(fd);
    errno = e;
    return ok;
}

Script SplitScript(const std::string& bytes) {
    Script script;
    int line = 1;
    size_t lineStart = 0;
    size_t at = 0;
    while (at < bytes.size()) {
        size_t end = std::min(bytes.size(), at + static_cast<size_t>(kPiece));
        const void* feed = memchr(bytes.data() + at, '\n', end - at);
        if (feed) end = static_cast<size_t>(static_cast<const char*>(feed) - bytes.data()) + 1;
        script.aPieces.push_back(MakePiece(bytes, at, end, line, static_cast<int>(at - lineStart) + 1));
        if (bytes[end - 1] == '\n') {
            ++line;
            lineStart = end;
        }
        at = end;
    }
    FindLongLines(bytes, &script);
    return script;
}
