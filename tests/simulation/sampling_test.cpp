#include <algorithm>
#include <cmath>
#include <set>

#include "../engine/uniforms_consumed.h"
#include "numerics/laws.h"
#include "quorva/catalogue.h"
#include "simulation_test.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class Sampling : public SimulationTest {
protected:
    /// A run of uniform fields "u0", "u1", ... with the bounds given, ready for iterations.
    void startUniforms(int fields, int nSim, int strata, double lower = 0, double upper = 1) {
        for (int i = 0; i < fields; ++i) {
            names.push_back(std::make_unique<std::string>("u" + std::to_string(i)));
            uniform({i, 0}, names.back()->c_str(), 2, lower, upper);
        }
        result({fields, 1}, "~", [] { return 0.0; });
        prepare(false, 99);
        ASSERT_EQ(begin(nSim, strata), 0);
    }
    std::vector<std::unique_ptr<std::string>> names;
};

TEST_F(Sampling, EveryStratumIsHitOnceWhenThereAreAsManyStrataAsIterations) {
    for (const int strata : {1, 7, 1000}) {
        cells.clear();
        startUniforms(3, strata, strata);
        for (int k = 0; k < strata; ++k) {
            ASSERT_EQ(iterate(), 0);
        }
        for (const char16_t* name : {u"u0", u"u1", u"u2"}) {
            std::set<int> hit;
            for (int k = 1; k <= strata; ++k) {
                hit.insert(static_cast<int>(stored(k, name) * strata));
            }
            EXPECT_EQ(hit.size(), static_cast<std::size_t>(strata));
            EXPECT_EQ(*hit.begin(), 0);
            EXPECT_EQ(*hit.rbegin(), strata - 1);
        }
        reset();
    }
}

TEST_F(Sampling, WithAMultipleOfTheStrataEveryStratumIsUsedEquallyOften) {
    startUniforms(1, 40, 8);
    std::vector<int> used(8);
    for (int k = 0; k < 40; ++k) {
        iterate();
        ++used[static_cast<std::size_t>(value(0) * 8)];
    }
    EXPECT_EQ(used, std::vector<int>(8, 5));
}

TEST_F(Sampling, EveryRunStartsWithFreshPermutations) {
    startUniforms(2, 10, 4);
    iterate();
    ASSERT_EQ(run.sampling.LhsTable(5, 1), 3.0);
    ASSERT_EQ(begin(10, 4), 0);
    EXPECT_EQ(run.sampling.LhsTable.rows(), 5);
    EXPECT_EQ(run.sampling.LhsTable.columns(), 2);
    for (std::size_t i = 0; i < run.sampling.LhsTable.size(); ++i) {
        EXPECT_EQ(run.sampling.LhsTable.data()[i], 0.0);
    }
}

TEST_F(Sampling, TheNumberOfUniformsConsumedIsPinned) {
    startUniforms(3, 20, 0);
    for (int k = 0; k < 20; ++k) {
        iterate();
        recalculate();  // evaluated again, drawn once
    }
    EXPECT_EQ(uniformsConsumed(99, 100), 60);
    reset();
    cells.clear();
    startUniforms(3, 20, 20);
    for (int k = 0; k < 20; ++k) {
        iterate();
    }
    EXPECT_EQ(uniformsConsumed(99, 300), 120) << "20 for each field's permutation, 20 draws each";
}

TEST_F(Sampling, TruncatedFieldsStayWithinTheirBounds) {
    for (const int strata : {0, 50}) {
        cells.clear();
        startUniforms(2, 500, strata, 0.2, 0.3);
        for (int k = 0; k < 500; ++k) {
            ASSERT_EQ(iterate(), 0);
            EXPECT_GE(value(0), 0.2);
            EXPECT_LE(value(0), 0.3);
        }
        reset();
    }
}

