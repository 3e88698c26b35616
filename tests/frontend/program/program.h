// Runs the built program on workbooks made for a test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace quorva::frontend {

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

/// Cells by address: a formula ("=..."), a number, or a text (after an apostrophe whatever it looks
/// like); "Other!A1" stands on a second sheet.
using Cells = std::vector<std::pair<std::string, std::string>>;

/// A folder of its own for each test, removed afterwards.
class ProgramTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override { std::filesystem::remove_all(folder_); }

    /// Arguments as the program gets them; the working folder is the test's own.
    Outcome run(const std::vector<std::string>& arguments) const;
    Outcome command(const std::vector<std::string>& words) const;
    /// Starts the program and sends it an interruption after some milliseconds of processor time, whatever else the
    /// machine does.
    Outcome interrupted(const std::vector<std::string>& arguments, int milliseconds) const;
    /// The JSON of a run that has to succeed.
    nlohmann::json results(std::vector<std::string> arguments) const;

    std::string book(const std::string& name, const Cells& cells, const Cells& names = {}) const;
    std::string example(const std::string& name) const;
    std::string put(const std::string& name, const std::string& text) const;
    std::string read(const std::string& name) const;
    bool exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
    std::vector<std::string> files() const;

    std::filesystem::path folder_;
};

/// The entry of a list whose `key` is `name`.
const nlohmann::json& entry(const nlohmann::json& list, const std::string& name, const std::string& key = "name");

/// A sum of two normal inputs: mean 30, standard deviation 5.
Cells sumModel();

}  // namespace quorva::frontend
