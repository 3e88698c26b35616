#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/correlated_draw.h"
#include "engine/latin_hypercube.h"
#include "numerics/core.h"
#include "numerics/uniforms.h"
#include "simulation_test.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

using Sample = std::vector<double>;

double correlation(const Sample& x, const Sample& y) {
    const auto n = static_cast<double>(x.size());
    const double mx = std::accumulate(x.begin(), x.end(), 0.0) / n;
    const double my = std::accumulate(y.begin(), y.end(), 0.0) / n;
    double xy = 0, xx = 0, yy = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        xy += (x[i] - mx) * (y[i] - my);
        xx += (x[i] - mx) * (x[i] - mx);
        yy += (y[i] - my) * (y[i] - my);
    }
    return xy / std::sqrt(xx * yy);
}

Sample ranks(const Sample& x) {
    std::vector<std::size_t> order(x.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return x[a] < x[b]; });
    Sample rank(x.size());
    for (std::size_t r = 0; r < order.size(); ++r) {
        rank[order[r]] = static_cast<double>(r);
    }
    return rank;
}

/// Spearman's correlation of normals with correlation rho.
double rankCorrelation(double rho) { return 6.0 / 3.141592653589793 * std::asin(rho / 2.0); }

/// Six standard errors of a correlation estimated from n pairs: exceeded with probability below 2e-9.
double tolerance(int n) { return 6.0 / std::sqrt(static_cast<double>(n)); }

class CorrelatedDraw : public SimulationTest {
protected:
    /// Labels "x01", "x02", ... in cells whose formula `law(name)` gives; starts a run of nSim iterations.
    template <class Law>
    void start(int n, const std::vector<double>& wanted, int nSim, int strata, Law law, int expected = 0) {
        cells.clear();
        names.clear();
        correlations = {{}, wanted};
        for (int i = 1; i <= n; ++i) {
            names.push_back(std::make_unique<std::string>(i < 10 ? "x0" + std::to_string(i) : "x" + std::to_string(i)));
            const std::string& name = *names.back();
            correlations.labels.emplace_back(name.begin(), name.end());
            cell({i, 0}, [law, i, text = name.c_str()] { return law(text, i); });
        }
        result({0, 9}, "~", [] { return 0.0; });
        init(false, 321);
        recalculate();
        ASSERT_EQ(init2(correlations), expected);
        recalculate();
        ASSERT_EQ(begin(nSim, strata), 0);
    }
    std::vector<Sample> sample(int n, int nSim) {
        std::vector<Sample> values(static_cast<std::size_t>(n));
        for (int k = 0; k < nSim; ++k) {
            EXPECT_EQ(iterate(), 0);
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i].push_back(value(i));
            }
        }
        return values;
    }
    Correlations correlations;
    std::vector<std::unique_ptr<std::string>> names;
};

double standardNormal(const char* name, int) { return QUORVA_SimNormalStd(name, 0, 0, 0, 0, 0, 1); }
double normalField(const char* name, int i) { return QUORVA_SimNormal(name, 10 * i, i, 0, 0, 0, 0, 0, 1); }
double exponential(const char* name, int i) { return QUORVA_SimExponential(name, i, 0, 0, 0, 0, 0, 1); }

/// Correlations falling off with the distance of the labels.
std::vector<double> fallingOff(int n, double rho) {
    std::vector<double> matrix;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            matrix.push_back(std::pow(rho, std::abs(i - j)));
        }
    }
    return matrix;
}

TEST_F(CorrelatedDraw, NormalsReachTheTargetLinearlyAndOtherLawsInRanks) {
    constexpr int nSim = 8000;
    for (const int n : {2, 5, 20}) {
        for (const int strata : {0, nSim}) {
            const std::vector<double> wanted = fallingOff(n, -0.8);
            start(n, wanted, nSim, strata, normalField);
            const auto normals = sample(n, nSim);
            reset();
            start(n, wanted, nSim, strata, exponential);
            const auto exponentials = sample(n, nSim);
            reset();
            for (int j = 0; j < n; ++j) {
                for (int i = 0; i < j; ++i) {
                    const double target = wanted[static_cast<std::size_t>(i + j * n)];
                    const auto a = static_cast<std::size_t>(i);
                    const auto b = static_cast<std::size_t>(j);
                    EXPECT_NEAR(correlation(normals[a], normals[b]), target, tolerance(nSim));
                    EXPECT_NEAR(correlation(ranks(exponentials[a]), ranks(exponentials[b])), rankCorrelation(target),
                                tolerance(nSim));
                }
            }
        }
    }
}

TEST_F(CorrelatedDraw, NormalFieldsKeepTheirMeanAndDeviation) {
    start(2, {1, 0.7, 0.7, 1}, 8000, 0, normalField);
    const auto values = sample(2, 8000);
    const double mean = std::accumulate(values[1].begin(), values[1].end(), 0.0) / 8000;
    EXPECT_NEAR(mean, 20.0, 6 * 2 / std::sqrt(8000.0));
}

