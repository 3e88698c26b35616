// Workbook files as programs write them, and as they should not be.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "package_maker.h"
#include "workbook/file/book_reader.h"
#include "workbook/recalculation/book.h"
#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {
namespace {

const std::string relationType = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

Parts minimal(const std::string& rows) {
    return {
        {"[Content_Types].xml", "<Types/>"},
        {"_rels/.rels", "<Relationships><Relationship Id=\"r1\" Type=\"" + relationType +
                            "officeDocument\" Target=\"/xl/workbook.xml\"/></Relationships>"},
        {"xl/workbook.xml",
         "<workbook xmlns:r=\"r\"><sheets><sheet name=\"Data\" sheetId=\"1\" r:id=\"s1\"/></sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels",
         "<Relationships><Relationship Id=\"s1\" Type=\"" + relationType +
             "worksheet\" Target=\"/xl/worksheets/sheet1.xml\"/><Relationship Id=\"s2\" Type=\"" + relationType +
             "sharedStrings\" Target=\"sharedStrings.xml\"/></Relationships>"},
        {"xl/sharedStrings.xml", "<sst><si><t>plain</t></si><si><r><t>rich</t></r><r><t> text</t></r></si></sst>"},
        {"xl/worksheets/sheet1.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"},
    };
}

std::unique_ptr<RawBook> readRows(const std::string& rows) { return readPackage(zipped(minimal(rows)), "Book.xlsx"); }

std::string refusal(const std::string& bytes) {
    try {
        readPackage(bytes, "Book.xlsx");
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unreadable);
        return failure.what();
    }
    return "";
}

std::string refusalOfRows(const std::string& rows) { return refusal(zipped(minimal(rows))); }

TEST(Reader, ReadsEveryTypeOfCell) {
    const auto book = readRows(
        "<row r=\"1\"><c r=\"A1\"><v>1.5</v></c><c r=\"B1\" t=\"s\"><v>1</v></c><c r=\"C1\" t=\"b\"><v>1</v></c>"
        "<c r=\"D1\" t=\"e\"><v>#N/A</v></c><c r=\"E1\" t=\"str\"><f>\"a\"</f><v>a</v></c>"
        "<c r=\"F1\" t=\"inlineStr\"><is><t>in</t><r><t>line</t></r></is></c><c r=\"G1\" t=\"d\"><v>2020-01-31</v></c>"
        "<c r=\"H1\"><f>A1</f><v/></c></row>");
    const auto& cells = book->sheets[0].cells;
    ASSERT_EQ(cells.size(), 8u);
    EXPECT_EQ(cells[0].value.number(), 1.5);
    EXPECT_EQ(cells[1].value.text(), "rich text");
    EXPECT_TRUE(cells[2].value.boolean());
    EXPECT_EQ(cells[3].value.error(), ErrorCode::NA);
    EXPECT_EQ(cells[4].value.text(), "a");
    EXPECT_EQ(cells[5].value.text(), "inline");
    EXPECT_EQ(cells[6].value.number(), 43861);
    EXPECT_FALSE(cells[7].hasValue);
    EXPECT_EQ(cells[7].formula, "A1");
}

TEST(Reader, TakesSavedErrorsThatTheFormatCannotExpressForNone) {
    const auto book = readRows(
        "<row r=\"1\"><c r=\"A1\" t=\"e\" vm=\"1\"><f>B1:B3</f><v>#VALUE!</v></c><c r=\"B1\" t=\"e\"><f>1</f>"
        "<v>#BUSY!</v></c><c r=\"C1\" t=\"e\"><f>\"a\"+1</f><v>#VALUE!</v></c></row>");
    const auto& cells = book->sheets[0].cells;
    ASSERT_EQ(cells.size(), 3u);
    EXPECT_FALSE(cells[0].hasValue);
    EXPECT_FALSE(cells[1].hasValue);
    EXPECT_TRUE(cells[2].hasValue);
}

TEST(Reader, CountsCellsAndRowsWithoutAPosition) {
    const auto book = readRows("<row><c><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>");
    const auto& cells = book->sheets[0].cells;
    ASSERT_EQ(cells.size(), 3u);
    EXPECT_EQ(cells[1].column, 1);
    EXPECT_EQ(cells[2].row, 1);
}

