#include "frontend/reports/report_xlsx.h"

#include "frontend/reports/model_terms.h"
#include "frontend/reports/report_xlsx_sheets.h"
#include "frontend/reports/settings_text.h"
#include "frontend/text/number_text.h"

namespace quorva::frontend {

namespace {
void titledNumber(XlsxSheet& sheet, int& row, const std::string& title, double value, lxw_format* format = nullptr) {
    sheet.text(row, 0, title, sheet.formats().text);
    sheet.number(row++, 1, value, format);
}

void writeSummary(XlsxSheet sheet, const RunResults& results) {
    const XlsxFormats& formats = sheet.formats();
    sheet.width(0, 0, 30);
    sheet.printWhole();
    sheet.width(1, 8, 18);
    int row = 0;
    sheet.text(row++, 0, "Simulation of " + results.workbook, formats.title);
    titledNumber(sheet, row, "Iterations", results.iterations, formats.whole);
    titledNumber(sheet, row, "Seed", results.settings.seed, formats.text);
    row += 1;
    sheet.header(row++, 0,
                 {"Result", "Mean", "Standard deviation", "Minimum", "P5", "P50", "P95", "Maximum", "Errors"});
    for (const Summary& summary : results.summary) {
        if (summary.kind != FieldKind::Result) {
            continue;
        }
        sheet.text(row, 0, summary.name);
        int column = 1;
        for (const double value : keyFigures(summary)) {
            sheet.number(row, column++, value);
        }
        sheet.number(row++, column, static_cast<double>(summary.errors), formats.whole);
    }
    if (!results.requirements.empty()) {
        row += 1;
        sheet.header(row++, 0, {"Requirement", "Value", "Limit", "Outcome"});
        for (const RequirementOutcome& outcome : results.requirements) {
            sheet.text(row, 0, outcome.expression);
            sheet.number(row, 1, outcome.value);
            sheet.number(row, 2, outcome.limit);
            sheet.text(row++, 3, outcome.passed ? "met" : "not met", outcome.passed ? formats.good : formats.bad);
        }
    }
    row += 1;
    for (const std::string& note : results.notes) {
        sheet.text(row++, 0, "Note: " + note);
    }
    for (const std::string& warning : results.warnings) {
        sheet.text(row++, 0, "Warning: " + warning, formats.bad);
    }
}

void writeSamples(XlsxSheet sheet, const RunResults& results) {
    sheet.freeze(1, 1);
    sheet.width(0, static_cast<int>(results.fields.size()), 14);
    std::vector<std::string> titles{"Iteration"};
    for (const Field& field : results.fields) {
        titles.push_back(field.name);
    }
    sheet.header(0, 0, titles);
    const int rows = std::min(results.iterations, mostSheetIterations);
    for (int k = 0; k < rows; ++k) {
        sheet.number(k + 1, 0, k + 1, sheet.formats().whole);
        for (std::size_t i = 0; i < results.fields.size(); ++i) {
            sheet.number(k + 1, static_cast<int>(i) + 1, results.samples.columns[i][k]);
        }
    }
}

int writeMatrix(XlsxSheet& sheet, int row, const std::string& title, const LabelledMatrix& matrix) {
    sheet.text(row++, 0, title, sheet.formats().title);
    std::vector<std::string> titles{""};
    titles.insert(titles.end(), matrix.names.begin(), matrix.names.end());
    sheet.header(row++, 0, titles);
    const int first = row;
    const int n = static_cast<int>(matrix.names.size());
    for (int i = 0; i < n; ++i, ++row) {
        sheet.text(row, 0, matrix.names[i]);
        for (int j = 0; j < n; ++j) {
            sheet.number(row, j + 1, matrix.at(i, j));
        }
    }
    lxw_conditional_format scale{};
    scale.type = LXW_CONDITIONAL_3_COLOR_SCALE;
    scale.min_color = 0xE07B6A;
    scale.mid_color = 0xFFFFFF;
    scale.max_color = 0x5B9BD5;
    scale.min_rule_type = scale.mid_rule_type = scale.max_rule_type = LXW_CONDITIONAL_RULE_TYPE_NUMBER;
    scale.min_value = -1;
    scale.max_value = 1;
    worksheet_conditional_format_range(sheet.get(), static_cast<lxw_row_t>(first), 1, static_cast<lxw_row_t>(row - 1),
                                       static_cast<lxw_col_t>(n), &scale);
    return row + 1;
}

void writeCorrelations(XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    sheet.width(1, static_cast<int>(results.correlations.names.size()), 12);
    sheet.freeze(0, 1);
    sheet.printWhole();
    int row = writeMatrix(sheet, 0, "Rank correlation (Spearman)", results.correlations.rank);
    row = writeMatrix(sheet, row, "Linear correlation (Pearson)", results.correlations.linear);
    if (results.correlations.requested) {
        row = writeMatrix(sheet, row, "Requested", *results.correlations.requested);
    }
    if (results.correlations.repaired) {
        writeMatrix(sheet, row, "Repaired", *results.correlations.repaired);
    }
}

/// Indices downwards: there are many of them, and few fields have limits.
void writeCapability(XlsxSheet sheet, const RunResults& results) {
    sheet.width(0, 0, 26);
    if (results.capability.empty()) {
        sheet.text(0, 0, "No field has specification limits (--capability).");
        return;
    }
    sheet.freeze(1, 1);
    sheet.printWhole();
    std::vector<std::string> fields{"Index"};
    for (const Capability& capability : results.capability) {
        fields.push_back(capability.limits.name);
    }
    sheet.width(1, static_cast<int>(results.capability.size()), 16);
    sheet.header(0, 0, fields);
    int row = 1;
    for (const char* limit : {"LSL", "USL", "Target"}) {
        sheet.text(row++, 0, limit);
    }
    for (const CapabilityName& name : capabilityNames) {
        sheet.text(row++, 0, name.label);
    }
    int column = 1;
    for (const Capability& capability : results.capability) {
        row = 1;
        for (const double limit : {capability.limits.lower, capability.limits.upper, capability.limits.target}) {
            sheet.number(row++, column, limit);
        }
        for (const double index : capability.indices) {
            sheet.number(row++, column, index);
        }
        ++column;
    }
}

void writeSettings(XlsxSheet sheet, const RunResults& results) {
    const XlsxFormats& formats = sheet.formats();
    sheet.width(0, 0, 34);
    sheet.width(1, 1, 24);
    sheet.width(2, 2, 14);
    sheet.width(3, 3, 48);
    sheet.width(4, 4, 14);
    sheet.freeze(1, 0);
    sheet.printWhole();
    sheet.header(0, 0, {"Setting", "Value"}, 2);
    int row = 1;
    for (const SettingText& setting : settingTexts(results)) {
        sheet.text(row, 0, setting.name, formats.text);
        if (const auto number = setting.name == "Workbook" ? std::nullopt : parseNumber(setting.value)) {
            sheet.number(row++, 1, *number, formats.leftNumber);
        } else {
            sheet.text(row++, 1, setting.value);
        }
    }
    row += 1;
    sheet.header(row++, 0, {"Field", "Cell", "Kind", "Definition", "Default"}, 4);
    for (const Field& field : results.fields) {
        sheet.text(row, 0, field.name);
        sheet.text(row, 1, cellAddress(field));
        sheet.text(row, 2, std::string(kindName(field.kind)));
        sheet.text(row, 3, fieldDescription(field));
        sheet.number(row++, 4, field.defaultValue);
    }
}
}  // namespace

std::string xlsxReport(const RunResults& results, bool withSamples) {
    XlsxBook book;
    writeSummary(book.sheet("Summary"), results);
    writeResultsSheet(book, book.sheet("Results"), results);
    if (withSamples) {
        writeSamples(book.sheet("Samples"), results);
    }
    writeCorrelations(book.sheet("Correlations"), results);
    writeSensitivitySheet(book, book.sheet("Sensitivity"), results);
    writeTornadoSheet(book, book.sheet("Tornado"), results);
    writeSpiderSheet(book, book.sheet("Spider"), results);
    writeConvergenceSheet(book, book.sheet("Convergence"), results);
    writeCapability(book.sheet("Capability"), results);
    writeSettings(book.sheet("Settings"), results);
    return book.finish();
}

}  // namespace quorva::frontend
