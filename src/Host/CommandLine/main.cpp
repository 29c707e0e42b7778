#include "Host/CommandLine/Program.h"

int main(int argumentCount, char** arguments) {
  return quaverly::commandline::runProgram(argumentCount, arguments);
}
