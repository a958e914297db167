// Plain command lines started without the shell (spawn.cpp), for the command processor.
#pragma once

#include <signal.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace kavro {

// A plain command line resolved as the shell resolves it: the program, its words, and the
// environment the shell would give it (valid until the next PreparePlain).
struct PlainCommand {
    std::vector<std::string> aWords;
    std::vector<char*> apArgv;  // the words, for exec
    std::string sProgram;
    char* const* ppEnvironment = nullptr;
    pid_t pidSelf = 0;  // the interpreter's process id
};

// Resolves a line; false when it needs the shell: it is not plain (IsPlainCommand), its program
// is not found, or only the shell can tell what its environment would be.
bool PreparePlain(const char* command, PlainCommand& plain);

// Starts the program as the shell would: standard input from `input` (when not -1), broken pipe
// at its default (it may be ignored; the child signal never is: see SignalsInit), an empty mask. The caller holds every
// signal back meanwhile (SignalsCommandStarting), and any handler it has installed asks SignalInForkedChild first: a
// signal caught then is put back to its default by exec itself. Returns the process, or -1 when
// the program could not be started (its process is reaped); nothing visible has happened then.
pid_t StartPlain(const PlainCommand& plain, int input);

}  // namespace kavro
