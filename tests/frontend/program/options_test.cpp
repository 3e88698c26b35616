// Every option of `quorva run`.
#include <cmath>

#include <gmock/gmock.h>

#include "program.h"

namespace quorva::frontend {
namespace {

using testing::HasSubstr;
using RunOption = ProgramTest;

TEST_F(RunOption, OneSeedGivesIdenticalBytesInEveryOutput) {
    const std::string model = example("investment");
    for (const std::string round : {"1", "2"}) {
        EXPECT_EQ(run({"run", model, "-n", "500", "--seed", "11", "--tornado", "--quiet", "--report", round + ".html",
                       "--report", round + ".xlsx", "--samples-sheet", "--json", round + ".json", "--samples",
                       round + ".csv"})
                      .status,
                  0);
    }
    for (const std::string kind : {".html", ".xlsx", ".json", ".csv"}) {
        EXPECT_EQ(read("1" + kind), read("2" + kind)) << kind;
        EXPECT_GT(read("1" + kind).size(), 1000u);
    }
}

TEST_F(RunOption, SeedsDifferAndAnAbsentOneIsDrawnAndReported) {
    const std::string model = book("m.xlsx", sumModel());
    const auto first = results({model, "-n", "200", "--seed", "1"});
    const auto other = results({model, "-n", "200", "--seed", "2"});
    EXPECT_NE(first["summary"], other["summary"]);
    const auto drawn = results({model, "-n", "200"});
    const auto again = results({model, "-n", "200", "--seed", std::to_string(drawn["seed"].get<int>())});
    EXPECT_EQ(drawn["summary"], again["summary"]);
}

TEST_F(RunOption, StrataOfOnePerIterationPlaceEveryValue) {
    const std::string model = book("m.xlsx", {{"A1", "=QUORVA_SimUniform(\"u\",0,1000,0,0,0,FALSE,0,1)"},
                                              {"A2", "=QUORVA_SimRes(\"r\",A1,0,FALSE,1)"}});
    EXPECT_EQ(run({"run", model, "-n", "1000", "--seed", "3", "--quiet", "--samples", "s.csv"}).status, 0);
    std::vector<bool> hit(1000);
    std::istringstream lines(read("s.csv"));
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "iteration,r,u");
    while (std::getline(lines, line)) {
        hit[static_cast<std::size_t>(std::stod(line.substr(line.rfind(',') + 1)))] = true;
    }
    EXPECT_EQ(std::count(hit.begin(), hit.end(), true), 1000);
    EXPECT_EQ(results({model, "-n", "100", "--strata", "0"})["sampling"]["strata"], 0);
    EXPECT_EQ(results({model, "-n", "100", "--strata", "7"})["sampling"]["strata"], 7);
}

TEST_F(RunOption, SingleSheetRunsAModelOnOneSheet) {
    EXPECT_EQ(results({book("m.xlsx", sumModel()), "-n", "100", "--single-sheet"})["iterations"], 100);
}

TEST_F(RunOption, CorrelationFromRangeNameAndFile) {
    Cells cells = sumModel();
    cells.insert(
        cells.end(),
        {{"D2", "a"}, {"D3", "b"}, {"E1", "a"}, {"F1", "b"}, {"E2", "1"}, {"F2", "0.8"}, {"E3", "0.8"}, {"F3", "1"}});
    const std::string model = book("m.xlsx", cells, {{"Links", "=Sheet1!$D$1:$F$3"}});
    put("c.csv", ",a,b\na,1,0.8\nb,0.8,1\n");
    for (const std::string source : {"Sheet1!D1:F3", "Links", "c.csv"}) {
        const auto json = results({model, "-n", "4000", "--seed", "5", "--correlation", source});
        EXPECT_NEAR(json["correlations"]["linear"][0][1], 0.8, 0.03) << source;
        EXPECT_EQ(json["correlations"]["requested"]["matrix"][0][1], 0.8);
    }
}

TEST_F(RunOption, AnImpossibleMatrixIsRepairedAndTheRunUsesTheRepairedOne) {
    Cells cells = sumModel();
    cells.emplace_back("A4", "=QUORVA_SimNormal(\"c\",0,1,0,0,0,FALSE,0,1)");
    put("c.csv", ",a,b,c\na,1,0.9,-0.9\nb,0.9,1,0.9\nc,-0.9,0.9,1\n");
    const auto json = results({book("m.xlsx", cells), "-n", "8000", "--seed", "6", "--correlation", "c.csv"});
    const auto& repaired = json["correlations"]["repaired"]["matrix"];
    ASSERT_EQ(repaired.size(), 3u);
    EXPECT_LT(std::abs(repaired[0][1].get<double>()), 0.9);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(json["correlations"]["linear"][i][j], repaired[i][j], 0.05) << i << j;
        }
    }
    EXPECT_THAT(json["warnings"].dump(), HasSubstr("impossible"));
}

