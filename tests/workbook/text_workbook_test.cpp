#include "text_workbook.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "workbook/recalculation/book.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {
namespace {

std::vector<std::filesystem::path> textWorkbooks() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(QUORVA_SOURCE_DIR "/tests/workbook")) {
        if (entry.path().extension() == ".txt" && entry.path().filename() != "CMakeLists.txt") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string contents(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

class TextWorkbook : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(TextWorkbook, HasTheValuesThatItNames) {
    for (const std::string& problem : runTextWorkbook(contents(GetParam()))) {
        ADD_FAILURE() << GetParam().filename().string() << ", " << problem;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, TextWorkbook, testing::ValuesIn(textWorkbooks()), [](const auto& file) {
    std::string name = file.param.stem().string();
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
});

/// Every function stands in a formula of some text workbook.
TEST(FunctionTable, EveryFunctionHasATextWorkbook) {
    std::set<std::string> called;
    for (const auto& file : textWorkbooks()) {
        std::istringstream lines(contents(file));
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with('#')) {
                continue;
            }
            for (std::size_t at = line.find('('); at != std::string::npos; at = line.find('(', at + 1)) {
                std::size_t start = at;
                while (start > 0 && (std::isalnum(static_cast<unsigned char>(line[start - 1])) ||
                                     line[start - 1] == '.' || line[start - 1] == '_')) {
                    --start;
                }
                called.insert(toUpper(std::string_view(line).substr(start, at - start)));
            }
        }
    }
    std::string missing;
    int count = 0;
    for (const FunctionInfo& function : functions()) {
        if (!called.contains(std::string(function.name))) {
            missing += " " + std::string(function.name);
            ++count;
        }
    }
    EXPECT_EQ(count, 0) << "functions without a text workbook:" << missing;
}

TEST(TextWorkbookRunner, ReportsAValueThatDiffers) {
    EXPECT_EQ(runTextWorkbook("A1: 2\n=A1*2 -> 4\n").size(), 0u);
    EXPECT_EQ(runTextWorkbook("A1: 2\n=A1*2 -> 5\n").size(), 1u);
    EXPECT_EQ(runTextWorkbook("A1: 2\nA2: =A1+1\nA2 -> 3\nedit A1: 7\nA2 -> 8\n").size(), 0u);
    EXPECT_EQ(runTextWorkbook("A1: 2\nA2: =A1+1\nedit A1: 7\nA2 -> 3\n").size(), 1u);
}

}  // namespace
}  // namespace quorva::workbook
