#include "frontend/reports/xlsx_book.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "frontend/reports/xlsx_combination.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/input_file.h"

namespace quorva::frontend {

namespace {
constexpr std::size_t longestText = 32767;
constexpr lxw_color_t headerColour = 0x1F4E79;

/// A cell holds so many characters; as many bytes of UTF-8 are never more.
std::string limited(const std::string& text) {
    if (text.size() <= longestText) {
        return text;
    }
    std::size_t end = longestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

std::string temporaryName() {
    std::string name = (std::filesystem::temp_directory_path() / "quorva-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) {
        throw CommandFailure(ExitStatus::Internal, "no temporary file can be made for the .xlsx report");
    }
    close(descriptor);
    return name;
}

/// The format for six significant digits: no column is too narrow for it, and whole numbers have no decimal point.
lxw_format* formatFor(double value, const XlsxFormats& formats) {
    const double size = std::fabs(value);
    if (size != 0 && (size >= 1e10 || size < 1e-4)) {
        return formats.scientific;
    }
    const int decimals = size == std::floor(size) ? 0 : 5 - static_cast<int>(std::floor(std::log10(size)));
    return formats.decimals[static_cast<std::size_t>(std::clamp(decimals, 0, 9))];
}
}  // namespace

void XlsxSheet::text(int row, int column, const std::string& text, lxw_format* format) {
    worksheet_write_string(sheet_, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), limited(text).c_str(),
                           format);
}

void XlsxSheet::number(int row, int column, double value, lxw_format* format) {
    if (std::isfinite(value)) {
        worksheet_write_number(sheet_, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), value,
                               format ? format : formatFor(value, *formats_));
    }
}

void XlsxSheet::header(int row, int column, const std::vector<std::string>& titles, int textColumns) {
    for (const std::string& title : titles) {
        text(row, column++, title, textColumns-- > 0 ? formats_->header : formats_->numberHeader);
    }
}

void XlsxSheet::width(int first, int last, double characters) {
    worksheet_set_column(sheet_, static_cast<lxw_col_t>(first), static_cast<lxw_col_t>(last), characters, nullptr);
}

void XlsxSheet::freeze(int rows, int columns) {
    worksheet_freeze_panes(sheet_, static_cast<lxw_row_t>(rows), static_cast<lxw_col_t>(columns));
}

void XlsxSheet::printWhole(int pages) {
    worksheet_set_landscape(sheet_);
    worksheet_fit_to_pages(sheet_, static_cast<std::uint16_t>(pages), 0);
    if (pages > 1) {
        worksheet_repeat_columns(sheet_, 0, 0);
    }
}

void XlsxSheet::chart(int row, int column, lxw_chart* chart, int width, int height) {
    lxw_chart_options options{};
    options.x_scale = width / 480.0;
    options.y_scale = height / 288.0;
    worksheet_insert_chart_opt(sheet_, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), chart, &options);
}

XlsxBook::XlsxBook() : file_(temporaryName()), book_(workbook_new(file_.c_str())) {
    if (!book_) {
        throw CommandFailure(ExitStatus::Internal, "the .xlsx report could not be started");
    }
    // The same run gives the same bytes, whenever it is written.
    lxw_doc_properties properties{};
    char title[] = "Simulation report", application[] = "quorva";
    properties.title = title;
    properties.author = application;
    properties.created = 315532800;
    workbook_set_properties(book_, &properties);
    const auto format = [&](const char* numberFormat) {
        lxw_format* made = workbook_add_format(book_);
        if (numberFormat) {
            format_set_num_format(made, numberFormat);
        }
        return made;
    };
    formats_.title = format(nullptr);
    formats_.header = format(nullptr);
    formats_.numberHeader = format(nullptr);
    std::string pattern = "#,##0";
    for (lxw_format*& made : formats_.decimals) {
        made = format(pattern.c_str());
        pattern += pattern.ends_with("#,##0") ? ".0" : "0";
    }
    formats_.scientific = format("0.00000E+00");
    formats_.whole = format("#,##0");
    formats_.percent = format("0.0%");
    formats_.text = format(nullptr);
    formats_.leftNumber = format(nullptr);
    format_set_align(formats_.leftNumber, LXW_ALIGN_LEFT);
    formats_.good = format(nullptr);
    formats_.bad = format(nullptr);
    format_set_bold(formats_.title);
    format_set_font_size(formats_.title, 14);
    for (lxw_format* header : {formats_.header, formats_.numberHeader}) {
        format_set_bold(header);
        format_set_bg_color(header, headerColour);
        format_set_font_color(header, LXW_COLOR_WHITE);
    }
    format_set_align(formats_.numberHeader, LXW_ALIGN_RIGHT);
    format_set_font_color(formats_.good, 0x1E6B34);
    format_set_font_color(formats_.bad, 0xB00020);
    format_set_bold(formats_.bad);
}

