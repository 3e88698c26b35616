// Distribution functions of the laws. A law index is the law identifier minus 1; parameters in the order of the law
// table, unused ones 0.
#pragma once

namespace quorva {

/// P(X <= x). NaN for an unknown index, a NaN argument or parameters that define no law.
double CDFFunction(int law, double x, double p1, double p2, double p3, double p4);

/// The smallest x with F(x) >= u; u = 0 and u = 1 give the ends of the support. NaN for u outside [0, 1], an unknown
/// index, a NaN argument or parameters that define no law.
double InvCDFFunction(int law, double u, double p1, double p2, double p3, double p4);

/// Quantiles of a law with constant parameters come from tables once they have been asked for a few hundred times:
/// within 1e-14 of the law in u, exact for discrete laws, and many times faster. Turning them on (as they are at first)
/// or off forgets every table, so that what follows depends on nothing before it.
void useQuantileTables(bool on);

/// The gamma function; +infinity at +infinity, NaN at the poles.
double GammaF(double x);

/// Ends of the triangular law with mode m whose q1 and q2 quantiles are a and b; NaN in both where there is none.
void TriangularQFindAB(double a, double m, double b, double q1, double q2, double& lower, double& upper);

/// Large-sample confidence bounds of the p-quantile of n values: order statistics at ranks n p -+ z sqrt(n p (1 - p)),
/// z the standard normal quantile of `confidence`, rounded outwards and kept within 1..n.
void V_ConfQuantilesLargeSample(const double* values, int n, double p, double confidence, double& lower, double& upper);

}  // namespace quorva
