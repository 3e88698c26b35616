// A whole tornado pass in the built module, driven as a front end does: a recalculation for every planned case. What
// comes back is checked against the model evaluated directly at the points.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "common/matrix.h"
#include "model_sheet.h"
#include "platform/front_end_arrays.h"
#include "quorva/wire_format.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr int nSim = 60;

/// Field numbers, which follow the names.
enum Field { inA = 1, inB = 2, outP = 3, outQ = 4, stat = 5, svQuant = 6, svStep = 7 };
constexpr int fields = 7;
const std::vector<int> inputs{inA, inB, svQuant, svStep};

struct Inputs {
    double value[fields + 1] = {};
};
double modelP(const Inputs& in) { return in.value[inA] * in.value[inB] + in.value[svQuant]; }
double modelQ(const Inputs& in) { return in.value[inA] - 2 * in.value[svStep] + in.value[inB] * in.value[inB]; }

struct Pass {
    int points;
    int method;    ///< 0 interval, 1 band
    int baseCase;  ///< 0 median, 1 default
    double alpha;
    bool withoutPoints = false;  ///< in_b gets no points
    bool scenarioFirst = false;  ///< a scenario variable is calculated first and becomes the clock
};

class TornadoPass : public ::testing::TestWithParam<Pass> {
protected:
    void SetUp() override {
        host().reset();
        buildModel();
        ASSERT_EQ(beginRun(model, settings(), counts), 0);
        for (int k = 1; k <= nSim; ++k) {
            ASSERT_EQ(iterate(model), 0);
        }
        endRun();
    }
    void TearDown() override {
        int seed = 1, used = 0;
        QUORVA_EXPORT(Cpp_SimReset)(&seed, -1, &used);
    }

    static RunSettings settings() {
        RunSettings chosen;
        chosen.nSim = nSim;
        return chosen;
    }

    void buildModel() {
        const auto quantitative = [](auto&) { return QUORVA_EXPORT(QUORVA_SimSVar)("sv_quant", 0, 8, 1, 3, 0, 0, 1); };
        if (GetParam().scenarioFirst) {
            model.set(20, quantitative);
        }
        model.set(0, [](auto&) { return QUORVA_EXPORT(QUORVA_SimNormal)("in_a", 50, 2, 0, 0, 0, 1, 52, 1); });
        model.set(1, [](auto&) { return QUORVA_EXPORT(QUORVA_SimUniform)("in_b", 3, 7, 0, 0, 0, 0, 0, 1); });
        if (!GetParam().scenarioFirst) {
            model.set(20, quantitative);
        }
        model.set(3, [](auto&) { return QUORVA_EXPORT(QUORVA_SimSVar)("sv_step", 2, 9, 2, 3, -1, 4.5, 1); });
        const auto seen = [](const ModelSheet& m) {
            Inputs in;
            in.value[inA] = m.value(0);
            in.value[inB] = m.value(1);
            in.value[svQuant] = m.value(20);
            in.value[svStep] = m.value(3);
            return in;
        };
        // The second result in name order is calculated first, and so has order number 1.
        model.set(4, [=](auto& m) { return QUORVA_EXPORT(QUORVA_SimRes)("out_q", modelQ(seen(m)), 0, 0, 1); });
        model.set(5, [=](auto& m) { return QUORVA_EXPORT(QUORVA_SimRes)("out_p", modelP(seen(m)), 0, 0, 1); });
        model.set(6, [](auto&) { return statisticCell("QUORVA_SimStatMean", "stat", 0); });
    }

    /// The interval table as a front end passes it on: nothing is planned for statistics.
    void endRun() {
        std::vector<double> convergence(8);
        general = matrix<double>(fields, 14);
        intervals = matrix<double>(fields, 5);
        QUORVA_EXPORT(Cpp_SimEnd)
        (0.05, nSim, general.data(), nullptr, convergence.data(), nullptr, nullptr, intervals.data());
        intervals(stat, 3) = MissingValue;
        if (GetParam().withoutPoints) {
            intervals(inB, 3) = MissingValue;
        }
    }

    bool hasPoints(int field) const { return intervals(field, 3) != MissingValue; }

    /// The point that the plan should hold, and whether it was pulled back.
    double point(int field, int j, bool& clamped) const {
        const Pass& pass = GetParam();
        const double spacing = pass.points - 1;
        clamped = false;
        if (field == svQuant) {
            return 8 * (j - 1) / spacing;
        }
        if (field == svStep) {
            return 2 + 3 * (j - 1);
        }
        if (pass.method == 0) {
            return intervals(field, 1) + (j - 1) / spacing * (intervals(field, 3) - intervals(field, 1));
        }
        const double base = pass.baseCase == 0 ? intervals(field, 2) : general(field, 11);
        const double raw = base * (1 - pass.alpha + 2 * pass.alpha * (j - 1) / spacing);
        clamped = raw < intervals(field, 4) || raw > intervals(field, 5);
        return std::clamp(raw, intervals(field, 4), intervals(field, 5));
    }

    /// All inputs at their base, one at point j.
    Inputs inputsAt(int field, int j, bool& clamped) const {
        Inputs in;
        for (const int each : inputs) {
            in.value[each] = GetParam().baseCase == 0 ? intervals(each, 2) : general(each, 11);
        }
        in.value[field] = point(field, j, clamped);
        return in;
    }

    /// The result at a case; a field without points leaves zeros.
    double expected(int result, int field, int j, bool& clamped) const {
        clamped = false;
        if (!hasPoints(field)) {
            return 0.0;
        }
        const Inputs in = inputsAt(field, j, clamped);
        return result == outP ? modelP(in) : modelQ(in);
    }

