// Runs of described fields, driven by the calls of a front end.
#pragma once

#include <gtest/gtest.h>

#include "../engine/field_by_name.h"
#include "described_fields.h"
#include "front_end_calls.h"

namespace quorva::testing {

class ControlTest : public ::testing::Test, protected DescribedFields, protected FrontEndCalls {
protected:
    void SetUp() override {
        fakeHost = {};
        run = RunState{};
        reset();
    }
    void TearDown() override { reset(); }

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
