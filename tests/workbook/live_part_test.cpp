// The compiled live part against the evaluator: the same values for random edits of random workbooks.
#include <gtest/gtest.h>

#include <random>

#include "random_model.h"
#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

TEST(LivePart, HasTheBitsOfAFullRecalculationAfterRandomEdits) {
    std::mt19937 random(20240817);
    const Choice below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int round = 0; round < 150; ++round) {
        const RandomModel model = randomModel(below);
        Book live = Book::fromText(model.lines);
        Book whole = Book::fromText(model.lines);
        for (unsigned edit = 0; edit < 4; ++edit) {
            ASSERT_EQ(recalculateBoth(edit, live, whole), "") << "round " << round << ", edit " << edit << "\n"
                                                              << model.lines;
            editBoth(model, below, live, whole);
        }
    }
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
