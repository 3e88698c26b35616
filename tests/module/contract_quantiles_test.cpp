// Draws are the law's quantiles of the uniforms, from the first iteration of a long run to the last.
#include <algorithm>
#include <limits>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

class QuantileContract : public ContractModel {
protected:
    static constexpr int n = 3000;
    /// The draws of one distribution in a run of its own, always from the same uniforms.
    std::vector<double> draws(int law, std::vector<double> p, int strata, int truncation = 0, double lower = 0,
                              double upper = 0) {
        p.resize(4);
        cells.clear();
        cell({sheet, 0, 0}, [=, call = QUORVA_EXPORT(QUORVA_SimDist)] {
            return call("a", law, p[0], p[1], p[2], p[3], 0, truncation, lower, upper, 1);
        });
        result({sheet, 1, 0}, "b", [] { return 0.0; });
        prepare(false, 1234);
        EXPECT_EQ(start(n, strata), 0);
        for (int k = 0; k < n; ++k) {
            EXPECT_EQ(step(), 0);
        }
        return column(samples(n), 1);
    }
};

TEST_F(QuantileContract, ClosedFormsHoldThroughoutALongRun) {
    struct Law {
        int identifier;
        std::vector<double> p;
        std::function<double(double)> quantile;
    };
    const auto triangular = [](double u) {
        const double a = 1, m = 4, b = 11, split = (m - a) / (b - a);
        return u <= split ? a + std::sqrt(u * (b - a) * (m - a)) : b - std::sqrt((1 - u) * (b - a) * (b - m));
    };
    const auto trapezoid = [](double u) {
        const double a = 0, b = 1, c = 3, d = 4, h = 2 / (d + c - b - a);
        const double left = h * (b - a) / 2, right = 1 - h * (d - c) / 2;
        return u < left    ? a + std::sqrt(2 * u * (b - a) / h)
               : u < right ? b + (u - left) / h
                           : d - std::sqrt(2 * (1 - u) * (d - c) / h);
    };
    const std::vector<Law> laws{
        {6, {2.5}, [](double u) { return -std::log1p(-u) / 2.5; }},
        {8, {}, [](double u) { return -std::log(-std::log(u)); }},
        {9, {3}, [](double u) { return -3 * std::log(-std::log(u)); }},
        {10, {3, 100}, [](double u) { return 100 - 3 * std::log(-std::log(u)); }},
        {11, {1}, [](double u) { return -std::log1p(-u); }},
        {12, {1, 4}, [](double u) { return -4 * std::log1p(-u); }},
        {13, {1, 4, 20}, [](double u) { return 20 - 4 * std::log1p(-u); }},
        {5, {2}, [](double u) { return -2 * std::log1p(-u); }},
        {1, {2, 1}, [](double u) { return std::sqrt(u); }},
        {1, {1, 3}, [](double u) { return -std::expm1(std::log1p(-u) / 3); }},
        {17, {3, 2}, [](double u) { return 2 * std::exp(-std::log1p(-u) / 3); }},
        {19, {2}, [](double u) { return (2 * u - 1) / std::sqrt(2 * u * (1 - u)); }},
        {20, {-2, 6}, [](double u) { return -2 + 8 * u; }},
        {21, {1.5}, [](double u) { return std::pow(-std::log1p(-u), 1 / 1.5); }},
        {22, {1.5, 7}, [](double u) { return 7 * std::pow(-std::log1p(-u), 1 / 1.5); }},
        {23, {1.5, 7, 50}, [](double u) { return 50 + 7 * std::pow(-std::log1p(-u), 1 / 1.5); }},
        {24, {2, 0.25, 30}, [](double u) { return 30 + 2 * (1 - std::pow(-std::log(u), 0.25)) / 0.25; }},
        {25, {1, 4}, [](double u) { return -std::log1p(-u) / 4; }},
        {26, {1, 4, 11}, triangular},
        {28, {3, 2}, [](double u) { return 3 + 2 * (std::log(u) - std::log1p(-u)); }},
        {29, {3, 9}, [](double u) { return 2 + std::ceil(7 * u); }},
        {30, {2, 1, 10, 20}, [](double u) { return 10 + 10 * std::sqrt(u); }},
        {31, {0, 1, 3, 4}, trapezoid},
        {32, {0.3}, [](double u) { return u <= 0.7 ? 0.0 : 1.0; }},
        {35, {0.5}, [](double u) { return std::pow(std::sin(0.5 * 3.141592653589793 * u), 2); }},
    };
    for (const int strata : {0, 500}) {
        const std::vector<double> u = draws(20, {0, 1}, strata);
        for (const Law& law : laws) {
            const std::vector<double> x = draws(law.identifier, law.p, strata);
            double worst = 0, at = 0;
            for (std::size_t i = 0; i < u.size(); ++i) {
                const double expected = law.quantile(u[i]);
                const double error = std::fabs(x[i] - expected) / std::max(1e-3, std::fabs(expected));
                if (!(error <= worst)) {
                    worst = error;
                    at = u[i];
                }
            }
            EXPECT_LE(worst, 1e-10) << "law " << law.identifier << " at u = " << at;
        }
    }
}

