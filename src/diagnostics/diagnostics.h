// Error reports and the one way the run ends. Every error ends the run with one report,
// "\r<message>, in <script>, line <n>.\rdetected in <unit>, line <n>\r", naming the script line
// and the fixed place that detected it. The unit names and detection lines are message text, not
// places in this program's source.
#pragma once

// The units named in reports.
namespace Src {
constexpr const char* Kvexec = "../src/kvexec";
constexpr const char* Expression = "../src/expression";
}  // namespace Src

// The detection lines named in reports, by the unit and the check that detects.
namespace At {
// ../src/kvexec
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
}  // namespace At

// Exit statuses, passed to exit() as they stand (a parent sees them modulo 256).
namespace Status {
constexpr int Syntax = 255;
constexpr int Stack = 256;
constexpr int Memory = 12;
constexpr int Internal = 257;
constexpr int NoPending = 259;
constexpr int NoLabel = 260;
constexpr int StringIndex = 134;  // an uncaught string-index exception
}  // namespace Status

// Where reports say the run stands: the script path as given, and the line counter of the script
// being read (read at the moment of each report).
void SetReportSource(const char* script, const int* line);

// The one way the run ends once it has started: waiting output is written, then the process exits
// with the status as it stands.
[[noreturn]] void ExitRun(int status);

[[noreturn]] void SYNTAX_ERROR(const char* file, int line);
[[noreturn]] void STACK_OVERFLOW_ERROR(const char* file, int line);
[[noreturn]] void STACK_UNDERFLOW_ERROR(const char* file, int line);
// The message is the system's text for errno at the moment of the call.
[[noreturn]] void MEMORY_ERROR(const char* file, int line);
[[noreturn]] void EXEC_ERROR(const char* file, int line);
[[noreturn]] void NO_EXPRESSION(const char* file, int line);
[[noreturn]] void NO_PENDING(const char* file, int line, const char* what);
[[noreturn]] void NO_LABEL(const char* file, int line, const char* label);
// The report for a string-index exception that reached the read loop.
[[noreturn]] void STRING_INDEX_ERROR(const char* message);
