// What the checker found in one script, and the two ways of printing it.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "codes.h"

struct Finding {
    int iLine;
    int iColumn;
    Message eMessage;
    std::string sMessage;

    const MessageRow& Row() const { return ::Row(eMessage); }
};

class Report {
public:
    void Add(int line, int column, Message m, std::initializer_list<std::string> args = {}) {
        aFindings.push_back(Finding{line, column, m, FormatMessage(m, args)});
    }
    // In the order they are printed: by line, then column, then code.
    void Sort();
    const std::vector<Finding>& Findings() const { return aFindings; }

private:
    std::vector<Finding> aFindings;
};

// "file:line:column: severity: message [code]"
void PrintText(FILE* out, const std::string& file, const Finding& f);
// One object of the JSON array, without the separating comma.
void PrintJson(FILE* out, const std::string& file, const Finding& f);
// A JSON string: quoted, with quote, backslash and control bytes escaped.
std::string JsonString(const std::string& s);
