// Whole runs through the built module's exports.
#include <cmath>
#include <memory>

#include "module_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr const char* sheetOne = "[Book]1";

class WholeRun : public ModuleModel {
protected:
    /// `count` fields: all normals but the last, which is their sum.
    void sumModel(int count) {
        for (int i = 0; i + 1 < count; ++i) {
            normal({sheetOne, i, i % 7}, "d" + std::to_string(i), i);
        }
        result({sheetOne, count, 9}, "sum", [this] {
            double sum = 0;
            for (std::size_t i = 0; i + 1 < cells.size(); ++i) {
                sum += value(i);
            }
            return sum;
        });
    }
};

TEST_F(WholeRun, TwentyFieldsRunAHundredThousandIterations) {
    constexpr int n = 100'000;
    sumModel(20);
    prepare(false, 7);
    ASSERT_EQ(begin(n, n), 0);
    EXPECT_EQ(fields, 20);
    EXPECT_EQ(distributions, 19);
    EXPECT_EQ(results, 1);
    for (int k = 0; k < n; ++k) {
        ASSERT_EQ(iterate(), 0);
    }
    const matrix<double> table = samples(n);
    const int sum = numberAt(19);
    double mean = 0;
    for (int k = 1; k <= n; ++k) {
        double expected = 0;
        for (std::size_t i = 0; i < 19; ++i) {
            expected += table(k, numberAt(i));
        }
        ASSERT_EQ(table(k, sum), expected) << "iteration " << k;
        mean += table(k, sum) / n;
    }
    // As many strata as iterations: the mean of each field is known far better than by plain sampling.
    EXPECT_NEAR(mean, 18 * 19 / 2, 0.01);
}

TEST_F(WholeRun, ModelsOfOneDistributionToThreeThousandFields) {
    for (const int count : {2, 3, 100, 3000}) {
        cells.clear();
        sumModel(count);
        prepare();
        ASSERT_EQ(begin(4), 0);
        ASSERT_EQ(fields, count);
        std::vector<std::vector<double>> seen;
        for (int k = 0; k < 4; ++k) {
            ASSERT_EQ(iterate(), 0);
            seen.emplace_back();
            for (const Cell& c : cells) {
                seen.back().push_back(c.value);
            }
        }
        const matrix<double> table = samples(4);
        for (int k = 0; k < 4; ++k) {
            for (std::size_t i = 0; i < cells.size(); ++i) {
                ASSERT_EQ(table(k + 1, numberAt(i)), seen[static_cast<std::size_t>(k)][i]) << count;
            }
        }
        reset();
    }
}

TEST_F(WholeRun, CellsEvaluatedTwiceAndInOddOrdersAreRecordedOnce) {
    sumModel(5);
    prepare();
    ASSERT_EQ(begin(6), 0);
    for (int k = 1; k <= 6; ++k) {
        ASSERT_EQ(next(), 0);
        for (const std::size_t i : {3U, 1U, 3U, 0U, 2U, 0U, 1U}) {
            evaluate(i);
        }
        const double sum = evaluate(4);
        cells[0].value += 1e6;  // what the host shows elsewhere is not the field's affair
        EXPECT_EQ(evaluate(4), sum) << "the first value of the iteration stands";
        EXPECT_EQ(evaluate(0) + value(1) + value(2) + value(3), sum);
    }
    const matrix<double> table = samples(6);
    for (int k = 1; k <= 6; ++k) {
        double sum = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            sum += table(k, numberAt(i));
        }
        EXPECT_EQ(table(k, numberAt(4)), sum);
    }
}

TEST_F(WholeRun, AWorkbookOfTenSheetsRunsAndTheEleventhIsRefused) {
    const auto sheet = [](int i) { return std::string("[Book]") + static_cast<char>('A' + i); };
    for (int i = 0; i < 9; ++i) {
        normal({sheet(i), 5, 5}, "d" + std::to_string(i), 10 * i, 1e-3);
    }
    result({sheet(9), 5, 5}, "last", [this] { return value(8); });
    prepare(true);
    ASSERT_EQ(begin(3, 3), 0);
    ASSERT_EQ(iterate(), 0);
    const matrix<double> table = samples(3);
    for (int i = 0; i < 9; ++i) {
        EXPECT_NEAR(table(1, i + 1), 10 * i, 1);
    }
    EXPECT_EQ(table(1, 10), value(8));

    normal({sheet(10), 6, 7}, "d10");
    ASSERT_EQ(init(true), 0);
    recalculate();
    EXPECT_EQ(init2(), -16);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -16);
    EXPECT_EQ(error.line, 6);
    EXPECT_EQ(error.column, 7);
    EXPECT_EQ(error.texts, std::vector<std::u16string>{u"[Book]K"});
}

TEST_F(WholeRun, OneNameTwiceIsReadBackInBothForms) {
    normal({sheetOne, 1, 2}, "twin");
    normal({"[Book]2", 3, 4}, "twin");
    result({sheetOne, 5, 6}, "r", [] { return 0.0; });
    prepare(true);
    EXPECT_EQ(begin(5), -17);
    EXPECT_EQ(status(), 0);
    const ReportedError first = moduleError();
    EXPECT_EQ(first.code, -17);
    EXPECT_EQ(first.line, 1);
    EXPECT_EQ(first.column, 2);
    EXPECT_EQ(first.texts, std::vector<std::u16string>{u"[Book]1"});
    for (const ReportedError& second : {moduleError(-1), moduleError2()}) {
        EXPECT_EQ(second.code, -17);
        EXPECT_EQ(second.line, 3);
        EXPECT_EQ(second.column, 4);
        EXPECT_EQ(second.texts, (std::vector<std::u16string>{u"[Book]2", u"twin"}));
    }
}

