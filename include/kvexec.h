// The interpreter core: process-wide state, script reading, line dispatch, the tokenizer,
// variables and their substitution, and command execution.
#pragma once

#include <cstdint>

#include "types.h"

// ---- Process-wide state ------------------------------------------------------------------

extern char* szScript;     // the script path as given on the command line
extern int iArgs;          // positional arguments, &0 included
extern char szLine[1024];  // the line buffer of the read loop and of every statement that reads lines
extern int iRetCode;       // declared, never used

constexpr const char* kVersion = "26.01.14";

// Runs the interpreter with the command line; returns at the end of the script.
int RunMain(int argc, char** argv);

// ---- Script reading ----------------------------------------------------------------------

// Reads the next script line into buffer (at most size - 1 characters), counts it, trims it and
// traces it; returns its first non-blank character, or null at end of file.
char* GetLine(Parser* p, char* buffer, unsigned long size);
// The script file's position, and the ways it is moved.
long ScriptTell(Parser* p);
void ScriptSeek(Parser* p, long offset);
void ScriptRewind(Parser* p);
// Moves the scan position to the end of the current line, so nothing more of it is interpreted.
void SkipLine(Parser* p);
// Whether the first word of a line (up to white space) is keyword, case ignored.
bool FirstWordIs(const char* line, const char* keyword);

// ---- Line dispatch -----------------------------------------------------------------------

void _Parse_Line(Parser* p, char* line);

// Statements that read their own lines nest one call per open block (and a failing &ERROR line
// one per failure); past this depth the run ends as out of memory rather than exhausting the
// machine stack. Each nesting level holds a guard.
constexpr int kMaxNesting = 100000;
struct NestingGuard {
    explicit NestingGuard(Parser* p);
    ~NestingGuard();
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;
};
CBString ParseCommand(Parser* p, const char* text);

// ---- Tokenizer ---------------------------------------------------------------------------

struct Comparator {
    const char* pszName;
    CompType eType;
};

extern const char* const aszTokenTypes[];
extern const Comparator aComparators[];

bool GetNextToken(Parser* p);
TokenType GetTokenType(Parser* p);
void skip_spaces(Parser* p);
bool IsConst(const TokenType& t);
const Comparator* GetComparator(const char* text);
const char* GetOperator(const char* text);
const char* GetLogical(const char* text);
int Second(const char* hms);
CBString ExtractFirstWord(const char* text);

// ---- Variables ---------------------------------------------------------------------------

extern uint32_t uiMaxVars;  // capacity of the variable table
extern uint32_t uiVars;     // variables in use

void InitVariables();
Variable* VarAt(uint32_t index);
Variable* FindVar(const char* name);
Variable* AddVar(Parser* p, const char* name);
Variable* GetVar(Parser* p, const CBString& name);
Variable* GetVar(Parser* p, const char* name);
void SetIntegerVar(Parser* p, const char* name, int value);
void SetDoubleVar(Parser* p, const char* name, double value);
void SetStringVar(Parser* p, const char* name, const char* value);
void GetValue(Parser* p, Const* out);

// ---- Substitution ------------------------------------------------------------------------

CBString GetVarValue(CBString reference);
CBString GetVarValue(const char* reference);
CBString SubstVarValue(CBString text, int position);
CBString Expand(const char* text);

// ---- Commands ----------------------------------------------------------------------------

int Exec(Parser* p, CBString& command);
