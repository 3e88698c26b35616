#include "numerics/laws.h"

#include <algorithm>
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/law_table.h"
#include "numerics/quantile_cache.h"

namespace quorva {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

}  // namespace

Support supportOf(const LawFunctions& law, const LawParameters& parameters) {
    const bool allFinite = std::isfinite(parameters[0] + parameters[1] + parameters[2] + parameters[3]);
    for (int i = 0; !allFinite && i < 4; ++i) {
        const double value = parameters[static_cast<std::size_t>(i)];
        if (std::isnan(value) || (i < law.parameters && std::isinf(value))) {
            return noLaw;
        }
    }
    return law.support(parameters);
}

double CDFFunction(int law, double x, double p1, double p2, double p3, double p4) {
    const LawFunctions* functions = findLaw(law);
    if (functions == nullptr || std::isnan(x)) {
        return nan;
    }
    const LawParameters parameters{p1, p2, p3, p4};
    const Support support = supportOf(*functions, parameters);
    if (!support.defined) {
        return nan;
    }
    if (x >= support.upper) {
        return 1;
    }
    if (x < support.lower || (x == support.lower && !functions->discrete)) {
        return 0;
    }
    const double f = functions->cdf(functions->discrete ? std::floor(x) : x, parameters);
    return f < 0 ? 0 : f > 1 ? 1 : f;
}

double directQuantile(int law, double u, const LawParameters& parameters) {
    const LawFunctions* functions = findLaw(law);
    if (functions == nullptr || !(u >= 0 && u <= 1)) {
        return nan;
    }
    const Support support = supportOf(*functions, parameters);
    if (!support.defined) {
        return nan;
    }
    if (u == 0 || support.lower == support.upper) {
        return support.lower;
    }
    if (u == 1) {
        return support.upper;
    }
    const double x = functions->quantile(u, parameters);
    return x < support.lower ? support.lower : x > support.upper ? support.upper : x;
}

double InvCDFFunction(int law, double u, double p1, double p2, double p3, double p4) {
    const LawParameters parameters{p1, p2, p3, p4};
    const double x = worthLookingUp(law) ? tabulatedQuantile(law, u, parameters) : nan;
    return std::isnan(x) ? directQuantile(law, u, parameters) : x;
}

double GammaF(double x) {
    if (std::isnan(x) || x == infinite) {
        return x;
    }
    if (x <= 0 && x == std::floor(x)) {
        return nan;
    }
    return boost::math::tgamma(x, NumericPolicy());
}

}  // namespace quorva
