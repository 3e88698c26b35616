// A thin layer over the spreadsheet writer: cells that are never formulas, numbers that may be missing, native charts.
#pragma once

#include <array>
#include <string>
#include <vector>

#include <xlsxwriter.h>

namespace quorva::frontend {

struct XlsxFormats {
    lxw_format* title;
    lxw_format* header;
    lxw_format* numberHeader;  ///< above numbers, which stand at the right
    /// Numbers with as many decimals, for six significant digits; and those too large or too small for a column.
    std::array<lxw_format*, 10> decimals;
    lxw_format* scientific;
    lxw_format* whole;
    lxw_format* percent;
    lxw_format* text;
    lxw_format* leftNumber;  ///< among texts
    lxw_format* good;
    lxw_format* bad;
};

/// A block of cells of one sheet, for the series of a chart; rows and columns from 0, both ends included.
struct XlsxRange {
    const char* sheet;
    int firstRow, lastRow, column;
};

class XlsxSheet {
public:
    XlsxSheet(lxw_worksheet* sheet, const char* name, const XlsxFormats& formats)
        : sheet_(sheet), name_(name), formats_(&formats) {}

    void text(int row, int column, const std::string& text, lxw_format* format = nullptr);
    /// Nothing when the number does not exist. Without a format six significant digits are shown.
    void number(int row, int column, double value, lxw_format* format = nullptr);
    /// Titles of columns, of which the first `textColumns` hold texts and the others numbers.
    void header(int row, int column, const std::vector<std::string>& titles, int textColumns = 1);
    void width(int first, int last, double characters);
    void freeze(int rows, int columns);
    /// Prints on landscape pages, so many for the sheet's width.
    void printWhole(int pages = 1);
    void chart(int row, int column, lxw_chart* chart, int width = 620, int height = 320);

    XlsxRange range(int firstRow, int lastRow, int column) const { return {name_, firstRow, lastRow, column}; }
    lxw_worksheet* get() const { return sheet_; }
    const XlsxFormats& formats() const { return *formats_; }

private:
    lxw_worksheet* sheet_;
    const char* name_;
    const XlsxFormats* formats_;
};

/// A workbook in the making, in a temporary file.
class XlsxBook {
public:
    XlsxBook();
    XlsxBook(const XlsxBook&) = delete;
    XlsxBook& operator=(const XlsxBook&) = delete;
    ~XlsxBook();

    XlsxSheet sheet(const char* name);
    /// Charts are put on their sheets in the order in which they are made here: their files are numbered that way.
    lxw_chart* chart(lxw_chart_type type, const std::string& title, const std::string& xTitle,
                     const std::string& yTitle);
    /// Horizontal bars, the first category on top and all names left of the bars. Stacked ones stand one after another.
    lxw_chart* barChart(const std::string& title, const std::string& valueTitle, bool stacked = false);
    /// A series whose name is a cell's text, so that no name is taken for a formula.
    static lxw_chart_series* series(lxw_chart* chart, const XlsxRange& categories, const XlsxRange& values, int nameRow,
                                    int nameColumn);
    /// Shows the last series of the column chart made last as a line on an axis of its own, from 0 to 1.
    void lineOver() { combined_.push_back(charts_); }
    /// The finished file's bytes.
    std::string finish();

private:
    std::string file_;
    lxw_workbook* book_;
    XlsxFormats formats_{};
    int charts_ = 0;
    std::vector<int> combined_;  ///< numbers from 1
};

}  // namespace quorva::frontend
