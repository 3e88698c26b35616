// The type texts that the host is given agree with the C functions that it then calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "host/worksheet_functions.h"
#include "quorva/worksheet.h"

namespace {

using namespace quorva;

template <class Type>
constexpr std::string_view letter = "?";
template <>
constexpr std::string_view letter<double> = "B";
template <>
constexpr std::string_view letter<const char*> = "F";
template <>
constexpr std::string_view letter<int> = "J";
template <>
constexpr std::string_view letter<short> = "A";
template <>
constexpr std::string_view letter<XLOPER*> = "R";
// A matrix of numbers arrives as three addresses: 16-bit counts of rows and columns, and the values.
template <>
constexpr std::string_view letter<std::uint16_t*> = "o";
template <>
constexpr std::string_view letter<double*> = "O";

template <class... Arguments>
std::string typeTextOf(double (*)(Arguments...)) {
    std::string text = "B";
    ((text += letter<Arguments>), ...);
    const std::size_t counts = text.find("ooO");
    return counts == std::string::npos ? text : text.replace(counts, 3, "O");
}

std::map<std::string_view, std::string> signatures() {
    std::map<std::string_view, std::string> texts;
#define QUORVA_SIGNATURE(NAME) texts[#NAME] = typeTextOf(static_cast<decltype(&NAME)>(nullptr));
    QUORVA_SIGNATURE(QUORVA_SimDist)
    QUORVA_SIGNATURE(QUORVA_SimSVar)
    QUORVA_SIGNATURE(QUORVA_SimRes)
    QUORVA_SIGNATURE(QUORVA_SimStat)
    QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_SIGNATURE)
    QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_SIGNATURE)
    QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_SIGNATURE)
    QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_SIGNATURE)
    QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_SIGNATURE)
    QUORVA_SIGNATURE(QUORVA_SimTriangularQ)
    QUORVA_SIGNATURE(QUORVA_SimEmpiricUniform)
    QUORVA_STATISTIC_FUNCTIONS(QUORVA_SIGNATURE)
#undef QUORVA_SIGNATURE
    return texts;
}

TEST(WorksheetFunctions, TypeTextsAgreeWithTheFunctionsArguments) {
    auto functions = modelFunctions();
    const auto statistics = statisticFunctions();
    functions.insert(functions.end(), statistics.begin(), statistics.end());
    const auto texts = signatures();
    EXPECT_EQ(texts.size(), functions.size());
    for (const WorksheetFunction& function : functions) {
        ASSERT_TRUE(texts.contains(function.name)) << function.name;
        EXPECT_EQ(typeText(function, Recalculation::WhenNeeded), texts.at(function.name)) << function.name;
    }
}

}  // namespace
