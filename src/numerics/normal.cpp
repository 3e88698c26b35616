#include "numerics/normal.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "numerics/boost_policy.h"

namespace quorva {

double normalCdf(long double x) {
    if (std::isnan(x)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (x > 40 || x < -40) {
        return x > 0 ? 1.0 : 0.0;
    }
    const long double z = -x * (std::numbers::sqrt2_v<long double> / 2);
    const double head = static_cast<double>(z);
    const double complement = boost::math::erfc(head, NumericPolicy());
    // erfc at the part of z that the double leaves over, by its derivative.
    const double tail = static_cast<double>(z - head);
    return 0.5 * complement - tail * std::exp(-head * head) * std::numbers::inv_sqrtpi;
}

double normalQuantile(double p) {
    if (!(p >= 0 && p <= 1)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (p == 0 || p == 1) {
        return p == 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
    }
    return p < 0.5 ? -std::numbers::sqrt2 * boost::math::erfc_inv(2 * p, NumericPolicy())
                   : std::numbers::sqrt2 * boost::math::erf_inv(2 * p - 1, NumericPolicy());
}

}  // namespace quorva
