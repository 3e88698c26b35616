// Uniforms, strata and correlated draws as the sampling exports and the drawn samples show them.
#include <algorithm>

#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

class SamplingContract : public ContractModel {
protected:
    /// A run of two distributions and a result, with a generator of its own started from `from`.
    void startDrawing(int strata, int from = 99) {
        cells.clear();
        uniform({sheet, 11, 1}, "a");
        uniform({sheet, 12, 2}, "b");
        result({sheet, 13, 3}, "c", [] { return 0.0; });
        prepare();
        ASSERT_EQ(start(10, strata), 0);
        seed = from;
        updated = 0;
    }
    double draw(int stream, double lower = 0.0, double upper = 1.0) {
        return QUORVA_EXPORT(getLHSRandom01)(-1, stream, lower, upper, &seed, hostTrue, &updated);
    }
    double correlated(int field) { return QUORVA_EXPORT(getNormalCorr)(field, &seed, hostTrue, &updated); }

    /// Starts a run whose fields are correlated as given.
    void startCorrelated(const std::vector<std::u16string>& labels, std::vector<double> wanted, int expected = 0,
                         int nSim = 10, int strata = 0) {
        init(false, 5);
        recalculate();
        repaired = std::move(wanted);
        ASSERT_EQ(init2With(labels, repaired), expected);
        recalculate();
        ASSERT_EQ(start(nSim, strata), 0);
        seed = 99;
        updated = 0;
    }
    double covariance(const matrix<double>& table, int a, int b) const {
        double sa = 0, sb = 0, ab = 0;
        const int n = table.rows();
        for (int i = 1; i <= n; ++i) {
            sa += table(i, a);
            sb += table(i, b);
            ab += table(i, a) * table(i, b);
        }
        return ab / n - sa / n * (sb / n);
    }
    double correlation(const matrix<double>& table, int a, int b) const {
        return covariance(table, a, b) / std::sqrt(covariance(table, a, a) * covariance(table, b, b));
    }

    int seed = 0, updated = 0;
    std::vector<double> repaired;
};

TEST_F(SamplingContract, FourDrawsOfFourStrataHitEachOnce) {
    startDrawing(4);
    for (int round = 0; round < 5; ++round) {
        std::vector<int> hit;
        for (int k = 0; k < 4; ++k) {
            hit.push_back(static_cast<int>(draw(2) * 4));
        }
        std::sort(hit.begin(), hit.end());
        EXPECT_EQ(hit, (std::vector<int>{0, 1, 2, 3}));
    }
    EXPECT_EQ(moduleError().code, 0);
}

TEST_F(SamplingContract, OneStratumIsPlainSamplingThatAlsoDrawsItsPermutation) {
    startDrawing(0);
    std::vector<double> plain;
    for (int k = 0; k < 8; ++k) {
        plain.push_back(draw(1));
    }
    startDrawing(1);
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(draw(1), plain[static_cast<std::size_t>(2 * k + 1)]);
    }
}

TEST_F(SamplingContract, APermutationOfBStrataTakesBUniformsAndEachDrawOneMore) {
    constexpr int strata = 5;
    startDrawing(0);
    std::vector<double> plain;
    for (int k = 0; k < 10; ++k) {
        plain.push_back(draw(1));
    }
    // The stratum numbers in the order of their uniforms; taken from the bottom upwards.
    std::vector<int> permutation{1, 2, 3, 4, 5};
    std::stable_sort(permutation.begin(), permutation.end(), [&](int a, int b) {
        return plain[static_cast<std::size_t>(a - 1)] < plain[static_cast<std::size_t>(b - 1)];
    });
    startDrawing(strata);
    for (int k = 0; k < strata; ++k) {
        const double u = plain[static_cast<std::size_t>(strata + k)];
        const double stratum = permutation[static_cast<std::size_t>(strata - 1 - k)];
        EXPECT_DOUBLE_EQ(draw(2), (u + stratum - 1) / strata);
    }
}