TEST_F(Sampling, OneSeedGivesOneRunAndTwoSeedsTwo) {
    const auto runOf = [&](int seed, int strata) {
        reset();
        cells.clear();
        uniform({0, 0}, "u");
        normal({1, 0}, "n");
        result({2, 0}, "r", [this] { return value(0) + value(1); });
        prepare(false, seed);
        EXPECT_EQ(begin(50, strata), 0);
        std::vector<double> values;
        for (int k = 0; k < 50; ++k) {
            iterate();
            values.push_back(value(2));
        }
        return values;
    };
    for (const int strata : {0, 50, 7}) {
        const auto first = runOf(5, strata);
        EXPECT_EQ(first, runOf(5, strata));
        EXPECT_NE(first, runOf(6, strata));
        EXPECT_EQ(std::set<double>(first.begin(), first.end()).size(), first.size());
    }
}

/// Kolmogorov's distance that a sample of n exceeds with probability `failure` (Massart 1990, an upper bound for any
/// law).
double distanceAllowed(int n, double failure) { return std::sqrt(std::log(2.0 / failure) / (2.0 * n)); }

struct LawCase {
    int law;
    double p[4];
};

class SampleOfLaw : public Sampling, public ::testing::WithParamInterface<LawCase> {};

TEST_P(SampleOfLaw, FollowsItsDistributionFunction) {
    const LawCase& c = GetParam();
    constexpr int n = 5000;
    constexpr double failure = 1e-9;  // for each law; the seed is fixed
    cell({0, 0}, [=] { return QUORVA_SimDist("x", c.law, c.p[0], c.p[1], c.p[2], c.p[3], 0, 0, 0, 0, 1); });
    result({1, 0}, "~", [] { return 0.0; });
    prepare(false, 2024);
    ASSERT_EQ(begin(n, 0), 0);
    std::vector<double> sample;
    for (int k = 0; k < n; ++k) {
        ASSERT_EQ(iterate(), 0);
        sample.push_back(value(0));
    }
    std::sort(sample.begin(), sample.end());
    double distance = 0;
    for (int k = 0; k < n; ++k) {
        if (k + 1 < n && sample[static_cast<std::size_t>(k)] == sample[static_cast<std::size_t>(k) + 1]) {
            continue;  // the empirical function has its value at the last of equal values
        }
        const double f = CDFFunction(c.law - 1, sample[static_cast<std::size_t>(k)], c.p[0], c.p[1], c.p[2], c.p[3]);
        distance = std::max(distance, std::fabs(f - (k + 1.0) / n));
    }
    EXPECT_LE(distance, distanceAllowed(n, failure)) << "law " << c.law;
}

INSTANTIATE_TEST_SUITE_P(AllLaws, SampleOfLaw,
                         ::testing::Values(LawCase{1, {2, 3}}, LawCase{2, {20, 0.3}}, LawCase{3, {4, 0.4}},
                                           LawCase{4, {4, 1.5}}, LawCase{5, {3}}, LawCase{6, {2}}, LawCase{7, {5, 8}},
                                           LawCase{8, {}}, LawCase{9, {2}}, LawCase{10, {2, 5}}, LawCase{11, {2.5}},
                                           LawCase{12, {2.5, 3}}, LawCase{13, {2.5, 3, 10}}, LawCase{14, {0.5, 0.75}},
                                           LawCase{15, {5, 2}}, LawCase{16, {}}, LawCase{17, {3, 2}},
                                           LawCase{18, {4.5}}, LawCase{19, {5}}, LawCase{20, {-2, 3}},
                                           LawCase{21, {1.5}}, LawCase{22, {1.5, 2}}, LawCase{23, {1.5, 2, 3}},
                                           LawCase{24, {2, 0.2, 1}}, LawCase{25, {3, 2}}, LawCase{26, {1, 2, 5}},
                                           LawCase{27, {1, 2, 5}}, LawCase{28, {1, 2}}, LawCase{29, {1, 6}},
                                           LawCase{30, {2, 3, -1, 4}}, LawCase{31, {0, 1, 3, 5}}, LawCase{32, {0.3}},
                                           LawCase{33, {5, 2}}, LawCase{35, {0.4}}));

}  // namespace
