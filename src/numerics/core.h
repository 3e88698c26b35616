// Normal and Student functions.
#pragma once

namespace quorva {

/// Standard normal distribution function; exact in both tails.
double CDFNormalStd(double x);
/// Standard normal quantile of p in [0, 1]; infinite at the ends, NaN outside.
double InvCDFNormalStd(double p);
/// Quantile of Student's t with df > 0 degrees of freedom.
double InvCDFStudent(double p, double df);

}  // namespace quorva
