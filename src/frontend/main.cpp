#include "frontend/commands/program.h"

int main(int argc, char** argv) { return quorva::frontend::runProgram({argv + 1, argv + argc}); }
