// Fields and results as JSON. Numbers that do not exist are null.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

nlohmann::ordered_json numbersJson(const std::vector<double>& values);
/// Fields as `inspect --json` and the run report show them.
nlohmann::ordered_json fieldsJson(const std::vector<Field>& fields);
nlohmann::ordered_json runJson(const RunResults& results);
/// Text with a line break at its end; the same for the same results.
std::string jsonText(const nlohmann::ordered_json& json);

}  // namespace quorva::frontend
