// Conditions on the results of a run, such as `mean(Profit) >= 100` or `P(Profit < 0) <= 0.05`.
//
//   condition  = measure comparison number
//   measure    = ( mean | stdev | median | min | max | pNN | cp | cpk | ppm ) "(" name ")"
//              | "P" "(" name comparison number ")"
//   comparison = < | <= | > | >= | = | <>
// A name may hold blanks or stand in single quotes (a quote inside is doubled); a number may end in %.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

enum class Comparison { Less, LessEqual, Greater, GreaterEqual, Equal, NotEqual };
enum class Measure { Mean, Stdev, Median, Minimum, Maximum, Percentile, Probability, Capability };

struct Requirement {
    std::string expression;  ///< as given
    Measure measure;
    std::string name;
    double percentile = 0;    ///< Percentile: in percent
    int capabilityIndex = 0;  ///< Capability: 0-based place in capabilityNames
    Comparison inner{};       ///< Probability: name `inner` threshold
    double threshold = 0;
    Comparison comparison;
    double limit;
};

/// Throws CommandFailure (Usage) with the place of the mistake.
Requirement parseRequirement(std::string_view expression);

/// Throws CommandFailure (Model) when the name is no field, or no field with limits where a capability index is asked
/// for.
void checkRequirement(const Requirement& requirement, const std::vector<Field>& fields,
                      const std::vector<SpecificationLimits>& limits);

/// A value that does not exist never passes.
RequirementOutcome evaluateRequirement(const Requirement& requirement, const RunResults& results);

}  // namespace quorva::frontend
