// Gamma laws and those that are gamma laws under another name.
#include <cmath>

#include "numerics/boost_policy.h"
#include "numerics/law_functions.h"

namespace quorva::laws {
namespace {

double standardCdf(double x, double shape) { return boost::math::gamma_p(shape, x, NumericPolicy()); }

double standardQuantile(double u, double shape) {
    return u < 0.5 ? boost::math::gamma_p_inv(shape, u, NumericPolicy())
                   : boost::math::gamma_q_inv(shape, 1 - u, NumericPolicy());
}

Support gammaSupport(double shape, double scale, double location) {
    return definedIf(shape > 0 && scale >= 0, scale == 0 ? pointMass(location) : from(location));
}

}  // namespace

constinit const LawFunctions chiSquare{
    1, false, [](const LawParameters& p) { return gammaSupport(p[0], 2, 0); },
    [](double x, const LawParameters& p) { return standardCdf(x / 2, p[0] / 2); },
    [](double u, const LawParameters& p) { return 2 * standardQuantile(u, p[0] / 2); }};

constinit const LawFunctions gamma1{1, false, [](const LawParameters& p) { return gammaSupport(p[0], 1, 0); },
                                    [](double x, const LawParameters& p) { return standardCdf(x, p[0]); },
                                    [](double u, const LawParameters& p) { return standardQuantile(u, p[0]); }};

constinit const LawFunctions gamma2{2, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], 0); },
                                    [](double x, const LawParameters& p) { return standardCdf(x / p[1], p[0]); },
                                    [](double u, const LawParameters& p) { return p[1] * standardQuantile(u, p[0]); }};

constinit const LawFunctions gamma3{
    3, false, [](const LawParameters& p) { return gammaSupport(p[0], p[1], p[2]); },
    [](double x, const LawParameters& p) { return standardCdf((x - p[2]) / p[1], p[0]); },
    [](double u, const LawParameters& p) { return p[2] + p[1] * standardQuantile(u, p[0]); }};

constinit const LawFunctions erlang{
    2, false, [](const LawParameters& p) { return definedIf(p[1] > 0, gammaSupport(p[0], 1, 0)); },
    [](double x, const LawParameters& p) { return standardCdf(x * p[1], p[0]); },
    [](double u, const LawParameters& p) { return standardQuantile(u, p[0]) / p[1]; }};

}  // namespace quorva::laws
