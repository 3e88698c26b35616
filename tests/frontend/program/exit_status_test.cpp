// Every exit status, and every kind of bad input: one clear sentence, no partial file, the previous report untouched.
#include <gmock/gmock.h>
#include <signal.h>

#include <filesystem>

#include "program.h"

namespace quorva::frontend {
namespace {

using testing::HasSubstr;

class ExitStatus : public ProgramTest {
protected:
    /// Runs with a report that exists already, and checks that it and the folder stay as they were.
    void expectRefusal(const std::vector<std::string>& arguments, int status, const std::string& sentence) {
        put("old.html", "previous report");
        std::vector<std::string> all{"run"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        all.insert(all.end(), {"--report", "old.html", "--json", "new.json"});
        const auto before = files();
        const Outcome outcome = run(all);
        EXPECT_EQ(outcome.status, status) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(sentence));
        EXPECT_EQ(outcome.err.substr(0, 8), "quorva: ");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(read("old.html"), "previous report");
        EXPECT_EQ(files(), before);
    }
};

TEST_F(ExitStatus, DoneIsZero) { EXPECT_EQ(run({"run", book("m.xlsx", sumModel()), "-n", "50"}).status, 0); }

TEST_F(ExitStatus, WrongUsageIsTwoWithAHint) {
    const std::string model = book("m.xlsx", sumModel());
    expectRefusal({model, "-n", "0"}, 2, "--iterations: '0' is not a whole number from 1");
    expectRefusal({model, "--seed", "2147483648"}, 2, "--seed");
    expectRefusal({model, "--strata", "100001"}, 2, "--strata");
    expectRefusal({model, "--tail", "0.5"}, 2, "--tail");
    expectRefusal({model, "--points", "1"}, 2, "--points");
    expectRefusal({model, "--spread", "wide"}, 2, "--spread");
    expectRefusal({model, "--base", "mean"}, 2, "--base");
    expectRefusal({model, "--width", "-1"}, 2, "--width");
    expectRefusal({model, "--sensitivity", "both"}, 2, "--sensitivity");
    expectRefusal({model, "--converge", "median"}, 2, "mean, stdev or percentile=P");
    expectRefusal({model, "--converge", "percentile=100"}, 2, "percentile=P");
    expectRefusal({model, "--tolerance", "0"}, 2, "--tolerance");
    expectRefusal({model, "--confidence", "1"}, 2, "--confidence");
    expectRefusal({model, "--check-every", "0"}, 2, "--check-every");
    expectRefusal({model, "--capability-confidence", "2"}, 2, "--capability-confidence");
    expectRefusal({model, "--iterattions", "5"}, 2, "did you mean '--iterations'");
    expectRefusal({model, "--require", "mean(sum)"}, 2, "character");
    expectRefusal({model, "--report", "report.pdf"}, 2, "ends in .html or .xlsx");
    expectRefusal({model, "--correlation", "Nowhere!A1:B2"}, 2, "neither a range or defined name");
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({"run"}).status, 2);
    EXPECT_THAT(run({"rnu"}).err, HasSubstr("did you mean 'run'"));
}

TEST_F(ExitStatus, AWrongConfigurationIsTwoWithItsLine) {
    const std::string model = book("m.xlsx", sumModel());
    put("a.toml", "seed = 5\niteratons = 3\n");
    put("b.toml", "seed = = 5\n");
    put("c.toml", "tornado = 3\n");
    put("d.toml", "iterations = [1, 2]\n");
    expectRefusal({model, "--config", "a.toml"}, 2,
                  "line 2: there is no option 'iteratons'; did you mean 'iterations'");
    expectRefusal({model, "--config", "b.toml"}, 2, "line 1");
    expectRefusal({model, "--config", "c.toml"}, 2, "true or false");
    expectRefusal({model, "--config", "d.toml"}, 2, "takes one value");
    expectRefusal({model, "--config", "none.toml"}, 2, "none.toml");
}

TEST_F(ExitStatus, AnOutputThatCannotBeWrittenIsTwoBeforeTheRun) {
    const std::string model = book("m.xlsx", sumModel());
    expectRefusal({model, "-n", "100000000", "--samples", "no/such/folder.csv"}, 2, "no/such/folder.csv");
    expectRefusal({model, "--samples", "/proc/x.csv"}, 2, "cannot be written");
    expectRefusal({model, "--samples", "."}, 2, "folder");
    expectRefusal({model, "--samples", "new.json"}, 2, "twice");
}

TEST_F(ExitStatus, TheWorkbookIsNeverAnOutput) {
    const std::string model = book("m.xlsx", sumModel());
    const std::string before = read(model);
    expectRefusal({model, "--report", model}, 2, "never written to");
    std::filesystem::create_symlink(folder_ / model, folder_ / "link.xlsx");
    expectRefusal({model, "--report", "link.xlsx"}, 2, "never written to");
    EXPECT_EQ(read(model), before);
}

TEST_F(ExitStatus, MoreThan64MillionCellsAreTwoBeforeTheRun) {
    const std::string model = book("m.xlsx", sumModel());
    expectRefusal({model, "-n", "21333334"}, 2, "at most 64,000,000");
    expectRefusal({model, "-n", "2147483647"}, 2, "at most 64,000,000");
}

TEST_F(ExitStatus, AnUnreadableWorkbookIsThree) {
    put("text.xlsx", "this is not a workbook");
    put("empty.xlsx", "");
    const std::string whole = book("m.xlsx", sumModel());
    put("cut.xlsx", read(whole).substr(0, 700));
    expectRefusal({"missing.xlsx"}, 3, "missing.xlsx");
    expectRefusal({"text.xlsx"}, 3, "not a workbook");
    expectRefusal({"empty.xlsx"}, 3, "empty.xlsx");
    expectRefusal({"cut.xlsx"}, 3, "cut.xlsx");
    expectRefusal({"."}, 3, "");
}

TEST_F(ExitStatus, AWrongModelIsFourWithCellAndName) {
    Cells circular = sumModel();
    circular.insert(circular.end(), {{"B1", "=B2+A1"}, {"B2", "=B1"}});
    expectRefusal({book("a.xlsx", circular)}, 4, "B1");
    expectRefusal({book("b.xlsx", {{"A1", "5"}})}, 4, "no model function");
    expectRefusal({book("c.xlsx", {{"A1", "=QUORVA_SimNormal(\"a\",1,1,0,0,0,FALSE,0,1)"}})}, 4, "nothing to simulate");
    Cells twice = sumModel();
    twice[1].second = "=QUORVA_SimNormal(\"a\",20,4,0,0,0,FALSE,0,1)";
    expectRefusal({book("d.xlsx", twice)}, 4, "two fields are named 'a': cell Sheet1!A1 and cell Sheet1!A2");
    Cells both = sumModel();
    both[0].second = "=QUORVA_SimNormal(\"a\",1,1,0,0,0,FALSE,0,1)+QUORVA_SimNormal(\"c\",1,1,0,0,0,FALSE,0,1)";
    expectRefusal({book("e.xlsx", both)}, 4, "Sheet1!A1 holds two model functions");
    Cells truncated = sumModel();
    truncated[0].second = "=QUORVA_SimNormal(\"a\",10,3,2,0.9,0.1,FALSE,0,1)";
    expectRefusal({book("f.xlsx", truncated)}, 4, "Sheet1!A1 (field 'a'): no draw fell within the truncation bounds");
}

TEST_F(ExitStatus, LabelsThatMatchNothingAreFourWithTheNearestName) {
    const std::string model = book("m.xlsx", sumModel());
    put("c.csv", ",a,bb\na,1,0\nbb,0,1\n");
    put("limits.csv", "summ,1,2,\n");
    put("bad.csv", ",a,b\na,1,0.5\nb,0.4,1\n");
    expectRefusal({model, "--correlation", "c.csv"}, 4, "'bb' matches no distribution");
    expectRefusal({model, "--capability", "limits.csv"}, 4, "did you mean 'sum'");
    expectRefusal({model, "--correlation", "bad.csv"}, 4, "not symmetric");
    expectRefusal({model, "--require", "mean(summ) > 1"}, 4, "did you mean 'sum'");
    expectRefusal({model, "--require", "cpk(sum) > 1"}, 4, "no specification limits");
}

TEST_F(ExitStatus, AnOutputThatFailsWhileBeingWrittenIsFive) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full to stand for a full disk";
    }
    const std::string model = book("m.xlsx", sumModel());
    put("old.html", "previous report");
    const Outcome outcome = run({"run", model, "-n", "100", "--report", "old.html", "--json", "/dev/full"});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_THAT(outcome.err, HasSubstr("/dev/full"));
    EXPECT_EQ(read("old.html"), "previous report");
    EXPECT_EQ(files(), (std::vector<std::string>{"m.xlsx", "old.html"}));
    EXPECT_EQ(command({"sh", "-c", QUORVA_PROGRAM " laws > /dev/full"}).status, 5);
}

