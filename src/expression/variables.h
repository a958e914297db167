// The variable table, the positional-argument count, and variable substitution.
#pragma once

#include <cstdint>

#include "expression.h"

// Positional arguments, &0 included; &SHIFT lowers it.
extern int iArgs;

extern uint32_t uiMaxVars;  // capacity of the variable table
extern uint32_t uiVars;     // variables in use

// Empties the table; index: find names through an index rather than by scanning the table.
void InitVariables(bool index = true);
Variable* VarAt(uint32_t index);
Variable* FindVar(const char* name);
Variable* AddVar(const char* name);
// Finds the variable, creating it when there is none: it never fails.
Variable* GetVar(const CBString& name);
// GetVar of the current token (a reference); the variable a kept token names is kept with it.
Variable* GetTokenVar(Parser* p);
void SetIntegerVar(const char* name, int value);
void SetDoubleVar(const char* name, double value);
void SetStringVar(const char* name, const char* value);
// The value of the current token as an operand.
void GetValue(Parser* p, Const* out);

// ---- Substitution ------------------------------------------------------------------------

// GetVarValue substitutes: it returns the text with its references replaced by their values,
// right to left, so that "&&x" reads the variable named by &x's value.
CBString GetVarValue(CBString reference);
CBString SubstVarValue(CBString text, int position);
// The line expansion: references replaced, "&*" for the arguments, a ";" outside quotes ends it.
CBString Expand(const char* text);
