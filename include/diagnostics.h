// Error reports. Every error ends the run with one report, "\r<message>, in <script>, line <n>.
// \rdetected in <unit>, line <n>\r", naming the script line and the fixed place that detected it.
#pragma once

#include <cstddef>

#include "types.h"

// The units named in reports.
namespace Src {
constexpr const char* Kvexec = "../src/kvexec";
constexpr const char* Expression = "../src/expression";
constexpr const char* Blocks = "../src/blocks";
}  // namespace Src

// The detection lines named in reports, by the unit and the check that detects.
namespace At {
// ../src/kvexec
constexpr int MissingEndKind = 152;
constexpr int AllocBuf = 183;
constexpr int GetValueOperand = 395;
constexpr int BreakPending = 487;
constexpr int CallLabel = 511;
constexpr int ContinuePending = 516;
constexpr int ControlAutocr = 531;
constexpr int ControlCase = 534;
constexpr int ControlPrompt = 548;
constexpr int ElsePending = 692;
constexpr int ElseifPending = 787;
constexpr int ElseifCondition = 794;
constexpr int ElseifTrailing = 799;
constexpr int EndPending = 834;
constexpr int ErrorLine = 843;
constexpr int EscChannel = 857;
constexpr int EscSwitch = 881;
constexpr int ForVariable = 909;
constexpr int ForEqual = 916;
constexpr int ForComma = 923;
constexpr int GotoLabel = 969;
constexpr int IfCondition = 981;
constexpr int IfTrailing = 999;
constexpr int IfendPending = 1047;
constexpr int LoopPending = 1055;
constexpr int NextPending = 1067;
constexpr int ReturnPending = 1119;
constexpr int SleepValue = 1215;
constexpr int StackValue = 1262;
constexpr int UntilCondition = 1351;
constexpr int WendPending = 1382;
constexpr int WhileCondition = 1415;
constexpr int LabelTrailing = 1808;
constexpr int LineStart = 1843;
constexpr int ErrorCopy = 1890;
constexpr int AmpersandWord = 1899;
// ../src/expression
constexpr int PushInteger = 107;
constexpr int PushDouble = 120;
constexpr int PushString = 133;
constexpr int PushNull = 145;
constexpr int Pop = 173;
constexpr int FunctionInCondition = 940;
constexpr int GroupInCondition = 948;
constexpr int ExpressionStart = 963;
constexpr int FieldCopy = 1047;
constexpr int RangeEnd = 1065;
constexpr int ValuesLeft = 1088;
// ../src/blocks
constexpr int Unterminated = 72;
}  // namespace At

// Exit statuses, passed to exit() as they stand (a parent sees them modulo 256).
namespace Status {
constexpr int Syntax = 255;
constexpr int Stack = 256;
constexpr int Memory = 12;
constexpr int Internal = 257;
constexpr int MissingEnd = 258;
constexpr int NoPending = 259;
constexpr int NoLabel = 260;
constexpr int StringIndex = 134;  // an uncaught string-index exception
}  // namespace Status

void ERROR(Parser* p, const char* file, int line, const char* message);
[[noreturn]] void SYNTAX_ERROR(Parser* p, const char* file, int line);
[[noreturn]] void STACK_OVERFLOW_ERROR(Parser* p, const char* file, int line);
[[noreturn]] void STACK_UNDERFLOW_ERROR(Parser* p, const char* file, int line);
[[noreturn]] void MEMORY_ERROR(Parser* p, const char* file, int line);
[[noreturn]] void EXEC_ERROR(Parser* p, const char* file, int line);
[[noreturn]] void NO_EXPRESSION(Parser* p, const char* file, int line);
[[noreturn]] void MISSING_END(Parser* p, const char* file, int line, CBlock* block);
[[noreturn]] void NO_PENDING(Parser* p, const char* file, int line, const char* what);
[[noreturn]] void NO_LABEL(Parser* p, const char* file, int line, const char* label);
// The report for a string-index exception that reached the read loop.
[[noreturn]] void STRING_INDEX_ERROR(Parser* p, const char* message);

char* _Alloc_Buf(Parser* p, size_t size);
