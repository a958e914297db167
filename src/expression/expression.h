// Expressions: typed values, the run's state record, value conversions, the operand stack, the
// evaluator, its operators, the built-in functions and the date and time routines behind &SYSTEM.
// Expressions read tokens of the current line; they never move the script.
#pragma once

#include <cstdint>
#include <ctime>

#include "cbstring.h"
#include "keywords.h"
#include "kvtypes.h"
#include "tokenizer.h"

class ScriptReader;

// A typed value. The slots are kept side by side, not in a union: a conversion writes the new
// slot and the tag and leaves the others as they were, and one comparison reads a stale slot.
struct Const {
    XVarType eType = VarUndef;
    int16_t iValue = 0;
    double dValue = 0.0;
    CBString sValue;
};

// One operand-stack entry: a leading word that nothing uses, then the value.
struct StackEntry {
    int16_t iReserved = 0;
    Const value;
};

// A variable record: the name with its leading "&", and its value.
struct Variable {
    CBString sName;
    Const value;
};

// Parser is the whole run's state, not only a parser: the scan of the current line (TokenScan),
// the script being read, the operand stack, the &ERROR line and the &CONTROL settings. One exists
// for the run and is passed to every handler.
struct Parser : TokenScan {
    ScriptReader* pScript = nullptr;
    CBString sOnError;  // the line &ERROR registered, dispatched after every failing command
    StackEntry* pStack = nullptr;
    uint32_t uiStack = 0;
    bool bEcho = true;  // &CONTROL ON/OFF: command lines are printed before they run
    int iAutoCr = 0;    // &CONTROL AUTOCR n: line input ends after n characters
};

// ---- Values ------------------------------------------------------------------------------

void ToString(Const* c);
void ToDouble(Const* c);
void ToInteger(Const* c);
bool ConstCompare(Const* left, Const* right, CompType c);

// ---- Operand stack -----------------------------------------------------------------------

constexpr unsigned kStackSize = 32;
StackEntry* AllocOperandStack();
void PushInteger(Parser* p, int value);
void PushDouble(Parser* p, double value);
void PushString(Parser* p, const char* value);
void PushNull(Parser* p);
void Push(Parser* p, Const* value);
void Pop(Parser* p, Const* out);

// ---- Evaluator and operators -------------------------------------------------------------

// Evaluate is a whole expression: Eval, then the check that no value was left on the stack.
// Eval alone serves the parts of an expression (groups, arguments, the rest after a logical).
void Evaluate(Parser* p, Const* result, bool condition);
void Eval(Parser* p, Const* result, bool condition);
void Operation(Parser* p, char op);
void Logical(Parser* p, char op);
void Comparison(Parser* p, CompType c);

// ---- Built-in functions ------------------------------------------------------------------

// A function word bound to its handler. Id and argument bounds are carried for reference; each
// handler asks for the arguments it takes.
struct Function {
    FunctionWord eWord;
    int iId;
    void (*pHandler)(Parser*, Const*);
    int iMinArgs;
    int iMaxArgs;
};

extern const Function aFunctions[];
// The function named by text (case ignored), or null.
const Function* GetFunction(const char* name);

// Argument readers for the function handlers: one argument expression, converted.
CBString TextArgument(Parser* p);
int IntegerArgument(Parser* p);

void ParseCat(Parser* p, Const* result);
void ParseEnv(Parser* p, Const* result);
void ParseExist(Parser* p, Const* result);
void ParseFilesize(Parser* p, Const* result);
void ParseIndex(Parser* p, Const* result);
void ParseLen(Parser* p, Const* result);
void ParseLit(Parser* p, Const* result);
void ParseSub(Parser* p, Const* result);
void ParseTyp(Parser* p, Const* result);
void ParseSystem(Parser* p, Const* result);

// ---- Date and time -----------------------------------------------------------------------

extern const char* const weekdays[70];
extern const int b_aiDays[2][13];

bool IsLeapYear(int year);
double Tod();
CBString Strtime(const char* format, long t);
CBString Date(int day);
CBString Time(int seconds);
// The clock the date routines read; tests put a fixed one in its place (null restores time()).
void SetClock(time_t (*clock)());
time_t Now();
// The clock's time broken down in the local time zone.
struct tm LocalNow();
