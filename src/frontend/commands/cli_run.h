// `quorva run`: settings from options and workbook, the run, its outputs.
#pragma once

#include "frontend/commands/options.h"

namespace quorva::frontend {

/// Returns the exit status or throws CommandFailure, as every command does.
int runCommand(const RunOptions& options);

}  // namespace quorva::frontend