TEST(Reader, MovesSharedFormulasToTheirCells) {
    std::ofstream("shared_formula.xlsx", std::ios::binary)
        << zipped(minimal("<row r=\"1\"><c r=\"A1\"><v>1</v></c><c r=\"B1\"><f t=\"shared\" ref=\"B1:B2\" "
                          "si=\"0\">A1*$A$1+1</f></c></row>"
                          "<row r=\"2\"><c r=\"A2\"><v>5</v></c><c r=\"B2\"><f t=\"shared\" si=\"0\"/></c></row>"));
    Book book("shared_formula.xlsx");
    book.recalculateAll();
    EXPECT_EQ(book.value({0, 1, 1}).number, 6);
    std::filesystem::remove("shared_formula.xlsx");
}

/// A book with precision as displayed whose cells have the formats of these styles, and its cell B1.
double displayed(const std::string& formats, const std::string& rows) {
    Parts parts = minimal(rows);
    parts["xl/workbook.xml"] =
        "<workbook xmlns:r=\"r\"><sheets><sheet name=\"Data\" sheetId=\"1\" r:id=\"s1\"/></sheets>"
        "<calcPr fullPrecision=\"0\"/></workbook>";
    parts["xl/_rels/workbook.xml.rels"] = "<Relationships><Relationship Id=\"s1\" Type=\"" + relationType +
                                          "worksheet\" Target=\"/xl/worksheets/sheet1.xml\"/><Relationship "
                                          "Id=\"s3\" Type=\"" +
                                          relationType + "styles\" Target=\"styles.xml\"/></Relationships>";
    parts["xl/styles.xml"] = "<styleSheet>" + formats + "</styleSheet>";
    std::ofstream("displayed.xlsx", std::ios::binary) << zipped(parts);
    Book book("displayed.xlsx");
    std::filesystem::remove("displayed.xlsx");
    book.recalculateAll();
    const double whole = book.value({0, 0, 1}).number;
    book.set({0, 0, 0}, book.value({0, 0, 0}));
    book.recalculate();
    EXPECT_EQ(book.value({0, 0, 1}).number, whole);
    return whole;
}

TEST(Reader, RoundsFormulasToWhatTheirCellsShowWithPrecisionAsDisplayed) {
    const std::string formats =
        "<numFmts><numFmt numFmtId=\"164\" formatCode=\"0.0,\"/></numFmts><cellXfs><xf numFmtId=\"0\"/><xf "
        "numFmtId=\"2\"/><xf numFmtId=\"9\"/><xf numFmtId=\"164\"/><xf numFmtId=\"14\"/><xf "
        "numFmtId=\"11\"/></cellXfs>";
    const auto shown = [&](const std::string& style, const std::string& formula) {
        return displayed(formats, "<row r=\"1\"><c r=\"A1\"><v>12345.6789</v></c><c r=\"B1\" s=\"" + style + "\"><f>" +
                                      formula + "</f></c></row>");
    };
    EXPECT_EQ(shown("0", "A1/3"), 12345.6789 / 3);
    EXPECT_EQ(shown("1", "A1"), 12345.68);
    EXPECT_EQ(shown("1", "-A1"), -12345.68);
    EXPECT_EQ(shown("1", "ROUND(A1,3)*0"), 0);
    EXPECT_EQ(shown("2", "A1/10000"), 1.23);
    EXPECT_EQ(shown("3", "A1"), 12300);
    EXPECT_EQ(shown("4", "A1"), 12345.6789);
    EXPECT_EQ(shown("5", "A1"), 12300);
    // What depends on it sees the rounded number.
    EXPECT_EQ(displayed(formats,
                        "<row r=\"1\"><c r=\"A1\"><v>1.005</v></c><c r=\"B1\"><f>C1*1000</f></c><c r=\"C1\" "
                        "s=\"1\"><f>A1+0.001</f></c></row>"),
              1010);
}

/// What the live part of a book with these rows cannot compute.
std::string liveRefusal(const std::string& rows) {
    Recalculation recalculation(readRows(rows));
    try {
        recalculation.recalculate();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind, Failure::Kind::Unsupported);
        return failure.what();
    }
    return "";
}

