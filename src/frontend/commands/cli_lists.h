// `quorva laws`, `quorva functions` and `quorva statistics`: what there is.
#pragma once

#include "frontend/commands/options.h"

namespace quorva::frontend {

// Each returns the exit status or throws CommandFailure.
int lawsCommand(const ListOptions& options);
int functionsCommand(const ListOptions& options);
int statisticsCommand(const ListOptions& options);

}  // namespace quorva::frontend
