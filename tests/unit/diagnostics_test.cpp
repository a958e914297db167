// The error reports: one format, the detecting unit and line, and the status of each kind.
#include "diagnostics.h"

#include <cerrno>
#include <cstring>

#include "report_support.h"
#include "statements.h"
#include "test_support.h"

namespace {

class Diagnostics : public ::testing::Test {
protected:
    kvtest::Context ctx;
};

TEST_F(Diagnostics, SyntaxErrorEndsWith255) {
    ctx.script.iLine = 12;
    EXPECT_REPORT_EXIT(SYNTAX_ERROR(Src::Kvexec, At::LineStart), 255,
                       kvtest::Report("Syntax error", "../src/kvexec", 1843, 12));
}

TEST_F(Diagnostics, StackErrorsEndWith256SeenAsZero) {
    EXPECT_REPORT_EXIT(STACK_OVERFLOW_ERROR(Src::Expression, At::PushString), 0,
                       kvtest::Report("CStack overflow", "../src/expression", 133));
    EXPECT_REPORT_EXIT(STACK_UNDERFLOW_ERROR(Src::Expression, At::Pop), 0,
                       kvtest::Report("CStack underflow", "../src/expression", 173));
}

TEST_F(Diagnostics, MemoryErrorPrintsTheSystemMessage) {
    EXPECT_REPORT_EXIT(
        {
            errno = ENOMEM;
            MEMORY_ERROR(Src::Kvexec, At::AllocBuf);
        },
        12, kvtest::Report("Cannot allocate memory", "../src/kvexec", 183));
}

TEST_F(Diagnostics, InternalErrorAndNoExpressionEndWith257SeenAsOne) {
    EXPECT_REPORT_EXIT(EXEC_ERROR(Src::Expression, At::ValuesLeft), 1,
                       kvtest::Report("Internal error", "../src/expression", 1088));
    EXPECT_REPORT_EXIT(
        NO_EXPRESSION(Src::Expression, At::GroupInCondition), 1,
        kvtest::Report("Expression not allowed in &IF, &ELSEIF, &UNTIL, &WHILE", "../src/expression", 948));
}

TEST_F(Diagnostics, NoPendingAndNoLabel) {
    EXPECT_REPORT_EXIT(NO_PENDING(Src::Kvexec, At::WendPending, "&WHILE"), 3,
                       kvtest::Report("No pending &WHILE", "../src/kvexec", 1382));
    EXPECT_REPORT_EXIT(NO_LABEL(Src::Kvexec, At::GotoLabel, "done:"), 4,
                       kvtest::Report("Line label done: not found", "../src/kvexec", 969));
}

TEST_F(Diagnostics, StringIndexReportEndsWith134) {
    ctx.script.iLine = 3;
    EXPECT_REPORT_EXIT(STRING_INDEX_ERROR("CBString::character index out of bounds"), 134,
                       kvtest::Literal("\rCBString::character index out of bounds, in unit.kvx, line 3.\r"));
}

TEST_F(Diagnostics, ErrorStatementKeepsTheRestOfTheLineAsWritten) {
    ctx.SetLine("   &GOTO failed ; &x");
    ParseError(&ctx.p);
    EXPECT_EQ(ctx.p.sOnError, "&GOTO failed ; &x");
    EXPECT_EQ(*ctx.p.pPos, '\0');
}

TEST_F(Diagnostics, ErrorStatementWithoutALineIsASyntaxError) {
    ctx.SetLine("   ");
    EXPECT_REPORT_EXIT(ParseError(&ctx.p), 255, kvtest::Report("Syntax error", "../src/kvexec", 843));
}

}  // namespace
