// The quantile tables in use: which laws at which parameters have been asked for often enough to have one.
#pragma once

#include "numerics/law_functions.h"

namespace quorva {

/// The quantile out of a table, or NaN where the law has to be asked. Counts the calls of each law and shape; the call
/// that makes one worth a table builds it. Locations and scales are factored out, so that laws which differ in nothing
/// else share a table. Reading is safe from several threads.
double tabulatedQuantile(int law, double u, const LawParameters& parameters);

}  // namespace quorva
