// Student's t, for the core functions and the law.
#pragma once

namespace quorva {

/// P(T <= x) with df > 0 degrees of freedom.
double studentCdf(double x, double df);

/// Quantile of u in [0, 1]; infinite at the ends.
double studentQuantile(double u, double df);

}  // namespace quorva
