// Arrays that spill in the live part: cells that come and go, ranges over them, arrays that depend on each other.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "common/cell_names.h"
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

TEST(LiveSpills, GrowAndShrinkUnderRangesAndCellsThatUseThem) {
    // A1 comes before the array in every order that does not know how far it spills.
    Book book = Book::fromText(
        "A1: =IF(C6=\"\",0,C6)\nB1: =INT(RAND()*9)+1\nB2: =SUM(C2:C100)\nB3: =COUNTIF(C2:C100,\">0\")\n"
        "B4: =MAX(C2:C100)\nB5: =SUMPRODUCT(C2:C4,C2:C4)\nB6: =SUM(A1,B2)\nC2: =SEQUENCE(B1)\n");
    for (int pass = 0; pass < 300; ++pass) {
        book.recalculate();
        const double size = number(book, "B1");
        EXPECT_EQ(number(book, "A1"), size >= 5 ? 5 : 0);
        EXPECT_EQ(number(book, "B2"), size * (size + 1) / 2);
        EXPECT_EQ(number(book, "B3"), size);
        EXPECT_EQ(number(book, "B4"), size);
        EXPECT_EQ(number(book, "B5"), size >= 3 ? 14 : size >= 2 ? 5 : 1);
        EXPECT_EQ(number(book, "B6"), number(book, "A1") + number(book, "B2"));
    }
}

TEST(LiveSpills, HaveTheSizeThatTheirFirstDrawGives) {
    // Drawn again until two sizes in a row agree, 10 would come up in 6 % of the passes.
    constexpr int passes = 2000;
    for (const bool whole : {false, true}) {
        Book book = Book::fromText("A1: =SEQUENCE(IF(RAND()<0.2,10,1))\nB1: =COUNT(A1:A20)\n");
        book.seed(1);
        int tens = 0;
        for (int pass = 0; pass < passes; ++pass) {
            whole ? book.recalculateAll() : book.recalculate();
            tens += number(book, "B1") == 10 ? 1 : 0;
        }
        EXPECT_NEAR(tens, passes * 0.2, 5 * std::sqrt(passes * 0.2 * 0.8));  // fails by chance once in a million
    }
}

TEST(LiveSpills, ThatDoNotComeToRestAreUnsupported) {
    // Three cells while A2 is empty, one while it is not.
    const std::string_view lines = "A1: =SEQUENCE(IF(INDIRECT(\"A2\")>0,1,3))\nB1: =A1+1\nC1: 5\nC2: =C1+1\n";
    Book whole = Book::fromText(lines);
    whole.recalculateAll();
    const auto formulas = whole.formulas();
    EXPECT_TRUE(formulas.front().unsupported);
    EXPECT_EQ(formulas.front().why, "spilled arrays that change each other without coming to rest");
    EXPECT_EQ(number(whole, "C2"), 6);
    Book live = Book::fromText(lines);
    try {
        live.recalculate();
        ADD_FAILURE() << "computed";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unsupported);
        EXPECT_STREQ(failure.what(),
                     "Cell Sheet1!A1 uses spilled arrays that change each other without coming to rest, which is not "
                     "supported.");
    }
}

TEST(LiveSpills, MayFollowEachOtherInALongChain) {
    // Each array reaches the cell that gives the size of the one before it, which nobody knows until it spills.
    std::string lines;
    constexpr int length = 30;
    for (int i = 1; i <= length; ++i) {
        lines += cellName(0, i - 1) + ": =SEQUENCE(1+N(" + cellName(1, i) + "))\n";
    }
    lines += cellName(0, length) + ": =SEQUENCE(2)\n";
    Book book = Book::fromText(lines);
    book.recalculateAll();
    for (const FormulaCell& cell : book.formulas()) {
        EXPECT_FALSE(cell.unsupported) << cell.why;
    }
    for (int i = 0; i <= length; ++i) {
        EXPECT_EQ(book.value({0, 1, i}).number, 2) << cellName(1, i);
    }
}

TEST(LiveSpills, GiveWayToAConstantThatIsPutIntoThem) {
    for (const std::string_view term : {"", "+RAND()*0"}) {
        Book book = Book::fromText("A1: =SEQUENCE(3)" + std::string(term) + "\nB1: =SUM(A1:A3)\nB2: =A2\n");
        book.recalculate();
        EXPECT_EQ(number(book, "B1"), 6);
        book.set({0, 1, 0}, {CellValue::Type::Number, 50, {}});
        book.recalculate();
        EXPECT_EQ(book.value({0, 0, 0}).text, "#SPILL!");
        EXPECT_EQ(number(book, "A2"), 50);
        EXPECT_EQ(number(book, "B2"), 50);
        EXPECT_EQ(book.value({0, 2, 0}).type, CellValue::Type::Blank);
        book.set({0, 1, 0}, {});
        book.recalculate();
        EXPECT_EQ(number(book, "B1"), 6);
        EXPECT_EQ(number(book, "B2"), 2);
        book.set({0, 0, 0}, {CellValue::Type::Number, 7, {}});
        book.recalculate();
        EXPECT_EQ(number(book, "B1"), 7);
        EXPECT_EQ(number(book, "B2"), 0);
    }
}

}  // namespace
}  // namespace quorva::workbook
