// The program's commands and options.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace quorva::frontend {

struct RunOptions {
    std::string workbook;
    int iterations = 10000;
    std::optional<int> seed;
    std::optional<int> strata;
    std::optional<int> jobs;
    bool singleSheet = false;
    std::string correlation;
    std::string capability;
    double capabilityConfidence = 0.95;
    std::string converge;
    double tolerance = 3;
    double confidence = 0.95;
    int checkEvery = 100;
    bool convergeAll = false;
    double tail = 0.05;
    bool tornado = false;
    int points = 5;
    std::string spread = "interval";
    double width = 0.1;
    std::string base = "median";
    std::string sensitivity = "rank";
    std::vector<std::string> requirements;
    std::vector<std::string> reports;
    bool samplesSheet = false;
    std::string json;
    std::string samples;
    bool quiet = false;
    std::string config;
};

struct ModelOptions {
    std::string workbook;
    std::string json;
    bool singleSheet = false;  ///< inspect
    bool list = false;         ///< verify: every difference
    bool all = false;          ///< values: constants too
};

struct ListOptions {
    std::string json;
};

struct CommandOptions {
    RunOptions run;
    ModelOptions inspect, verify, values;
    ListOptions laws, functions, statistics;
    bool man = false;
};

/// The whole command line; options are written to `options` while parsing.
std::unique_ptr<CLI::App> commandLine(CommandOptions& options);
/// The library's help with its lines broken at `width` columns, descriptions under descriptions.
std::string wrappedHelp(const std::string& help, std::size_t width);

/// The manual page, from the same texts as --help.
std::string manPage(const CLI::App& app);

/// Arguments that a configuration file adds: its keys that the command line does not give. Throws CommandFailure
/// (Usage).
std::vector<std::string> configurationArguments(const std::string& file, const CLI::App& runCommand);

/// Runs the program and returns its exit status.
int runProgram(const std::vector<std::string>& arguments);

// Each command returns the exit status or throws CommandFailure.
int runCommand(const RunOptions& options);
int inspectCommand(const ModelOptions& options);
int verifyCommand(const ModelOptions& options);
int valuesCommand(const ModelOptions& options);
int lawsCommand(const ListOptions& options);
int functionsCommand(const ListOptions& options);
int statisticsCommand(const ListOptions& options);

}  // namespace quorva::frontend
