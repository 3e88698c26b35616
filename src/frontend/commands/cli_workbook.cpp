#include "frontend/commands/cli_workbook.h"

#include <algorithm>
#include <iostream>

#include <nlohmann/json.hpp>

#include "common/cell_names.h"
#include "frontend/reports/model_terms.h"
#include "frontend/reports/report_json.h"
#include "frontend/run/model_session.h"
#include "frontend/run/verification.h"
#include "frontend/text/cell_address.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/csv.h"
#include "frontend/text/input_file.h"
#include "frontend/text/number_text.h"
#include "frontend/text/output_file.h"
#include "frontend/text/text.h"
#include "frontend/text/text_table.h"

namespace quorva::frontend {

namespace {
using Json = nlohmann::ordered_json;
using workbook::Book;
using workbook::CellValue;

void reserve(const ModelOptions& options) {
    Outputs outputs({options.workbook});
    if (!options.json.empty()) {
        outputs.reserve(options.json);
    }
}

void commit(const std::string& file, const Json& json) {
    if (!file.empty()) {
        Outputs::commit({{file, [&](Sink& sink) { sink.write(jsonText(json)); }}});
    }
}

std::string verificationText(const Verification& verification, bool list) {
    std::vector<std::vector<std::string>> rows;
    const auto row = [&](const std::string& name, const VerificationCounts& counts) {
        rows.push_back({name, std::to_string(counts.formulas), std::to_string(counts.equal),
                        std::to_string(counts.different), std::to_string(counts.unsupported),
                        std::to_string(counts.isVolatile), std::to_string(counts.unsaved)});
    };
    for (const auto& [sheet, counts] : verification.sheets) {
        row(sheet, counts);
    }
    row("total", verification.total);
    std::string text = textTable(
        {"sheet", "formulas", "equal", "different", "unsupported", "volatile", "without a saved value"}, rows);
    for (const Difference& difference : verification.differences) {
        if (!list) {
            break;
        }
        text += "\n" + difference.address + "  =" + printable(difference.formula) + "\n";
        text += "  saved     " + (difference.saved.empty() ? "(none)" : printable(difference.saved)) + "\n";
        text += difference.unsupported ? "  not supported: " + printable(difference.computed) + "\n"
                                       : "  computed  " + printable(difference.computed) + "\n";
    }
    if (!list && !verification.differences.empty()) {
        text += "(--list shows each difference)\n";
    }
    return text;
}

Json countsJson(const VerificationCounts& counts) {
    return {{"formulas", counts.formulas},       {"equal", counts.equal},         {"different", counts.different},
            {"unsupported", counts.unsupported}, {"volatile", counts.isVolatile}, {"unsaved", counts.unsaved}};
}

Json verificationJson(const std::string& file, const Verification& verification) {
    Json sheets = Json::array();
    for (const auto& [sheet, counts] : verification.sheets) {
        Json entry{{"sheet", sheet}};
        entry.update(countsJson(counts));
        sheets.push_back(std::move(entry));
    }
    Json differences = Json::array();
    for (const Difference& difference : verification.differences) {
        differences.push_back({{"cell", difference.address},
                               {"formula", difference.formula},
                               {"saved", difference.saved},
                               {"computed", difference.unsupported ? Json(nullptr) : Json(difference.computed)},
                               {"unsupported", difference.unsupported ? Json(difference.computed) : Json(nullptr)}});
    }
    return {{"workbook", fileName(file)},
            {"total", countsJson(verification.total)},
            {"sheets", std::move(sheets)},
            {"differences", std::move(differences)}};
}

std::string valueLine(const Book& book, const workbook::CellAddress& cell, const CellValue& value, bool unsupported,
                      const std::string& why) {
    std::string type = "n", text = exactNumber(value.number);
    switch (value.type) {
        case CellValue::Type::Blank:
        case CellValue::Type::Number:
            break;
        case CellValue::Type::Text:
            type = "str", text = value.text;
            break;
        case CellValue::Type::Boolean:
            type = "b", text = value.number != 0 ? "1" : "0";
            break;
        case CellValue::Type::Error:
            type = "e", text = value.text;
            break;
    }
    if (unsupported) {
        type = "unsupported", text = why;
    }
    return csvField(book.sheetName(cell.sheet)) + "," + cellName(cell.row, cell.column) + "," + type + "," +
           csvField(text) + "\n";
}
}  // namespace

int inspectCommand(const ModelOptions& options) {
    reserve(options);
    ModelSession session(options.workbook);
    const std::vector<Field> fields = describeModel(session.host(), !options.singleSheet);
    for (const std::string& sentence : session.absentFunctions(fields)) {
        std::cerr << "quorva: warning: " << printable(sentence) << std::endl;
    }
    commit(options.json, {{"workbook", fileName(options.workbook)}, {"fields", fieldsJson(fields)}});
    if (options.json != "-") {
        std::vector<std::vector<std::string>> rows;
        for (const Field& field : fields) {
            rows.push_back({std::to_string(field.number), field.name, cellAddress(field),
                            std::string(kindName(field.kind)), readableNumber(field.defaultValue),
                            fieldDescription(field)});
        }
        printOut(textTable({"no", "name", "cell", "kind", "default", "definition"}, rows));
    }
    return 0;
}

int verifyCommand(const ModelOptions& options) {
    reserve(options);
    Book book(options.workbook);
    book.attach();
    book.recalculateAll();
    const Verification verification = verifyBook(book);
    commit(options.json, verificationJson(options.workbook, verification));
    if (options.json != "-") {
        printOut(verificationText(verification, options.list));
    }
    const bool failed = verification.total.different > 0 || verification.total.unsupported > 0;
    return static_cast<int>(failed ? ExitStatus::RequirementFailed : ExitStatus::Done);
}

int valuesCommand(const ModelOptions& options) {
    Book book(options.workbook);
    book.attach();
    book.recalculateAll();
    std::vector<std::pair<workbook::CellAddress, std::string>> lines;
    for (const workbook::FormulaCell& formula : book.formulas()) {
        lines.emplace_back(formula.cell,
                           valueLine(book, formula.cell, formula.computed, formula.unsupported, formula.why));
    }
    if (options.all) {
        for (const workbook::CellAddress& cell : book.constants()) {
            lines.emplace_back(cell, valueLine(book, cell, book.value(cell), false, ""));
        }
    }
    std::stable_sort(lines.begin(), lines.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string text = "sheet,cell,type,value\n";
    for (const auto& [cell, line] : lines) {
        text += line;
    }
    printOut(text);
    return 0;
}

}  // namespace quorva::frontend
