// Run error codes in words.
#pragma once

#include <string>
#include <vector>

#include "frontend/results/run_results.h"
#include "frontend/text/command_failure.h"

namespace quorva::frontend {

/// The error that the module has recorded, as a sentence with sheet, cell and field name; `code` is what the call
/// returned and stands where the module recorded nothing.
CommandFailure runError(int code, const std::vector<Field>& fields);

/// True when the module has recorded an error.
bool runErrorPending();

}  // namespace quorva::frontend