TEST_F(SamplingContract, BoundsAreInclusive) {
    startDrawing(0);
    const double u = draw(1);
    startDrawing(0);
    EXPECT_EQ(draw(1, u, u), u);
    EXPECT_EQ(moduleError().code, 0);
}

TEST_F(SamplingContract, TheRetryLimitIsTenThousandAndOneDraws) {
    startDrawing(0);
    double last = 0;
    for (int k = 0; k < 10'003; ++k) {
        last = draw(1);
    }
    startDrawing(0);
    draw(1, 0.5, 0.5);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -14);
    EXPECT_EQ(std::make_pair(error.line, error.column), std::make_pair(11, 1));
    EXPECT_EQ(error.texts, std::vector<std::u16string>{u""}) << "the sheet is read from a column that names lack";
    EXPECT_EQ(draw(1), last) << "10,002 uniforms were drawn";
    EXPECT_EQ(next(), -1);

    startDrawing(3);
    draw(2, 0.5, 0.5);
    EXPECT_EQ(moduleError().code, -14);
    EXPECT_EQ(moduleError().line, 12);
}

TEST_F(SamplingContract, TheLastFieldIsNeverMatchedWhenAFailedDrawIsLocated) {
    for (const int stream : {2, 99}) {
        cells.clear();
        uniform({sheet, 11, 1}, "a");
        result({sheet, 13, 3}, "b", [] { return 0.0; });
        uniform({sheet, 12, 2}, "c");
        prepare();
        ASSERT_EQ(start(10), 0);
        draw(stream, 0.5, 0.5);
        EXPECT_EQ(moduleError().code, -14);
        EXPECT_EQ(moduleError().line, 12) << "the scan ends at the last field, whatever its stream";
    }
}

TEST_F(SamplingContract, AStratifiedDrawNeedsAStream) {
    startDrawing(4);
    draw(0);
    EXPECT_EQ(moduleError().code, -12);
    startDrawing(0);
    const double u = draw(0);
    EXPECT_EQ(moduleError().code, 0);
    EXPECT_GT(u, 0);
    EXPECT_LT(u, 1);
}

TEST_F(SamplingContract, ARejectedDrawUsesUpItsStratum) {
    startDrawing(4);
    for (int k = 0; k < 20; ++k) {
        EXPECT_LE(draw(1, 0, 0.25), 0.25);
    }
    EXPECT_EQ(moduleError().code, 0);
}

