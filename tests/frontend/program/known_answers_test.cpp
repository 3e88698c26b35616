// Runs whose answers are known in closed form. Latin hypercube samples of 20,000 iterations place means of sums far
// closer than the bounds below; the seeds are fixed.
#include <cmath>

#include "program.h"

namespace quorva::frontend {
namespace {

using KnownAnswer = ProgramTest;

double phi(double x) { return std::exp(-x * x / 2) / std::sqrt(2 * 3.14159265358979323846); }
double Phi(double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }

TEST_F(KnownAnswer, SumOfTwoNormals) {
    const auto json = results({book("m.xlsx", sumModel()), "-n", "20000", "--seed", "1"});
    const auto& sum = entry(json["summary"], "sum");
    EXPECT_EQ(sum["count"], 20000);
    EXPECT_NEAR(sum["mean"], 30, 0.01);
    EXPECT_NEAR(sum["stdev"], 5, 0.1);
    EXPECT_NEAR(sum["percentiles"]["95"], 30 + 5 * 1.6448536, 0.2);
    EXPECT_NEAR(sum["standard_error"], 5 / std::sqrt(20000.0), 1e-3);
    EXPECT_EQ(json["planned"], 20000);
    EXPECT_EQ(json["seed"], 1);
    EXPECT_EQ(json["sampling"]["strata"], 20000);
    const auto& sensitivity = entry(json["sensitivity"], "sum", "result")["inputs"];
    EXPECT_EQ(sensitivity[0]["name"], "b");
    EXPECT_NEAR(sensitivity[0]["contribution"], 0.64, 0.03);
    const auto& fields = json["fields"];
    EXPECT_EQ(entry(fields, "b")["cell"], "A2");
    EXPECT_EQ(entry(fields, "b")["law"], "Normal");
    EXPECT_EQ(entry(fields, "b")["parameters"]["sigma"], 4);
    EXPECT_EQ(entry(fields, "b")["default"], 20);
}

TEST_F(KnownAnswer, ToleranceStackUpAndItsCapability) {
    const auto json = results({example("tolerance"), "-n", "20000", "--seed", "2"});
    const double sigma = std::sqrt(0.03 * 0.03 + 0.01 * 0.01 + 0.02 * 0.02 + 0.015 * 0.015);
    const auto& gap = entry(json["summary"], "Gap");
    EXPECT_NEAR(gap["mean"], 0.5, 1e-4);
    EXPECT_NEAR(gap["stdev"], sigma, 0.02 * sigma);
    const auto& indices = entry(json["capability"], "Gap")["indices"];
    EXPECT_NEAR(indices["cp"], 0.3 / (6 * sigma), 0.03);
    EXPECT_NEAR(indices["cpk"], 0.15 / (3 * sigma), 0.03);
    EXPECT_NE(json["notes"].dump().find("QUORVA_Capability"), std::string::npos);
}

TEST_F(KnownAnswer, ProductOfLogNormals) {
    const auto json = results({example("reserves"), "-n", "20000", "--seed", "3"});
    const double mu = 2.7, variance = 0.35 * 0.35 + 0.25 * 0.25 + 0.2 * 0.2 + 0.15 * 0.15;
    const auto& reserves = entry(json["summary"], "Reserves");
    EXPECT_NEAR(reserves["mean"], std::exp(mu + variance / 2), 0.15);
    EXPECT_NEAR(reserves["percentiles"]["50"], std::exp(mu), 0.2);
    EXPECT_NEAR(reserves["percentiles"]["95"], std::exp(mu + 1.6448536 * std::sqrt(variance)), 0.9);
}

TEST_F(KnownAnswer, PortfolioWithACorrelationMatrix) {
    const auto json = results({example("portfolio"), "-n", "20000", "--seed", "4", "--strata", "0"});
    const double weights[] = {0.4, 0.3, 0.2, 0.1}, volatility[] = {0.05, 0.18, 0.12, 0.15};
    const double correlation[4][4] = {{1, 0.1, 0.2, 0.15}, {0.1, 1, 0.6, -0.1}, {0.2, 0.6, 1, 0}, {0.15, -0.1, 0, 1}};
    double variance = 0;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            variance += weights[i] * weights[j] * volatility[i] * volatility[j] * correlation[i][j];
        }
    }
    const auto& portfolio = entry(json["summary"], "Return");
    const double sigma = std::sqrt(variance);
    EXPECT_NEAR(portfolio["mean"], 0.045, 4 * sigma / std::sqrt(20000.0));
    EXPECT_NEAR(portfolio["stdev"], sigma, 4 * sigma / std::sqrt(40000.0));
    const auto& names = json["correlations"]["names"];
    const auto place = [&](const std::string& name) {
        return std::find(names.begin(), names.end(), name) - names.begin();
    };
    EXPECT_NEAR(json["correlations"]["linear"][place("Property")][place("Shares")], 0.6, 0.03);
    EXPECT_EQ(json["correlations"]["requested"]["names"].size(), 4u);
    EXPECT_TRUE(json["correlations"]["repaired"].is_null());
}