TEST(Reader, GivesWhatIfTablesTheCellsTheyDependOn) {
    const std::string table =
        "<row r=\"2\"><c r=\"A2\"><v>3</v></c><c r=\"B2\"><f t=\"dataTable\" ref=\"B2:B3\" dt2D=\"0\" "
        "dtr=\"0\" r1=\"D1\"/><v>6</v></c></row><row r=\"3\"><c r=\"B3\"><v>7</v></c></row>";
    const std::string reader = "<row r=\"4\"><c r=\"A4\"><f>B3+1</f><v>8</v></c></row>";
    const auto book = readRows(table + reader);
    EXPECT_EQ(book->sheets[0].cells.at(1).formula, "TABLE(A1:B1,A2:A3,D1)");
    // Where nothing that it depends on changes, the saved values stand.
    EXPECT_EQ(liveRefusal("<row r=\"1\"><c r=\"E1\"><f>RAND()</f><v>1</v></c></row>" + table + reader), "");
    EXPECT_EQ(liveRefusal("<row r=\"1\"><c r=\"D1\"><f>RAND()</f><v>1</v></c></row>" + table + reader),
              "Cell Data!B2 uses a what-if table, which is not supported.");
}

TEST(Reader, DoesNotTrustTheSavedValueOfAFormulaItCannotReadWhereSomethingChanges) {
    const std::string unread = "<c r=\"B1\"><f>D1+{x}</f><v>1</v></c>";
    EXPECT_EQ(liveRefusal("<row r=\"1\">" + unread + "<c r=\"C1\"><f>B1+1</f></c><c r=\"D1\"><v>1</v></c></row>"), "");
    EXPECT_EQ(liveRefusal("<row r=\"1\">" + unread + "<c r=\"D1\"><f>RAND()</f><v>1</v></c></row>"),
              "Cell Data!B1 uses a formula that cannot be read at its character 6 (an array constant holds something "
              "else than constants), which is not supported.");
}

TEST(Reader, TakesRowsThatTheFilterOfATableHidesForFiltered) {
    Parts parts = minimal(
        "<row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>n</t></is></c></row><row r=\"2\"><c "
        "r=\"A2\"><v>1</v></c></row>"
        "<row r=\"3\" hidden=\"1\"><c r=\"A3\"><v>2</v></c></row><row r=\"4\" hidden=\"1\"><c "
        "r=\"A4\"><v>4</v></c></row>");
    parts["xl/worksheets/_rels/sheet1.xml.rels"] = "<Relationships><Relationship Id=\"t1\" Type=\"" + relationType +
                                                   "table\" Target=\"../tables/table1.xml\"/></Relationships>";
    parts["xl/tables/table1.xml"] =
        "<table displayName=\"T\" ref=\"A1:A3\"><autoFilter ref=\"A1:A3\"><filterColumn colId=\"0\"/></autoFilter>"
        "<tableColumns><tableColumn name=\"n\"/></tableColumns></table>";
    const auto book = readPackage(zipped(parts), "Book.xlsx");
    const RawSheet& sheet = book->sheets[0];
    EXPECT_EQ(sheet.hiddenRows, (std::vector<bool>{false, false, true, true}));
    EXPECT_EQ(sheet.filteredRows, (std::vector<bool>{false, false, true, false}));
}

TEST(Reader, AcceptsPrefixedElementsAndAnyCaseOfPartNames) {
    Parts parts = minimal("");
    parts["xl/worksheets/sheet1.xml"] =
        "<x:worksheet xmlns:x=\"u\"><x:sheetData><x:row><x:c><x:v>4</x:v></x:c></x:row></x:sheetData></x:worksheet>";
    parts["XL/SharedStrings.XML"] = parts["xl/sharedStrings.xml"];
    parts.erase("xl/sharedStrings.xml");
    EXPECT_EQ(readPackage(zipped(parts), "Book.xlsx")->sheets[0].cells.at(0).value.number(), 4);
}

