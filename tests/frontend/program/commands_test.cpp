// inspect, verify, values, the lists and the help.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "program.h"

namespace quorva::frontend {
namespace {

using testing::HasSubstr;
using Command = ProgramTest;

TEST_F(Command, InspectListsTheModelInNameOrder) {
    Cells cells = sumModel();
    cells.emplace_back("Other!B7", "=QUORVA_SimGamma2(\"Gamma\",2.5,40,2,0.1,0.9,TRUE,95,1)");
    const std::string model = book("m.xlsx", cells);
    const Outcome text = run({"inspect", model});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_THAT(text.out, HasSubstr("Gamma2(k 2.5, beta 40) truncated to probabilities 0.1 to 0.9"));
    EXPECT_THAT(text.out, HasSubstr("Other!B7"));
    const auto json = nlohmann::json::parse(run({"inspect", model, "--json", "-"}).out);
    ASSERT_EQ(json["fields"].size(), 4u);
    EXPECT_EQ(json["fields"][0]["name"], "Gamma");
    EXPECT_EQ(json["fields"][0]["default"], 95);
    EXPECT_EQ(json["fields"][0]["parameters"]["beta"], 40);
    EXPECT_EQ(json["fields"][3]["kind"], "result");
    EXPECT_TRUE(json["fields"][3]["law"].is_null());
    EXPECT_EQ(run({"inspect", model, "--json", "f.json"}).status, 0);
    EXPECT_EQ(nlohmann::json::parse(read("f.json")), json);
}

TEST_F(Command, ValuesPrintsEveryFormulaCell) {
    const std::string model = book("m.xlsx", {{"A1", "2"},
                                              {"A2", "=A1/3"},
                                              {"A3", "=\"a,\"\"b\"&A1"},
                                              {"A4", "=A1>1"},
                                              {"A5", "=1/0"},
                                              {"A6", "=QUORVA_SimNormal(\"x\",5,2,0,0,0,FALSE,0,1)"}});
    const Outcome outcome = run({"values", model});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "sheet,cell,type,value\n"
              "Sheet1,A2,n,0.6666666666666666\n"
              "Sheet1,A3,str,\"a,\"\"b2\"\n"
              "Sheet1,A4,b,1\n"
              "Sheet1,A5,e,#DIV/0!\n"
              "Sheet1,A6,n,5\n");
    EXPECT_THAT(run({"values", model, "--all"}).out, HasSubstr("Sheet1,A1,n,2\nSheet1,A2"));
}

TEST_F(Command, VerifyCountsAndListsDifferences) {
    // The writer of the test saves 0 for every formula.
    const std::string model = book("m.xlsx", {{"A1", "=1-1"}, {"A2", "=1+1"}, {"A3", "=RAND()"}, {"A4", "=A3+1"}});
    const Outcome outcome = run({"verify", model, "--list"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("Sheet1!A2  =1+1"));
    const auto json = nlohmann::json::parse(run({"verify", model, "--json", "-"}).out);
    EXPECT_EQ(json["total"]["formulas"], 4);
    EXPECT_EQ(json["total"]["equal"], 1);
    EXPECT_EQ(json["total"]["different"], 1);
    EXPECT_EQ(json["total"]["volatile"], 2);
    EXPECT_EQ(json["differences"][0]["computed"], "2");
    EXPECT_EQ(run({"verify", book("same.xlsx", {{"A1", "=1-1"}})}).status, 0);
}

TEST_F(Command, UnsupportedFormulasFailAVerification) {
    const auto outcome = run({"verify", book("m.xlsx", {{"A1", "=NOSUCHFUNCTION(1)"}}), "--json", "-"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(nlohmann::json::parse(outcome.out)["total"]["unsupported"], 1);
}

TEST_F(Command, ListsAreTextOrJson) {
    for (const std::string list : {"laws", "functions", "statistics"}) {
        EXPECT_EQ(run({list}).status, 0);
        EXPECT_GT(nlohmann::json::parse(run({list, "--json", "-"}).out).size(), 30u) << list;
    }
    EXPECT_THAT(run({"laws"}).out, HasSubstr("QUORVA_SimTriangularQ     a, m, b, q1, q2"));
}

TEST_F(Command, HelpHasExamplesForEveryCommand) {
    EXPECT_THAT(run({"--help"}).out, HasSubstr("Exit status"));
    for (const std::string name : {"run", "inspect", "verify", "values", "laws", "functions", "statistics"}) {
        const Outcome outcome = run({name, "--help"});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("quorva " + name));
        EXPECT_THAT(outcome.out, HasSubstr("Examples:"));
    }
    EXPECT_THAT(run({"--version"}).out, testing::StartsWith("quorva "));
}

TEST_F(Command, DocumentedCommandsRun) {
    // The example pages and the README show commands in indented lines, continued with a backslash.
    std::filesystem::create_directory_symlink(QUORVA_SOURCE_DIR "/examples", folder_ / "examples");
    std::filesystem::create_directories(folder_ / "build/linux");
    std::filesystem::create_symlink(QUORVA_PROGRAM, folder_ / "build/linux/quorva");
    int commands = 0;
    for (const std::string page :
         {"docs/examples/project.md", "docs/examples/investment.md", "docs/examples/tolerance.md",
          "docs/examples/inventory.md", "docs/examples/reserves.md", "docs/examples/portfolio.md", "docs/workbooks.md",
          "README.md"}) {
        std::ifstream in(std::string(QUORVA_SOURCE_DIR "/") + page);
        for (std::string line; std::getline(in, line);) {
            if (!line.starts_with("    quorva ") && !line.starts_with("    build/linux/quorva ")) {
                continue;
            }
            for (std::string next; line.ends_with('\\') && std::getline(in, next);) {
                line = line.substr(0, line.size() - 1) + next;
            }
            const Outcome outcome = command({"sh", "-c", "PATH=build/linux:$PATH; " + line});
            // The tolerance page shows a requirement that is not met.
            EXPECT_EQ(outcome.status, page == "docs/examples/tolerance.md" ? 1 : 0) << line << "\n" << outcome.err;
            ++commands;
        }
    }
    EXPECT_GE(commands, 6);
}

}  // namespace
}  // namespace quorva::frontend
