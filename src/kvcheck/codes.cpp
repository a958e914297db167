// The message table.
#include "codes.h"

namespace {

constexpr Severity E = Severity::Error;
constexpr Severity W = Severity::Warning;
using M = Message;

}  // namespace

constexpr MessageRow aMessages[] = {
    {M::LineStart, "KV101", E, "a line cannot start with \"{}\": kvexec reports \"Syntax error\""},
    {M::LabelText, "KV102", E, "text after the label \"{}\": kvexec reports \"Syntax error\""},
    {M::FunctionFirst, "KV103", E, "\"{}\" is a function, not a statement: kvexec reports \"Syntax error\""},
    {M::LoneAmpersand, "KV103", E, "\"&\" alone is not a statement: kvexec reports \"Syntax error\""},
    {M::IfAction, "KV104", E,
     "a one-line &IF takes a statement or a &variable line, not \"{}\": kvexec reports \"Syntax error\"; use the "
     "block form"},
    {M::ElseifAction, "KV104", E,
     "&ELSEIF takes nothing after its condition, not \"{}\": kvexec reports \"Syntax error\""},
    {M::ConditionFunction, "KV105", E,
     "a condition cannot start with \"{}\": kvexec reports \"Expression not allowed in &IF, &ELSEIF, &UNTIL, "
     "&WHILE\"; compute the value into a variable first"},
    {M::ConditionMissingSyntax, "KV106", E, "{} without a condition: kvexec reports \"Syntax error\""},
    {M::ConditionMissingInternal, "KV106", E, "{} without a condition: kvexec reports \"Internal error\""},
    {M::ErrorMissing, "KV106", E, "&ERROR without a line to run: kvexec reports \"Syntax error\""},
    {M::SleepMissing, "KV106", E, "&SLEEP without a time: kvexec reports \"Syntax error\""},
    {M::ForForm, "KV106", E, "&FOR needs \"&variable = start , limit\": kvexec reports \"Syntax error\""},
    {M::GotoLabel, "KV107", E, "label \"{}\" does not exist: kvexec reports \"Line label {}: not found\""},
    {M::CallLabel, "KV108", E, "label \"{}\" does not exist: kvexec reports \"Line label {}: not found\""},
    {M::CallAbove, "KV109", E,
     "label \"{}\" is only above this &CALL (line {}), and &CALL searches forward: kvexec reports \"Line label "
     "{}: not found\""},
    {M::NoPending, "KV110", E, "{} has no matching block open here: kvexec reports \"No pending {}\""},
    {M::LoopOpen, "KV111", E,
     "{} without {}: once its body has run, kvexec reports \"Internal error\" at the end of the file"},
    {M::ConditionLogical, "KV112", E,
     "logical operator \"{}\" in a condition: kvexec reports \"Internal error\"; compute the condition into a "
     "variable first"},
    {M::Misspelt, "KV201", W,
     "\"{}\" is not a statement but a variable (did you mean {}?): the line runs as a command"},
    {M::IntegerRange, "KV202", W, "integer {} does not fit in 16 bits and becomes {}; write {}.0 for a larger number"},
    {M::Semicolon, "KV203", W, "\";\" starts a comment on a command line: \"{}\" is not run"},
    {M::LowerCased, "KV204", W,
     "the command line is lower-cased: \"{}\" runs as \"{}\"; put it in double quotes to keep its case"},
    {M::IfOpen, "KV205", W, "&IF block still open at the end of the file: kvexec ends without a report"},
    {M::ForOpen, "KV205", W, "&FOR without &NEXT: the body runs once, to the end of the file"},
    {M::BegtypeOpen, "KV205", W, "&BEGTYPE text still open at the end of the file: kvexec writes it up to the end"},
    {M::BegstackOpen, "KV205", W, "&BEGSTACK text still open at the end of the file: kvexec stacks it up to the end"},
    {M::AssignedWord, "KV206", W, "\"{}\" is the {} {}: this sets a variable that expressions cannot read"},
    {M::ReadWord, "KV206", W, "\"{}\" is the {} {}, not a variable: &READ reads nothing from here on"},
    {M::ShiftNegative, "KV207", W, "a negative &SHIFT count never finishes"},
    {M::SleepNegative, "KV208", W, "a negative &SLEEP time sleeps practically for ever"},
    {M::CallInLoop, "KV209", W,
     "&CALL inside the {} loop of line {}: the loop then restarts after this call instead of at its head"},
    {M::LongLine, "KV210", W, "line of {} bytes: kvexec reads it as {} lines of at most 1023 bytes"},
    {M::ElseEndif, "KV211", W, "&ENDIF does not end an &ELSE branch that runs: use &IFEND"},
    {M::BreakInLoop, "KV212", W,
     "&BREAK leaves the loop, then the lines after it run once as ordinary lines and {} fails with \"No pending "
     "{}\"; leave the loop with &GOTO"},
    {M::ContinueInLoop, "KV213", W, "&CONTINUE reads no new condition: kvexec reports \"Internal error\""},
    {M::NestedLoop, "KV214", W,
     "{} inside the {} loop of line {}: when the outer loop ends, its search for {} stops at the inner one and "
     "the outer {} fails"},
    {M::FunctionAfterOperator, "KV215", W, "\"{}\" after an operator is not called: compute it into a variable first"},
    {M::TypeStar, "KV216", W, "&TYPE does not expand \"{}\": it prints \"*\""},
    {M::NestedEndif, "KV217", W,
     "&ENDIF closing a nested &IF: when the outer branch is skipped, the skip runs on to the next &IFEND; use "
     "&IFEND"},
    {M::Ampersand, "KV218", W, "\"{}\" is read as a variable reference and removed: the shell never sees it"},
};

namespace {

constexpr bool RowsInOrder() {
    constexpr size_t n = sizeof aMessages / sizeof *aMessages;
    for (size_t i = 0; i < n; ++i)
        if (static_cast<size_t>(aMessages[i].eMessage) != i) return false;
    return n == static_cast<size_t>(Message::Count);
}
static_assert(RowsInOrder(), "one row per message, in the order of Message");

}  // namespace

const MessageRow& Row(Message m) { return aMessages[static_cast<size_t>(m)]; }

std::string FormatMessage(Message m, std::initializer_list<std::string> args) {
    std::string out;
    auto arg = args.begin();
    for (const char* s = Row(m).pszText; *s; ++s) {
        if (s[0] == '{' && s[1] == '}' && arg != args.end()) {
            out += *arg++;
            ++s;
            continue;
        }
        out += *s;
    }
    return out;
}

bool IsWarningCode(const std::string& code) {
    for (const MessageRow& r : aMessages)
        if (r.eSeverity == Severity::Warning && code == r.pszCode) return true;
    return false;
}
