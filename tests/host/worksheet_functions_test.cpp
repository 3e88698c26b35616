// The tables that registration is made of; their texts are checked one by one where the built module registers them.
#include "host/worksheet_functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using namespace quorva;

std::vector<WorksheetFunction> allFunctions() {
    auto functions = modelFunctions();
    const auto statistics = statisticFunctions();
    functions.insert(functions.end(), statistics.begin(), statistics.end());
    return functions;
}

const WorksheetFunction& named(const std::vector<WorksheetFunction>& functions, std::string_view name) {
    return *std::find_if(functions.begin(), functions.end(), [=](const auto& each) { return each.name == name; });
}

TEST(WorksheetFunctions, AreFortyForModelsAndFiftyNineForStatistics) {
    EXPECT_EQ(modelFunctions().size(), 40u);
    EXPECT_EQ(statisticFunctions().size(), 59u);
    EXPECT_EQ(modelFunctionCount, 40);
    EXPECT_EQ(statisticFunctionCount, 59);
}

TEST(WorksheetFunctions, HaveNamesOfTheirOwn) {
    std::set<std::string_view> names;
    for (const auto& function : allFunctions()) {
        EXPECT_TRUE(names.insert(function.name).second) << function.name;
    }
}

TEST(WorksheetFunctions, HaveTwentyOneOrThirteenTextsThatHostsCanHold) {
    const auto functions = allFunctions();
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const bool model = i < 40;
        const auto texts =
            registrationTexts(functions[i], Recalculation::Always, model ? modelHelpPlaces : statisticHelpPlaces);
        EXPECT_EQ(texts.size(), model ? 21u : 13u) << functions[i].name;
        for (const std::string& text : texts) {
            ASSERT_FALSE(text.empty());
            EXPECT_EQ(text.front(), ' ') << "the length's placeholder";
            EXPECT_LE(text.size() - 1, 255u);
        }
    }
}

TEST(WorksheetFunctions, TypeTextEndsInAnExclamationMarkWhenAlwaysRecalculated) {
    for (const auto& function : allFunctions()) {
        EXPECT_EQ(typeText(function, Recalculation::Always), typeText(function, Recalculation::WhenNeeded) + "!");
    }
}

TEST(WorksheetFunctions, LawsTakeNameParametersTruncationDefaultAndVisibility) {
    const auto functions = modelFunctions();
    for (const LawEntry& law : lawTable) {
        EXPECT_EQ(typeText(named(functions, law.wrapper), Recalculation::WhenNeeded),
                  "BF" + std::string(static_cast<std::size_t>(law.parameters), 'B') + "JBBABJ")
            << law.wrapper;
    }
}

// Intended: two functions name the lower bound before the mode, though they take the mode first.
TEST(WorksheetFunctions, TwoLawsNameTheLowerBoundBeforeTheMode) {
    const auto functions = modelFunctions();
    int found = 0;
    for (const LawEntry& law : lawTable) {
        const WorksheetFunction& function = named(functions, law.wrapper);
        const bool lowerFirst = argumentText(function).find("TruncLower, TruncMode") != std::string::npos;
        const bool expected = law.wrapper == "QUORVA_SimChiSquare" || law.wrapper == "QUORVA_SimArcsineG";
        EXPECT_EQ(lowerFirst, expected) << law.wrapper;
        found += lowerFirst ? 1 : 0;
        EXPECT_EQ(function.arguments[1 + static_cast<std::size_t>(law.parameters)].type, 'J');
    }
    EXPECT_EQ(found, 2);
}

}  // namespace