TEST_F(KnownAnswer, ExpectedProfitOfTheNewsvendor) {
    const auto json = results({example("inventory"), "-n", "20000", "--seed", "5", "--tornado"});
    const double q = 530, mean = 500, sigma = 80, z = (q - mean) / sigma;
    const double sold = mean - sigma * (phi(z) - z * (1 - Phi(z)));
    EXPECT_NEAR(entry(json["summary"], "Profit")["mean"], 7 * sold + (q - sold) - 3 * q, 3);
    EXPECT_EQ(entry(json["summary"], "Order")["stdev"], 0);
}

TEST_F(KnownAnswer, MeanCostOfTheProjectFromItsPertTasks) {
    const auto json = results({example("project"), "-n", "20000", "--seed", "6"});
    const double tasks[][4] = {{20, 25, 45, 900},  {15, 30, 60, 300},  {12, 15, 25, 2200},
                               {40, 50, 80, 3100}, {25, 30, 50, 1800}, {20, 28, 40, 1400}};
    double cost = 0;
    for (const auto& task : tasks) {
        cost += (task[0] + 4 * task[1] + task[2]) / 6 * task[3];
    }
    EXPECT_NEAR(entry(json["summary"], "Cost")["mean"], cost, 100);
}

TEST_F(KnownAnswer, TheTornadoOfTheNewsvendorMovesTheOrderFromBoundToBound) {
    const auto json = results({example("inventory"), "-n", "5000", "--seed", "5", "--tornado", "--points", "9"});
    const double demand = entry(json["intervals"], "Demand")["median"];
    const auto& order = entry(entry(json["tornado"], "Profit", "result")["inputs"], "Order");
    ASSERT_EQ(order["values"].size(), 9u);
    for (int j = 0; j < 9; ++j) {
        const double q = 400 + 30 * j;
        EXPECT_NEAR(order["values"][j], 6 * std::min(q, demand) - 2 * q, 1e-9);
    }
}

TEST_F(KnownAnswer, AScenarioVariableInStepsStaysWithinItsBounds) {
    Cells cells = sumModel();
    cells.push_back({"B1", "=QUORVA_SimSVar(\"s\",0,8,2,3,FALSE,0,1)"});
    cells.push_back({"B2", "=QUORVA_SimRes(\"ten\",10*B1,0,FALSE,1)"});
    const std::string model = book("m.xlsx", cells);
    const auto five = results({model, "-n", "100", "--seed", "5", "--tornado"});
    const auto& values = entry(entry(five["tornado"], "ten", "result")["inputs"], "s");
    EXPECT_EQ(values["values"], nlohmann::json::parse("[0.0, 30.0, 60.0, null, null]"));
    EXPECT_EQ(values["high"], 60);
    EXPECT_EQ(five["warnings"].dump().find("in steps of"), std::string::npos);
    const auto two = results({model, "-n", "100", "--seed", "5", "--tornado", "--points", "2"});
    EXPECT_NE(two["warnings"].dump().find("in steps of 3 from 0 to 3 only; --points 3 reaches 6"), std::string::npos)
        << two["warnings"];
}

