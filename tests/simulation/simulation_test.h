// Whole runs: model functions in cells, driven by the calls of a front end.
#pragma once

#include <gtest/gtest.h>

#include "../control/front_end_calls.h"
#include "../engine/field_by_name.h"
#include "../model/cells.h"

namespace quorva::testing {

class SimulationTest : public ::testing::Test, protected Cells, protected FrontEndCalls {
protected:
    void SetUp() override {
        fakeHost = {};
        run = RunState{};
        reset();
    }
    void TearDown() override {
        EXPECT_EQ(fakeHost.outstanding, 0) << "host results not released";
        EXPECT_EQ(fakeHost.badRequests, 0);
        reset();
    }

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
};

}  // namespace quorva::testing
