#include "frontend/reports/report_xlsx_sheets.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frontend/reports/model_terms.h"
#include "frontend/reports/settings_text.h"
#include "frontend/text/number_text.h"

namespace quorva::frontend {

namespace {
constexpr lxw_color_t blue = 0x2E75B6, orange = 0xD9772B, grey = 0x7F7F7F;
constexpr int chartRows = 18;  ///< rows of cells that a chart covers

void colourBars(lxw_chart_series* series, lxw_color_t colour) {
    lxw_chart_fill fill{};
    fill.color = colour;
    chart_series_set_fill(series, &fill);
}

void colourLine(lxw_chart_series* series, lxw_color_t colour, bool dashed = false) {
    lxw_chart_line line{};
    line.color = colour;
    line.width = 1.75f;
    line.dash_type = static_cast<std::uint8_t>(dashed ? LXW_CHART_LINE_DASH_DASH : LXW_CHART_LINE_DASH_SOLID);
    chart_series_set_line(series, &line);
}

/// The value axis around what the lines show, not from 0: it is the slopes that count.
void fitValueAxis(lxw_chart* chart, const Tornado& tornado) {
    double least = std::numeric_limits<double>::infinity();
    double largest = -least;
    for (const TornadoInput& input : tornado.inputs) {
        for (const double value : input.values) {
            if (std::isfinite(value)) {
                least = std::min(least, value);
                largest = std::max(largest, value);
            }
        }
    }
    if (least < largest) {
        const double step = std::pow(10.0, std::floor(std::log10(largest - least)));
        chart_axis_set_min(chart->y_axis, std::floor(least / step) * step);
        chart_axis_set_max(chart->y_axis, std::ceil(largest / step) * step);
    }
}

void writeStatistics(XlsxSheet& sheet, const RunResults& results) {
    std::vector<std::string> titles{
        "Field",    "Kind",     "Count",           "Errors", "Mean", "Standard error", "Standard deviation",
        "Variance", "Skewness", "Excess kurtosis", "Minimum"};
    for (const int percentile : reportedPercentiles) {
        titles.push_back("P" + std::to_string(percentile));
    }
    titles.insert(titles.end(), {"Maximum", "Interval lower", "Interval upper"});
    sheet.header(0, 0, titles, 2);
    for (std::size_t i = 0; i < results.summary.size(); ++i) {
        const Summary& summary = results.summary[i];
        const int row = static_cast<int>(i) + 1;
        sheet.text(row, 0, summary.name);
        sheet.text(row, 1, std::string(kindName(summary.kind)));
        sheet.number(row, 2, static_cast<double>(summary.count), sheet.formats().whole);
        sheet.number(row, 3, static_cast<double>(summary.errors), sheet.formats().whole);
        std::vector<double> values{summary.mean,     summary.standardError, summary.stdev,  summary.variance,
                                   summary.skewness, summary.kurtosis,      summary.minimum};
        values.insert(values.end(), summary.percentiles.begin(), summary.percentiles.end());
        values.insert(values.end(), {summary.maximum, results.intervals[i].lower, results.intervals[i].upper});
        int column = 4;
        for (const double value : values) {
            sheet.number(row, column++, value);
        }
    }
}
}  // namespace

void writeResultsSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    sheet.printWhole(2);
    sheet.width(1, 24, 18);
    sheet.freeze(1, 1);
    writeStatistics(sheet, results);
    int row = static_cast<int>(results.summary.size()) + 3;
    for (const ResultCharts& charts : results.charts) {
        const Histogram& histogram = charts.histogram;
        if (histogram.counts.empty()) {
            continue;
        }
        sheet.text(row++, 0, charts.name, sheet.formats().title);
        const int head = row++;
        sheet.header(head, 0, {"Class", "From", "To", "Frequency", "Cumulative share"});
        const int first = row;
        for (std::size_t i = 0; i < histogram.counts.size(); ++i, ++row) {
            const double from = histogram.edges[i], to = histogram.edges[i + 1];
            sheet.text(row, 0, readableNumber((from + to) / 2, 4));
            sheet.number(row, 1, from);
            sheet.number(row, 2, to);
            sheet.number(row, 3, static_cast<double>(histogram.counts[i]), sheet.formats().whole);
            sheet.number(row, 4, histogram.cumulative[i], sheet.formats().percent);
        }
        lxw_chart* chart = book.chart(LXW_CHART_COLUMN, "Histogram of " + charts.name, "Class middle", "Iterations");
        colourBars(XlsxBook::series(chart, sheet.range(first, row - 1, 0), sheet.range(first, row - 1, 3), head, 3),
                   blue);
        chart_set_series_gap(chart, 0);
        colourLine(XlsxBook::series(chart, sheet.range(first, row - 1, 0), sheet.range(first, row - 1, 4), head, 4),
                   orange);
        book.lineOver();
        sheet.chart(head, 6, chart);
        row = std::max(row, head + chartRows) + 1;
    }
}

void writeSensitivitySheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    sheet.printWhole();
    sheet.width(1, 3, 16);
    int row = 0;
    for (const Sensitivity& sensitivity : results.sensitivity) {
        sheet.text(row++, 0, sensitivity.result, sheet.formats().title);
        const int head = row++;
        sheet.header(head, 0, {"Input", "Correlation", "Contribution"});
        const int first = row;
        for (const SensitivityInput& input : sensitivity.inputs) {
            sheet.text(row, 0, input.name);
            sheet.number(row, 1, input.correlation);
            sheet.number(row++, 2, input.contribution, sheet.formats().percent);
        }
        const int last = std::min(row - 1, first + 14);
        lxw_chart* chart =
            book.barChart("Sensitivity of " + sensitivity.result, "Share of the explained variation (sign: direction)");
        colourBars(XlsxBook::series(chart, sheet.range(first, last, 0), sheet.range(first, last, 2), head, 2), blue);
        chart_axis_set_num_format(chart->x_axis, "0%");
        chart_legend_set_position(chart, LXW_CHART_LEGEND_NONE);
        sheet.chart(head, 4, chart);
        row = std::max(row, head + chartRows) + 1;
    }
}

void writeTornadoSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    sheet.printWhole();
    sheet.width(1, 6, 16);
    if (results.tornado.empty()) {
        sheet.text(0, 0, "No tornado analysis was asked for (--tornado).");
    }
    int row = 0;
    for (const Tornado& tornado : results.tornado) {
        sheet.text(row, 0, tornado.result, sheet.formats().title);
        sheet.text(row, 2, "base");
        sheet.number(row++, 3, tornado.base);
        const int head = row++;
        sheet.header(head, 0, {"Input", "Low", "High", "Swing", "From the base", "Below the base", "Above the base"});
        const int first = row;
        for (const TornadoInput& input : tornado.inputs) {
            // A bar covers the values from low to high; it starts away from the base when they are all on one side.
            const double low = input.low - tornado.base, high = input.high - tornado.base;
            const double start = high < 0 ? high : low > 0 ? low : 0;
            sheet.text(row, 0, input.name);
            sheet.number(row, 1, input.low);
            sheet.number(row, 2, input.high);
            sheet.number(row, 3, input.swing);
            sheet.number(row, 4, std::isnan(low) ? low : start);
            sheet.number(row, 5, low < 0 ? low - std::min(start, 0.0) : low - low);
            sheet.number(row++, 6, high > 0 ? high - std::max(start, 0.0) : high - high);
        }
        const int last = std::min(row - 1, first + 14);
        lxw_chart* chart = book.barChart("Tornado of " + tornado.result, "Change from the base value", true);
        const auto bars = [&](int column) {
            return XlsxBook::series(chart, sheet.range(first, last, 0), sheet.range(first, last, column), head, column);
        };
        lxw_chart_fill invisible{};
        invisible.none = LXW_TRUE;
        chart_series_set_fill(bars(4), &invisible);
        colourBars(bars(5), orange);
        colourBars(bars(6), blue);
        // Left of 0 is below the base. A legend would name the unseen part: programs differ in which entry they leave
        // out.
        chart_legend_set_position(chart, LXW_CHART_LEGEND_NONE);
        chart_set_series_overlap(chart, 100);
        chart_set_series_gap(chart, 40);
        sheet.chart(head, 8, chart);
        row = std::max(row, head + chartRows) + 1;
    }
}

void writeSpiderSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results) {
    constexpr std::size_t mostLines = 8;
    sheet.width(0, 0, 26);
    sheet.printWhole();
    sheet.width(1, 20, 14);
    if (results.tornado.empty()) {
        sheet.text(0, 0, "No spider analysis was asked for (--tornado).");
    }
    int row = 0;
    for (const Tornado& tornado : results.tornado) {
        sheet.text(row++, 0, tornado.result, sheet.formats().title);
        const int head = row++;
        std::vector<std::string> titles{"Point"};
        for (const TornadoInput& input : tornado.inputs) {
            titles.push_back(input.name);
        }
        sheet.header(head, 0, titles);
        const int first = row;
        for (std::size_t j = 0; j < tornado.points.size(); ++j, ++row) {
            sheet.text(row, 0, tornado.points[j]);
            for (std::size_t i = 0; i < tornado.inputs.size(); ++i) {
                sheet.number(row, static_cast<int>(i) + 1, tornado.inputs[i].values[j]);
            }
        }
        lxw_chart* chart = book.chart(LXW_CHART_LINE, "Spider of " + tornado.result, "Position of the input", "Result");
        for (std::size_t i = 0; i < std::min(mostLines, tornado.inputs.size()); ++i) {
            const int column = static_cast<int>(i) + 1;
            XlsxBook::series(chart, sheet.range(first, row - 1, 0), sheet.range(first, row - 1, column), head, column);
        }
        fitValueAxis(chart, tornado);
        sheet.chart(row + 1, 0, chart);
        row += chartRows + 2;
    }
}

void writeConvergenceSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    sheet.printWhole();
    sheet.width(1, 4, 16);
    int row = 0;
    if (results.convergence) {
        const Convergence& convergence = *results.convergence;
        sheet.text(row++, 0, convergenceText(convergence));
        sheet.header(row++, 0, {"Result", "Iteration", "Lower", "Upper", "Movement, %"});
        for (std::size_t i = 0; i < convergence.watched.size(); ++i) {
            for (const ConvergenceCheck& check : convergence.checks) {
                const ConvergenceBound& bound = check.bounds[i];
                sheet.text(row, 0, bound.name);
                sheet.number(row, 1, check.iteration, sheet.formats().whole);
                sheet.number(row, 2, bound.lower);
                sheet.number(row, 3, bound.upper);
                sheet.number(row++, 4, bound.movement);
            }
        }
        ++row;
    }
    for (const ResultCharts& charts : results.charts) {
        const Trace& trace = charts.trace;
        sheet.text(row++, 0, charts.name, sheet.formats().title);
        const int head = row++;
        sheet.header(head, 0, {"Iteration", "Mean", "95 % lower", "95 % upper"});
        const int first = row;
        for (std::size_t i = 0; i < trace.iterations.size(); ++i, ++row) {
            sheet.number(row, 0, trace.iterations[i], sheet.formats().whole);
            sheet.number(row, 1, trace.mean[i]);
            sheet.number(row, 2, trace.lower[i]);
            sheet.number(row, 3, trace.upper[i]);
        }
        if (row > first) {
            lxw_chart* chart = book.chart(LXW_CHART_LINE, "Running mean of " + charts.name, "Iteration", "Mean");
            for (int column = 1; column <= 3; ++column) {
                colourLine(XlsxBook::series(chart, sheet.range(first, row - 1, 0), sheet.range(first, row - 1, column),
                                            head, column),
                           column == 1 ? blue : grey, column > 1);
            }
            sheet.chart(head, 6, chart);
        }
        row = std::max(row, head + chartRows) + 1;
    }
}

}  // namespace quorva::frontend
