// Laws whose density is made of straight lines, and the triangular law given by two of its quantiles.
#include <algorithm>
#include <cmath>
#include <limits>

#include "numerics/law_functions.h"
#include "numerics/laws.h"

namespace quorva::laws {
namespace {

using Extended = long double;

/// The trapezoid a <= b <= c <= d with a < d: rising on a..b, level on b..c, falling on c..d.
struct Trapezoid {
    Extended a;
    Extended b;
    Extended c;
    Extended d;

    /// Twice the area under a density of height 1.
    Extended width() const { return (d - a) + (c - b); }
};

/// Each branch adds up positive terms, so that no digit cancels.
double cdfOf(const Trapezoid& t, Extended x) {
    const Extended width = t.width();
    if (x < t.b) {
        return static_cast<double>((x - t.a) * ((x - t.a) / (t.b - t.a)) / width);
    }
    if (x < t.c) {
        return static_cast<double>(((t.b - t.a) + 2 * (x - t.b)) / width);
    }
    const Extended atC = (t.b - t.a) + 2 * (t.c - t.b);
    return static_cast<double>((atC + (x - t.c) * (((t.d - x) + (t.d - t.c)) / (t.d - t.c))) / width);
}

double quantileOf(const Trapezoid& t, Extended u) {
    const Extended area = u * t.width();
    const Extended rising = t.b - t.a;
    const Extended atC = rising + 2 * (t.c - t.b);
    if (area < rising) {
        return static_cast<double>(t.a + std::sqrt(area * rising));
    }
    if (area < atC) {
        return static_cast<double>(t.b + (area - rising) / 2);
    }
    const Extended falling = t.d - t.c;
    const Extended root = std::sqrt((1 - u) * t.width() * falling);
    // Measured from the nearer end of the falling side.
    return static_cast<double>(root < falling / 2 ? t.d - root : t.c + (area - atC) * falling / (falling + root));
}

Trapezoid triangle(const LawParameters& p) { return {p[0], p[1], p[1], p[2]}; }
Trapezoid trapezoid(const LawParameters& p) { return {p[0], p[1], p[2], p[3]}; }

}  // namespace

constinit const LawFunctions uniform{
    2, false, [](const LawParameters& p) { return definedIf(p[0] <= p[1], from(p[0], p[1])); },
    [](double x, const LawParameters& p) {
        return static_cast<double>((static_cast<Extended>(x) - p[0]) / (static_cast<Extended>(p[1]) - p[0]));
    },
    [](double u, const LawParameters& p) {
        const Extended width = static_cast<Extended>(p[1]) - p[0];
        return static_cast<double>(u < 0.5 ? p[0] + u * width : p[1] - (1 - u) * width);
    }};

constinit const LawFunctions triangular{
    3, false, [](const LawParameters& p) { return definedIf(p[0] <= p[1] && p[1] <= p[2], from(p[0], p[2])); },
    [](double x, const LawParameters& p) { return cdfOf(triangle(p), x); },
    [](double u, const LawParameters& p) { return quantileOf(triangle(p), u); }};

constinit const LawFunctions trapezoidal{
    4, false,
    [](const LawParameters& p) { return definedIf(p[0] <= p[1] && p[1] <= p[2] && p[2] <= p[3], from(p[0], p[3])); },
    [](double x, const LawParameters& p) { return cdfOf(trapezoid(p), x); },
    [](double u, const LawParameters& p) { return quantileOf(trapezoid(p), u); }};

}  // namespace quorva::laws

namespace quorva {
namespace {

using Extended = long double;

struct Ends {
    Extended lower;
    Extended upper;
};

constexpr Extended undefined = std::numeric_limits<Extended>::quiet_NaN();

/// Mode between the two quantiles, d = m - a and e = b - m apart from them. With r = F(m) and w the width,
/// (r w - d)^2 = q1 r w^2 and ((1 - r) w - e)^2 = (1 - q2)(1 - r) w^2; both solved for w, their equality gives r, whose
/// function falls from q1 to q2.
Ends modeBetween(Extended m, Extended d, Extended e, Extended q1, Extended p2) {
    const auto low = [q1](Extended r) { return r - std::sqrt(q1 * r); };
    const auto high = [p2](Extended rest) { return rest - std::sqrt(p2 * rest); };
    Extended below = q1;
    Extended above = 1 - p2;
    for (int round = 0; round < 200; ++round) {
        const Extended r = (below + above) / 2;
        if (r <= below || r >= above) {
            break;
        }
        (d * high(1 - r) > e * low(r) ? below : above) = r;
    }
    const Extended r = d == 0 ? q1 : e == 0 ? 1 - p2 : (below + above) / 2;
    const Extended width = low(r) > high(1 - r) ? d / low(r) : e / high(1 - r);
    return {m - r * width, m + (1 - r) * width};
}

/// Mode below both quantiles a < b: the falling side alone determines the upper end, then the width.
Ends modeBelow(Extended a, Extended m, Extended b, Extended q1, Extended q2) {
    const Extended ratio = std::sqrt((1 - q2) / (1 - q1));
    const Extended upper = b + (b - a) * ratio / (1 - ratio);
    const Extended width = (upper - a) * ((upper - a) / (upper - m)) / (1 - q1);
    return {upper - width, upper};
}

Ends triangularEnds(Extended a, Extended m, Extended b, Extended q1, Extended q2) {
    if (a == m && m == b) {
        return {m, m};
    }
    if (a == b) {
        return {undefined, undefined};
    }
    if (m < a) {
        return modeBelow(a, m, b, q1, q2);
    }
    if (m > b) {
        const Ends mirrored = modeBelow(-b, -m, -a, 1 - q2, 1 - q1);
        return {-mirrored.upper, -mirrored.lower};
    }
    return modeBetween(m, m - a, b - m, q1, 1 - q2);
}

}  // namespace

void TriangularQFindAB(double a, double m, double b, double q1, double q2, double& lower, double& upper) {
    lower = upper = std::numeric_limits<double>::quiet_NaN();
    const bool given =
        std::isfinite(a) && std::isfinite(m) && std::isfinite(b) && a <= b && q1 >= 0 && q1 < q2 && q2 <= 1;
    if (!given) {
        return;
    }
    const Ends ends = triangularEnds(a, m, b, q1, q2);
    const double low = static_cast<double>(ends.lower);
    const double high = static_cast<double>(ends.upper);
    // A mode at an end: the rounding of the quantiles may put the end an epsilon behind it.
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    const double rounding = 1e-12 * (high - low) + 64 * epsilon * std::max(std::abs(low), std::abs(high));
    if (std::isfinite(low) && std::isfinite(high) && low <= m + rounding && m - rounding <= high) {
        lower = std::min(low, m);
        upper = std::max(high, m);
    }
}

}  // namespace quorva
