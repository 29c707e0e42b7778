#pragma once

namespace quaverly::commandline {

/// Reads the arguments, runs the command that they name, and returns the program's exit status.
int runProgram(int argumentCount, char** arguments);

}  // namespace quaverly::commandline
