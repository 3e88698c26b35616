#include "frontend/run/setting_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {
namespace {

std::string refusalOf(const std::string& csv) {
    try {
        correlationFromTable(tableFromCsv(csv), "m.csv");
        return "accepted";
    } catch (const CommandFailure& failure) {
        EXPECT_EQ(failure.status, ExitStatus::Model);
        return failure.what();
    }
}

TEST(CorrelationTable, EmptyEntriesAreZeroAndOneTriangleIsEnough) {
    const LabelledMatrix matrix = correlationFromTable(tableFromCsv(",a,b,c\na,1,,\nb,0.5,1,\nc,,-0.2,1\n"), "m.csv");
    EXPECT_EQ(matrix.names, (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(matrix.values, (std::vector<double>{1, 0.5, 0, 0.5, 1, -0.2, 0, -0.2, 1}));
}

TEST(CorrelationTable, ImpossibleTablesAreRefusedWithTheCause) {
    EXPECT_THAT(refusalOf(",a,b\na,1,0.5\nb,0.4,1\n"), testing::HasSubstr("not symmetric"));
    EXPECT_THAT(refusalOf(",a,b\na,1,1.5\nb,1.5,1\n"), testing::HasSubstr("outside -1 to 1"));
    EXPECT_THAT(refusalOf(",a,b\na,2,0\nb,0,1\n"), testing::HasSubstr("diagonal"));
    EXPECT_THAT(refusalOf(",a,b\na,1,x\nb,0,1\n"), testing::HasSubstr("'x' where a number is due"));
    EXPECT_THAT(refusalOf(",a,b\na,1,0\nc,0,1\n"), testing::HasSubstr("differ: 'c' and 'b'"));
    EXPECT_THAT(refusalOf(",a,b\na,1,0\n"), testing::HasSubstr("not square"));
    EXPECT_THAT(refusalOf("5\n"), testing::HasSubstr("first row and column"));
}

TEST(CorrelationTable, LabelsMustBeDistributionsAndStandOnce) {
    Field input, output;
    input.name = "Price";
    output.name = "Profit";
    output.kind = FieldKind::Result;
    const LabelledMatrix known{{"Price"}, {1}}, other{{"Prize"}, {1}}, result{{"Profit"}, {1}},
        twice{{"Price", "Price"}, {1, 0, 0, 1}};
    EXPECT_NO_THROW(checkCorrelationLabels(known, {input, output}, "m"));
    EXPECT_THROW(checkCorrelationLabels(result, {input, output}, "m"), CommandFailure);
    EXPECT_THROW(checkCorrelationLabels(twice, {input, output}, "m"), CommandFailure);
    try {
        checkCorrelationLabels(other, {input, output}, "m");
        FAIL();
    } catch (const CommandFailure& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("did you mean 'Price'"));
    }
}

TEST(CapabilityTable, LimitsMayBeAbsentAndAHeaderIsOptional) {
    const auto limits = capabilityFromTable(tableFromCsv("name,LSL,USL,target\nGap,0.3,,\nHole,,2,1\n"), "c.csv");
    ASSERT_EQ(limits.size(), 2u);
    EXPECT_EQ(limits[0].lower, 0.3);
    EXPECT_TRUE(std::isnan(limits[0].upper));
    EXPECT_EQ(limits[1].target, 1);
    EXPECT_EQ(capabilityFromTable(tableFromCsv("Gap,1,2\n"), "c.csv").size(), 1u);
}

TEST(SettingTables, ACommaIsTheDecimalSignWhereTheSemicolonSeparates) {
    const LabelledMatrix matrix = correlationFromTable(tableFromCsv(";a;b\na;1;0,5\nb;0,5;1\n"), "m.csv");
    EXPECT_EQ(matrix.at(0, 1), 0.5);
    const auto limits = capabilityFromTable(tableFromCsv("Name;LSL;USL;Target\n1,5;-0,25;2;\n"), "c.csv");
    EXPECT_EQ(limits[0].name, "1,5");
    EXPECT_EQ(limits[0].lower, -0.25);
}

TEST(CapabilityTable, LimitsOutOfOrderOrMissingAreRefused) {
    EXPECT_THROW(capabilityFromTable(tableFromCsv("Gap,2,1,\n"), "c.csv"), CommandFailure);
    EXPECT_THROW(capabilityFromTable(tableFromCsv("Gap,,,1\n"), "c.csv"), CommandFailure);
    EXPECT_THROW(capabilityFromTable(tableFromCsv("name,LSL,USL,target\n"), "c.csv"), CommandFailure);
}

}  // namespace
}  // namespace quorva::frontend
