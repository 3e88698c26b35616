#include "frontend/run/verification.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Verification, EqualityIsFifteenDigitsOrNineForSolvers) {
    using workbook::CellValue;
    const auto number = [](double x) { return CellValue{CellValue::Type::Number, x, ""}; };
    EXPECT_TRUE(equalAsSaved(number(0.1 + 0.2), number(0.3), "A1+A2"));
    EXPECT_FALSE(equalAsSaved(number(1), number(1 + 1e-12), "A1"));
    EXPECT_TRUE(equalAsSaved(number(1), number(1 + 1e-10), "irr(A1:A9)"));
    EXPECT_FALSE(equalAsSaved(number(1), {CellValue::Type::Boolean, 1, ""}, "A1"));
    EXPECT_FALSE(equalAsSaved({CellValue::Type::Text, 0, "a"}, {CellValue::Type::Text, 0, "A"}, "A1"));
    EXPECT_TRUE(equalAsSaved(number(0), {CellValue::Type::Blank, 0, ""}, "A1"));
}

}  // namespace
}  // namespace quorva::frontend
