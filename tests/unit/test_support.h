// Shared set-up for unit tests: a fresh interpreter context over one line of text, and captured
// terminal output.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "blocks.h"
#include "diagnostics.h"
#include "expression.h"
#include "kavro.h"
#include "script_reader.h"
#include "statements.h"
#include "variables.h"

namespace kvtest {

// The whole content of a file.
inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// A fresh directory under /tmp, removed with everything in it at the end of the test.
class TempDir {
public:
    TempDir() {
        char templ[] = "/tmp/kvexec-unit-XXXXXX";
        const char* d = mkdtemp(templ);
        if (d) sPath = d;
    }
    ~TempDir() {
        if (!sPath.empty()) {
            std::string cmd = "rm -rf '" + sPath + "'";
            int rc = system(cmd.c_str());
            (void)rc;
        }
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string operator/(const char* name) const { return sPath + "/" + name; }
    std::string sPath;
};

// Values of each type, for tests that build operands by hand.
inline Const Int(int v) {
    Const c;
    c.eType = VarInteger;
    c.iValue = Int16(v);
    return c;
}

inline Const Dbl(double d) {
    Const c;
    c.eType = VarFloat;
    c.dValue = d;
    return c;
}

inline Const Str(const char* s) {
    Const c;
    c.eType = VarString;
    c.sValue = s;
    return c;
}

// A context as start-up makes it, with an empty variable table holding &retcode, reading `line`.
class Context {
public:
    Context() {
        SetReportSource("unit.kvx", &script.iLine);
        p.pScript = &script;
        InitVariables();
        ResetBlocks();
        p.pStack = AllocOperandStack();
        SetIntegerVar("&retcode", 0);
        kavro::TermSetMode(kavro::TermMode::Raw);
        kavro::TermCapture(&output);
    }
    ~Context() {
        kavro::TermCapture(nullptr);
        delete[] p.pStack;
    }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    // Points the scanner at a line of text, as dispatch does.
    void SetLine(const char* line) { ::SetLine(&p, line, false); }

    // Evaluates an expression the way a statement does: first token read, then Evaluate.
    Const Eval(const char* expression, bool condition = false) {
        SetLine(expression);
        GetNextToken(&p);
        Const c;
        Evaluate(&p, &c, condition);
        return c;
    }

    // What the terminal received so far.
    std::string Output() {
        kavro::TermFlush();
        return output;
    }

    ScriptReader script;
    Parser p;
    std::string output;
};

}  // namespace kvtest
