// The live part of a book, compiled for running again and again.
#pragma once

#include <memory>

namespace quorva::workbook {

class Workings;

struct Program {
    bool usesClock = false;
    bool callsModel = false;
};

std::unique_ptr<Program> compileProgram(Workings& workings);
void runProgram(Workings& workings, Program& program);

}  // namespace quorva::workbook
