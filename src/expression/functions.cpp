// The function table and the string functions. A handler steps past its own word, reads its
// arguments with the evaluator and pushes exactly one result.
#include <cstdlib>
#include <cstring>

#include "expression.h"
#include "variables.h"

// In the order of the function words.
constexpr Function aFunctions[] = {
    {FunctionWord::Cat, 1, ParseCat, 2, 2},     {FunctionWord::Env, 2, ParseEnv, 1, 1},
    {FunctionWord::Exist, 3, ParseExist, 1, 1}, {FunctionWord::Filesize, 4, ParseFilesize, 1, 1},
    {FunctionWord::Index, 5, ParseIndex, 0, 0}, {FunctionWord::Len, 6, ParseLen, 1, 1},
    {FunctionWord::Lit, 7, ParseLit, 1, 1},     {FunctionWord::Sub, 9, ParseSub, 2, 3},
    {FunctionWord::Typ, 10, ParseTyp, 1, 1},    {FunctionWord::System, 11, ParseSystem, 1, 3},
};

static_assert(RowsInWordOrder<FunctionWord>(aFunctions), "one function row per function word, in order");

// A name with "$" appended is never tried: no function word carries one.
const Function* GetFunction(const char* name) {
    int row = kFunctionWords.Find(name);
    return row < 0 ? nullptr : &aFunctions[row];
}

CBString TextArgument(Parser* p) {
    Const arg;
    Eval(p, &arg, false);
    ToString(&arg);
    return arg.sValue;
}

int IntegerArgument(Parser* p) {
    Const arg;
    Eval(p, &arg, false);
    ToInteger(&arg);
    return arg.iValue;
}

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

void ParseCat(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    CBString first = TextArgument(p);
    CBString second = TextArgument(p);
    PushString(p, first + second);
}

// The name is upper-cased: a variable whose name has lower-case letters cannot be read.
void ParseEnv(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    CBString name = TextArgument(p);
    name.toupper();
    const char* value = getenv(name);
    PushString(p, value ? value : "");
}

void ParseIndex(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    PushInteger(p, iArgs);
}

void ParseLen(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    PushInteger(p, TextArgument(p).length());
}

void ParseLit(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    PushString(p, p->sToken);
}

// &SUB text start [end]: positions start to end, counted from 1. Without an end (or with 0) it
// gives the text after the first start characters, one position further on than the
// three-argument form starts.
void ParseSub(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    CBString s = TextArgument(p);
    int n = s.length();
    int start = IntegerArgument(p);
    int end = p->eTokenType == TokenEol ? 0 : IntegerArgument(p);
    if (start == 0 || start > n) {
        PushString(p, "");
    } else if (end != 0) {
        // Positions before the text are left out: start -1 and end 3 give the first three.
        if (end > n) end = n;
        PushString(p, s.midstr(start - 1, end - start + 1));
    } else if (start < 0) {
        // Without an end, a negative start would point before the text: nothing.
        PushString(p, "");
    } else {
        PushString(p, s.midstr(start, n));
    }
}

// "N" for a number or a plain unsigned decimal text, "A" for anything else; a sign makes a text
// alphabetic.
void ParseTyp(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    Const arg;
    Eval(p, &arg, false);
    const char* kind = "A";
    if (arg.eType == VarInteger || arg.eType == VarFloat) {
        kind = "N";
    } else if (arg.eType == VarString) {
        const char* s = arg.sValue;
        bool numeric;
        if (*s == '+' || *s == '-') {
            ++s;
            numeric = false;
        } else {
            numeric = IsDigit(*s);
        }
        bool point = false;
        for (; *s; ++s) {
            if (IsDigit(*s)) continue;
            if (*s == '.' && !point) {
                point = true;
                if (s[1] == '\0') break;
                if (!IsDigit(s[1])) {
                    numeric = false;
                    break;
                }
                continue;
            }
            numeric = false;
            break;
        }
        kind = numeric ? "N" : "A";
    }
    PushString(p, kind);
}
