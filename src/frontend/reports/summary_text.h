// What a person sees on the terminal after a run.
#pragma once

#include <string>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// Lines of at most 100 columns.
std::string summaryText(const RunResults& results);

}  // namespace quorva::frontend
