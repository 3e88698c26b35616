// One fixed model, seed and settings, with everything that every function returns: compared with golden/run.txt on
// every target. The run writes what it found to golden_run.txt in the working folder; after an intended change, that
// file becomes the new golden one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "common/matrix.h"
#include "exported_routines.h"
#include "model_sheet.h"
#include "platform/front_end_arrays.h"
#include "quorva/catalogue.h"
#include "quorva/wire_format.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

constexpr int nSim = 40;
constexpr int fieldCount = 14;
constexpr int results = 2;

std::string ascii(std::u16string_view text) { return {text.begin(), text.end()}; }

/// The report of a run: titled tables, one number or text a line.
class Report {
public:
    void title(const std::string& text) { out_ << "# " << text << '\n'; }
    void number(double value) {
        char text[40];
        if (std::isfinite(value)) {
            std::snprintf(text, sizeof text, "%.17g", value);
        } else {
            std::snprintf(text, sizeof text, "%s", std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf");
        }
        out_ << text << '\n';
    }
    void text(std::u16string_view value) { out_ << '"' << ascii(value) << "\"\n"; }
    template <class T>
    void table(const std::string& name, const matrix<T>& values) {
        title(name + ", " + std::to_string(values.rows()) + " x " + std::to_string(values.columns()));
        for (std::size_t i = 0; i < values.size(); ++i) {
            number(static_cast<double>(values.data()[i]));
        }
    }
    void strings(const std::string& name, std::vector<HostString>& values) {
        title(name);
        for (auto*& value : values) {
            text(textOf(value));
            SysFreeString(value);
            value = nullptr;
        }
    }
    std::string str() const { return out_.str(); }

private:
    std::ostringstream out_;
};

double pearson(const matrix<double>& values, int a, int b) {
    double sa = 0, sb = 0, aa = 0, bb = 0, ab = 0;
    const int n = values.rows();
    for (int i = 1; i <= n; ++i) {
        sa += values(i, a);
        sb += values(i, b);
    }
    for (int i = 1; i <= n; ++i) {
        const double x = values(i, a) - sa / n;
        const double y = values(i, b) - sb / n;
        aa += x * x;
        bb += y * y;
        ab += x * y;
    }
    return aa > 0 && bb > 0 ? ab / std::sqrt(aa * bb) : MissingValue;
}

class GoldenRun : public ::testing::Test {
protected:
    void SetUp() override {
        host().reset();
        buildModel();
    }
    void TearDown() override {
        int seed = 1, used = 0;
        QUORVA_EXPORT(Cpp_SimReset)(&seed, -1, &used);
    }

    void buildModel() {
        const auto on = [this](int row, auto formula) { model.set(row, formula); };
        on(0, [](auto&) { return QUORVA_EXPORT(QUORVA_SimNormal)("price", 20, 3, 0, 0, 0, 0, 0, 1); });
        on(1, [](auto&) { return QUORVA_EXPORT(QUORVA_SimLogNormal2)("volume", 100, 15, 1, 60, 150, 0, 0, 1); });
        on(2, [](auto&) { return QUORVA_EXPORT(QUORVA_SimTriangular)("cost", 5, 8, 14, 2, 0.1, 0.9, 1, 9, 0); });
        on(3, [](auto&) { return QUORVA_EXPORT(QUORVA_SimPoisson)("failures", 2.5, 0, 0, 0, 0, 0, 1); });
        on(4, [](auto&) {
            std::uint16_t rows = 4, columns = 1;
            double observed[] = {1, 2, 2, 7};
            return QUORVA_EXPORT(QUORVA_SimEmpiricUniform)("observed", &rows, &columns, observed, 0, 0, 1);
        });
        on(5, [](auto&) { return QUORVA_EXPORT(QUORVA_SimSVar)("discount", 0, 8, 1, 2, 0, 0, 1); });
        on(6, [](auto&) { return QUORVA_EXPORT(QUORVA_SimSVar)("staff", 1, 4, 2, 1, 0, 0, 1); });
        on(7, [](auto& m) {
            const double profit = (m.value(0) - m.value(2)) * m.value(1) - 50 * m.value(3) - 10 * m.value(5);
            return QUORVA_EXPORT(QUORVA_SimRes)("profit", profit, 0, -1, 1);
        });
        on(8, [](auto& m) {
            return QUORVA_EXPORT(QUORVA_SimRes)("share", m.value(4) / (m.value(6) + m.value(1)), 0, 0, 1);
        });
        on(9, [](auto&) { return statisticCell("QUORVA_SimStatMean", "mean of profit", 7); });
        on(10, [](auto&) { return statisticCell("QUORVA_SimStatMedian", "median of cost", 2); });
        on(11, [](auto&) { return statisticCell("QUORVA_SimSPCCpk", "cpk of price", 0); });
        on(12, [](auto&) { return statisticCell("QUORVA_SimTheoVariance", "theory of volume", 1); });
        on(13, [](auto&) { return statisticCell("QUORVA_SimStatGSD", "a spread of volume", 1); });
    }

