// Standard normal law, for the laws built on it.
#pragma once

namespace quorva {

/// P(Z <= x), relative precision kept in the lower tail. The argument in extended precision, since x = -37 magnifies
/// an error of its last digit 1400 times.
double normalCdf(long double x);

/// Quantile of p in [0, 1]; infinite at the ends, NaN outside.
double normalQuantile(double p);

}  // namespace quorva