TEST_F(SamplingContract, EveryStratumIsUsedEquallyOftenInARun) {
    constexpr int strata = 7, n = 21;
    uniform({sheet, 0, 0}, "u");
    uniform({sheet, 1, 0}, "v", -7, 0);
    result({sheet, 2, 0}, "w", [] { return 0.0; });
    prepare();
    ASSERT_EQ(start(n, strata), 0);
    run(n);
    const matrix<double> table = samples(n);
    for (int block = 0; block < 3; ++block) {
        std::vector<int> u, v;
        for (int i = 1; i <= strata; ++i) {
            u.push_back(static_cast<int>(table(block * strata + i, 1) * strata));
            v.push_back(static_cast<int>(table(block * strata + i, 2) + 7));
        }
        std::sort(u.begin(), u.end());
        std::sort(v.begin(), v.end());
        EXPECT_EQ(u, (std::vector<int>{0, 1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(v, u);
    }
}

TEST_F(SamplingContract, TwoGroupsThatMeetLaterStayApart) {
    matrix<double> factor(5, 5);
    for (int i = 1; i <= 5; ++i) {
        factor(i, i) = 1;
    }
    factor(4, 1) = 0.5;
    factor(3, 2) = 0.5;
    factor(4, 3) = 0.5;  // met last, between two groups
    factor(5, 1) = MissingValue;
    matrix<double> groups(5, 5, 8.0);
    int count = -1;
    QUORVA_EXPORT(FindSubGroups)(&factor, 5, &groups, &count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(column(groups, 1), (std::vector<double>{1, 2, 2, 1, 0})) << "a missing entry links nothing";
    EXPECT_EQ(groups(1, 5), 1);
    EXPECT_EQ(groups(2, 5), 2);
    EXPECT_EQ(groups(1, 2), 0);

    matrix<double> chain(4, 4);
    chain(2, 1) = chain(3, 2) = chain(4, 3) = 0.5;
    matrix<double> linked(4, 5);
    QUORVA_EXPORT(FindSubGroups)(&chain, 4, &linked, &count);
    EXPECT_EQ(count, 1) << "a chain is met in order and stays one group";

    matrix<double> star(3, 3);
    star(3, 1) = 0.1;
    star(3, 2) = -0.1;
    matrix<double> joined(3, 5);
    QUORVA_EXPORT(FindSubGroups)(&star, 3, &joined, &count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(column(joined, 1), (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(column(joined, 5), (std::vector<double>{1, 0, 0}));
}

TEST_F(SamplingContract, AnIdentityFactorReturnsTheIndependentUniforms) {
    startDrawing(0);
    const double first = draw(1), second = draw(2);
    cells.clear();
    uniform({sheet, 11, 1}, "a");
    uniform({sheet, 12, 2}, "b");
    result({sheet, 13, 3}, "c", [] { return 0.0; });
    startCorrelated({u"a", u"b"}, {1, MissingValue, MissingValue, 1});
    ASSERT_EQ(next(), 0);
    EXPECT_NEAR(correlated(1), first, 1e-15) << "an empty entry counts as 0";
    const int seedNow = seed, updatedNow = updated;
    EXPECT_NEAR(correlated(2), second, 1e-15);
    EXPECT_NEAR(correlated(1), first, 1e-15);
    EXPECT_EQ(std::make_pair(seed, updated), std::make_pair(seedNow, updatedNow)) << "one joint draw an iteration";
    ASSERT_EQ(next(), 0);
    EXPECT_NE(correlated(1), first);
}

TEST_F(SamplingContract, FullyCorrelatedLabelsReceiveOneUniform) {
    uniform({sheet, 0, 0}, "a");
    normal({sheet, 1, 0}, "b", 10, 2);
    normal({sheet, 2, 0}, "d", -1, 0.5);
    result({sheet, 3, 0}, "c", [] { return 0.0; });
    startCorrelated({u"d", u"a", u"b"}, std::vector<double>(9, 1.0), 0, 50);
    for (int k = 0; k < 50; ++k) {
        ASSERT_EQ(step(), 0);
        const double z = (value(1) - 10) / 2;
        EXPECT_NEAR((value(2) + 1) / 0.5, z, 1e-12);
        EXPECT_NEAR(value(0), 0.5 * std::erfc(-z / std::sqrt(2.0)), 1e-12);
    }
}

TEST_F(SamplingContract, LabelsMayComeInAnyOrder) {
    constexpr int n = 4000;
    normal({sheet, 0, 0}, "b", 1, 2);
    normal({sheet, 1, 0}, "c", 1, 2);
    normal({sheet, 2, 0}, "free");
    normal({sheet, 3, 0}, "a", 1, 2);
    result({sheet, 4, 0}, "r", [] { return 0.0; });
    startCorrelated({u"c", u"a", u"b"}, {1, 0.9, 0, 0.9, 1, -0.4, 0, -0.4, 1}, 0, n, n);
    run(n);
    const matrix<double> table = samples(n);
    EXPECT_NEAR(correlation(table, 1, 3), 0.9, 0.02);
    EXPECT_NEAR(correlation(table, 1, 2), -0.4, 0.07);
    EXPECT_NEAR(correlation(table, 2, 3), 0.0, 0.08);
    EXPECT_NEAR(correlation(table, 1, 4), 0.0, 0.08);
    EXPECT_NEAR(covariance(table, 1, 1), 4, 0.1);
}

TEST_F(SamplingContract, TheOrderOfEvaluationDoesNotChangeAJointDraw) {
    uniform({sheet, 0, 0}, "a");
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [] { return 0.0; });
    std::vector<double> drawn[2];
    for (const std::size_t first : {0U, 1U}) {
        startCorrelated({u"b", u"a"}, {1, 0.5, 0.5, 1});
        for (int k = 0; k < 5; ++k) {
            ASSERT_EQ(next(), 0);
            evaluate(first);
            evaluate(1 - first);
            drawn[first].push_back(value(0));
            drawn[first].push_back(value(1));
        }
    }
    EXPECT_EQ(drawn[0], drawn[1]);
}

TEST_F(SamplingContract, BoundsOfOneLabelRedrawAll) {
    const auto call = QUORVA_EXPORT(QUORVA_SimNormal);
    cell({sheet, 0, 0}, [=] { return call("a", 0, 1, 2, 0.2, 0.8, 0, 0, 1); });
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [] { return 0.0; });
    startCorrelated({u"a", u"b"}, {1, 0.7, 0.7, 1}, 0, 300);
    for (int k = 0; k < 300; ++k) {
        ASSERT_EQ(step(), 0);
        EXPECT_LE(std::fabs(value(0)), 0.8416212335729143 + 1e-12);
    }
    cells[0].formula = [=] { return call("a", 0, 1, 2, 0.5, 0.5, 0, 0, 1); };
    startCorrelated({u"a", u"b"}, {1, 0.7, 0.7, 1});
    ASSERT_EQ(next(), 0);
    evaluate(1);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -14);
    EXPECT_EQ(error.line, 0) << "the field whose bounds failed, not the one that asked";
    EXPECT_EQ(error.texts, std::vector<std::u16string>{u""});
    EXPECT_EQ(next(), -1);
}

TEST_F(SamplingContract, AfterARepairTheRepairedMatrixItselfIsTheFactor) {
    constexpr int n = 20'000;
    normal({sheet, 0, 0}, "a");
    normal({sheet, 1, 0}, "b");
    normal({sheet, 2, 0}, "d");
    result({sheet, 3, 0}, "r", [] { return 0.0; });
    startCorrelated({u"a", u"b", u"d"}, {1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}, 2, n);
    run(n);
    const matrix<double> table = samples(n);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double product = 0;
            for (int k = 0; k < 3; ++k) {
                product +=
                    repaired[static_cast<std::size_t>(i + 3 * k)] * repaired[static_cast<std::size_t>(j + 3 * k)];
            }
            EXPECT_NEAR(covariance(table, i + 1, j + 1), product, 0.08) << i << ' ' << j;
        }
    }
}

TEST_F(SamplingContract, SetUpRefusesAnAsymmetricMatrixAndThenNeedsANewStart) {
    uniform({sheet, 0, 0}, "a");
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [] { return 0.0; });
    init();
    recalculate();
    std::vector<double> asymmetric{1, 0.5, 0.4, 1};
    EXPECT_EQ(init2With({u"a", u"b"}, asymmetric), -2);
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(asymmetric, (std::vector<double>{1, 0.5, 0.4, 1}));
    EXPECT_EQ(init2With({u"a", u"b"}, asymmetric), -3);
    EXPECT_EQ(status(), 0);
}

TEST_F(SamplingContract, LabelsMustNameDistributionsUnlessLimitsAreInUse) {
    uniform({sheet, 0, 0}, "a");
    uniform({sheet, 1, 0}, "b");
    result({sheet, 2, 0}, "c", [] { return 0.0; });
    for (const char16_t* wrong : {u"c", u"B", u"b ", u""}) {
        std::vector<double> wanted{1, 0.5, 0.5, 1};
        init();
        recalculate();
        ASSERT_EQ(init2With({u"a", wrong}, wanted), 0);
        recalculate();
        fields = -9;
        EXPECT_EQ(start(3), -1);
        EXPECT_EQ(status(), 0);
        EXPECT_EQ(fields, 3);
        EXPECT_EQ(moduleError().code, 0) << "no error is stored";

        init();
        recalculate();
        ASSERT_EQ(init2With({u"a", wrong}, wanted, {u"nobody"}, {0}, {1}, {0.5}), 0);
        recalculate();
        EXPECT_EQ(start(3), 0) << "the check of the limits replaces it: intended";
        EXPECT_EQ(status(), 3);
    }
}

}  // namespace