    void simulate() {
        RunSettings settings;
        settings.nSim = nSim;
        settings.strata = nSim;
        settings.checkConvergence = -1;
        settings.tolerance = 3;
        settings.allResults = 0;
        RunTables tables{{u"price", u"volume", u"cost"},
                         {1, -0.5, 0.25, -0.5, 1, 0, 0.25, 0, 1},
                         {u"price", u"cost"},
                         {11, 4},
                         {29, 14},
                         {20, 9}};
        ASSERT_EQ(beginRun(model, settings, counts, tables), 0);
        ASSERT_EQ(counts.all, fieldCount);
        report.title("counts");
        for (const int count : {counts.all, counts.ofKind[0], counts.ofKind[1], counts.ofKind[2], counts.ofKind[3]}) {
            report.number(count);
        }
        report.title("convergence every 10 iterations");
        for (int k = 1; k <= nSim; ++k) {
            ASSERT_EQ(iterate(model), 0);
            if (k % 10 == 0) {
                report.number(QUORVA_EXPORT(Cpp_SimConv)());
            }
        }
        report.title("cells after the last iteration");
        for (int row = 0; row < fieldCount; ++row) {
            report.number(model.value(row));
        }
        report.title("all statistics of all fields");
        for (const auto& entry : statisticTable) {
            for (int field = 1; field <= fieldCount; ++field) {
                report.number(QUORVA_EXPORT(SimCalcStat)(nSim, field, 0, entry.statistic));
            }
        }
    }

    void summarise() {
        matrix<double> general(fieldCount, 14), convergence(2, 2 * results);
        intervals = matrix<double>(fieldCount, 5);
        std::vector<HostString> names(2 * fieldCount), monitored(2 * results);
        int last = -1;
        QUORVA_EXPORT(Cpp_SimEnd)
        (0.05, nSim, general.data(), names.data(), convergence.data(), monitored.data(), &last, intervals.data());
        report.table("field table", general);
        report.strings("names", names);
        report.table("intervals", intervals);
        report.table("convergence", convergence);
        report.strings("monitored", monitored);
        report.number(last);
    }

    void fetchMatrices() {
        values = matrix<double>(nSim, fieldCount);
        QUORVA_EXPORT(Cpp_GetSimMat)(nSim, fieldCount, values.data());
        report.table("all values", values);
        matrix<double> one(nSim, 1);
        QUORVA_EXPORT(Cpp_GetSimRes)(3, nSim, one.data());
        report.table("field 3", one);
        for (int kind = 1; kind <= 4; ++kind) {
            packed("kind " + std::to_string(kind), counts.ofKind[kind - 1], [&](int n, double* Res, HostString* names) {
                QUORVA_EXPORT(Cpp_GetSimMatGrp)(nSim, n, Res, kind, names);
            });
        }
        packed("reduced", counts.ofKind[0] + counts.ofKind[2], [](int n, double* Res, HostString* names) {
            QUORVA_EXPORT(Cpp_GetSimMatRed)(nSim, n, Res, names);
        });
        packed("sorted", counts.all - counts.ofKind[1], [](int n, double* Res, HostString* names) {
            QUORVA_EXPORT(Cpp_GetSimMatSorted)(nSim, n, Res, names);
        });
    }

    template <class Fetch>
    void packed(const std::string& name, int columns, Fetch fetch) {
        matrix<double> table(nSim, columns);
        std::vector<HostString> names(static_cast<std::size_t>(columns));
        fetch(columns, table.data(), names.data());
        report.table(name, table);
        report.strings(name + ", names", names);
    }

