// The program: start-up and the script read loop.
#pragma once

constexpr const char* kVersion = "26.01.14";

class ScriptReader;

// Runs the interpreter with the command line; returns at the end of the script.
int RunMain(int argc, char** argv);
// The run itself, once the command line has been checked: the script argv[1] with the arguments
// after it, read by the reader given (which has not read anything yet); bPlain: keep nothing.
int RunScript(ScriptReader& script, int argc, char** argv, bool bPlain);