    /// Case c of TorT: marks are matched with cases modulo five, whatever the number of points; intended.
    bool markedInTable(int field, int c) const {
        const int j = (c - 1) % 5 + 1;
        bool clamped = false;
        if (hasPoints(field) && j <= GetParam().points) {
            point(field, j, clamped);
        }
        return clamped;
    }

    void checkTable(const matrix<double>& TorT, int cases) const {
        const int n = GetParam().points;
        for (int k = 1; k <= static_cast<int>(inputs.size()); ++k) {
            const int field = inputs[static_cast<std::size_t>(k - 1)];
            for (int c = 1; c <= cases; ++c) {
                bool clamped = false;
                const double value = expected(c <= n ? outQ : outP, field, (c - 1) % n + 1, clamped);
                if (markedInTable(field, c)) {
                    EXPECT_EQ(TorT(c, k), MissingValue) << "field " << field << ", case " << c;
                } else {
                    EXPECT_NEAR(TorT(c, k), value, 1e-11 * std::abs(value)) << "field " << field << ", case " << c;
                }
            }
        }
        EXPECT_EQ(TorT(1, 5), 77.0);
    }

    void checkItem(matrix<double>& TorT, std::vector<int>& FieldInd, int cases, int result) const {
        const int n = GetParam().points;
        matrix<double> tornado(fields, 4);
        matrix<double> spider(n, fields);
        QUORVA_EXPORT(Cpp_GetTornadoItem)
        (cases, fields, result, TorT.data(), FieldInd.data(), tornado.data(), spider.data());
        std::vector<std::pair<double, int>> swings;
        for (int k = 1; k <= 4; ++k) {
            const int field = inputs[static_cast<std::size_t>(k - 1)];
            double lowest = INFINITY, highest = -INFINITY;
            for (int j = 1; j <= n; ++j) {
                bool clamped = false;
                const double value = expected(result, field, j, clamped);
                const int c = (result == outQ ? 0 : n) + j;
                if (clamped || markedInTable(field, c)) {
                    EXPECT_EQ(spider(j, k), MissingValue) << "field " << field << ", point " << j;
                    continue;
                }
                EXPECT_NEAR(spider(j, k), value, 1e-11 * std::abs(value)) << "field " << field << ", point " << j;
                lowest = std::min(lowest, spider(j, k));
                highest = std::max(highest, spider(j, k));
            }
            swings.emplace_back(lowest <= highest ? highest - lowest : 0.0, field);
        }
        std::stable_sort(swings.begin(), swings.end(), [](auto& a, auto& b) { return a.first > b.first; });
        for (int k = 1, found = 0; k <= fields; ++k) {
            if (tornado(k, 1) != 0.0) {
                EXPECT_EQ(tornado(k, 1), swings[static_cast<std::size_t>(found)].second);
                EXPECT_EQ(tornado(k, 4), swings[static_cast<std::size_t>(found)].first);
                ++found;
            }
            EXPECT_TRUE(k == 1 || tornado(k, 4) <= tornado(k - 1, 4));
        }
    }

    ModelSheet model;
    FieldCounts counts;
    matrix<double> general;
    matrix<double> intervals;
};

TEST_P(TornadoPass, RecordsTheModelAtEveryPoint) {
    const Pass& pass = GetParam();
    const int n = pass.points;
    int cases = 0;
    QUORVA_EXPORT(Cpp_PrepareTor)
    (pass.baseCase, pass.method, pass.alpha, n, fields, &cases, intervals.data(), nullptr);
    ASSERT_EQ(cases, 2 * n);
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimGetStatus)(), 4);
    for (const int field : inputs) {
        for (int j = 1; hasPoints(field) && j <= n; ++j) {
            bool clamped = false;
            const Inputs in = inputsAt(field, j, clamped);
            model.recalculate();
            EXPECT_NEAR(model.value(5), modelP(in), 1e-11 * std::abs(modelP(in))) << field << " at " << j;
            EXPECT_EQ(model.value(6), 0.0);
        }
    }
    // A column for every field, so that the marks of an item are met.
    matrix<double> TorT(cases, fields, 77.0);
    std::vector<int> FieldInd(fields, 0), ResInd(fields, -7);
    QUORVA_EXPORT(Cpp_GetTornado)(cases, fields, TorT.data(), FieldInd.data(), ResInd.data(), nullptr);
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimGetStatus)(), 0);
    EXPECT_EQ(FieldInd, (std::vector<int>{inA, inB, svQuant, svStep, 0, 0, 0}));
    EXPECT_EQ(ResInd, (std::vector<int>{0, 0, 2, 1, 0, 0, 0}));
    checkTable(TorT, cases);
    for (const int result : {outP, outQ}) {
        checkItem(TorT, FieldInd, cases, result);
    }
}

INSTANTIATE_TEST_SUITE_P(Interval, TornadoPass,
                         ::testing::Values(Pass{2, 0, 0, 0.05}, Pass{5, 0, 0, 0.05}, Pass{11, 0, 1, 0.05},
                                           Pass{5, 0, 0, 0.05, true}, Pass{5, 0, 1, 0.05, false, true}));
INSTANTIATE_TEST_SUITE_P(Band, TornadoPass,
                         ::testing::Values(Pass{2, 1, 0, 0.02}, Pass{5, 1, 0, 0.25}, Pass{5, 1, 1, 0.3},
                                           Pass{11, 1, 0, 0.3}, Pass{11, 1, 1, 0.01}, Pass{5, 1, 0, 0.3, true},
                                           Pass{5, 2, 1, 0.3, false, true}));

}  // namespace
