// Arrays that spill in the live part: cells that come and go, ranges over them, arrays that depend on each other.
#include <gtest/gtest.h>

#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

double number(const Book& book, std::string_view cell) {
    const auto range = book.resolve(cell);
    const CellValue value = book.value({range->sheet, range->firstRow, range->firstColumn});
    EXPECT_EQ(value.type, CellValue::Type::Number) << cell << " is " << value.text;
    return value.number;
}

TEST(LiveSpills, AreReadRowByRowWithTheCellsAroundThem) {
    // The file holds some of the cells that the arrays fill; the others come into being when they spill.
    const std::string_view lines =
        "A1: 1\nA2: 10\nA3: 100\nA4: 1000\nA5: 10000\n"
        "C1: =SEQUENCE(5)+RAND()*0\nC4: blank\n"
        "E1: =SUMPRODUCT(A1:A5,C1:C5)\n"
        "G1: =SEQUENCE(3)*100+RAND()*0\nH1: 10\nH2: 20\nH3: 30\n"
        "E2: =NPV(0.1,G1:H3)\n"
        "E3: =NPV(A1/10,G1:H3,C1:C5)\n";
    // 100, 10, 200, 20, 300, 30 at the ends of six periods, then 1 to 5.
    const double present = 100 / 1.1 + 10 / 1.21 + 200 / 1.331 + 20 / 1.4641 + 300 / 1.61051 + 30 / 1.771561;
    for (const bool whole : {false, true}) {
        Book book = Book::fromText(lines);
        for (int pass = 0; pass < 3; ++pass) {
            whole ? book.recalculateAll() : book.recalculate();
            EXPECT_EQ(number(book, "E1"), 54321);
            EXPECT_NEAR(number(book, "E2"), present, 1e-9);
            EXPECT_NEAR(
                number(book, "E3"),
                present + 1 / 1.9487171 + 2 / 2.14358881 + 3 / 2.357947691 + 4 / 2.5937424601 + 5 / 2.85311670611,
                1e-9);
        }
    }
}

}  // namespace
}  // namespace quorva::workbook
