// The reports as other programs see them.
#include <gmock/gmock.h>

#include <filesystem>

#include "program.h"

namespace quorva::frontend {
namespace {

using testing::HasSubstr;

class ReportFile : public ProgramTest {
protected:
    Outcome python(const std::string& script, const std::vector<std::string>& arguments) const {
        std::vector<std::string> words{QUORVA_PYTHON, QUORVA_SOURCE_DIR "/tests/frontend/program/" + script};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return command(words);
    }
    bool hasModule(const std::string& name) const {
        return command({QUORVA_PYTHON, "-c", "import " + name}).status == 0;
    }
};

TEST_F(ReportFile, JsonFollowsItsSchema) {
    if (!hasModule("jsonschema")) {
        GTEST_SKIP() << "python3-jsonschema is not installed";
    }
    const std::vector<std::pair<std::string, std::string>> runs{{"project", "p5(Cost) > 0"},
                                                                {"investment", "P(NPV < 0) < 1"},
                                                                {"tolerance", "cpk(Gap) > 0"},
                                                                {"inventory", "mean(Profit) > 0"}};
    for (const auto& [name, requirement] : runs) {
        const Outcome simulated = run({"run", example(name), "-n", "400", "--seed", "1", "--tornado", "--converge",
                                       "mean", "--quiet", "--require", requirement, "--json", name + ".json"});
        ASSERT_EQ(simulated.status, 0) << simulated.err;
        const Outcome outcome = python("check_schema.py", {QUORVA_SOURCE_DIR "/docs/run.schema.json", name + ".json"});
        EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
    }
}

TEST_F(ReportFile, XlsxReadBackByAnotherProgramHasTheNumbersOfTheJson) {
    if (!hasModule("openpyxl")) {
        GTEST_SKIP() << "python3-openpyxl is not installed";
    }
    for (const std::string name : {"inventory", "tolerance"}) {
        ASSERT_EQ(
            run({"run", example(name), "-n", "500", "--seed", "2", "--tornado", "--converge", "mean", "--tolerance",
                 "1e-9", "--quiet", "--report", "r.xlsx", "--samples-sheet", "--json", "r.json", "--samples", "r.csv"})
                .status,
            0);
        const Outcome outcome = python("check_xlsx.py", {"r.xlsx", "r.json", "r.csv"});
        EXPECT_EQ(outcome.status, 0) << name << outcome.out << outcome.err;
    }
}

TEST_F(ReportFile, NamesAreShownAndNeverRun) {
    const std::string script = "<script>alert(1)</script>", formula = "=cmd|' /C calc'!A0";
    const Cells cells{{"A1", "=QUORVA_SimNormal(B1,10,3,0,0,0,FALSE,0,1)"},
                      {"A2", "=QUORVA_SimRes(B2,A1*2,0,FALSE,1)"},
                      {"B1", script},
                      {"B2", "'" + formula}};
    ASSERT_EQ(run({"run", book("m.xlsx", cells), "-n", "200", "--seed", "3", "--tornado", "--quiet", "--report",
                   "r.html", "--report", "r.xlsx", "--samples", "r.csv", "--json", "r.json"})
                  .status,
              0);
    EXPECT_THAT(read("r.html"), testing::Not(HasSubstr(script)));
    EXPECT_THAT(read("r.html"), HasSubstr("&lt;script&gt;"));
    EXPECT_THAT(read("r.csv"), testing::StartsWith("iteration,<script>alert(1)</script>,'" + formula));
    EXPECT_EQ(nlohmann::json::parse(read("r.json"))["sensitivity"][0]["result"], formula);
    if (hasModule("openpyxl")) {
        const Outcome outcome = command({QUORVA_PYTHON, "-c",
                                         "import openpyxl\n"
                                         "for s in openpyxl.load_workbook('r.xlsx'):\n"
                                         "  for row in s.iter_rows():\n"
                                         "    for c in row:\n"
                                         "      assert c.data_type != 'f', c.coordinate\n"});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }
}

TEST_F(ReportFile, HtmlDrawsEveryChartWithoutConsoleErrors) {
    if (command({"sh", "-c", "command -v chromium"}).status != 0) {
        GTEST_SKIP() << "chromium is not installed: the report was not opened in a browser";
    }
    ASSERT_EQ(
        run({"run", example("investment"), "-n", "500", "--seed", "4", "--tornado", "--quiet", "--report", "r.html"})
            .status,
        0);
    const Outcome outcome =
        command({"timeout", "120", "chromium", "--headless", "--no-sandbox", "--disable-gpu", "--enable-logging=stderr",
                 "--v=0", "--virtual-time-budget=5000", "--user-data-dir=" + (folder_ / "profile").string(),
                 "--dump-dom", "file://" + (folder_ / "r.html").string()});
    ASSERT_EQ(outcome.status, 0) << outcome.err.substr(0, 2000);
    EXPECT_THAT(outcome.err, testing::Not(HasSubstr("CONSOLE")));
    const auto count = [&](const std::string& text) {
        int found = 0;
        for (auto at = outcome.out.find(text); at != std::string::npos; at = outcome.out.find(text, at + 1)) {
            ++found;
        }
        return found;
    };
    EXPECT_EQ(count("<canvas id="), 6);
    EXPECT_EQ(count("data-drawn=\"true\""), 6);
    EXPECT_THAT(outcome.out, HasSubstr("data-charts=\"6\""));
}

}  // namespace
}  // namespace quorva::frontend
