// Formulas nested deeper than any stack: they are read up to a limit and end as unsupported beyond it, in every walk
// over their trees.
#include <gtest/gtest.h>

#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

/// Why the formula of the first cell is not computed, in a book where it stands as it is and where it runs at every
/// recalculation.
std::string reasonOf(const std::string& formula, const std::string& names = {}) {
    Book live = Book::fromText(names + "A1: =IF(RAND()<2,1,1)\nB1: =A1+(" + formula + ")\n");
    try {
        live.recalculate();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unsupported) << failure.what();
    }
    Book book = Book::fromText(names + "A1: 1\nB1: =A1+(" + formula + ")\n");
    book.recalculateAll();
    return book.formulas().front().why;
}

void expectTooDeep(const std::string& formula, const std::string& names = {}) {
    EXPECT_NE(reasonOf(formula, names).find("it is nested too deeply"), std::string::npos) << formula.substr(0, 20);
}

TEST(Nesting, EndsChainsOfEveryOperatorAsUnsupported) {
    expectTooDeep(repeated("-", 60000) + "A1");
    expectTooDeep(repeated("+", 60000) + "A1");
    expectTooDeep(repeated("@", 60000) + "A1");
    expectTooDeep(repeated("-+@", 20000) + "A1");
    expectTooDeep("A1" + repeated("%", 60000));
    expectTooDeep("A1" + repeated("#", 60000));
    expectTooDeep("A1" + repeated("+A1", 20000));
    expectTooDeep("A1" + repeated(" A1", 20000));
    expectTooDeep("LAMBDA(A1)" + repeated("()", 30000));
    expectTooDeep(repeated(repeated("-", 970) + "(", 65) + "A1" + repeated(")", 65));
    expectTooDeep(repeated("SUM(", 10000) + "A1" + repeated(")", 10000));
    expectTooDeep(repeated("LET(x,", 6000) + "A1" + repeated(",x)", 6000));
    expectTooDeep(repeated("LAMBDA(x,", 6000) + "A1" + repeated(")", 6000));
}

TEST(Nesting, CountsTheDepthOfNamesWrittenOut) {
    std::string names = "name Deep_0: 1\n";
    std::string chains = "name Long_0: 1\n";
    for (int i = 1; i <= 30; ++i) {
        const std::string inner = std::to_string(i - 1);
        const std::string start = "_" + std::to_string(i) + ": ";
        names += "name Deep" + start + repeated("(", 95) + "Deep_" + inner + repeated(")", 95) + "\n";
        chains += "name Long" + start + "Long_" + inner + repeated("+1", 1000) + "\n";
    }
    expectTooDeep("Deep_29", names);
    expectTooDeep("Long_29", chains);
}

TEST(Nesting, ComputesWhatExcelCanHold) {
    EXPECT_EQ(reasonOf(repeated("IF((A1=1),(", 64) + "A1" + repeated("))", 64)), "");
    EXPECT_EQ(reasonOf("A1" + repeated("+1", 4080)), "");  // 8192 characters
    EXPECT_EQ(reasonOf(repeated("-", 4000) + "A1"), "");
    EXPECT_EQ(reasonOf("A1" + repeated("%", 4000)), "");
    std::string names = "name Step_0: 1\n";
    for (int i = 1; i <= 30; ++i) {
        names += "name Step_" + std::to_string(i) + ": SUM(ABS(Step_" + std::to_string(i - 1) + "),1)\n";
    }
    EXPECT_EQ(reasonOf("Step_30", names), "");
}

TEST(Nesting, LetsGoOfAMillionLambdasThatHoldEachOther) {
    EXPECT_EQ(reasonOf("ROWS(REDUCE(LAMBDA(x,x),SEQUENCE(1000000),LAMBDA(inner,i,LAMBDA(x,inner(x)))))"), "");
}

}  // namespace
}  // namespace quorva::workbook
