// A model of cells with formulas in a run whose steps are made by hand: what the fields find in the run state, and what
// they leave there.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "../engine/field_by_name.h"
#include "../engine/uniforms_consumed.h"
#include "../platform/reported_error.h"
#include "cells.h"
#include "common/whole_number.h"
#include "engine/field_registry.h"
#include "stats/running_moments.h"

namespace quorva::testing {

class ModelTest : public ::testing::Test, protected Cells {
protected:
    void SetUp() override {
        fakeHost = {};
        reset();
    }
    void TearDown() override {
        EXPECT_EQ(fakeHost.outstanding, 0) << "host results not released";
        EXPECT_EQ(fakeHost.badRequests, 0);
        reset();
    }

    static void reset(int seed = 1) {
        run = RunState{};
        startGenerator(seed);
    }
    /// Ready for the registration pass.
    static void init(bool workbook = false) {
        reset();
        run.sheets.grids.front().clear();
        run.sheets.workbookModel = toHostBool(workbook);
        run.status.become(RunStatus::Initialised);
    }
    /// Ready for the description pass.
    static void init2() {
        FieldTables& fields = run.fields;
        for (FieldGrid& grid : run.sheets.grids) {
            if (grid.allocated()) {
                grid.clear();
            }
        }
        fields.nDist = fields.nSVar = fields.nRes = fields.nStat = 0;
        fields.FieldTable = matrix<double>(fields.registered, fieldcolumn::columns);
        fields.FieldFlags = matrix<double>(fields.registered, momentcolumn::columns);
        fields.FieldNames = matrix<std::u16string>(fields.registered, namecolumn::columns);
        run.status.become(RunStatus::Prepared);
    }
    /// Both passes.
    void prepare(bool workbook = false) {
        init(workbook);
        recalculate();
        init2();
        recalculate();
    }
    /// Ready for iterations, with the fields in name order. An error recorded so far stands.
    static void begin(int nSim, int strata = 0) {
        numberByName();
        run.sampling.iteration = 0;
        run.sampling.nSim = nSim;
        run.sampling.inbuckets = strata;
        run.sampling.LhsTable = matrix<double>(strata + 1, run.fields.nDist);
        run.sampling.SampleStore = matrix<double>(nSim, run.fields.nFields);
        const matrix<double>& table = run.fields.FieldTable;
        for (int field = 1; field <= run.fields.nFields; ++field) {
            const auto cell = [&](int column) { return wholeNumber(table(field, column)); };
            if (cell(fieldcolumn::kind) == static_cast<int>(FieldKind::Statistic)) {
                const auto described = getFieldInfo(cell(fieldcolumn::referenceColumn), cell(fieldcolumn::referenceRow),
                                                    cell(fieldcolumn::referenceSheet));
                run.fields.FieldFlags(static_cast<int>(described), momentcolumn::collect) = 1.0;
            }
        }
        run.status.become(RunStatus::Running);
    }
    /// The step between two iterations: -1 when an error stands.
    static int next() {
        SimUpdateStat();
        ++run.sampling.iteration;
        return isTrue(run.error.flag) ? -1 : 0;
    }
    int iterate() {
        const int code = next();
        recalculate();
        return code;
    }
    static ReportedError reportedError() {
        const ErrorRecord& error = run.error;
        return isTrue(error.flag) ? ReportedError{error.code, error.first.line, error.first.column, {error.first.sheet}}
                                  : ReportedError{};
    }

private:
    static void numberByName() {
        FieldTables& fields = run.fields;
        const matrix<double> table = fields.FieldTable;
        const matrix<std::u16string> names = fields.FieldNames;
        std::vector<int> order(static_cast<std::size_t>(fields.nFields));
        std::iota(order.begin(), order.end(), 1);
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return names(a, 1) < names(b, 1); });
        for (int number = 1; number <= fields.nFields; ++number) {
            const int described = order[static_cast<std::size_t>(number - 1)];
            for (int column = 1; column <= fieldcolumn::columns; ++column) {
                fields.FieldTable(number, column) = table(described, column);
            }
            for (int column = 1; column <= namecolumn::columns; ++column) {
                fields.FieldNames(number, column) = names(described, column);
            }
            const auto cell = [&](int column) { return wholeNumber(table(described, column)); };
            setFieldInfo(cell(fieldcolumn::column), cell(fieldcolumn::row), cell(fieldcolumn::sheetSlot),
                         static_cast<std::uint32_t>(number));
        }
    }
};

}  // namespace quorva::testing
