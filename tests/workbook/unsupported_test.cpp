// What the host does not compute is said, with its reason, and never a value.
#include <gtest/gtest.h>

#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

std::string reasonOf(const std::string& formula) {
    Book book = Book::fromText("A1: \"Tree\"\nA2: 1\nB1: \"Other\"\nB2: TRUE\nD1: =" + formula + "\n");
    book.recalculateAll();
    const FormulaCell cell = book.formulas().front();
    EXPECT_EQ(cell.unsupported, !cell.why.empty()) << formula;
    return cell.why;
}

TEST(Unsupported, FunctionsAreNamed) {
    for (const std::string name : {"FORECAST.ETS", "GROUPBY", "PIVOTBY", "CUBEVALUE", "GETPIVOTDATA", "WEBSERVICE",
                                   "RTD", "CALL", "FILTERXML", "OWNFUNCTION"}) {
        EXPECT_EQ(reasonOf(name + "(A2,1)"), "the function " + name);
    }
}

TEST(Unsupported, ConditionsUnderHeadingsThatADatabaseDoesNotHave) {
    EXPECT_EQ(reasonOf("DSUM(A1:A2,1,B1:B2)"),
              "a condition of a database function under a heading that its table does not have");
    EXPECT_EQ(reasonOf("DSUM(A1:A2,1,A1:A2)"), "");
}

TEST(Unsupported, AUnitWhoseMeaningIsNotDocumented) {
    EXPECT_EQ(reasonOf("CONVERT(1,\"kmph\",\"m/s\")"), "the unit kmph");
    EXPECT_EQ(reasonOf("CONVERT(1,\"km/h\",\"m/s\")"), "");
}

TEST(Unsupported, RegularExpressionsWhoseMatchesAreNotDocumented) {
    EXPECT_EQ(reasonOf("REGEXEXTRACT(\"ab\",\"x*\",1)"), "a regular expression that extracts empty texts");
    EXPECT_EQ(reasonOf("REGEXEXTRACT(\"ab\",\"(x)?a\",2)"), "a group of a regular expression that takes no part");
    EXPECT_EQ(reasonOf("REGEXEXTRACT(\"ab\",\"a\",2)"), "the groups of a regular expression without any");
    EXPECT_EQ(reasonOf("REGEXTEST(\"\u00e9\",\"\\w\")"), "classes of letters and digits in texts beyond ASCII");
    EXPECT_EQ(reasonOf("REGEXTEST(\"\U0001F600\",\".\")"), "a regular expression on characters beyond 65535");
    EXPECT_EQ(reasonOf("REGEXTEST(\"a\",\"\")"), "an empty regular expression");
    EXPECT_EQ(reasonOf("REGEXREPLACE(\"a\",\"a\",\"\\n\")"), "a replacement with a backslash");
    EXPECT_EQ(reasonOf("REGEXREPLACE(\"a\",\"a\",\"$2\")"), "a replacement that cannot be read");
    EXPECT_EQ(reasonOf("REGEXTEST(REPT(\"a\",5000),\"^(a+)+$|b\")"), "");
    EXPECT_EQ(reasonOf("REGEXTEST(REPT(\"a\",50)&\"b\",\"^(a+)+$\")"), "a regular expression that takes too long");
}

TEST(Unsupported, ReferencesThatAFunctionCannotTakeApart) {
    EXPECT_EQ(reasonOf("SUM(OFFSET(A1,{0,1},0))"), "an array of references at this place");
    EXPECT_EQ(reasonOf("VLOOKUP(2,(A1:B2,A3:B3),2)"), "a reference to several areas at this place");
}

TEST(Unsupported, AsianTextsAndAmountsReadInTwoWays) {
    EXPECT_EQ(reasonOf("ASC(\"\u30A8\")"), "a function for Asian texts on anything but plain text");
    EXPECT_EQ(reasonOf("PHONETIC(A2)"), "a function for Asian texts on anything but plain text");
    EXPECT_EQ(reasonOf("BAHTTEXT(101)"), "BAHTTEXT of a number that ends in 01, which is read in two ways");
    EXPECT_EQ(reasonOf("TRIMRANGE(F1:G2)"), "TRIMRANGE of blanks alone");
}

TEST(Unsupported, QuestionsToCellThatDependOnTheComputer) {
    EXPECT_EQ(reasonOf("CELL(\"filename\")"), "the function CELL with \"filename\"");
}

TEST(Unsupported, RecursionOfLambdasThatIsTooDeep) {
    const std::string factorial = "LET(f,LAMBDA(g,n,IF(n<2,1,n*g(g,n-1))),f(f,";
    EXPECT_EQ(reasonOf(factorial + "150))"), "");
    EXPECT_EQ(reasonOf("LET(f,LAMBDA(g,n,1+g(g,n)),f(f,1))"), "a formula nested so deeply, or a recursion of lambdas");
}

TEST(Unsupported, NamesThatGrowWithoutEnd) {
    std::string lines =
        "name Sum_0: 1\nname Fib: LAMBDA(n,IF(n<3,1,Fib(n-1)+Fib(n-2)))\nA1: =Sum_20\nA2: =Fib(5)\nA3: =Sum_3\n";
    for (int i = 1; i <= 20; ++i) {
        const std::string inner = "Sum_" + std::to_string(i - 1);
        lines += "name Sum_" + std::to_string(i) + ": " + inner + "+" + inner + "\n";
    }
    Book book = Book::fromText(lines);
    book.recalculateAll();
    const std::vector<FormulaCell> cells = book.formulas();
    EXPECT_NE(cells[0].why.find("it consists of too many names"), std::string::npos) << cells[0].why;
    EXPECT_NE(cells[1].why.find("names refer to each other without end"), std::string::npos) << cells[1].why;
    EXPECT_EQ(cells[2].computed.number, 8);
}

TEST(Unsupported, CircularReferencesNameTheirCells) {
    EXPECT_EQ(reasonOf("D1+1"), "a circular reference (Sheet1!D1 -> Sheet1!D1)");
}

}  // namespace
}  // namespace quorva::workbook