TEST(Reader, RefusesWhatIsNoWorkbookWithOneSentence) {
    EXPECT_EQ(refusal(""), "Book.xlsx is empty.");
    EXPECT_EQ(refusal("name,value\n"), "Book.xlsx is not a workbook: it is not a zip archive.");
    EXPECT_EQ(refusal(std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") + "rest"),
              "Book.xlsx is in the old binary format (.xls); save it as .xlsx.");
    EXPECT_EQ(refusal(zipped({{"readme.txt", "hello"}})),
              "Book.xlsx is a zip archive but not a workbook: [Content_Types].xml is missing.");
    const std::string whole = zipped(minimal("<row><c><v>1</v></c></row>"));
    EXPECT_EQ(refusal(whole.substr(0, whole.size() / 2)), "Book.xlsx is not a complete zip archive.");
}

TEST(Reader, NamesThePartAndCellOfBadContent) {
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"B1\" t=\"s\"><v>99</v></c></row>"),
              "Book.xlsx, xl/worksheets/sheet1.xml: cell B1: the shared text 99 does not exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"A99999999\"><v>1</v></c></row>"),
              "Book.xlsx, xl/worksheets/sheet1.xml: a cell named \"A99999999\" cannot exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"2000000\"/>"),
              "Book.xlsx, xl/worksheets/sheet1.xml: a row numbered \"2000000\" cannot exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"A1\"><v>abc</v></c></row>"),
              "Book.xlsx, xl/worksheets/sheet1.xml: cell A1: the number \"abc\" cannot be read.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"A1\"><f t=\"shared\" si=\"3\"/></c></row>"),
              "Book.xlsx, xl/worksheets/sheet1.xml: cell A1: the shared formula 3 does not exist.");
    EXPECT_NE(refusalOfRows("<row r=\"1\">").find("xl/worksheets/sheet1.xml: malformed XML at byte"),
              std::string::npos);
    Parts parts = minimal("");
    parts.erase("xl/worksheets/sheet1.xml");
    EXPECT_EQ(refusal(zipped(parts)), "Book.xlsx, xl/worksheets/sheet1.xml: this part is missing.");
}

/// A book with a table in A1:B3 of its sheet, whose part has these attributes and columns.
Parts withTable(const std::string& attributes, const std::string& columns = "<tableColumn name=\"a\"/>") {
    Parts parts = minimal("");
    parts["xl/worksheets/_rels/sheet1.xml.rels"] = "<Relationships><Relationship Id=\"t1\" Type=\"" + relationType +
                                                   "table\" Target=\"/xl/tables/table1.xml\"/></Relationships>";
    parts["xl/tables/table1.xml"] =
        "<table displayName=\"Sales\" " + attributes + "><tableColumns>" + columns + "</tableColumns></table>";
    return parts;
}

TEST(Reader, RefusesNumbersOfTablesThatDoNotFitTheSheet) {
    const auto refusalOf = [](const std::string& attributes, const std::string& columns = {}) {
        return refusal(zipped(withTable(attributes, columns)));
    };
    EXPECT_EQ(refusalOf("ref=\"A1:B3\" headerRowCount=\"1\" totalsRowCount=\"1\""), "");
    const std::string part = "Book.xlsx, xl/tables/table1.xml: ";
    for (const char* rows : {
             "headerRowCount=\"2147483647\" totalsRowCount=\"2147483647\"",
             "headerRowCount=\"4294967296\"",
             "headerRowCount=\"-1\"",
             "headerRowCount=\"one\"",
             "headerRowCount=\"2\" totalsRowCount=\"2\"",
             "totalsRowCount=\"3\"",
         }) {
        EXPECT_EQ(refusalOf(std::string("ref=\"A1:B3\" ") + rows), part + "the table's rows do not fit its range.")
            << rows;
    }
    for (const char* range : {"A1:XFE3", "A1:B1048577", "A1:B2147483647", "B3:A1", "A0:B3"}) {
        EXPECT_EQ(refusalOf(std::string("ref=\"") + range + "\""), part + "the table's range cannot be read.") << range;
    }
    std::string columns;
    for (int i = 0; i < 3; ++i) {
        columns += "<tableColumn name=\"c" + std::to_string(i) + "\"/>";
    }
    EXPECT_EQ(refusalOf("ref=\"XFC1:XFD3\"", columns), part + "the table has more columns than its range.");
}

TEST(Reader, RefusesIndicesThatStandForNothing) {
    const std::string sheet = "Book.xlsx, xl/worksheets/sheet1.xml: ";
    EXPECT_EQ(refusalOfRows("<row r=\"2147483647\"/>"), sheet + "a row numbered \"2147483647\" cannot exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"B1\" t=\"s\"><v>2147483647</v></c></row>"),
              sheet + "cell B1: the shared text 2147483647 does not exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"B1\" t=\"s\"><v>0.5</v></c></row>"),
              sheet + "cell B1: the shared text 0.5 does not exist.");
    EXPECT_EQ(refusalOfRows("<row r=\"1\"><c r=\"A1\"><f t=\"shared\" si=\"4294967297\">1</f></c></row>"),
              sheet + "cell A1: a shared formula numbered \"4294967297\" cannot exist.");
    Parts parts = minimal("");
    parts["xl/workbook.xml"] =
        "<workbook xmlns:r=\"r\"><sheets><sheet name=\"Data\" sheetId=\"2147483647\" r:id=\"s1\"/></sheets>"
        "<definedNames><definedName name=\"Total\" localSheetId=\"2147483647\">Data!A1</definedName></definedNames>"
        "</workbook>";
    EXPECT_EQ(refusal(zipped(parts)),
              "Book.xlsx, xl/workbook.xml: the name Total belongs to a sheet \"2147483647\" that does not exist.");
}

