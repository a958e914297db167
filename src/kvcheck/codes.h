// The checker's findings: every message it can give, with its code and severity, in one table.
// A code names one kind of finding; a kind may have several messages (the same trap met through
// different statements). Codes are stable: scripts and editors refer to them.
#pragma once

#include <initializer_list>
#include <string>

enum class Severity { Error, Warning };

enum class Message : int {
    LineStart,
    LabelText,
    FunctionFirst,
    LoneAmpersand,
    IfAction,
    ElseifAction,
    ConditionFunction,
    ConditionMissingSyntax,
    ConditionMissingInternal,
    ErrorMissing,
    SleepMissing,
    ForForm,
    GotoLabel,
    CallLabel,
    CallAbove,
    NoPending,
    LoopOpen,
    ConditionLogical,
    Misspelt,
    IntegerRange,
    Semicolon,
    LowerCased,
    IfOpen,
    ForOpen,
    BegtypeOpen,
    BegstackOpen,
    AssignedWord,
    ReadWord,
    ShiftNegative,
    SleepNegative,
    CallInLoop,
    LongLine,
    ElseEndif,
    BreakInLoop,
    ContinueInLoop,
    NestedLoop,
    FunctionAfterOperator,
    TypeStar,
    NestedEndif,
    Ampersand,
    Count,
};

struct MessageRow {
    Message eMessage;
    const char* pszCode;
    Severity eSeverity;
    const char* pszText;  // "{}" marks where each argument goes, in order
};

// One row per message, in the order of Message.
extern const MessageRow aMessages[];

const MessageRow& Row(Message m);
// The text of a message with its arguments put in.
std::string FormatMessage(Message m, std::initializer_list<std::string> args);
// Whether code is the code of a warning.
bool IsWarningCode(const std::string& code);
