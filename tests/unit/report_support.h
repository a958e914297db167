// Helpers for tests of error reports. A report is printed through the terminal and then the
// process ends with exit(), so these tests run as death tests: the child sends the terminal's
// output to standard error, where the death-test pattern can see it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "kavro.h"

namespace kvtest {

// In a death test's child: terminal output goes to standard error and is written out at exit.
inline void TerminalToStderr() {
    kavro::TermCapture(nullptr);
    fflush(stdout);
    dup2(2, 1);
    std::atexit([] { kavro::TermFlush(); });
}

// A regular expression that matches text literally.
inline std::string Literal(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (std::string(".[]()*+?{}|^$\\").find(c) != std::string::npos) out += '\\';
        out += c;
    }
    return out;
}

// The pattern of one complete report, as printed for the unit-test script "unit.kvx".
inline std::string Report(const char* message, const char* unit, int detectedAt, int scriptLine = 0) {
    return Literal("\r" + std::string(message) + ", in unit.kvx, line " + std::to_string(scriptLine) +
                   ".\rdetected in " + unit + ", line " + std::to_string(detectedAt) + "\r");
}

}  // namespace kvtest

// Runs a statement that must end the run with `status` (as the parent sees it, modulo 256) after
// printing a report that matches `pattern`.
#define EXPECT_REPORT_EXIT(statement, status, pattern) \
    EXPECT_EXIT(                                       \
        {                                              \
            kvtest::TerminalToStderr();                \
            statement;                                 \
        },                                             \
        ::testing::ExitedWithCode(status), pattern)
