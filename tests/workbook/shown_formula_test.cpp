#include "workbook/formula/shown_formula.h"

#include <gtest/gtest.h>

namespace quorva::workbook {
namespace {

std::string moved(const char* text, int rows, int columns) { return shownFormula(text, rows, columns, ""); }

TEST(ShownFormula, MovesRelativeReferencesOfSharedFormulas) {
    EXPECT_EQ(moved("A1*$B$2+C$3-$D4", 1, 2), "C2*$B$2+E$3-$D5");
    EXPECT_EQ(moved("SUM(A:B,$A:B,1:2,$3:4)", 10, 1), "SUM(B:C,$A:C,11:12,$3:14)");
    EXPECT_EQ(moved("Sheet2!A1+'My A1''s'!B2:C3", 1, 0), "Sheet2!A2+'My A1''s'!B3:C4");
    EXPECT_EQ(moved("SUM(Q1:Q4!A1)", 1, 0), "SUM(Q1:Q4!A2)");
    EXPECT_EQ(moved("SUM(Sheet2!A1:Sheet2!B2)", 1, 0), "SUM(Sheet2!A2:Sheet2!B3)");
    EXPECT_EQ(moved("[1]Sheet1!A1", 1, 1), "[1]Sheet1!B2");
    EXPECT_EQ(moved("A1048576", 1, 0), "A1");
}

TEST(ShownFormula, LeavesWhatOnlyLooksLikeACell) {
    EXPECT_EQ(moved("LOG10(A1)&\"A1\"\"B2\"+1E5+1.5e3", 1, 0), "LOG10(A2)&\"A1\"\"B2\"+1E5+1.5e3");
    EXPECT_EQ(moved("Tax_A1+Data[A1]+#REF!+#N/A", 1, 1), "Tax_A1+Data[A1]+#REF!+#N/A");
    EXPECT_EQ(moved("IF(TRUE,{1,2;\"A1\",3},A1%)", 1, 1), "IF(TRUE,{1,2;\"A1\",3},B2%)");
}

TEST(ShownFormula, DropsThePrefixesOfFiles) {
    EXPECT_EQ(moved("_xlfn.XLOOKUP(A1,B:B,_xlfn._xlws.SORT(C:C))", 0, 0), "XLOOKUP(A1,B:B,SORT(C:C))");
    EXPECT_EQ(moved("_xlfn.BYROW(A1:B2,_xleta.SUM)", 0, 0), "BYROW(A1:B2,SUM)");
    EXPECT_EQ(moved("_xlfn.LAMBDA(_xlpm.a1,_xlpm.a1*(2+3))(5)", 0, 0), "LAMBDA(a1,a1*(2+3))(5)");
    EXPECT_EQ(moved("SUM(_xlfn.ANCHORARRAY(A1))+_xlfn.SINGLE(B1:B9)*(2)", 1, 0), "SUM(A2#)+@B2:B10*(2)");
    EXPECT_EQ(moved("\"_xlfn.\"&'_xlfn.'!A1", 0, 0), "\"_xlfn.\"&'_xlfn.'!A1");
}

TEST(ShownFormula, WritesColumnsOfTablesShort) {
    EXPECT_EQ(shownFormula("T[[#This Row],[Unit price]]*T[[#This Row],[n]]+SUM(T[n])", 0, 0, ""),
              "T[@[Unit price]]*T[@n]+SUM(T[n])");
    EXPECT_EQ(shownFormula("T[[#This Row],[a]:[b]]*t[[#This Row],[n]]+SUM(T[n],U[n])", 0, 0, "T"),
              "[@[a]:[b]]*[@n]+SUM([n],U[n])");
}

TEST(ShownFormula, SurvivesBrokenText) {
    EXPECT_EQ(moved("\"open", 1, 1), "\"open");
    EXPECT_EQ(moved("'open", 1, 1), "'open");
    EXPECT_EQ(moved("a[b", 1, 1), "a[b");
    EXPECT_EQ(moved(")(", 1, 1), ")(");
    EXPECT_EQ(moved("T[[#This Row],]]", 0, 0), "T[[#This Row],]]");
    EXPECT_EQ(moved("", 1, 1), "");
}

}  // namespace
}  // namespace quorva::workbook
