// From the record of a run to the results that are reported.
#pragma once

#include <vector>

#include "frontend/run/driver.h"

namespace quorva::frontend {

/// Statistics, correlations, sensitivity, convergence trace, capability and warnings of a run. The module's tables must
/// still be there: the contributions of the inputs come from it. Takes the samples out of the record.
RunResults analyseRun(const RunSettings& settings, const std::vector<Field>& fields, RunRecord& record);

}  // namespace quorva::frontend
