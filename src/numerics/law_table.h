// The table of the laws: identifier, what each is made of, and its theoretical moments. The moments are those that
// users' reports have always shown, those included that differ from the textbook (logNormal, weibull1 to weibull3, gev,
// triangular, pert, logistic, trapezoidal); intended.
#pragma once

#include <array>

#include "numerics/law_functions.h"

namespace quorva {

using LawMoment = double (*)(const LawParameters&);

struct Law {
    int law;                        ///< identifier
    const LawFunctions* functions;  ///< null for the identifier that no law has
    LawMoment mean;
    LawMoment variance;
};

/// By law index (identifier - 1).
extern const std::array<Law, lawCount> lawsByIndex;

/// The law of an index; null for an index that no law has.
inline const LawFunctions* findLaw(int index) {
    return index >= 0 && index < static_cast<int>(lawCount) ? lawsByIndex[static_cast<std::size_t>(index)].functions
                                                            : nullptr;
}

}  // namespace quorva

extern "C" {

/// Theoretical statistic of a law, by its identifier: 1 the mean, 3 the standard deviation, any other number the
/// variance. 0 for an identifier without a law; MissingValue for the deviation of a negative variance. Exported.
double TheoStat(int law, int statistic, double Param1, double Param2, double Param3, double Param4);
}
