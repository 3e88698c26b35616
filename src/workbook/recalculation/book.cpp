#include "workbook/recalculation/book.h"

#include <algorithm>

#include "common/cell_names.h"
#include "workbook/file/book_reader.h"
#include "workbook/file/text_book.h"
#include "workbook/functions/families.h"
#include "workbook/recalculation/module_link.h"
#include "workbook/recalculation/program.h"
#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

struct Book::Contents {
    explicit Contents(std::unique_ptr<RawBook> raw) : recalculation(std::move(raw)) {}
    Recalculation recalculation;
};

namespace {

CellValue published(const Value& value) {
    CellValue cell;
    switch (value.type()) {
        case Value::Type::Number:
            cell.type = CellValue::Type::Number;
            cell.number = value.number();
            break;
        case Value::Type::Boolean:
            cell.type = CellValue::Type::Boolean;
            cell.number = value.number();
            break;
        case Value::Type::Text:
            cell.type = CellValue::Type::Text;
            cell.text = value.text();
            break;
        case Value::Type::Error:
            cell.type = CellValue::Type::Error;
            cell.text = errorText(value.error());
            break;
        default:
            break;
    }
    return cell;
}

Value taken(const CellValue& cell) {
    switch (cell.type) {
        case CellValue::Type::Number:
            return cell.number;
        case CellValue::Type::Boolean:
            return Value(cell.number != 0);
        case CellValue::Type::Text:
            return Value(cell.text);
        case CellValue::Type::Error: {
            ErrorCode error = ErrorCode::Value;
            errorFromText(cell.text, error);
            return error;
        }
        default:
            return {};
    }
}

}  // namespace

std::span<const FunctionInfo> functions() {
    static const std::vector<FunctionInfo> infos = [] {
        std::vector<FunctionInfo> all;
        for (const FunctionRow* row : worksheetFunctions().rows()) {
            all.push_back({row->name, categoryName(row->category), row->minArgs, row->maxArgs,
                           row->volatility == Volatility::Volatile});
        }
        for (const LazyFunctionRow& row : lazyFunctions()) {
            all.push_back({row.name, categoryName(row.category), row.minArgs, row.maxArgs,
                           row.volatility == Volatility::Volatile});
        }
        std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
        return all;
    }();
    return infos;
}

Book::Book(std::unique_ptr<Contents> contents) : contents_(std::move(contents)) {}
Book::Book(const std::filesystem::path& file) : contents_(std::make_unique<Contents>(readFile(file))) {}
Book Book::fromText(std::string_view lines) { return Book(std::make_unique<Contents>(readText(lines))); }
Book::Book(Book&&) noexcept = default;
Book& Book::operator=(Book&&) noexcept = default;
Book::~Book() = default;

int Book::sheetCount() const { return contents_->recalculation.raw->ownSheets; }
const std::string& Book::sheetName(int sheet) const {
    return contents_->recalculation.raw->sheets[static_cast<std::size_t>(sheet)].name;
}

std::optional<CellRange> Book::resolve(std::string_view text) const {
    Recalculation& recalculation = contents_->recalculation;
    try {
        const Node node = parseFormula(text, {}, *recalculation.symbols);
        Value value = node.value;
        if (node.kind != Node::Kind::Reference) {
            Evaluator evaluator(recalculation.context, 0, 0, 0, false);
            value = evaluator.evaluate(node);
        }
        if (!value.isReference() || value.areas().size() != 1) {
            return std::nullopt;
        }
        const Area& area = value.areas()[0];
        if (area.sheet >= recalculation.raw->ownSheets) {
            return std::nullopt;
        }
        return CellRange{area.sheet, area.firstRow, area.firstColumn, area.lastRow, area.lastColumn};
    } catch (const ParseError&) {
        return std::nullopt;
    } catch (const Unsupported&) {
        return std::nullopt;
    }
}

CellValue Book::value(const CellAddress& cell) const {
    return published(contents_->recalculation.cells.get(cell.sheet, cell.row, cell.column));
}

std::vector<CellAddress> Book::constants() const {
    const Recalculation& recalculation = contents_->recalculation;
    std::vector<CellAddress> found;
    for (int sheet = 0; sheet < recalculation.raw->ownSheets; ++sheet) {
        recalculation.cells.forEachSlot(
            {sheet, 0, 0, maxRows - 1, maxColumns - 1}, [&](int row, int column, Slot slot) {
                const auto at = static_cast<std::size_t>(slot);
                if (recalculation.formulaAt(slot) < 0 &&
                    (at >= recalculation.spillOwner.size() || recalculation.spillOwner[at] < 0) &&
                    !recalculation.cells.get(slot).isBlank()) {
                    found.push_back({sheet, row, column});
                }
            });
    }
    return found;
}

std::vector<FormulaCell> Book::formulas() const {
    const Recalculation& recalculation = contents_->recalculation;
    std::vector<FormulaCell> found;
    for (const Formula& formula : recalculation.formulas) {
        if (formula.removed) {
            continue;
        }
        FormulaCell cell;
        cell.cell = formula.cell;
        cell.formula = *formula.text;
        cell.isVolatile = formula.live;
        cell.unsupported = !formula.why.empty() || formula.circular;
        cell.why = formula.circular ? "a circular reference (" + formula.why + ")" : formula.why;
        cell.computed = published(recalculation.cells.get(formula.slot));
        if (formula.saved) {
            cell.saved = published(*formula.saved);
        }
        found.push_back(cell);
        if (formula.spill.single()) {
            continue;
        }
        const auto& rawCells = recalculation.raw->sheets[static_cast<std::size_t>(formula.cell.sheet)].cells;
        recalculation.cells.forEachSlot(formula.spill, [&](int row, int column, Slot slot) {
            if (slot == formula.slot || recalculation.formulaAt(slot) >= 0) {
                return;
            }
            FormulaCell other = cell;
            other.cell = {formula.cell.sheet, row, column};
            other.spilled = true;
            other.saved.reset();
            const auto position =
                static_cast<std::size_t>(slot - recalculation.cells.sheet(formula.cell.sheet).firstSlot);
            if (position < rawCells.size() && rawCells[position].row == row && rawCells[position].column == column &&
                rawCells[position].hasValue) {
                other.saved = published(rawCells[position].value);
            }
            other.computed = published(recalculation.cells.get(slot));
            found.push_back(std::move(other));
        });
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const FormulaCell& a, const FormulaCell& b) { return a.cell < b.cell; });
    return found;
}

void Book::set(const CellAddress& cell, const CellValue& value) { contents_->recalculation.set(cell, taken(value)); }
void Book::setStepLimit(std::int64_t steps) { contents_->recalculation.context.stepLimit = steps; }
void Book::recalculateAll() { contents_->recalculation.computeAll(); }

void Book::attach() {
    Recalculation& recalculation = contents_->recalculation;
    recalculation.module = std::make_unique<ModuleLink>(recalculation);
    recalculation.module->open();
    recalculation.unprepare();
}

void Book::seed(std::uint64_t seed) { contents_->recalculation.context.seedRandom(seed); }
void Book::recalculate() { contents_->recalculation.recalculate(); }

std::vector<CellAddress> Book::modelCells() const {
    contents_->recalculation.relate();
    std::vector<CellAddress> found;
    for (const int index : contents_->recalculation.order) {
        const Formula& formula = contents_->recalculation.formulas[static_cast<std::size_t>(index)];
        if (formula.callsModel && !formula.removed) {
            found.push_back(formula.cell);
        }
    }
    return found;
}

}  // namespace quorva::workbook
