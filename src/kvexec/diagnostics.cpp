// The error reports and &ERROR.
#include "diagnostics.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "blocks.h"
#include "kavro.h"
#include "kvexec.h"
#include "statements.h"

namespace {

void Report(Parser* p, const char* message, const char* file, int line) {
    kavro::TermPrintf("\r%s, in %s, line %d.\rdetected in %s, line %d\r", message, szScript, p->iLine, file, line);
}

[[noreturn]] void Fail(Parser* p, const char* message, const char* file, int line, int status) {
    Report(p, message, file, line);
    exit(status);
}

}  // namespace

void ERROR(Parser* p, const char* file, int line, const char* message) { Report(p, message, file, line); }

void SYNTAX_ERROR(Parser* p, const char* file, int line) { Fail(p, "Syntax error", file, line, Status::Syntax); }

void STACK_OVERFLOW_ERROR(Parser* p, const char* file, int line) {
    Fail(p, "CStack overflow", file, line, Status::Stack);
}

void STACK_UNDERFLOW_ERROR(Parser* p, const char* file, int line) {
    Fail(p, "CStack underflow", file, line, Status::Stack);
}

void MEMORY_ERROR(Parser* p, const char* file, int line) { Fail(p, strerror(errno), file, line, Status::Memory); }

void EXEC_ERROR(Parser* p, const char* file, int line) { Fail(p, "Internal error", file, line, Status::Internal); }

void NO_EXPRESSION(Parser* p, const char* file, int line) {
    Fail(p, "Expression not allowed in &IF, &ELSEIF, &UNTIL, &WHILE", file, line, Status::Internal);
}

void MISSING_END(Parser* p, const char* file, int line, CBlock* block) {
    const char* name = BlockName(block->eType);
    if (!name) EXEC_ERROR(p, Src::Kvexec, At::MissingEndKind);
    CBString message;
    message.format("Unterminated %s in %u\r", name, block->uiLinePos);
    Fail(p, message, file, line, Status::MissingEnd);
}

void NO_PENDING(Parser* p, const char* file, int line, const char* what) {
    CBString message;
    message.format("No pending %s", what);
    Fail(p, message, file, line, Status::NoPending);
}

void NO_LABEL(Parser* p, const char* file, int line, const char* label) {
    CBString message;
    message.format("Line label %s not found", label);
    Fail(p, message, file, line, Status::NoLabel);
}

void STRING_INDEX_ERROR(Parser* p, const char* message) {
    kavro::TermPrintf("\r%s, in %s, line %d.\r", message, szScript, p->iLine);
    exit(Status::StringIndex);
}

char* _Alloc_Buf(Parser* p, size_t size) {
    char* buffer = static_cast<char*>(malloc(size));
    if (!buffer) MEMORY_ERROR(p, Src::Kvexec, At::AllocBuf);
    buffer[0] = '\0';
    return buffer;
}

// &ERROR line: registers a line to dispatch after every command that fails. It is kept as
// written and expanded only when it runs.
void ParseError(Parser* p) {
    skip_spaces(p);
    if (*p->pPos == '\0') SYNTAX_ERROR(p, Src::Kvexec, At::ErrorLine);
    p->sOnError = p->pPos;
    SkipLine(p);
}
