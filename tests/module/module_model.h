// A model of cells that the built module simulates: the front end's calls in their order, and a host that recalculates.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "../platform/reported_error.h"
#include "exported_routines.h"
#include "module_under_test.h"
#include "platform/front_end_arrays.h"
#include "quorva/automation.h"
#include "quorva/front_end.h"
#include "quorva/worksheet.h"

namespace quorva::testing {

inline ReportedError moduleError(int line = 0) {
    ReportedError error{0, line, 0, {}};
    HostStringArray* sheets = nullptr;
    QUORVA_EXPORT(Cpp_SimError)(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

inline ReportedError moduleError2() {
    ReportedError error;
    HostStringArray* sheets = nullptr;
    QUORVA_EXPORT(Cpp_SimError2)(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

/// Answers the requests of model functions without remembering them: one calling cell, sheets identified by their last
/// character.
class QuickHost {
public:
    HostCell cell;

    void install() {
        host().reset();
        host().recordCalls = false;
        host().override = [this](int function, XLOPER* result, int, XLOPER**) { return answer(function, result); };
    }

private:
    std::optional<int> answer(int function, XLOPER* result) {
        switch (function) {
            case hostfunction::caller:
                result->type = hosttype::localReference;
                result->value.localReference.count = 1;
                result->value.localReference.range = {
                    static_cast<std::uint16_t>(cell.row), static_cast<std::uint16_t>(cell.row),
                    static_cast<std::uint8_t>(cell.column), static_cast<std::uint8_t>(cell.column)};
                return 0;
            case hostfunction::sheetName:
                text_[0] = static_cast<char>(cell.sheet.size());
                std::memcpy(text_ + 1, cell.sheet.data(), cell.sheet.size());
                result->type = hosttype::text;
                result->value.text = text_;
                return 0;
            case hostfunction::sheetId:
                result->type = hosttype::reference;
                result->value.reference.list = nullptr;
                result->value.reference.sheetId = static_cast<unsigned char>(cell.sheet.back());
                return 0;
            case hostfunction::free:
                return 0;
            default:
                return std::nullopt;
        }
    }
    char text_[256] = {};
};

class ModuleModel : public ::testing::Test {
protected:
    using Formula = std::function<double()>;

    void SetUp() override {
        quick.install();
        reset();
    }
    void TearDown() override {
        reset();
        host().reset();
    }

    static void reset() {
        int seed = 1;
        int next = 0;
        QUORVA_EXPORT(Cpp_SimReset)(&seed, hostTrue, &next);
    }
    static int status() { return QUORVA_EXPORT(Cpp_SimGetStatus)(); }
    static int init(bool workbook = false, int seed = 1) {
        int next = 0;
        return QUORVA_EXPORT(Cpp_SimInit)(toHostBool(workbook), &seed, hostTrue, &next);
    }
    static int init2() {
        return QUORVA_EXPORT(Cpp_SimInit2)(0, 0, nullptr, nullptr, 0, 0, 0.0, nullptr, nullptr, nullptr, nullptr);
    }
    int begin(int nSim, int strata = 0) {
        return QUORVA_EXPORT(Cpp_SimBegin)(nSim, strata, 0, 0, 3.0, 0.95, 0, 1, 0.5, &fields, &distributions,
                                           &scenarios, &results, &statistics);
    }
    static int next() { return QUORVA_EXPORT(Cpp_SimNext)(); }

    std::size_t cell(HostCell address, Formula formula) {
        cells.push_back({std::move(address), std::move(formula), 0.0});
        return cells.size() - 1;
    }
    std::size_t normal(HostCell address, std::string name, double mu = 0.0, double sigma = 1.0) {
        return cell(std::move(address), [=, call = QUORVA_EXPORT(QUORVA_SimNormal)] {
            return call(name.c_str(), mu, sigma, 0, 0, 0, 0, 0, 1);
        });
    }
    std::size_t result(HostCell address, std::string name, Formula formula) {
        return cell(std::move(address),
                    [=, call = QUORVA_EXPORT(QUORVA_SimRes)] { return call(name.c_str(), formula(), 0, 0, 1); });
    }
    double evaluate(std::size_t index) {
        quick.cell = cells[index].address;
        return cells[index].value = cells[index].formula();
    }
    double value(std::size_t index) const { return cells[index].value; }
    void recalculate() {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            evaluate(i);
        }
    }
    void prepare(bool workbook = false, int seed = 1) {
        ASSERT_EQ(init(workbook, seed), 0);
        recalculate();
        ASSERT_EQ(init2(), 0);
        recalculate();
    }
    int iterate() {
        const int code = next();
        recalculate();
        return code;
    }
    /// Field number of a cell of a single-sheet model.
    int numberAt(std::size_t index) const {
        const HostCell& at = cells[index].address;
        return static_cast<int>(QUORVA_EXPORT(getFieldInfo)(at.column, at.row, 0));
    }
    /// nSim x fields, as the front end gets it.
    matrix<double> samples(int nSim) const {
        matrix<double> table(nSim, fields);
        QUORVA_EXPORT(Cpp_GetSimMat)(nSim, fields, table.data());
        return table;
    }

    struct Cell {
        HostCell address;
        Formula formula;
        double value;
    };
    std::vector<Cell> cells;
    QuickHost quick;
    int fields = 0, distributions = 0, scenarios = 0, results = 0, statistics = 0;
};

}  // namespace quorva::testing
