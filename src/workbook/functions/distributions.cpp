// Continuous distributions: density or probability (the last argument says which), tails and quantiles.
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <numbers>

#include "workbook/functions/families.h"
#include "workbook/functions/laws.h"
#include "workbook/functions/normal.h"

namespace quorva::workbook {

namespace {

using namespace laws;
using boost::math::complement;

// ---- normal and lognormal ----

double normal(const double* x, int) {
    const double z = (x[0] - x[1]) / x[2];
    return !(x[2] > 0) ? nan : x[3] != 0 ? normalProbability(z) : normalDensity(z) / x[2];
}
double normalInverse(const double* x, int) { return x[2] > 0 ? x[1] + x[2] * normalQuantile(x[0]) : nan; }
double standardNormal(const double* x, int) { return x[1] != 0 ? normalProbability(x[0]) : normalDensity(x[0]); }
double standardNormalProbability(const double* x, int) { return normalProbability(x[0]); }
double standardNormalInverse(const double* x, int) { return normalQuantile(x[0]); }
double phi(const double* x, int) { return normalDensity(x[0]); }
double gauss(const double* x, int) { return std::erf(x[0] / std::numbers::sqrt2) / 2; }

double lognormal(const double* x, int) {
    if (!(x[0] > 0) || !(x[2] > 0)) {
        return nan;
    }
    const double z = (std::log(x[0]) - x[1]) / x[2];
    return x[3] != 0 ? normalProbability(z) : normalDensity(z) / (x[0] * x[2]);
}
double lognormalProbability(const double* x, int) {
    const double all[] = {x[0], x[1], x[2], 1};
    return lognormal(all, 4);
}
double lognormalInverse(const double* x, int) { return x[2] > 0 ? std::exp(x[1] + x[2] * normalQuantile(x[0])) : nan; }

// ---- gamma, exponential, Weibull ----

double gammaLaw(const double* x, int) {
    if (!(x[0] >= 0) || !(x[1] > 0) || !(x[2] > 0)) {
        return nan;
    }
    const Gamma law(x[1], x[2]);
    if (x[3] != 0) {
        return cdf(law, x[0]);
    }
    if (x[0] == 0) {
        return x[1] > 1 ? 0 : x[1] == 1 ? 1 / x[2] : nan;
    }
    return pdf(law, x[0]);
}
double gammaInverse(const double* x, int) {
    if (!isProbability(x[0]) || !(x[1] > 0) || !(x[2] > 0)) {
        return nan;
    }
    return x[0] == 0 ? 0 : quantileOrNan([&] { return quantile(Gamma(x[1], x[2]), x[0]); });
}
double gammaFunction(const double* x, int) {
    return x[0] <= 0 && x[0] == std::trunc(x[0]) ? nan : boost::math::tgamma(x[0], Policy());
}
double logGamma(const double* x, int) { return x[0] > 0 ? boost::math::lgamma(x[0], Policy()) : nan; }

double exponentialLaw(const double* x, int) {
    if (!(x[0] >= 0) || !(x[1] > 0)) {
        return nan;
    }
    return x[2] != 0 ? -std::expm1(-x[1] * x[0]) : x[1] * std::exp(-x[1] * x[0]);
}

double weibull(const double* x, int) {
    if (!(x[0] >= 0) || !(x[1] > 0) || !(x[2] > 0)) {
        return nan;
    }
    const double power = std::pow(x[0] / x[2], x[1]);
    return x[3] != 0 ? -std::expm1(-power) : x[1] / x[2] * std::pow(x[0] / x[2], x[1] - 1) * std::exp(-power);
}

// ---- beta, between lower and upper end ----

struct BetaShape {
    double alpha;
    double beta;
    double lower;
    double upper;
    bool valid() const { return alpha > 0 && beta > 0 && alpha < largest && beta < largest && upper > lower; }

