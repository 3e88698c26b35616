// Every value of a run as CSV.
#pragma once

#include "frontend/results/run_results.h"
#include "frontend/text/output_file.h"

namespace quorva::frontend {

/// A header of field names and a line per iteration; empty where an iteration gave no number.
void writeSamplesCsv(const RunResults& results, Sink& sink);

}  // namespace quorva::frontend