TEST_F(ExitStatus, AnInterruptedRunReportsWhatThereIs) {
    const Outcome outcome = interrupted({"run", book("m.xlsx", sumModel()), "-n", "20000000", "--seed", "1", "--strata",
                                         "0", "--json", "r.json", "--report", "r.html"},
                                        2000);
    EXPECT_EQ(outcome.status, 130) << outcome.err;
    const auto json = nlohmann::json::parse(read("r.json"));
    EXPECT_EQ(json["planned"], 20000000);
    EXPECT_GT(json["iterations"], 0);
    EXPECT_LT(json["iterations"], 20000000);
    EXPECT_EQ(entry(json["summary"], "sum")["count"], json["iterations"]);
    EXPECT_NEAR(entry(json["summary"], "sum")["mean"], 30, 1);
    EXPECT_THAT(json["warnings"].dump(), HasSubstr("interrupted after"));
    EXPECT_TRUE(exists("r.html"));
}

TEST_F(ExitStatus, AnInterruptionInAnyPhaseLeavesWholeFilesOrNone) {
    const std::string model = book("m.xlsx", sumModel());
    constexpr int killedBeforeItListened = 1000 + SIGINT;
    for (const int delay : {1, 5, 10, 20, 40, 80, 160, 320}) {
        std::filesystem::remove(folder_ / "r.json");
        const Outcome outcome = interrupted({"run", model, "-n", "20000", "--seed", "1", "--tornado", "--points",
                                             "1000", "--quiet", "--json", "r.json"},
                                            delay);
        EXPECT_THAT(outcome.status, testing::AnyOf(0, 130, killedBeforeItListened)) << outcome.err;
        EXPECT_LE(files().size(), 2u);
        if (exists("r.json")) {
            const auto json = nlohmann::json::parse(read("r.json"));
            EXPECT_EQ(entry(json["summary"], "sum")["count"], json["iterations"]);
            EXPECT_EQ(json["tornado"].size(), outcome.status == 0 ? 1u : 0u);
        } else {
            EXPECT_NE(outcome.status, 0);
        }
    }
}

}  // namespace
}  // namespace quorva::frontend