    static constexpr double largest = 1e150;  // products of shapes stay finite
};
/// The ends start at `from`; they are 0 and 1 when not given.
BetaShape betaShape(const double* x, int count, int from) {
    return {x[1], x[2], count > from ? x[from] : 0, count > from + 1 ? x[from + 1] : 1};
}

double betaValue(double x, const BetaShape& shape, bool cumulative) {
    if (!shape.valid() || !(x >= shape.lower) || !(x <= shape.upper)) {
        return nan;
    }
    const double width = shape.upper - shape.lower;
    const double inside = (x - shape.lower) / width;
    if (cumulative) {
        return cdf(Beta(shape.alpha, shape.beta), inside);
    }
    // Not the library's density of the law, which is 0 at both ends whatever the shape.
    return boost::math::ibeta_derivative(shape.alpha, shape.beta, inside, Policy()) / width;
}
double betaLaw(const double* x, int count) { return betaValue(x[0], betaShape(x, count, 4), x[3] != 0); }
double betaProbability(const double* x, int count) { return betaValue(x[0], betaShape(x, count, 3), true); }

/// The quantile of the beta law on [0, 1]. Where it is so near 0 that the probability is x^alpha / (alpha B(alpha,
/// beta)) to the last digit, that is solved: the library's search starts outside [0, 1] for some of these.
double betaQuantile(double alpha, double beta, double p) {
    const double scale = boost::math::beta(alpha, beta, Policy());
    const double nearZero = std::exp((std::log(p) + std::log(alpha) + std::log(scale)) / alpha);
    if (scale > 0 && std::fabs(beta - 1) * nearZero < 1e-17) {
        return nearZero;
    }
    return quantileOrNan([&] { return quantile(Beta(alpha, beta), p); });
}

double betaInverse(const double* x, int count) {
    const BetaShape shape = betaShape(x, count, 3);
    if (!shape.valid() || !(x[0] > 0) || !(x[0] < 1)) {
        return nan;
    }
    return shape.lower + (shape.upper - shape.lower) * betaQuantile(shape.alpha, shape.beta, x[0]);
}

// ---- Student's t ----

/// P(T <= t) with every digit in both tails.
double studentProbability(double t, double freedom) { return cdf(StudentsT(freedom), t); }

double student(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    if (!(n >= 1)) {
        return nan;
    }
    return x[2] != 0 ? studentProbability(x[0], n) : pdf(StudentsT(n), x[0]);
}
/// No degrees of freedom, or a part of one: #DIV/0!.
Value studentValue(Call&, Arguments arguments) {
    const double x[] = {arguments[0].number(), arguments[1].number(), arguments[2].number()};
    return std::trunc(x[1]) == 0 && x[1] >= 0 ? Value(ErrorCode::Div0) : Value(student(x, 3));
}
double studentRightTail(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    return n >= 1 ? studentProbability(-x[0], n) : nan;
}
double studentTwoTails(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    return n >= 1 && x[0] >= 0 ? 2 * studentProbability(-x[0], n) : nan;
}
/// TDIST(x, degrees of freedom, tails).
double studentTails(const double* x, int) {
    const double tails = std::trunc(x[2]);
    if (!(x[0] >= 0) || (tails != 1 && tails != 2)) {
        return nan;
    }
    return tails == 1 ? studentRightTail(x, 2) : studentTwoTails(x, 2);
}
double studentInverse(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    return n >= 1 && x[0] > 0 && x[0] < 1 ? quantileOrNan([&] { return quantile(StudentsT(n), x[0]); }) : nan;
}
double studentInverseTwoTails(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    return n >= 1 && x[0] > 0 && x[0] <= 1 ? -quantileOrNan([&] { return quantile(StudentsT(n), x[0] / 2); }) + 0.0
                                           : nan;
}

// ---- F ----

bool validF(double first, double second) { return first >= 1 && second >= 1; }

double fisherF(const double* x, int) {
    const double first = degreesOfFreedom(x[1]);
    const double second = degreesOfFreedom(x[2]);
    if (!validF(first, second) || !(x[0] >= 0)) {
        return nan;
    }
    return x[3] != 0 ? cdf(FisherF(first, second), x[0]) : pdf(FisherF(first, second), x[0]);
}
double fisherFRightTail(const double* x, int) {
    const double first = degreesOfFreedom(x[1]);
    const double second = degreesOfFreedom(x[2]);
    return validF(first, second) && x[0] >= 0 ? cdf(complement(FisherF(first, second), x[0])) : nan;
}
/// The quantile of F with n and m degrees of freedom from that of the beta distribution, counted from the right or
/// left.
double fisherFQuantile(double n, double m, double p, bool fromRight) {
    double rest = nan;  // 1 - share, with all its digits
    const double share = quantileOrNan([&] {
        return fromRight ? boost::math::ibetac_inv(n / 2, m / 2, p, &rest, Policy())
                         : boost::math::ibeta_inv(n / 2, m / 2, p, &rest, Policy());
    });
    return m * share / (n * rest);
}

double fisherFInverse(const double* x, int) {
    const double first = degreesOfFreedom(x[1]);
    const double second = degreesOfFreedom(x[2]);
    if (!validF(first, second) || !isProbability(x[0]) || x[0] == 1) {
        return nan;
    }
    return x[0] == 0 ? 0 : fisherFQuantile(first, second, x[0], false);
}
double fisherFInverseRightTail(const double* x, int) {
    const double first = degreesOfFreedom(x[1]);
    const double second = degreesOfFreedom(x[2]);
    if (!validF(first, second) || !isProbability(x[0]) || x[0] == 0) {
        return nan;
    }
    return x[0] == 1 ? 0 : fisherFQuantile(first, second, x[0], true);
}

// ---- chi-square ----

double chiSquared(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    if (!(n >= 1) || !(x[0] >= 0)) {
        return nan;
    }
    return x[2] != 0 ? cdf(ChiSquared(n), x[0]) : pdf(ChiSquared(n), x[0]);
}
double chiSquaredRightTail(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    return n >= 1 && x[0] >= 0 ? cdf(complement(ChiSquared(n), x[0])) : nan;
}
double chiSquaredInverse(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    if (!(n >= 1) || !isProbability(x[0]) || x[0] == 1) {
        return nan;
    }
    return x[0] == 0 ? 0 : quantileOrNan([&] { return quantile(ChiSquared(n), x[0]); });
}
double chiSquaredInverseRightTail(const double* x, int) {
    const double n = degreesOfFreedom(x[1]);
    if (!(n >= 1) || !isProbability(x[0]) || x[0] == 0) {
        return nan;
    }
    return x[0] == 1 ? 0 : quantileOrNan([&] { return quantile(complement(ChiSquared(n), x[0])); });
}

constexpr FunctionRow table[] = {
    numericRow("BETA.DIST", "NNNBNN", betaLaw, 2),
    numericRow("BETA.INV", "NNNNN", betaInverse, 2),
    numericRow("BETADIST", "NNNNN", betaProbability, 2),
    numericRow("BETAINV", "NNNNN", betaInverse, 2),
    numericRow("CHIDIST", "NN", chiSquaredRightTail),
    numericRow("CHIINV", "NN", chiSquaredInverseRightTail),
    numericRow("CHISQ.DIST", "NNB", chiSquared),
    numericRow("CHISQ.DIST.RT", "NN", chiSquaredRightTail),
    numericRow("CHISQ.INV", "NN", chiSquaredInverse),
    numericRow("CHISQ.INV.RT", "NN", chiSquaredInverseRightTail),
    numericRow("EXPON.DIST", "NNB", exponentialLaw),
    numericRow("EXPONDIST", "NNB", exponentialLaw),
    numericRow("F.DIST", "NNNB", fisherF),
    numericRow("F.DIST.RT", "NNN", fisherFRightTail),
    numericRow("F.INV", "NNN", fisherFInverse),
    numericRow("F.INV.RT", "NNN", fisherFInverseRightTail),
    numericRow("FDIST", "NNN", fisherFRightTail),
    numericRow("FINV", "NNN", fisherFInverseRightTail),
    numericRow("GAMMA", "N", gammaFunction),
    numericRow("GAMMA.DIST", "NNNB", gammaLaw),
    numericRow("GAMMA.INV", "NNN", gammaInverse),
    numericRow("GAMMADIST", "NNNB", gammaLaw),
    numericRow("GAMMAINV", "NNN", gammaInverse),
    numericRow("GAMMALN", "N", logGamma),
    numericRow("GAMMALN.PRECISE", "N", logGamma),
    numericRow("GAUSS", "N", gauss),
    numericRow("LOGINV", "NNN", lognormalInverse),
    numericRow("LOGNORM.DIST", "NNNB", lognormal),
    numericRow("LOGNORM.INV", "NNN", lognormalInverse),
    numericRow("LOGNORMDIST", "NNN", lognormalProbability),
    numericRow("NORM.DIST", "NNNB", normal),
    numericRow("NORM.INV", "NNN", normalInverse),
    numericRow("NORM.S.DIST", "NB", standardNormal),
    numericRow("NORM.S.INV", "N", standardNormalInverse),
    numericRow("NORMDIST", "NNNB", normal),
    numericRow("NORMINV", "NNN", normalInverse),
    numericRow("NORMSDIST", "N", standardNormalProbability),
    numericRow("NORMSINV", "N", standardNormalInverse),
    numericRow("PHI", "N", phi),
    {.name = "T.DIST",
     .minArgs = 3,
     .maxArgs = 3,
     .kinds = "NNB",
     .category = Category::Distribution,
     .function = studentValue,
     .numeric = student},
    numericRow("T.DIST.2T", "NN", studentTwoTails),
    numericRow("T.DIST.RT", "NN", studentRightTail),
    numericRow("T.INV", "NN", studentInverse),
    numericRow("T.INV.2T", "NN", studentInverseTwoTails),
    numericRow("TDIST", "NNN", studentTails),
    numericRow("TINV", "NN", studentInverseTwoTails),
    numericRow("WEIBULL", "NNNB", weibull),
    numericRow("WEIBULL.DIST", "NNNB", weibull),
};

}  // namespace

std::span<const FunctionRow> distributionFunctions() { return table; }

}  // namespace quorva::workbook