    void sensitivities() {
        matrix<double> correlations(fieldCount, fieldCount);
        for (int a = 1; a <= fieldCount; ++a) {
            for (int b = 1; b <= fieldCount; ++b) {
                correlations(a, b) = pearson(values, a, b);
            }
        }
        for (const int order : {0, 1}) {
            for (int field = 1; field <= fieldCount; ++field) {
                matrix<double> table(counts.ofKind[0], 4);
                QUORVA_EXPORT(Cpp_GetSensitivity)
                (fieldCount, correlations.data(), counts.ofKind[0], field, order, table.data());
                report.table("sensitivity of field " + std::to_string(field), table);
            }
        }
    }

    void tornado(int baseCase, int method, double alpha, int points) {
        matrix<double> planned = intervals;
        int inputs = 0;
        for (int field = 1; field <= fieldCount; ++field) {
            const int kind = kindOf(field);
            inputs += kind <= 2 ? 1 : 0;
            if (kind == 4) {
                planned(field, 3) = MissingValue;
            }
        }
        int cases = -1;
        std::vector<HostString> labels(static_cast<std::size_t>(points));
        QUORVA_EXPORT(Cpp_PrepareTor)
        (baseCase, method, alpha, points, fieldCount, &cases, planned.data(), labels.data());
        report.title("tornado");
        report.number(cases);
        report.strings("labels", labels);
        for (int k = 0; k < inputs * points; ++k) {
            model.recalculate();
        }
        matrix<double> table(cases, inputs);
        matrix<int> FieldInd(inputs, 1), ResInd(fieldCount, 1);
        std::vector<HostString> names(static_cast<std::size_t>(inputs));
        QUORVA_EXPORT(Cpp_GetTornado)
        (cases, inputs, table.data(), FieldInd.data(), ResInd.data(), names.data());
        report.table("cases", table);
        report.table("inputs", FieldInd);
        report.table("results", ResInd);
        report.strings("input names", names);
        for (int field = 1; field <= fieldCount; ++field) {
            if (kindOf(field) == 3) {
                matrix<double> bars(inputs, 4), spider(points, inputs);
                QUORVA_EXPORT(Cpp_GetTornadoItem)
                (cases, inputs, field, table.data(), FieldInd.data(), bars.data(), spider.data());
                report.table("bars", bars);
                report.table("spider", spider);
            }
        }
    }

    /// Kind of a field, by the name order that its number follows.
    static int kindOf(int field) {
        constexpr int kinds[fieldCount] = {4, 1, 4, 2, 1, 4, 4, 1, 1, 3, 3, 2, 4, 1};
        return kinds[field - 1];
    }

    ModelSheet model;
    FieldCounts counts;
    Report report;
    matrix<double> intervals;
    matrix<double> values;
};

/// Numbers agree to 1e-12 relative; everything else is equal.
void expectSameLine(const std::string& actual, const std::string& golden, int line) {
    char* end = nullptr;
    const double expected = std::strtod(golden.c_str(), &end);
    if (golden.empty() || *end != '\0' || !std::isfinite(expected)) {
        EXPECT_EQ(actual, golden) << "line " << line;
    } else {
        const double found = std::strtod(actual.c_str(), nullptr);
        EXPECT_TRUE(std::abs(found - expected) <= 1e-12 * std::abs(expected))
            << "line " << line << ": " << actual << " in place of " << golden;
    }
}

TEST_F(GoldenRun, EveryTableOfEveryFunctionIsAsRecorded) {
    simulate();
    summarise();
    fetchMatrices();
    sensitivities();
    tornado(0, 0, 0.05, 5);
    tornado(1, 1, 0.15, 5);
    tornado(0, 1, 0.6, 3);
    std::ofstream("golden_run.txt") << report.str();
    std::ifstream golden(QUORVA_SOURCE_DIR "/tests/module/golden/run.txt");
    ASSERT_TRUE(golden.is_open());
    std::istringstream actual(report.str());
    std::string found, expected;
    int line = 0;
    while (std::getline(golden, expected)) {
        ++line;
        ASSERT_TRUE(std::getline(actual, found)) << "ends before line " << line;
        expectSameLine(found, expected, line);
        if (HasFailure() && line % 50 == 0) {
            FAIL() << "further lines not compared";
        }
    }
    EXPECT_FALSE(std::getline(actual, found)) << "more than the recorded lines: " << found;
    EXPECT_GT(line, 3000);
}

}  // namespace
