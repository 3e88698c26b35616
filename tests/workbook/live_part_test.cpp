// The compiled live part against the evaluator: the same values for random edits of random workbooks.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "common/cell_names.h"
#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

using Random = std::mt19937;

int below(Random& random, int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

std::string number(Random& random) {
    const char* const special[] = {"0",      "1", "-1",  "1E+300", "0.1",      "1E-300",
                                   "1E-160", "3", "100", "0.3",    "2.5E-308", "70584.250081233738"};
    return below(random, 3) == 0 ? special[below(random, 12)] : std::to_string(below(random, 2000) - 1000) + ".25";
}

/// A cell of the rows above `row`, so that there are no cycles.
std::string reference(Random& random, int row) { return cellName(below(random, row), below(random, 4)); }

std::string range(Random& random, int row) {
    const int a = below(random, row);
    const int b = below(random, row);
    return cellName(std::min(a, b), below(random, 2)) + ":" + cellName(std::max(a, b), 2 + below(random, 2));
}

std::string expression(Random& random, int row, int depth) {
    const auto inner = [&] { return expression(random, row, depth - 1); };
    switch (depth == 0 ? below(random, 2) : below(random, 18)) {
        case 0:
            return reference(random, row);
        case 1:
            return number(random);
        case 2:
            return "(" + inner() + "+" + inner() + ")";
        case 3:
            return inner() + "-" + reference(random, row);
        case 4:
            return "(" + inner() + ")*" + reference(random, row);
        case 5:
            return "(" + inner() + ")/" + reference(random, row);
        case 6:
            return "IF(" + inner() + ">" + inner() + "," + inner() + "," + inner() + ")";
        case 7:
            return "SUM(" + range(random, row) + "," + inner() + ")";
        case 8:
            return "MAX(" + inner() + "," + range(random, row) + ")";
        case 9:
            return "MIN(" + range(random, row) + ")";
        case 10:
            return "ABS(" + inner() + ")";
        case 11:
            return "SQRT(" + inner() + ")";
        case 12:
            return "IF(AND(" + inner() + "<=" + inner() + ",OR(" + inner() + "<>0,TRUE))," + inner() + ",7)";
        case 13:
            return "COUNTIF(" + range(random, row) + ",\">0\")";
        case 14:
            return "(" + inner() + ")^" + std::to_string(below(random, 9) - 4);
        case 15:
            return "(" + inner() + ")^0.3";
        case 16: {
            const std::string first = reference(random, row);
            const std::string second = reference(random, row);  // rounding noise is left of these
            return first + "+" + second + "-" + first + "-" + second;
        }
        default:
            return "AVERAGE(" + range(random, row) + ")^2%";
    }
}

std::string constantLine(Random& random) {
    switch (below(random, 12)) {
        case 0:
            return "\"text\"";
        case 1:
            return "TRUE";
        case 2:
            return "#N/A";
        case 3:
            return "";
        default:
            return number(random);
    }
}

bool same(const CellValue& a, const CellValue& b) {
    return a.type == b.type && a.number == b.number && a.text == b.text;
}

TEST(LivePart, HasTheValuesOfAFullRecalculationAfterRandomEdits) {
    Random random(20240817);
    int compared = 0;
    for (int round = 0; round < 150; ++round) {
        std::ostringstream lines;
        const int rows = 4 + below(random, 10);
        for (int column = 0; column < 4; ++column) {
            // RAND()*0 makes the first row live, whatever it holds otherwise.
            lines << cellName(0, column) << ": =E" << column + 1 << "+RAND()*0\n";
            lines << "E" << column + 1 << ": " << constantLine(random) << "\n";
        }
        for (int row = 1; row < rows; ++row) {
            for (int column = 0; column < 4; ++column) {
                if (below(random, 6) == 0) {
                    lines << cellName(row, column) << ": " << constantLine(random) << "\n";
                } else {
                    lines << cellName(row, column) << ": =" << expression(random, row, 2) << "\n";
                }
            }
        }
        Book live = Book::fromText(lines.str());
        Book full = Book::fromText(lines.str());
        for (int edit = 0; edit < 4; ++edit) {
            CellValue value;
            value.type = below(random, 8) == 0 ? CellValue::Type::Text : CellValue::Type::Number;
            value.number = value.type == CellValue::Type::Number ? below(random, 100) - 50 : 0;
            value.text = value.type == CellValue::Type::Text ? "x" : "";
            const CellAddress cell{0, below(random, 4), 4};
            live.set(cell, value);
            full.set(cell, value);
            live.recalculate();
            full.recalculateAll();
            for (int row = 0; row < rows; ++row) {
                for (int column = 0; column < 4; ++column) {
                    ASSERT_TRUE(same(live.value({0, row, column}), full.value({0, row, column})))
                        << "round " << round << ", edit " << edit << ", cell " << cellName(row, column) << "\n"
                        << lines.str();
                    ++compared;
                }
            }
        }
    }
    EXPECT_GT(compared, 10000);
}

/// A column of cells each of which asks for the one below it only while it is computed.
std::string longChain(int length) {
    std::string lines;
    for (int row = 1; row < length; ++row) {
        lines += "A" + std::to_string(row) + ": =INDIRECT(\"A\"&(ROW()+1))+1\n";
    }
    return lines;
}

TEST(LivePart, FollowsChainsOfReferencesLongerThanTheStackIsDeep) {
    constexpr int length = 20'000;
    Book book = Book::fromText(longChain(length) + "A20000: 1\n");
    book.recalculateAll();
    EXPECT_EQ(book.value({0, 0, 0}).number, length);
    book.set({0, length - 1, 0}, {CellValue::Type::Number, 11, {}});
    book.recalculate();
    EXPECT_EQ(book.value({0, 0, 0}).number, length + 10);
}

TEST(LivePart, EndsOnAChainOfReferencesThatMeetsItself) {
    Book book = Book::fromText(longChain(20'000) + "A20000: =INDIRECT(\"A1\")+1\n");
    book.recalculateAll();
    EXPECT_EQ(book.formulas().size(), 20'000u);
}

TEST(LivePart, ReportsACircularReferenceWithItsCells) {
    Book book = Book::fromText("A1: =B1+1\nB1: =C1*2\nC1: =A1\n");
    try {
        book.recalculate();
        FAIL() << "the cycle was not found";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Model);
        EXPECT_STREQ(failure.what(),
                     "The workbook has a circular reference: Sheet1!A1 -> Sheet1!B1 -> Sheet1!C1 -> Sheet1!A1.");
    }
}

TEST(LivePart, NamesTheCellOfAnUnsupportedFunctionThatItNeeds) {
    Book book = Book::fromText("A1: =RAND()\nA2: =NOSUCH(A1)\n");
    try {
        book.recalculate();
        FAIL() << "the unsupported function was not reported";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unsupported);
        EXPECT_STREQ(failure.what(), "Cell Sheet1!A2 uses the function NOSUCH, which is not supported.");
    }
}

TEST(LivePart, DrawsAnewAtEachRecalculationAndKeepsTheRest) {
    Book book = Book::fromText("A1: =RAND()\nA2: =A1*2\nB1: 3\nB2: =B1+1\n");
    book.recalculate();
    const double first = book.value({0, 0, 0}).number;
    book.recalculate();
    EXPECT_NE(book.value({0, 0, 0}).number, first);
    EXPECT_EQ(book.value({0, 1, 0}).number, 2 * book.value({0, 0, 0}).number);
    EXPECT_EQ(book.value({0, 1, 1}).number, 4);
}

}  // namespace
}  // namespace quorva::workbook
