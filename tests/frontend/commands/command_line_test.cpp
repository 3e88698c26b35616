#include "frontend/commands/command_line.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "frontend/commands/man_page.h"

namespace quorva::frontend {
namespace {

TEST(Help, BreaksLinesUnderTheDescriptions) {
    const std::string option = "  --jobs J                        ";
    EXPECT_EQ(wrappedHelp(option + "one two three four five six\n", 50),
              option + "one two three\n" + std::string(34, ' ') + "four five six\n");
    CommandOptions options;
    const auto app = commandLine(options);
    std::istringstream help(wrappedHelp(app->get_subcommand("run")->help("quorva"), 100));
    for (std::string line; std::getline(help, line);) {
        EXPECT_LE(line.size(), 100u) << line;
    }
}

TEST(Manual, TheCommittedPageIsTheOneThatTheProgramPrints) {
    CommandOptions options;
    std::ifstream in(QUORVA_SOURCE_DIR "/docs/quorva.1");
    std::ostringstream committed;
    committed << in.rdbuf();
    EXPECT_EQ(committed.str(), manPage(*commandLine(options)))
        << "write it anew: build/linux/quorva --man > docs/quorva.1";
}

}  // namespace
}  // namespace quorva::frontend
