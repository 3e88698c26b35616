// The settings of a run as reports list them.
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

}  // namespace quorva::frontend