TEST_F(CorrelatedDraw, TheNormalLawsTakeTheCorrelatedNormalItselfNotAQuantile) {
    start(2, {1, 0.7, 0.7, 1}, 300, 0, [](const char* name, int i) {
        return i == 1 ? QUORVA_SimNormal(name, 5, 2, 0, 0, 0, 0, 0, 1) : QUORVA_SimNormalStd(name, 0, 0, 0, 0, 0, 1);
    });
    for (int k = 0; k < 300; ++k) {
        ASSERT_EQ(iterate(), 0);
        // To the last bit: a normal taken through its probability and back would not keep it.
        ASSERT_EQ(value(0), 2.0 * run.fields.FieldTable(numberOf(u"x01"), fieldcolumn::correlatedDraw) + 5.0);
        ASSERT_EQ(value(1), run.fields.FieldTable(numberOf(u"x02"), fieldcolumn::correlatedDraw));
        ASSERT_EQ(value(0), 2.0 * run.correlation.CorrNormals(1, 1) + 5.0) << "the first label's own normal";
    }
}

TEST_F(CorrelatedDraw, AfterARepairTheRepairedMatrixIsTheFactorAndAFreshRunReachesIt) {
    constexpr int nSim = 8000;
    const std::vector<double> wanted{1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1};
    start(3, wanted, nSim, 0, standardNormal, 2);
    const std::vector<double> repaired = correlations.matrix;
    const matrix<double> c(3, 3, repaired.data());
    const auto implied = [&](int i, int j) {
        double sum = 0;
        for (int k = 1; k <= 3; ++k) {
            sum += c(i, k) * c(j, k);
        }
        return sum;
    };
    const auto drawn = sample(3, nSim);
    reset();
    start(3, repaired, nSim, 0, standardNormal);
    const auto proper = sample(3, nSim);
    for (int j = 1; j <= 3; ++j) {
        for (int i = 1; i < j; ++i) {
            const auto a = static_cast<std::size_t>(i - 1);
            const auto b = static_cast<std::size_t>(j - 1);
            EXPECT_NEAR(correlation(drawn[a], drawn[b]), implied(i, j) / std::sqrt(implied(i, i) * implied(j, j)),
                        tolerance(nSim));
            EXPECT_NEAR(correlation(proper[a], proper[b]), c(i, j), tolerance(nSim));
        }
    }
}

TEST_F(CorrelatedDraw, AnIdentityFactorGivesTheUniformsOfTheStreams) {
    start(2, {1, 0, 0, 1}, 10, 0, exponential);
    Cpp_SimNext();
    SeedState alone = run.sampling.seed;
    const double first = getNormalCorr(1, &run.sampling.seed.seed, hostTrue, &run.sampling.seed.updated);
    const double second = getNormalCorr(2, &run.sampling.seed.seed, hostTrue, &run.sampling.seed.updated);
    const short keep = hostTrue;
    reset(321);
    alone = run.sampling.seed;
    EXPECT_NEAR(getLHSRandom01(0, 1, 0, 1, &alone.seed, keep, &alone.updated), first, 1e-14);
    EXPECT_NEAR(getLHSRandom01(0, 2, 0, 1, &alone.seed, keep, &alone.updated), second, 1e-14);
}

TEST_F(CorrelatedDraw, PerfectCorrelationGivesTheSameUniformToBoth) {
    start(2, {1, 1, 1, 1}, 50, 0,
          [](const char* name, int) { return QUORVA_SimUniform(name, 0, 1, 0, 0, 0, 0, 0, 1); });
    ASSERT_EQ(run.correlation.method, FactorMethod::SquareRoot);
    for (const auto& values = sample(2, 50); std::size_t k : {0U, 10U, 49U}) {
        EXPECT_NEAR(values[0][k], values[1][k], 1e-12);
    }
}

TEST_F(CorrelatedDraw, BoundsOfOneLabelAreMetByRedrawingAll) {
    start(2, {1, 0.5, 0.5, 1}, 300, 0,
          [](const char* name, int i) { return QUORVA_SimUniform(name, 0, 1, i == 1 ? 2 : 0, 0.2, 0.8, 0, 0, 1); });
    const auto values = sample(2, 300);
    EXPECT_GE(*std::min_element(values[0].begin(), values[0].end()), 0.2);
    EXPECT_LE(*std::max_element(values[0].begin(), values[0].end()), 0.8);
    EXPECT_LT(*std::min_element(values[1].begin(), values[1].end()), 0.1);
}

TEST_F(CorrelatedDraw, TheSecondFieldOfAnIterationMovesNoStream) {
    start(2, {1, 0.5, 0.5, 1}, 10, 0, exponential);
    Cpp_SimNext();
    evaluate(0);
    const int seed = run.sampling.seed.seed;
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::drawn), 1.0);
    evaluate(1);
    EXPECT_EQ(run.sampling.seed.seed, seed);
    Cpp_SimNext();
    EXPECT_EQ(run.correlation.CorrGroups(1, groupcolumn::drawn), 0.0);
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::drawn), 0.0);
}

