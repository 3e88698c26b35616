// The statistic at whose convergence a run stops, as people write it: "mean", "stdev" or "percentile=P".
#pragma once

#include <string>
#include <string_view>

#include "frontend/results/settings.h"

namespace quorva::frontend {

/// Takes over criterion and percentile; false when the text is no criterion or P not between 0 and 100.
bool readCriterion(std::string_view text, ConvergenceSettings& settings);

std::string criterionText(const ConvergenceSettings& settings);

}  // namespace quorva::frontend