TEST(Reader, RefusesSavedValuesOfASheetThatIsNotListed) {
    Parts parts = minimal("");
    parts["xl/workbook.xml"] =
        "<workbook xmlns:r=\"r\"><sheets><sheet name=\"Data\" sheetId=\"1\" r:id=\"s1\"/></sheets>"
        "<externalReferences><externalReference r:id=\"e1\"/></externalReferences></workbook>";
    parts["xl/_rels/workbook.xml.rels"] =
        "<Relationships><Relationship Id=\"s1\" Type=\"" + relationType +
        "worksheet\" Target=\"/xl/worksheets/sheet1.xml\"/><Relationship Id=\"e1\" Type=\"" + relationType +
        "externalLink\" Target=\"externalLinks/externalLink1.xml\"/></Relationships>";
    for (const char* index : {"1", "-1", "2147483647", "4294967296"}) {
        parts["xl/externalLinks/externalLink1.xml"] =
            std::string(
                "<externalLink><externalBook><sheetNames><sheetName val=\"Other\"/></sheetNames>"
                "<sheetDataSet><sheetData sheetId=\"") +
            index + "\"/></sheetDataSet></externalBook></externalLink>";
        EXPECT_EQ(refusal(zipped(parts)),
                  "Book.xlsx, xl/externalLinks/externalLink1.xml: saved values belong to a sheet that is not listed.")
            << index;
    }
}

TEST(Reader, RefusesEntityDeclarations) {
    Parts parts = minimal("");
    parts["xl/worksheets/sheet1.xml"] = "<!DOCTYPE x [<!ENTITY a \"aaaa\">]><worksheet><sheetData/></worksheet>";
    EXPECT_EQ(refusal(zipped(parts)),
              "Book.xlsx, xl/worksheets/sheet1.xml: it declares a document type, which workbooks do not have.");
}

TEST(Reader, RefusesAnArchiveThatExpandsMoreThanAThousandTimes) {
    Parts parts = minimal("");
    parts["xl/worksheets/sheet1.xml"] =
        "<worksheet><sheetData>" + std::string(40 << 20, ' ') + "</sheetData></worksheet>";
    EXPECT_EQ(refusal(zipped(parts)), "Book.xlsx expands more than 1000 times at xl/worksheets/sheet1.xml.");
}

TEST(Reader, KeepsAFormulaNestedTenThousandDeepAsUnsupported) {
    std::ofstream("deep.xlsx", std::ios::binary)
        << zipped(minimal("<row r=\"1\"><c r=\"A1\"><f>" + std::string(10000, '(') + "1" + std::string(10000, ')') +
                          "</f><v>1</v></c></row>"));
    Book book("deep.xlsx");
    book.recalculateAll();
    EXPECT_TRUE(book.formulas().at(0).unsupported);
    EXPECT_NE(book.formulas().at(0).why.find("nested too deeply"), std::string::npos);
    EXPECT_EQ(book.value({0, 0, 0}).number, 1);
    std::filesystem::remove("deep.xlsx");
}

TEST(Reader, ReadsXmlNestedTenThousandDeep) {
    std::string deep;
    for (int i = 0; i < 10000; ++i) {
        deep += "<x>";
    }
    for (int i = 0; i < 10000; ++i) {
        deep += "</x>";
    }
    EXPECT_EQ(readRows("<row><c><v>2</v></c></row>" + deep)->sheets[0].cells.size(), 1u);
}

TEST(Parser, ComputesALongChainOfOperators) {
    std::string chain = "1";
    for (int i = 0; i < 4000; ++i) {
        chain += "+1";
    }
    Book book = Book::fromText("A1: =" + chain + "\n");
    book.recalculateAll();
    EXPECT_EQ(book.value({0, 0, 0}).number, 4001);
}

}  // namespace
}  // namespace quorva::workbook