XlsxBook::~XlsxBook() {
    if (book_) {
        lxw_workbook_free(book_);
    }
    unlink(file_.c_str());
}

XlsxSheet XlsxBook::sheet(const char* name) {
    lxw_worksheet* sheet = workbook_add_worksheet(book_, name);
    // Names and the labels of charts may look like numbers; they are texts on purpose.
    worksheet_ignore_errors(sheet, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576");
    return {sheet, name, formats_};
}

lxw_chart* XlsxBook::chart(lxw_chart_type type, const std::string& title, const std::string& xTitle,
                           const std::string& yTitle) {
    ++charts_;
    lxw_chart* chart = workbook_add_chart(book_, static_cast<std::uint8_t>(type));
    chart_title_set_name(chart, title.c_str());
    lxw_chart_font font{};
    font.size = 12;
    font.bold = LXW_TRUE;
    chart_title_set_name_font(chart, &font);
    if (!xTitle.empty()) {
        chart_axis_set_name(chart->x_axis, xTitle.c_str());
    }
    if (!yTitle.empty()) {
        chart_axis_set_name(chart->y_axis, yTitle.c_str());
    }
    if (type == LXW_CHART_LINE) {
        // Below the plot also where values are negative, not among the lines.
        chart_axis_set_label_position(chart->x_axis, LXW_CHART_AXIS_LABEL_POSITION_LOW);
    }
    chart_legend_set_position(chart, LXW_CHART_LEGEND_BOTTOM);
    return chart;
}

lxw_chart* XlsxBook::barChart(const std::string& title, const std::string& valueTitle, bool stacked) {
    lxw_chart* chart = this->chart(stacked ? LXW_CHART_BAR_STACKED : LXW_CHART_BAR, title, valueTitle, "");
    lxw_chart_axis* categories = chart->y_axis;  // the writer's axes are those of the picture: y is the vertical one
    chart_axis_set_reverse(categories);
    chart_axis_set_crossing_max(categories);  // the values stay at the bottom
    chart_axis_set_label_position(categories, LXW_CHART_AXIS_LABEL_POSITION_LOW);
    return chart;
}

lxw_chart_series* XlsxBook::series(lxw_chart* chart, const XlsxRange& categories, const XlsxRange& values, int nameRow,
                                   int nameColumn) {
    lxw_chart_series* series = chart_add_series(chart, nullptr, nullptr);
    const auto row = [](int r) { return static_cast<lxw_row_t>(r); };
    const auto column = [](int c) { return static_cast<lxw_col_t>(c); };
    chart_series_set_categories(series, categories.sheet, row(categories.firstRow), column(categories.column),
                                row(categories.lastRow), column(categories.column));
    chart_series_set_values(series, values.sheet, row(values.firstRow), column(values.column), row(values.lastRow),
                            column(values.column));
    chart_series_set_name_range(series, values.sheet, row(nameRow), column(nameColumn));
    return series;
}

std::string XlsxBook::finish() {
    const lxw_error error = workbook_close(book_);
    book_ = nullptr;
    if (error != LXW_NO_ERROR) {
        throw CommandFailure(ExitStatus::Internal,
                             std::string("the .xlsx report could not be written: ") + lxw_strerror(error));
    }
    lineOverColumns(file_, combined_, "Cumulative share");
    return fileContents(file_);
}

}  // namespace quorva::frontend
