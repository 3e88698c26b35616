// The sheets of a workbook model.
#pragma once

#include <cstdint>

#include "engine/run_state.h"

namespace quorva {

/// The 1-based position of a sheet among the sheets of the model; 0 when it is not listed.
int findSheetSlot(std::uint32_t sheetId);

}  // namespace quorva
