// The HTML report.
#pragma once

#include <string>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// One self-contained page.
std::string htmlReport(const RunResults& results);

}  // namespace quorva::frontend