TEST_F(KnownAnswer, TornadoOfALinearModel) {
    const auto json = results({book("m.xlsx", sumModel()), "-n", "5000", "--seed", "7", "--tornado", "--spread", "band",
                               "--width", "0.1", "--base", "default", "--points", "7"});
    const auto& tornado = entry(json["tornado"], "sum", "result");
    EXPECT_NEAR(tornado["base"], 30, 1e-12);
    ASSERT_EQ(tornado["points"].size(), 7u);
    EXPECT_EQ(tornado["points"][0], "-10.00%");
    EXPECT_EQ(tornado["inputs"][0]["name"], "b");
    EXPECT_NEAR(tornado["inputs"][0]["low"], 28, 1e-9);
    EXPECT_NEAR(tornado["inputs"][0]["high"], 32, 1e-9);
    EXPECT_NEAR(tornado["inputs"][1]["swing"], 2, 1e-9);
    for (int j = 0; j < 7; ++j) {
        EXPECT_NEAR(tornado["inputs"][1]["values"][j], 29 + j / 3.0, 1e-9);
    }
}

TEST_F(KnownAnswer, BandPointsOutsideTheSimulatedRangeAreNullForEveryNumberOfPoints) {
    // Uniform on 95 to 105: a band of 10 % leaves it on both sides. The result field comes first by name, so that field
    // 1 is no input.
    const Cells cells{{"A1", "=QUORVA_SimUniform(\"u\",95,105,0,0,0,FALSE,0,1)"},
                      {"A2", "=QUORVA_SimNormal(\"v\",1,0,0,0,0,FALSE,0,1)"},
                      {"A3", "=QUORVA_SimRes(\"a result\",A1+A2,0,FALSE,1)"}};
    for (const int points : {2, 5, 9, 11}) {
        const auto json = results({book("m.xlsx", cells), "-n", "2000", "--seed", "8", "--tornado", "--spread", "band",
                                   "--points", std::to_string(points)});
        const auto& input = entry(entry(json["tornado"], "a result", "result")["inputs"], "u");
        const double median = entry(json["summary"], "u")["percentiles"]["50"];
        const double low = entry(json["summary"], "u")["min"], high = entry(json["summary"], "u")["max"];
        for (int j = 0; j < points; ++j) {
            const double point = median * (0.9 + 0.2 * j / (points - 1));
            if (point < low || point > high) {
                EXPECT_TRUE(input["values"][j].is_null()) << points << " points, number " << j;
            } else {
                EXPECT_NEAR(input["values"][j], point + 1, 1e-9) << points << " points, number " << j;
            }
        }
    }
}

TEST_F(KnownAnswer, IntervalPointsRunEvenlyBetweenTheBounds) {
    const auto json = results({book("m.xlsx", sumModel()), "-n", "4000", "--seed", "9", "--tornado", "--tail", "0.1"});
    const auto& interval = entry(json["intervals"], "a");
    const auto& values = entry(entry(json["tornado"], "sum", "result")["inputs"], "a")["values"];
    const double low = interval["lower"], high = interval["upper"], b = entry(json["intervals"], "b")["median"];
    for (int j = 0; j < 5; ++j) {
        EXPECT_NEAR(values[j], low + (high - low) * j / 4 + b, 1e-9);
    }
    EXPECT_EQ(entry(json["tornado"], "sum", "result")["points"][0], "10.00%");
    EXPECT_NEAR(low, 10 - 3 * 1.2815516, 0.1);
}

TEST_F(KnownAnswer, AScenarioVariableMovesBetweenItsBounds) {
    Cells cells = sumModel();
    cells[2].second = "=QUORVA_SimRes(\"sum\",A1+A2+A4,0,FALSE,1)";
    cells.emplace_back("A4", "=QUORVA_SimSVar(\"d\",0,8,1,1,TRUE,3,1)");
    const auto json = results({book("m.xlsx", cells), "-n", "1000", "--seed", "10", "--tornado", "--base", "default"});
    const auto& tornado = entry(json["tornado"], "sum", "result");
    EXPECT_NEAR(entry(tornado["inputs"], "d")["low"], 30, 1e-9);
    EXPECT_NEAR(entry(tornado["inputs"], "d")["high"], 38, 1e-9);
    EXPECT_NEAR(tornado["base"], 33, 1e-9);
}

}  // namespace
}  // namespace quorva::frontend