TEST_F(CorrelatedDraw, ImpossibleBoundsGiveUpAndNameTheFieldLastOutside) {
    start(2, {1, 0.5, 0.5, 1}, 10, 0, [](const char* name, int i) {
        return QUORVA_SimUniform(name, 0, 1, 2, i == 2 ? 0.5 : 0.0, i == 2 ? 0.5 : 1.0, 0, 0, 1);
    });
    run.fields.FieldNames.scratch() = u"scratch";
    iterate();
    EXPECT_EQ(Cpp_SimNext(), -1);
    const ReportedError error = reportedError();
    EXPECT_EQ(error.code, -14);
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(error.column, 0);
    EXPECT_EQ(error.texts, std::vector<std::u16string>{u"scratch"});
}

TEST_F(CorrelatedDraw, TheGiveUpTakesTenThousandAndTwoAttempts) {
    start(2, {1, 0.5, 0.5, 1}, 10, 4,
          [](const char* name, int) { return QUORVA_SimUniform(name, 0, 1, 2, 0.5, 0.5, 0, 0, 1); });
    Cpp_SimNext();
    evaluate(0);
    // Of 10,002 attempts with permutations of 4 strata, 2 strata are used of the last permutation.
    EXPECT_EQ(run.sampling.LhsTable(5, 1), 2.0);
    EXPECT_EQ(run.correlation.CorrGroups(1, groupcolumn::drawn), 1.0) << "marked after the error, too";
}

TEST_F(CorrelatedDraw, LabelsWithoutAGroupAreDrawnJointlyAllTheSame) {
    start(3, {1, 0.5, 0, 0.5, 1, 0, 0, 0, 1}, 10, 5, exponential);
    Cpp_SimNext();
    evaluate(0);
    EXPECT_EQ(run.sampling.LhsTable(6, 3), 4.0) << "the joint draw used a stratum of the third stream";
    evaluate(2);
    EXPECT_EQ(run.sampling.LhsTable(6, 3), 3.0) << "the field itself draws alone";
}

TEST_F(CorrelatedDraw, TheOpeningLabelKeepsItsOwnUniformUnlessItsLawIsNormal) {
    start(2, {1, 0.5, 0.5, 1}, 10, 0, exponential);
    iterate();
    const int opening = numberOf(u"x01");
    EXPECT_GT(run.fields.FieldTable(opening, fieldcolumn::correlatedDraw), 0.0);
    EXPECT_NEAR(run.fields.FieldTable(opening, fieldcolumn::correlatedDraw),
                CDFNormalStd(run.correlation.CorrNormals(1, 1)), 1e-12);
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"x02"), fieldcolumn::correlatedDraw), 0.0);
}

TEST_F(CorrelatedDraw, BoundsOfAJointDrawAreInclusive) {
    start(2, {1, 0, 0, 1}, 10, 0, exponential);
    Cpp_SimNext();
    SeedState& seed = run.sampling.seed;
    const SeedState before = seed;
    getNormalCorr(1, &seed.seed, hostTrue, &seed.updated);
    for (int label = 1; label <= 2; ++label) {
        const double drawn = run.correlation.CorrUniforms(label, 1);
        run.fields.FieldTable(label, fieldcolumn::lowerProbability) = drawn;
        run.fields.FieldTable(label, fieldcolumn::upperProbability) = drawn;
    }
    const double first = run.correlation.CorrUniforms(1, 1);
    Cpp_SimNext();
    int from = before.seed;
    short keep = hostTrue;
    int updated = 0;
    GetSeed(&from, &keep, &updated);
    EXPECT_EQ(getNormalCorr(1, &from, keep, &updated), first);
    EXPECT_EQ(from, seed.seed) << "accepted at the first attempt";
    EXPECT_EQ(run.error.flag, hostFalse);
}

TEST_F(CorrelatedDraw, TheAttemptAfterTheLimitIsAnErrorEvenInsideTheBounds) {
    start(2, {1, 0, 0, 1}, 10, 0, exponential);
    SeedState& seed = run.sampling.seed;
    int from = seed.seed;
    std::vector<double> drawn;  // the second label's uniform in each attempt
    for (int attempt = 0; attempt < 10'002; ++attempt) {
        Cpp_SimNext();
        getNormalCorr(1, &seed.seed, hostTrue, &seed.updated);
        drawn.push_back(run.correlation.CorrUniforms(2, 1));
    }
    for (const std::size_t inside : {10'000U, 10'001U}) {
        run.fields.FieldTable(2, fieldcolumn::lowerProbability) = drawn[inside];
        run.fields.FieldTable(2, fieldcolumn::upperProbability) = drawn[inside];
        Cpp_SimNext();
        short keep = hostTrue;
        int updated = 0;
        GetSeed(&from, &keep, &updated);
        int going = from;
        getNormalCorr(1, &going, keep, &updated);
        EXPECT_EQ(run.error.flag, toHostBool(inside == 10'001U)) << inside << " attempts outside before";
    }
    EXPECT_EQ(reportedError().code, -14);
    EXPECT_EQ(reportedError().line, 2) << "the field that was outside last";
}

}  // namespace
