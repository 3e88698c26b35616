#include "frontend/run/requirements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {
namespace {

RunResults profitRun() {
    RunResults results;
    Field field;
    field.name = "Profit";
    field.kind = FieldKind::Result;
    results.fields.push_back(field);
    Summary summary;
    summary.name = "Profit";
    summary.count = 4;
    summary.mean = 2.5;
    summary.percentiles[4] = 2.5;
    results.summary.push_back(summary);
    results.samples.columns.push_back({1, 2, std::nan(""), 3, 4});
    Capability capability;
    capability.limits.name = "Profit";
    capability.indices[3] = 1.4;
    results.capability.push_back(capability);
    return results;
}

bool passes(const char* expression) { return evaluateRequirement(parseRequirement(expression), profitRun()).passed; }

TEST(Requirement, MeasuresOfTheResultAreCompared) {
    EXPECT_TRUE(passes("mean(Profit) >= 2.5"));
    EXPECT_FALSE(passes("mean(Profit) > 2.5"));
    EXPECT_TRUE(passes("median ( Profit ) <= 250%"));
    EXPECT_TRUE(passes("cpk(Profit) >= 1.33"));
}

TEST(Requirement, ProbabilitiesCountTheIterationsThatGaveANumber) {
    EXPECT_TRUE(passes("P(Profit < 3) = 0.5"));
    EXPECT_TRUE(passes("P(Profit >= 3) <= 50%"));
    EXPECT_FALSE(passes("P(Profit <= 4) < 1"));
}

TEST(Requirement, PercentilesInterpolateBetweenOrderStatistics) {
    EXPECT_TRUE(passes("p50(Profit) = 2.5"));
    EXPECT_TRUE(passes("P97.5(Profit) <= 4"));
}

TEST(Requirement, NamesMayHoldBlanksQuotesAndParentheses) {
    EXPECT_EQ(parseRequirement("mean(Net present value) > 0").name, "Net present value");
    EXPECT_EQ(parseRequirement("P('it''s < 3' < 0) <= 0.1").name, "it's < 3");
    EXPECT_EQ(parseRequirement("max(Cost (EUR)) < 10").name, "Cost (EUR)");
}

TEST(Requirement, MistakesNameTheirPlace) {
    for (const char* wrong : {"", "mean", "average(x) > 1", "mean() > 1", "mean(x) 1", "mean(x) > y", "mean(x) > 1 2",
                              "P(x) > 1", "p101(x) > 1", "mean('x) > 1"}) {
        try {
            parseRequirement(wrong);
            ADD_FAILURE() << wrong << " was accepted";
        } catch (const CommandFailure& failure) {
            EXPECT_EQ(failure.status, ExitStatus::Usage);
            EXPECT_THAT(failure.what(), testing::HasSubstr("character")) << wrong;
        }
    }
}

TEST(Requirement, AnUnknownFieldIsRefusedWithTheNearestName) {
    const RunResults run = profitRun();
    try {
        checkRequirement(parseRequirement("mean(Profits) > 1"), run.fields, {});
        FAIL();
    } catch (const CommandFailure& failure) {
        EXPECT_EQ(failure.status, ExitStatus::Model);
        EXPECT_THAT(failure.what(), testing::HasSubstr("did you mean 'Profit'"));
    }
    EXPECT_THROW(checkRequirement(parseRequirement("cpk(Profit) > 1"), run.fields, {}), CommandFailure);
}

TEST(Requirement, AnIndexOfBothLimitsIsRefusedWhereOneIsAbsent) {
    const RunResults run = profitRun();
    const double absent = std::numeric_limits<double>::quiet_NaN();
    const std::vector<SpecificationLimits> onlyUpper{{"Profit", absent, 5, absent}};
    try {
        checkRequirement(parseRequirement("cpk(Profit) > 1"), run.fields, onlyUpper);
        FAIL();
    } catch (const CommandFailure& failure) {
        EXPECT_EQ(failure.status, ExitStatus::Model);
        EXPECT_THAT(failure.what(), testing::HasSubstr("has only a USL, and cpk needs both limits; use cpu"));
    }
    checkRequirement(parseRequirement("cpu(Profit) > 1"), run.fields, onlyUpper);
    checkRequirement(parseRequirement("ppm(Profit) < 1"), run.fields, onlyUpper);
}

TEST(Requirement, AValueThatDoesNotExistNeverPasses) {
    RunResults run = profitRun();
    run.summary[0].mean = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(evaluateRequirement(parseRequirement("mean(Profit) <> 3"), run).passed);
}

}  // namespace
}  // namespace quorva::frontend