TEST_F(RunOption, CapabilityFromAFileWithItsConfidence) {
    put("limits.csv", "name,LSL,USL,target\nsum,15,45,30\na,4,,\n");
    const auto json = results({book("m.xlsx", sumModel()), "-n", "4000", "--seed", "7", "--capability", "limits.csv",
                               "--capability-confidence", "0.9"});
    EXPECT_NEAR(entry(json["capability"], "sum")["indices"]["cp"], 1, 0.05);
    EXPECT_TRUE(entry(json["capability"], "a")["indices"]["cp"].is_null());
    EXPECT_TRUE(entry(json["capability"], "a")["usl"].is_null());
    EXPECT_NEAR(entry(json["capability"], "a")["indices"]["cpl"], 2.0 / 3, 0.05);
}

TEST_F(RunOption, ConvergenceStopsEarlyForEveryCriterion) {
    const std::string model = book("m.xlsx", sumModel());
    for (const std::string criterion : {"mean", "stdev", "percentile=90"}) {
        const auto json = results({model, "-n", "20000", "--seed", "8", "--converge", criterion, "--tolerance", "1",
                                   "--confidence", "0.9", "--check-every", "50", "--converge-all"});
        const auto& convergence = json["convergence"];
        EXPECT_TRUE(convergence["converged"].get<bool>()) << criterion;
        EXPECT_EQ(convergence["criterion"], criterion);
        EXPECT_EQ(convergence["at"], json["iterations"]);
        EXPECT_LT(json["iterations"], 20000);
        EXPECT_EQ(json["iterations"].get<int>() % 50, 0);
        EXPECT_EQ(convergence["watched"], nlohmann::json::array({"sum"}));
        const auto& checks = convergence["checks"];
        ASSERT_GE(checks.size(), 2u);
        EXPECT_TRUE(checks[0]["bounds"][0]["movement"].is_null());
        EXPECT_LE(checks.back()["bounds"][0]["movement"], 1);
        EXPECT_EQ(entry(json["summary"], "sum")["count"], json["iterations"]);
    }
}

TEST_F(RunOption, ConvergenceThatIsNotReachedIsAWarning) {
    const auto json = results(
        {book("m.xlsx", sumModel()), "-n", "200", "--seed", "9", "--converge", "mean", "--tolerance", "0.000001"});
    EXPECT_FALSE(json["convergence"]["converged"].get<bool>());
    EXPECT_THAT(json["warnings"].dump(), HasSubstr("convergence was not reached"));
    EXPECT_THAT(json["notes"].dump(), HasSubstr("watches"));
}

TEST_F(RunOption, TailPlacesTheInterval) {
    const auto json = results({book("m.xlsx", sumModel()), "-n", "4000", "--seed", "10", "--tail", "0.25"});
    EXPECT_EQ(entry(json["intervals"], "a")["lower"], entry(json["summary"], "a")["percentiles"]["25"]);
    EXPECT_EQ(entry(json["intervals"], "a")["upper"], entry(json["summary"], "a")["percentiles"]["75"]);
}

TEST_F(RunOption, SensitivityIsRankOrLinear) {
    const std::string model = example("reserves");
    const auto rank = results({model, "-n", "2000", "--seed", "11", "--sensitivity", "rank"});
    const auto linear = results({model, "-n", "2000", "--seed", "11", "--sensitivity", "linear"});
    const auto correlation = [](const nlohmann::json& json, const char* kind) {
        const auto& names = json["correlations"]["names"];
        const auto place = [&](const char* name) {
            return std::find(names.begin(), names.end(), name) - names.begin();
        };
        return json["correlations"][kind][place("Reserves")][place("Area, km2")].get<double>();
    };
    EXPECT_EQ(rank["sensitivity"][0]["inputs"][0]["correlation"], correlation(rank, "rank"));
    EXPECT_EQ(linear["sensitivity"][0]["inputs"][0]["correlation"], correlation(linear, "linear"));
}

