// The fuzzing build's runtime: the budget of a run, the recorded commands and the reset between
// runs. Compiled empty in the program.
#ifdef KVEXEC_FUZZ

#include <cstdlib>
#include <cstring>
#include <ctime>

#include "kavro.h"

namespace kavro {

namespace {

constexpr size_t kKeptCommands = 64;
constexpr size_t kKeptCommandBytes = 256;

unsigned long ulStepsLeft = 0;
long lDeadline = 0;
std::vector<std::string> asCommands;
unsigned long ulCommands = 0;

long Now() {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return t.tv_sec * 1000000000L + t.tv_nsec;
}

// The first word of a command, and the text after it.
bool FirstWord(const char* command, const char* word, const char** rest) {
    while (*command == ' ' || *command == '\t') ++command;
    size_t n = strlen(word);
    if (strncmp(command, word, n) != 0 || (command[n] != '\0' && command[n] != ' ' && command[n] != '\t')) return false;
    *rest = command + n;
    return true;
}

}  // namespace

void FuzzEndRun(int status) { throw RunEnded{status, false}; }

void FuzzStep() {
    if (ulStepsLeft == 0 || --ulStepsLeft == 0 || Now() > lDeadline) throw RunEnded{0, true};
}

void FuzzReset(unsigned long steps, long nanoseconds) {
    ulStepsLeft = steps;
    lDeadline = Now() + nanoseconds;
    asCommands.clear();
    ulCommands = 0;
    OutputFuzzReset();
    KeyboardFuzzReset();
    t_StackClear();
    t_bStackShow = false;
    uiOutsideTurns = 0;
}

int FuzzCommand(const char* command) {
    FuzzStep();
    ++ulCommands;
    if (asCommands.size() < kKeptCommands) asCommands.emplace_back(command, strnlen(command, kKeptCommandBytes));
    ++uiOutsideTurns;
    const char* rest = nullptr;
    if (FirstWord(command, "false", &rest)) return 1;
    if (FirstWord(command, "exit", &rest)) return static_cast<int>(strtol(rest, nullptr, 10) & 0xff);
    return 0;
}

const std::vector<std::string>& FuzzCommands() { return asCommands; }
unsigned long FuzzCommandCount() { return ulCommands; }

}  // namespace kavro

#endif
