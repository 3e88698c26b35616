#include "text_workbook.h"

#include <cmath>
#include <sstream>

#include "common/cell_names.h"
#include "workbook/recalculation/book.h"
#include "workbook/values/areas.h"
#include "workbook/values/convert.h"

namespace quorva::workbook {
namespace {

constexpr double defaultTolerance = 1e-12;  // relative; a stated one (+- x) is absolute
constexpr int scratchColumn = 16000;        // formulas written together with their value stand out here

struct Expectation {
    int line;
    std::string cell;
    std::string shown;
    Value value;
    double tolerance = -1;
};

struct Step {
    bool edit;
    Expectation expectation;
};

std::string trim(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool parseValue(std::string text, Expectation& expectation) {
    const auto bounds = text.find("+-");
    if (bounds != std::string::npos && text.front() != '"') {
        const auto tolerance = parsePlainNumber(trim(text.substr(bounds + 2)));
        if (!tolerance) {
            return false;
        }
        expectation.tolerance = *tolerance;
        text = trim(text.substr(0, bounds));
    }
    ErrorCode error{};
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        std::string content;
        for (std::size_t i = 1; i + 1 < text.size(); ++i) {
            content.push_back(text[i]);
            i += text[i] == '"' && i + 2 < text.size() && text[i + 1] == '"' ? 1 : 0;
        }
        expectation.value = Value(content);
    } else if (text == "TRUE" || text == "FALSE") {
        expectation.value = Value(text == "TRUE");
    } else if (text == "blank") {
        expectation.value = Value();
    } else if (errorFromText(text, error)) {
        expectation.value = error;
    } else if (const auto number = parsePlainNumber(text)) {
        expectation.value = *number;
    } else {
        return false;
    }
    return true;
}

std::string show(const CellValue& value) {
    switch (value.type) {
        case CellValue::Type::Blank:
            return "blank";
        case CellValue::Type::Boolean:
            return value.number != 0 ? "TRUE" : "FALSE";
        case CellValue::Type::Text:
            return '"' + value.text + '"';
        case CellValue::Type::Error:
            return value.text;
        default: {
            std::ostringstream out;
            out.precision(17);
            out << value.number;
            return out.str();
        }
    }
}

bool fulfilled(const CellValue& got, const Expectation& wanted) {
    switch (wanted.value.type()) {
        case Value::Type::Blank:
            return got.type == CellValue::Type::Blank;
        case Value::Type::Text:
            return got.type == CellValue::Type::Text && got.text == wanted.value.text();
        case Value::Type::Boolean:
            return got.type == CellValue::Type::Boolean && (got.number != 0) == wanted.value.boolean();
        case Value::Type::Error:
            return got.type == CellValue::Type::Error && got.text == errorText(wanted.value.error());
        default: {
            const double number = wanted.value.number();
            const double allowed = wanted.tolerance >= 0 ? wanted.tolerance : defaultTolerance * std::fabs(number);
            return got.type == CellValue::Type::Number && std::fabs(got.number - number) <= allowed;
        }
    }
}

struct Script {
    std::string book;
    std::vector<Step> steps;
    std::vector<std::string> problems;

    void read(const std::string& text) {
        std::istringstream lines(text);
        std::string raw;
        for (int number = 1; std::getline(lines, raw); ++number) {
            const std::string line = trim(raw);
            const auto arrow = line.rfind(" -> ");
            if (line.empty() || line[0] == '#') {
                book += '\n';
            } else if (line.starts_with("edit ")) {
                const auto colon = line.find(": ");
                Step step{true, {number, trim(line.substr(5, colon - 5)), line, Value()}};
                if (colon == std::string::npos || !parseValue(trim(line.substr(colon + 2)), step.expectation)) {
                    problem(number, "the edit cannot be read");
                }
                steps.push_back(step);
                book += '\n';
            } else if (arrow != std::string::npos) {
                expect(number, trim(line.substr(0, arrow)), trim(line.substr(arrow + 4)));
            } else {
                book += line + '\n';
            }
        }
    }

    void expect(int number, const std::string& left, const std::string& right) {
        Expectation wanted{number, left, left, Value()};
        if (!parseValue(right, wanted)) {
            problem(number, "the expected value cannot be read");
            return;
        }
        const bool formula = left.starts_with('=') || left.starts_with("legacy =") || left.starts_with("{=");
        if (formula) {
            wanted.cell = cellName(number - 1, scratchColumn);
            book += wanted.cell + ": " + left;
        }
        book += '\n';
        steps.push_back({false, wanted});
    }

    void problem(int line, const std::string& what) {
        problems.push_back("line " + std::to_string(line) + ": " + what);
    }
};

CellValue asCell(const Value& value) {
    CellValue cell;
    cell.type = value.isBlank()     ? CellValue::Type::Blank
                : value.isNumber()  ? CellValue::Type::Number
                : value.isText()    ? CellValue::Type::Text
                : value.isBoolean() ? CellValue::Type::Boolean
                                    : CellValue::Type::Error;
    cell.number = value.isNumber() || value.isBoolean() ? value.number() : 0;
    cell.text = value.isText() ? value.text() : value.isError() ? std::string(errorText(value.error())) : "";
    return cell;
}

}  // namespace

std::vector<std::string> runTextWorkbook(const std::string& text) {
    Script script;
    script.read(text);
    try {
        Book book = Book::fromText(script.book);
        book.recalculateAll();
        for (const auto& [edit, step] : script.steps) {
            const auto range = book.resolve(step.cell);
            if (!range) {
                script.problem(step.line, "there is no cell " + step.cell);
                continue;
            }
            const CellAddress cell{range->sheet, range->firstRow, range->firstColumn};
            if (edit) {
                book.set(cell, asCell(step.value));
                book.recalculate();
                continue;
            }
            const CellValue got = book.value(cell);
            if (!fulfilled(got, step)) {
                std::string why;
                for (const FormulaCell& formula : book.formulas()) {
                    why = formula.cell == cell && formula.unsupported ? " (" + formula.why + ")" : why;
                }
                script.problem(step.line, step.shown + " is " + show(got) + why + ", not " + show(asCell(step.value)));
            }
        }
    } catch (const Failure& failure) {
        script.problems.emplace_back(failure.what());
    }
    return script.problems;
}

}  // namespace quorva::workbook