TEST_F(RunOption, RequirementsDecideTheStatus) {
    const std::string model = book("m.xlsx", sumModel());
    EXPECT_EQ(
        run({"run", model, "-n", "500", "--quiet", "--require", "mean(sum) >= 29", "--require", "P(sum < 0) <= 0.01"})
            .status,
        0);
    const Outcome failed =
        run({"run", model, "-n", "500", "--seed", "1", "--require", "p95(sum) <= 30", "--json", "r.json"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.err, HasSubstr("requirement not met: p95(sum) <= 30"));
    EXPECT_THAT(failed.out, HasSubstr("NOT MET"));
    EXPECT_FALSE(nlohmann::json::parse(read("r.json"))["requirements"][0]["passed"].get<bool>());
}

TEST_F(RunOption, TheCommandLineWinsOverTheConfiguration) {
    put("run.toml",
        "iterations = 300\nseed = 5\ntornado = true\nquiet = true\njson = \"-\"\n"
        "require = [\"mean(sum) > 0\", \"P(sum < 0) <= 0.5\"]\n");
    const Outcome outcome = run({"run", book("m.xlsx", sumModel()), "--config", "run.toml", "--seed", "6"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const auto json = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(json["iterations"], 300);
    EXPECT_EQ(json["seed"], 6);
    EXPECT_EQ(json["tornado"].size(), 1u);
    EXPECT_EQ(json["requirements"].size(), 2u);
}

TEST_F(RunOption, TheSummaryGoesToStandardOutputAndQuietDropsIt) {
    const std::string model = book("m.xlsx", sumModel());
    const Outcome loud = run({"run", model, "-n", "100", "--report", "r.html"});
    EXPECT_THAT(loud.out, HasSubstr("Results"));
    EXPECT_THAT(loud.out, HasSubstr("written: r.html"));
    EXPECT_EQ(loud.err, "") << "no progress bar where there is no terminal";
    const Outcome quiet = run({"run", model, "-n", "100", "--quiet"});
    EXPECT_EQ(quiet.out + quiet.err, "");
    const Outcome warned = run({"run", model, "-n", "100", "--quiet", "--converge", "mean", "--tolerance", "1e-9"});
    EXPECT_EQ(warned.out, "");
    EXPECT_THAT(warned.err, HasSubstr("warning: convergence was not reached")) << "quiet is no silence about warnings";
    const Outcome piped = run({"run", model, "-n", "100", "--json", "-"});
    EXPECT_TRUE(nlohmann::json::accept(piped.out));
    EXPECT_THAT(piped.err, HasSubstr("Results"));
}

TEST_F(RunOption, IterationsThatAreErrorsAreLeftOutAndCounted) {
    const Cells cells{{"A1", "=QUORVA_SimUniform(\"u\",0,1,0,0,0,FALSE,0,1)"},
                      {"A2", "=QUORVA_SimRes(\"root\",SQRT(A1-0.25),0,FALSE,1)"},
                      {"A3", "=QUORVA_SimRes(\"text\",\"no \"&A1,0,FALSE,1)"},
                      {"A4", "=QUORVA_SimRes(\"fixed\",7,0,FALSE,1)"},
                      {"A5", "=QUORVA_SimNormal(\"bad\",0,-1,0,0,0,TRUE,1,1)"}};
    const auto json = results({book("m.xlsx", cells), "-n", "1000", "--seed", "12"});
    const auto& root = entry(json["summary"], "root");
    EXPECT_EQ(root["errors"], 250);
    EXPECT_EQ(root["count"], 750);
    EXPECT_GT(root["percentiles"]["1"], 0);
    EXPECT_EQ(json["summary"].size(), 4u);
    const std::string warnings = json["warnings"].dump();
    EXPECT_THAT(warnings, HasSubstr("'root' (Sheet1!A2) is an error in 250 of 1000 iterations"));
    EXPECT_THAT(warnings, HasSubstr("the model function in Sheet1!A3 takes no part in the run: it shows #VALUE!"));
    EXPECT_THAT(warnings, HasSubstr("'fixed' (Sheet1!A4) never changes"));
    EXPECT_THAT(warnings, HasSubstr("'bad' (Sheet1!A5) gave no number"));
}

TEST_F(RunOption, AStatisticOfAnotherSheetIsAWarning) {
    Cells cells = sumModel();
    cells.emplace_back("Other!A1", "=QUORVA_SimStatMean(\"mean of sum\",Sheet1!A3,1)");
    cells.emplace_back("B1", "=QUORVA_SimStatMean(\"here\",A3,1)");
    const auto json = results({book("m.xlsx", cells), "-n", "100", "--seed", "13"});
    EXPECT_THAT(json["warnings"].dump(), HasSubstr("'mean of sum' (Other!A1) refers to another sheet"));
    EXPECT_THAT(json["warnings"].dump(), testing::Not(HasSubstr("'here'")));
    EXPECT_EQ(entry(json["fields"], "here")["statistic"], "Mean");
}

}  // namespace
}  // namespace quorva::frontend
