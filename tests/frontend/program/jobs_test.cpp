// Runs on several processors: blocks of iterations, each in a process of its own.
#include <set>

#include "program.h"

namespace quorva::frontend {
namespace {

using JobsTest = ProgramTest;

TEST_F(JobsTest, AnyNumberOfProcessesGivesTheSameBytes) {
    const std::string model = example("project");
    for (const std::string jobs : {"1", "2", "5"}) {
        const Outcome outcome = run({"run", model, "-n", "9001", "--seed", "11", "--jobs", jobs, "--tornado", "--quiet",
                                     "--json", jobs + ".json", "--samples", jobs + ".csv"});
        ASSERT_EQ(outcome.status, 0) << outcome.err;
    }
    EXPECT_EQ(read("1.json"), read("2.json"));
    EXPECT_EQ(read("1.json"), read("5.json"));
    EXPECT_EQ(read("1.csv"), read("5.csv"));
}

TEST_F(JobsTest, BlocksDrawWhatTheModelSays) {
    const auto json = results({book("sum.xlsx", sumModel()), "-n", "40000", "--seed", "3", "--jobs", "2"});
    EXPECT_EQ(json["iterations"], 40000);
    const auto& total = json["summary"].back();
    // Stratified: far closer to the true mean 30 and standard deviation 5 than plain sampling would be.
    EXPECT_NEAR(total["mean"].get<double>(), 30.0, 0.01);
    EXPECT_NEAR(total["stdev"].get<double>(), 5.0, 0.1);
}

TEST_F(JobsTest, WorksheetRandomNumbersDifferFromBlockToBlock) {
    Cells cells = sumModel();
    cells.push_back({"D9", "=QUORVA_SimRes(\"chance\",RAND(),0,FALSE,1)"});
    const auto json =
        results({book("rand.xlsx", cells), "-n", "400", "--seed", "3", "--jobs", "2", "--samples", "s.csv"});
    const std::string csv = read("s.csv");
    std::set<std::string> values;
    std::size_t rows = 0;
    for (std::size_t begin = csv.find('\n') + 1; begin < csv.size(); ++rows) {
        const std::size_t end = csv.find('\n', begin);
        values.insert(csv.substr(begin, end - begin));
        begin = end + 1;
    }
    EXPECT_EQ(rows, 400u);
    EXPECT_EQ(values.size(), rows);
    EXPECT_EQ(json["iterations"], 400);
}

TEST_F(JobsTest, StatisticFieldsAreRefusedWithTheReason) {
    Cells cells = sumModel();
    cells.push_back({"E9", "=QUORVA_SimStatMean(\"running mean\",A1,1)"});
    const Outcome outcome = run({"run", book("stat.xlsx", cells), "-n", "100", "--jobs", "2"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("running mean"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("depend on the iterations before"), std::string::npos) << outcome.err;
}

TEST_F(JobsTest, StoppingAtConvergenceIsRefused) {
    const Outcome outcome =
        run({"run", book("sum.xlsx", sumModel()), "-n", "100", "--jobs", "2", "--converge", "mean"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("--converge"), std::string::npos) << outcome.err;
}

TEST_F(JobsTest, AProcessThatDiesIsReportedAndItsBlockRunAgain) {
    const std::string model = book("sum.xlsx", sumModel());
    const std::vector<std::string> common{"run", model, "-n", "400000", "--seed", "5", "--jobs", "2", "--quiet"};
    auto undisturbed = common;
    undisturbed.insert(undisturbed.end(), {"--json", "undisturbed.json"});
    ASSERT_EQ(run(undisturbed).status, 0);
    std::string line = QUORVA_PROGRAM;
    for (const std::string& word : common) {
        line += " '" + word + "'";
    }
    // A worker is stopped first, so that the one killed is one at work.
    const Outcome outcome = command({"/bin/sh", "-c", line + R"( --json disturbed.json & program=$!
        while kill -0 $program; do
            for worker in $(cat /proc/$program/task/$program/children); do
                kill -STOP $worker && grep -q 'State:.T' /proc/$worker/status && kill -KILL $worker && break 2
                kill -CONT $worker
            done
        done
        wait $program)"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    auto disturbed = nlohmann::json::parse(read("disturbed.json"));
    auto expected = nlohmann::json::parse(read("undisturbed.json"));
    ASSERT_EQ(disturbed["warnings"].size(), expected["warnings"].size() + 1) << disturbed["warnings"];
    EXPECT_NE(disturbed["warnings"].dump().find("died (signal 9); the block was run again"), std::string::npos);
    disturbed.erase("warnings");
    expected.erase("warnings");
    EXPECT_EQ(disturbed, expected);
}

TEST_F(JobsTest, AnInterruptionReportsWhatTheBlocksHave) {
    const std::string model = book("sum.xlsx", sumModel());
    // Interrupted once a worker has calculated for a while.
    const Outcome outcome =
        command({"/bin/sh", "-c", std::string(QUORVA_PROGRAM) + " run '" + model + R"(' -n 20000000 \
        --jobs 2 --strata 0 --quiet --json part.json & program=$!
        while kill -0 $program; do
            for worker in $(cat /proc/$program/task/$program/children); do
                ticks=$(cut -d ' ' -f 14 /proc/$worker/stat) && [ "$ticks" -ge 10 ] && break 2
            done
        done
        kill -INT $program
        wait $program)"});
    EXPECT_EQ(outcome.status, 130) << outcome.err;
    const auto json = nlohmann::json::parse(read("part.json"));
    EXPECT_GT(json["iterations"].get<int>(), 0);
    EXPECT_LT(json["iterations"].get<int>(), 20000000);
}

}  // namespace
}  // namespace quorva::frontend
