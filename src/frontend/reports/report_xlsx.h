// The .xlsx report.
#pragma once

#include <string>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// A sheet holds a header and at most this many iterations.
constexpr int mostSheetIterations = 1'048'575;

/// A workbook with native charts; when asked for, with the samples of as many iterations as fit a sheet.
std::string xlsxReport(const RunResults& results, bool withSamples);

}  // namespace quorva::frontend
