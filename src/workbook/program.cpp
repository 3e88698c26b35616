#include "workbook/program.h"

#include "workbook/workings.h"

namespace quorva::workbook {

std::unique_ptr<Program> compileProgram(Workings& workings) {
    auto program = std::make_unique<Program>();
    for (const int index : workings.liveOrder) {
        program->callsModel = program->callsModel || workings.formulas[static_cast<std::size_t>(index)].callsModel;
        program->usesClock = true;
    }
    return program;
}

void runProgram(Workings& workings, Program&) {
    for (const int index : workings.liveOrder) {
        workings.computeLive(index);
    }
}

}  // namespace quorva::workbook
