// A model of cells with formulas, recalculated the way a host does it, and the calls of a front end in their order.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "../platform/reported_error.h"
#include "engine/field_registry.h"
#include "engine/run_state.h"
#include "fake_host.h"
#include "platform/front_end_arrays.h"
#include "quorva/front_end.h"
#include "quorva/worksheet.h"

namespace quorva::testing {

/// Cpp_SimError; `line` on entry chooses the location.
inline ReportedError reportedError(int line = 0) {
    ReportedError error{0, line, 0, {}};
    HostStringArray* sheets = nullptr;
    Cpp_SimError(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

inline ReportedError reportedError2() {
    ReportedError error;
    HostStringArray* sheets = nullptr;
    Cpp_SimError2(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

inline HostStringArray* hostStrings(const std::vector<std::u16string>& texts) {
    matrix<std::u16string> column(static_cast<int>(texts.size()), 1);
    std::copy(texts.begin(), texts.end(), column.data());
    return toHostStringArray(column);
}

struct Correlations {
    std::vector<std::u16string> labels;
    std::vector<double> matrix;  ///< column-major; rewritten when repaired
};

struct Capabilities {
    std::vector<std::u16string> labels;
    std::vector<double> lower, upper, target;
};

struct FieldCounts {
    int all = -7, distributions = -7, scenarios = -7, results = -7, statistics = -7;
};

class ModelTest : public ::testing::Test {
protected:
    using Formula = std::function<double()>;

    void SetUp() override {
        fakeHost = {};
        reset();
        // Counters that a run before left behind.
        run.fields.nFields = run.fields.registered = run.fields.nDist = run.fields.nRes = 0;
        run.fields.nSVar = run.fields.nStat = 0;
        run.capability.iUseSpc = hostFalse;
        run.error = {};
    }
    void TearDown() override {
        EXPECT_EQ(fakeHost.outstanding, 0) << "host results not released";
        EXPECT_EQ(fakeHost.badRequests, 0);
        reset();
    }

    static void reset(int seed = 1) {
        int next = 0;
        Cpp_SimReset(&seed, hostTrue, &next);
    }
    static int init(bool workbook = false, int seed = 1) {
        int next = 0;
        return Cpp_SimInit(toHostBool(workbook), &seed, hostTrue, &next);
    }
    static int init2() { return Cpp_SimInit2(0, 0, nullptr, nullptr, 0, 0, 0.0, nullptr, nullptr, nullptr, nullptr); }
    static int init2(Correlations& correlations, Capabilities* capabilities = nullptr) {
        HostStringArray* labels = hostStrings(correlations.labels);
        HostStringArray* spcLabels = capabilities ? hostStrings(capabilities->labels) : nullptr;
        Capabilities none;
        Capabilities& spc = capabilities ? *capabilities : none;
        const int result =
            Cpp_SimInit2(toHostBool(!correlations.labels.empty()), static_cast<int>(correlations.labels.size()),
                         correlations.matrix.data(), &labels, toHostBool(capabilities != nullptr),
                         static_cast<int>(spc.labels.size()), 0.95, spc.lower.data(), spc.upper.data(),
                         spc.target.data(), &spcLabels);
        SafeArrayDestroy(labels);
        if (spcLabels) {
            SafeArrayDestroy(spcLabels);
        }
        return result;
    }
    int begin(int nSim, int strata = 0, bool check = false, bool all = false) {
        counts = {};
        return Cpp_SimBegin(nSim, strata, toHostBool(check), 0, 3.0, 0.95, toHostBool(all), 1, 0.5, &counts.all,
                            &counts.distributions, &counts.scenarios, &counts.results, &counts.statistics);
    }

    /// Adds a cell; returns its index. Cells are evaluated in the order added.
    std::size_t cell(const Address& address, Formula formula) {
        cells.push_back({address, std::move(formula), 0.0});
        return cells.size() - 1;
    }
    std::size_t normal(const Address& address, const char* name, double mu = 0.0, double sigma = 1.0) {
        return cell(address, [=] { return QUORVA_SimNormal(name, mu, sigma, 0, 0, 0, 0, 0, 1); });
    }
    std::size_t uniform(const Address& address, const char* name, int mode = 0, double lower = 0, double upper = 0) {
        return cell(address, [=] { return QUORVA_SimUniform(name, 0, 1, mode, lower, upper, 0, 0, 1); });
    }
    std::size_t result(const Address& address, const char* name, Formula formula) {
        return cell(address, [=] { return QUORVA_SimRes(name, formula(), 0, 0, 1); });
    }
    double evaluate(std::size_t index) {
        fakeHost.caller = cells[index].address;
        return cells[index].value = cells[index].formula();
    }
    static double evaluate(const Address& address, const Formula& formula) {
        fakeHost.caller = address;
        return formula();
    }
    void recalculate() {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            evaluate(i);
        }
    }
    double value(std::size_t index) const { return cells[index].value; }

    /// Both passes without settings.
    void prepare(bool workbook = false, int seed = 1) {
        ASSERT_EQ(init(workbook, seed), 0);
        recalculate();
        ASSERT_EQ(init2(), 0);
        recalculate();
    }
    int iterate() {
        const int next = Cpp_SimNext();
        recalculate();
        return next;
    }
    /// Field number of a name after Cpp_SimBegin.
    static int numberOf(const std::u16string& name) {
        for (int i = 1; i <= run.fields.nFields; ++i) {
            if (run.fields.FieldNames(i, 1) == name) {
                return i;
            }
        }
        return 0;
    }
    static double stored(int iteration, const std::u16string& name) {
        return run.sampling.SampleStore(iteration, numberOf(name));
    }

    struct Cell {
        Address address;
        Formula formula;
        double value;
    };
    std::vector<Cell> cells;
    FieldCounts counts;
};

}  // namespace quorva::testing
