// Formulas that would take days: they end as unsupported, and what is merely large is computed.
#include <gtest/gtest.h>

#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

/// The first formula cell of a book made of the lines, computed with a limit.
FormulaCell computed(std::string_view lines, std::int64_t limit) {
    Book book = Book::fromText(lines);
    book.setStepLimit(limit);
    book.recalculateAll();
    return book.formulas().front();
}

TEST(Allowance, EndsAFormulaThatTakesTooLongAsUnsupported) {
    for (const char* formula : {
             "SUM(LARGE(ROW(1:2000),ROW(1:2000)))",
             "SUM(--(ROW(1:2000)=TRANSPOSE(ROW(1:2000))))",
             "COUNTIF(A:C,\"\")",
             "SUM(XMATCH(ROW(1:2000),ROW(1:2000)))",
             "SUM(MMULT(SEQUENCE(200,200),SEQUENCE(200,200)))",
             "SUM(WORKDAY(ROW(1:100),1000000))",
             "LET(f,LAMBDA(g,n,IF(n=0,1,g(g,n-1)+g(g,n-1))),f(f,30))",
             "LEN(CONCAT(REPT(\"x\",ROW(20001:20100))))",
             "COLUMNS(TEXTSPLIT(REPT(\"a,\",3000),REPT(\",\",ROW(1:1000))))",
             "SUM(SEQUENCE(1000,1000))",
             // elements that nobody reads
             "MAP(SEQUENCE(700),LAMBDA(x,ROWS(SEQUENCE(4000,4000))))",
             "ROWS(SEQUENCE(1001,1000))",
             "ROWS(RANDARRAY(1001,1000))",
             "ROWS(EXPAND(1,1001,1000))",
             "ROWS(MUNIT(1001))",
             "ROWS(WRAPROWS(1,1000001))",
             "ROWS(CHOOSEROWS(SEQUENCE(1,1001),SEQUENCE(1000,1,1,0)))",
             "ROWS(MAKEARRAY(1001,1000,LAMBDA(r,c,1)))",
             "ROWS(ROW(A1:A1000001))",
             "LET(a,SEQUENCE(1000),REDUCE(0,SEQUENCE(1001),LAMBDA(s,i,ROWS(INDEX(a,0,1)))))",
             // texts made one by one
             "REDUCE(0,SEQUENCE(50),LAMBDA(s,i,LEN(REPT(\"x\",20001))))",
             "LET(a,REPT(\"x\",20001),REDUCE(0,SEQUENCE(50),LAMBDA(s,i,LEN(a&i))))",
             // loops as long as an argument says
             "SUM(VDB(1,0,1000000,0,ROW(1:11)*90000))",
             "SUM(DB(1000,1,1000000,ROW(1:11)*90000))",
             "HYPGEOM.DIST(2.5E14,5E14,5E14,1E15,TRUE)",
             "SUM(PRICE(ROW(1001:1040),2950000,0.05,0.05,100,4))",
         }) {
        const FormulaCell cell =
            computed("F1: =" + std::string(formula) + "\nA1: 1\nA500: 2\nC1048576: 3\n", 1'000'000);
        EXPECT_TRUE(cell.unsupported) << formula << " = " << cell.computed.number << cell.computed.text;
        EXPECT_EQ(cell.why, "more than 1000000 steps of calculation in one formula") << formula;
    }
}

TEST(Allowance, LeavesOrdinaryFormulasAlone) {
    const FormulaCell cell = computed("F1: =SUM(XMATCH(ROW(1:100),ROW(1:100)))\n", 1'000'000);
    EXPECT_FALSE(cell.unsupported);
    EXPECT_EQ(cell.computed.number, 5050);
}

TEST(Allowance, IsEachFormulasOwn) {
    // B1 computes A1 while it is being computed itself, and still has its own steps afterwards.
    Book book = Book::fromText(
        "A1: =SUM(SEQUENCE(3000))\nB1: =INDIRECT(\"A1\")+SUM(SEQUENCE(3000))\nC1: =SUM(SEQUENCE(3000))\n");
    book.setStepLimit(20'000);
    book.recalculateAll();
    for (const FormulaCell& cell : book.formulas()) {
        EXPECT_FALSE(cell.unsupported) << cell.why;
    }
}

TEST(Allowance, StopsTheLivePartWithTheCellsName) {
    Book book = Book::fromText("A1: =RAND()\nB2: =SUM(XMATCH(ROW(1:1000),ROW(1:1000)))+A1\n");
    book.setStepLimit(100'000);
    try {
        book.recalculate();
        ADD_FAILURE() << "computed";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unsupported);
        EXPECT_STREQ(failure.what(),
                     "Cell Sheet1!B2 uses more than 100000 steps of calculation in one formula, which is not "
                     "supported.");
    }
}

TEST(Allowance, SumsProductsOfWholeSheetsFromTheCellsThatExist) {
    const char* const cells = "A1: 2\nB2: 3\nXFC1048576: 5\nSheet2!A1: 7\nSheet2!XFC1048576: 11\n";
    const std::string formula = "Sheet3!A1: =SUMPRODUCT(Sheet1!A:XFC,Sheet2!A:XFC)\n";
    const FormulaCell cell = computed(cells + formula, 1'000'000);
    EXPECT_FALSE(cell.unsupported) << cell.why;
    EXPECT_EQ(cell.computed.number, 2 * 7 + 5 * 11);
    EXPECT_EQ(computed(cells + formula + "Sheet2!C3: #N/A\n", 1'000'000).computed.text, "#N/A");
}

TEST(Allowance, SpillsAMillionCells) {
    Book book = Book::fromText("A1: =SEQUENCE(1000,1000)\n");
    book.recalculateAll();
    EXPECT_EQ(book.value({0, 0, 0}).number, 1);
    EXPECT_EQ(book.value({0, 999, 999}).number, 1'000'000);
}

}  // namespace
}  // namespace quorva::workbook
