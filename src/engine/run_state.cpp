#include "engine/run_state.h"

#include <cstdlib>

namespace quorva {

RunState run;

void FieldGrid::Release::operator()(std::uint32_t* cells) const { std::free(cells); }

bool FieldGrid::clear() {
    // Zeroed pages come from the system as they are touched, so a fresh block beats clearing 66 MB of the old one.
    cells_.reset();
    cells_.reset(static_cast<std::uint32_t*>(std::calloc(entries, sizeof(std::uint32_t))));
    return allocated();
}

void recordError(int code, int line, int column, const std::u16string& sheet) {
    run.error.code = code;
    run.error.flag = hostTrue;
    run.error.first.line = line;
    run.error.first.column = column;
    if (&sheet != &run.error.first.sheet) {
        run.error.first.sheet = sheet;
    }
}

void recordOutOfMemory() noexcept {
    run.error.code = runerror::outOfMemory;
    run.error.flag = hostTrue;
    run.error.first.line = 0;
    run.error.first.column = 0;
    run.error.first.sheet.clear();
}

}  // namespace quorva
