// The .xlsx report.
#pragma once

#include <string>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// A workbook with native charts; samples when asked for and they fit a sheet.
std::string xlsxReport(const RunResults& results, bool withSamples);

}  // namespace quorva::frontend
