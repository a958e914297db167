// The error reports and the exit path.
#include "diagnostics.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cbstring.h"
#include "kavro.h"

namespace {

const char* szReportScript = "";
const int* piReportLine = nullptr;

int ReportLine() { return piReportLine ? *piReportLine : 0; }

[[noreturn]] void Fail(const char* message, const char* file, int line, int status) {
    kavro::TermPrintf("\r%s, in %s, line %d.\rdetected in %s, line %d\r", message, szReportScript, ReportLine(), file,
                      line);
    ExitRun(status);
}

}  // namespace

void SetReportSource(const char* script, const int* line) {
    szReportScript = script;
    piReportLine = line;
}

void ExitRun(int status) {
    kavro::TermFlush();
#ifdef KVEXEC_FUZZ
    kavro::FuzzEndRun(status);
#endif
    exit(status);
}

void SYNTAX_ERROR(const char* file, int line) { Fail("Syntax error", file, line, Status::Syntax); }

void STACK_OVERFLOW_ERROR(const char* file, int line) { Fail("CStack overflow", file, line, Status::Stack); }

void STACK_UNDERFLOW_ERROR(const char* file, int line) { Fail("CStack underflow", file, line, Status::Stack); }

void MEMORY_ERROR(const char* file, int line) { Fail(strerror(errno), file, line, Status::Memory); }

void EXEC_ERROR(const char* file, int line) { Fail("Internal error", file, line, Status::Internal); }

void NO_EXPRESSION(const char* file, int line) {
    Fail("Expression not allowed in &IF, &ELSEIF, &UNTIL, &WHILE", file, line, Status::Internal);
}

void NO_PENDING(const char* file, int line, const char* what) {
    CBString message;
    message.format("No pending %s", what);
    Fail(message, file, line, Status::NoPending);
}

void NO_LABEL(const char* file, int line, const char* label) {
    CBString message;
    message.format("Line label %s not found", label);
    Fail(message, file, line, Status::NoLabel);
}

void STRING_INDEX_ERROR(const char* message) {
    kavro::TermPrintf("\r%s, in %s, line %d.\r", message, szReportScript, ReportLine());
    ExitRun(Status::StringIndex);
}
