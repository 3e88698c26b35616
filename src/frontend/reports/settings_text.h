// The settings of a run, and what became of them, as reports show them.
#pragma once

#include <string>
#include <vector>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// A setting of a run and its value, a number in the form that reads back exactly.
struct SettingText {
    std::string name;
    std::string value;
};
std::vector<SettingText> settingTexts(const RunResults& results);

/// "10000 iterations, Latin hypercube with 10000 strata, seed 7".
std::string samplingText(const RunResults& results);
/// "Criterion mean, converged at iteration 1200", or that it did not.
std::string convergenceText(const Convergence& convergence);

}  // namespace quorva::frontend
