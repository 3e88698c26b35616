// What the command line asks for. Plain values with the defaults that --help shows.
#pragma once

#include <optional>
#include <string>
#include <vector>

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

}  // namespace quorva::frontend
