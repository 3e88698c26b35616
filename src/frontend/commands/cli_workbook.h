// `quorva inspect`, `quorva verify` and `quorva values`: a workbook without a run.
#pragma once

#include "frontend/commands/options.h"

namespace quorva::frontend {

// Each returns the exit status or throws CommandFailure.
int inspectCommand(const ModelOptions& options);
int verifyCommand(const ModelOptions& options);
int valuesCommand(const ModelOptions& options);

}  // namespace quorva::frontend
