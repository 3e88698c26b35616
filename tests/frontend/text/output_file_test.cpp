#include "frontend/text/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {
namespace {

namespace fs = std::filesystem;

class OutputFile : public testing::Test {
protected:
    void SetUp() override {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = fs::temp_directory_path() / ("quorva-output-" + std::to_string(getpid()) + test->name());
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    fs::path file(const std::string& name) const { return folder_ / name; }
    std::string read(const std::string& name) const {
        std::ifstream in(file(name));
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void put(const std::string& name, const std::string& text) const { std::ofstream(file(name)) << text; }
    std::size_t files() const { return std::distance(fs::directory_iterator(folder_), fs::directory_iterator()); }
    static std::string refusal(Outputs& outputs, const fs::path& path) {
        try {
            outputs.reserve(path);
            return "accepted";
        } catch (const CommandFailure& failure) {
            EXPECT_EQ(failure.status, ExitStatus::Usage);
            return failure.what();
        }
    }
    static Output text(const fs::path& path, const std::string& content) {
        return {path, [content](Sink& sink) { sink.write(content); }};
    }
    static Output failing(const fs::path& path) {
        return {path, [](Sink& sink) {
                    sink.write("half");
                    throw CommandFailure(ExitStatus::Internal, "the disk is full");
                }};
    }

    fs::path folder_;
};

TEST_F(OutputFile, IsWrittenWholeAndLeavesNothingElse) {
    Outputs outputs({});
    outputs.reserve(file("a.txt"));
    EXPECT_EQ(files(), 0u) << "the test before the run leaves a file behind";
    Outputs::commit({text(file("a.txt"), "new")});
    EXPECT_EQ(read("a.txt"), "new");
    EXPECT_EQ(files(), 1u);
}

TEST_F(OutputFile, AFailureLeavesEveryPreviousFileUntouched) {
    put("a.txt", "old a");
    put("b.txt", "old b");
    EXPECT_THROW(Outputs::commit({text(file("a.txt"), "new"), failing(file("b.txt"))}), CommandFailure);
    EXPECT_EQ(read("a.txt"), "old a");
    EXPECT_EQ(read("b.txt"), "old b");
    EXPECT_EQ(files(), 2u);
}

TEST_F(OutputFile, ARenamingThatFailsLeavesTheFilesBeforeItNewAndTheOthersOld) {
    put("a.txt", "old a");
    put("c.txt", "old c");
    // A folder that appears under the second name while the outputs are written is not replaced.
    const Output hindered{file("b.txt"), [&](Sink&) { fs::create_directory(file("b.txt")); }};
    EXPECT_THROW(Outputs::commit({text(file("a.txt"), "new a"), hindered, text(file("c.txt"), "new c")}),
                 CommandFailure);
    EXPECT_EQ(read("a.txt"), "new a");
    EXPECT_TRUE(fs::is_directory(file("b.txt")));
    EXPECT_EQ(read("c.txt"), "old c");
    EXPECT_EQ(files(), 3u);
}

TEST_F(OutputFile, KeepsPermissionsAndFollowsLinks) {
    put("real.txt", "old");
    fs::permissions(file("real.txt"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(file("real.txt"), file("link.txt"));
    Outputs::commit({text(file("link.txt"), "new")});
    EXPECT_TRUE(fs::is_symlink(file("link.txt")));
    EXPECT_EQ(read("real.txt"), "new");
    EXPECT_EQ(fs::status(file("real.txt")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(OutputFile, AnInputIsNeverAnOutput) {
    put("model.xlsx", "model");
    fs::create_symlink(file("model.xlsx"), file("other.xlsx"));
    fs::create_hard_link(file("model.xlsx"), file("hard.xlsx"));
    Outputs outputs({file("model.xlsx")});
    for (const char* name : {"model.xlsx", "other.xlsx", "hard.xlsx"}) {
        EXPECT_THAT(refusal(outputs, file(name)), testing::HasSubstr("input of this command"));
    }
    EXPECT_THAT(refusal(outputs, folder_ / "." / "model.xlsx"), testing::HasSubstr("input of this command"));
}

TEST_F(OutputFile, UnwritablePlacesAreFoundBeforehand) {
    Outputs outputs({});
    EXPECT_THAT(refusal(outputs, file("no/such/folder.txt")), testing::HasSubstr("No such file"));
    EXPECT_THAT(refusal(outputs, folder_), testing::HasSubstr("folder"));
    EXPECT_THAT(refusal(outputs, "/proc/nothing.txt"), testing::HasSubstr("cannot be written"));
    outputs.reserve(file("a.txt"));
    EXPECT_THAT(refusal(outputs, file("a.txt")), testing::HasSubstr("twice"));
}

TEST_F(OutputFile, DevicesAreWrittenToAndNeverReplaced) {
    Outputs outputs({});
    outputs.reserve("/dev/null");
    Outputs::commit({text("/dev/null", "gone")});
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    if (fs::exists("/dev/full")) {
        EXPECT_THROW(Outputs::commit({text("/dev/full", "too much")}), CommandFailure);
        EXPECT_TRUE(fs::is_character_file("/dev/full"));
    }
}

}  // namespace
}  // namespace quorva::frontend
