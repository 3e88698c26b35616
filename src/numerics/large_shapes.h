// Incomplete gamma and beta functions whose parameters are all so large that the general functions would take too many
// steps to converge: the normal law, with the first term of its correction.
#pragma once

namespace quorva {

/// A probability and its complement, each to its own relative precision.
struct FunctionTails {
    long double lower;
    long double upper;
};

/// Gamma laws of a shape, and beta laws whose smaller shape is, above this are large: the error of the expansion, of
/// the order of 1 / shape^1.5, is then lost in rounding wherever the tail is a normal double.
constexpr double largeShape = 1e7;

/// P(Z <= z) and P(Z > z) of a beta law with mean m = a / (a + b), a <= b, at z = m (1 + excess); `ratio` is a / b. A
/// ratio of 0 is the gamma law of shape a with scale 1 at a (1 + excess). After Temme, "The asymptotic expansion of the
/// incomplete gamma functions", SIAM J. Math. Anal. 10, 1979 and "Incomplete Laplace integrals", 13, 1982 (DLMF 8.12.3,
/// 8.18.9): normal tails at a transformed argument, and the first term of the remainder.
FunctionTails largeShapeTails(long double a, long double ratio, long double excess);

enum class Side { Lower, Upper };

/// The excess beyond which, on the given side, lies the probability `tail`, 0 < tail <= 1/2.
long double largeShapeQuantile(double tail, Side side, long double a, long double ratio);

}  // namespace quorva
