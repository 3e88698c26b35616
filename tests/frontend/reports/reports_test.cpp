#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include <nlohmann/json.hpp>

#include "frontend/reports/report_html.h"
#include "frontend/reports/report_json.h"
#include "frontend/reports/summary_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {
namespace {

const double none = std::nan("");

RunResults hostileRun() {
    RunResults results;
    results.workbook = "<b>book</b>.xlsx";
    results.iterations = 2;
    for (const std::string name : {"<script>alert(1)</script>", "=cmd|' /C calc'!A0"}) {
        Field field;
        field.number = static_cast<int>(results.fields.size()) + 1;
        field.name = name;
        field.sheet = "Sheet1";
        field.kind = results.fields.empty() ? FieldKind::Distribution : FieldKind::Result;
        field.law = 15;
        field.parameters = {none, 2, 0, 0};
        results.fields.push_back(field);
        Summary summary;
        summary.name = name;
        summary.kind = field.kind;
        summary.mean = none;
        results.summary.push_back(summary);
        results.intervals.push_back({name, 1, 2, 3, 0, 4});
        results.samples.columns.push_back({1, none});
    }
    const std::string result = results.fields[1].name;
    results.sensitivity.push_back({result, {{results.fields[0].name, -0.5, -1}}});
    results.charts.push_back({result, {{0, 1, 2}, {1, 1}, {0.5, 1}}, {{1, 2}, {1, 1}, {0, 0}, {2, 2}}, {}});
    return results;
}

TEST(Html, NamesOfFieldsCannotLeaveTheirPlace) {
    const std::string page = htmlReport(hostileRun());
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("<script>alert(1)")));
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("<b>book")));
    EXPECT_THAT(page, testing::HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("src=\"http")));
}

TEST(Json, NumbersThatDoNotExistAreNull) {
    const auto json = runJson(hostileRun());
    EXPECT_TRUE(json["summary"][0]["mean"].is_null());
    EXPECT_TRUE(json["fields"][0]["parameters"]["mu"].is_null());
    EXPECT_EQ(json["fields"][0]["parameters"]["sigma"], 2);
    EXPECT_TRUE(json["convergence"].is_null());
}

TEST(Summary, IsAtMostAHundredColumnsWide) {
    RunResults results = hostileRun();
    for (Field& field : results.fields) {
        field.name += std::string(200, 'x');
    }
    results.summary[1].name = std::string(150, 'y');
    results.summary[1].mean = -123456789012.25;
    results.sensitivity[0].result += std::string(120, 'z');
    results.sensitivity[0].inputs[0].name = std::string(150, 'x');
    results.tornado.push_back({std::string(140, 't'), 1, {"5.00%"}, {{std::string(150, 'i'), 1, 2, 1, {1}}}});
    results.warnings.push_back(std::string(250, 'n'));
    results.warnings.push_back("a long warning " + std::string(60, 'w') + " with " + std::string(60, 'v') + " words");
    std::istringstream lines(summaryText(results));
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(displayWidth(line), 100u) << line;
    }
}

}  // namespace
}  // namespace quorva::frontend