TEST_F(QuantileContract, LogNormalDrawsAreExponentialsOfNormalOnes) {
    const std::vector<double> z = draws(16, {}, 0);
    const std::vector<double> normal = draws(15, {5, 2}, 0);
    const std::vector<double> first = draws(14, {0.5, 0.75}, 0);
    const std::vector<double> second = draws(33, {10, 4}, 0);
    const double variance = std::log1p(0.16), location = std::log(10.0) - variance / 2;
    for (std::size_t i = 0; i < z.size(); ++i) {
        ASSERT_NEAR(normal[i], 5 + 2 * z[i], 1e-10);
        ASSERT_NEAR(std::log(first[i]), 0.5 + 0.75 * z[i], 1e-10);
        ASSERT_NEAR(std::log(second[i]), location + std::sqrt(variance) * z[i], 1e-10);
    }
}

TEST_F(QuantileContract, DiscreteDrawsAreTheSmallestIntegersThatReachTheirProbability) {
    struct Law {
        int identifier;
        std::vector<double> p;
        std::function<double(int)> mass;
    };
    const auto choose = [](double a, int k) {
        return std::exp(std::lgamma(a + 1) - std::lgamma(k + 1.0) - std::lgamma(a - k + 1));
    };
    const std::vector<Law> laws{
        {2, {12, 0.3}, [=](int k) { return k > 12 ? 0 : choose(12, k) * std::pow(0.3, k) * std::pow(0.7, 12 - k); }},
        {3, {4, 0.25}, [=](int k) { return choose(k + 3, k) * std::pow(0.25, 4) * std::pow(0.75, k); }},
        {4, {3, 2}, [=](int k) { return choose(k + 2, k) * std::pow(1 / 3.0, 3) * std::pow(2 / 3.0, k); }},
        {18, {6.5}, [](int k) { return std::exp(k * std::log(6.5) - 6.5 - std::lgamma(k + 1.0)); }},
    };
    const std::vector<double> u = draws(20, {0, 1}, 500);
    for (const Law& law : laws) {
        const std::vector<double> x = draws(law.identifier, law.p, 500);
        for (std::size_t i = 0; i < u.size(); ++i) {
            double below = 0;
            for (int k = 0; k < static_cast<int>(x[i]); ++k) {
                below += law.mass(k);
            }
            const double reached = below + law.mass(static_cast<int>(x[i]));
            ASSERT_EQ(x[i], std::floor(x[i]));
            ASSERT_LE(below, u[i] + 1e-10) << law.identifier << " draws " << x[i];
            ASSERT_GE(reached, u[i] - 1e-10) << law.identifier << " draws " << x[i];
        }
    }
}

TEST_F(QuantileContract, TruncatedDrawsAreTheUniformsThatLieWithinTheBounds) {
    std::vector<double> u = draws(20, {0, 1}, 0);
    const std::vector<double> x = draws(6, {1}, 0, 2, 0.25, 0.75);
    u.erase(std::remove_if(u.begin(), u.end(), [](double v) { return v < 0.25 || v > 0.75; }), u.end());
    ASSERT_GT(u.size(), 1000U);
    for (std::size_t i = 0; i < u.size(); ++i) {
        ASSERT_NEAR(x[i], -std::log1p(-u[i]), 1e-11) << i;
    }
}

}  // namespace
