// The program: start-up and the script read loop.
#pragma once

constexpr const char* kVersion = "26.01.14";

// Runs the interpreter with the command line; returns at the end of the script.
int RunMain(int argc, char** argv);
