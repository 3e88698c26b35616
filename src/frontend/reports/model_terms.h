// What a model is made of, in words: names from the catalogue and a field in one line.
#pragma once

#include <string>
#include <string_view>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// Name of a law ("Normal"), of one of its parameters ("sigma"), of a statistic ("Mean"); empty when unknown.
std::string lawName(int law);
std::string lawParameterName(int law, int index);
int lawParameterCount(int law);
std::string statisticName(int statistic);
std::string_view kindName(FieldKind kind);
/// "Normal(mu 5, sigma 2)", "1 to 4", "Mean of B7": what a field is, in one line.
std::string fieldDescription(const Field& field);

}  // namespace quorva::frontend