TEST_F(WholeRun, ErrorsOfEachPassAreReportedWhereTheFrontEndLooks) {
    sumModel(3);
    init();
    recalculate();
    evaluate(1);
    EXPECT_EQ(init2(), -10) << "registration pass";
    EXPECT_EQ(moduleError().line, 1);

    prepare();
    evaluate(0);
    EXPECT_EQ(begin(5), -10) << "description pass";
    EXPECT_EQ(moduleError().line, 0);

    prepare();
    ASSERT_EQ(begin(5), 0);
    ASSERT_EQ(iterate(), 0);
    normal({sheetOne, 77, 8}, "new");
    evaluate(3);
    EXPECT_EQ(next(), -1) << "running";
    EXPECT_EQ(moduleError().code, -11);
    EXPECT_EQ(moduleError().line, 77);
    EXPECT_EQ(moduleError().column, 8);
    cells.pop_back();

    prepare();
    ASSERT_EQ(begin(5), 0) << "a run after an aborted one";
    EXPECT_EQ(iterate(), 0);
}

TEST_F(WholeRun, TenThousandFieldsAreTheLimit) {
    for (int i = 0; i < 9'999; ++i) {
        normal({sheetOne, i, 0}, "d" + std::to_string(i));
    }
    result({sheetOne, 0, 1}, "r", [] { return 0.0; });
    prepare();
    ASSERT_EQ(begin(1), 0);
    EXPECT_EQ(fields, 10'000);
    EXPECT_EQ(iterate(), 0);
    normal({sheetOne, 3, 3}, "one too many");
    prepare();
    EXPECT_EQ(begin(1), -13);
    EXPECT_EQ(moduleError().column, 3);
}

TEST_F(WholeRun, TheLimitOfSampleCellsIsTestedBeforeAnythingIsAllocated) {
    sumModel(2);
    prepare();
    EXPECT_EQ(begin(32'000'001), -12);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(samples(1)(1, 1), -1.0) << "no store: what a read outside it gives";
}

TEST_F(WholeRun, ResetInEveryStatus) {
    sumModel(3);
    const std::vector<std::function<void()>> steps{
        [] {}, [] { init(); },
        [this] {
            recalculate();
            init2();
        },
        [this] {
            recalculate();
            begin(4);
        },
        [this] {
            iterate();
            std::vector<double> intervals(15, 1.0);
            int cases = 0;
            std::vector<double> general(100), convergence(100);
            std::vector<HostString> names(6), monitored(10);
            int converged = 0;
            QUORVA_EXPORT(Cpp_SimEnd)
            (0.1, 4, general.data(), names.data(), convergence.data(), monitored.data(), &converged, intervals.data());
            for (HostString name : names) {
                SysFreeString(name);
            }
            QUORVA_EXPORT(Cpp_PrepareTor)(0, 0, 0.1, 3, 3, &cases, intervals.data(), nullptr);
        }};
    for (std::size_t last = 0; last < steps.size(); ++last) {
        reset();
        for (std::size_t i = 0; i <= last; ++i) {
            steps[i]();
        }
        EXPECT_EQ(status(), static_cast<int>(last));
        reset();
        EXPECT_EQ(status(), 0);
        recalculate();
        EXPECT_EQ(value(0), 0.0) << "an ordinary spreadsheet again";
    }
}

TEST_F(WholeRun, ACorrelationMatrixIsRepairedInTheCallersArray) {
    sumModel(4);
    init();
    recalculate();
    std::vector<double> wanted{1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1};
    matrix<std::u16string> names(3, 1);
    names(1, 1) = u"d0";
    names(2, 1) = u"d1";
    names(3, 1) = u"d2";
    HostStringArray* labels = toHostStringArray(names);
    const auto setUp = QUORVA_EXPORT(Cpp_SimInit2);
    EXPECT_EQ(setUp(hostTrue, 3, wanted.data(), &labels, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), 2);
    EXPECT_NEAR(wanted[1], 0.5, 1e-6) << "the nearest correlation matrix";
    EXPECT_NEAR(wanted[2], -0.5, 1e-6);
    recalculate();
    EXPECT_EQ(begin(10), 0);
    EXPECT_EQ(iterate(), 0);
    SafeArrayDestroy(labels);
}

TEST_F(WholeRun, OneSeedGivesOneRunThroughTheModule) {
    sumModel(4);
    const auto sums = [&](int seed) {
        prepare(false, seed);
        EXPECT_EQ(begin(20, 5), 0);
        std::vector<double> shown;
        for (int k = 0; k < 20; ++k) {
            iterate();
            shown.push_back(value(3));
        }
        return shown;
    };
    const auto first = sums(11);
    EXPECT_EQ(first, sums(11));
    EXPECT_NE(first, sums(12));
}

}  // namespace
