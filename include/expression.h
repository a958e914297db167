// Expressions: value conversions, the operand stack, the evaluator, its operators, the built-in
// functions and the date and time routines behind &SYSTEM.
#pragma once

#include <ctime>

#include "types.h"

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

void Evaluate(Parser* p, Const* result, bool condition);
void Eval(Parser* p, Const* result, bool condition);
void Operation(Parser* p, char op);
void Logical(Parser* p, char op);
void Comparison(Parser* p, CompType c);

// ---- Built-in functions ------------------------------------------------------------------

struct Function {
    const char* pszName;
    int iId;
    void (*pHandler)(Parser*, Const*);
    int iMinArgs;
    int iMaxArgs;
};

extern const Function aFunctions[];
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
