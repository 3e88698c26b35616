// Where a book's cells live: contiguous numbers with a side table for everything else, addressed by slot.
#pragma once

#include <cmath>
#include <limits>
#include <map>
#include <span>
#include <vector>

#include "common/cell_names.h"
#include "workbook/evaluation/allowance.h"
#include "workbook/values/value.h"

namespace quorva::workbook {

using Slot = std::int32_t;
constexpr Slot noSlot = -1;

/// Key of a cell inside a sheet: row-major order.
constexpr std::uint64_t cellKey(int row, int column) {
    return static_cast<std::uint64_t>(row) << 14 | static_cast<std::uint64_t>(column);
}

/// The cells of one sheet that exist, sorted row by row; their slots are consecutive from `firstSlot`.
struct SheetIndex {
    std::vector<int> rows;              ///< rows that have cells, ascending
    std::vector<std::size_t> rowStart;  ///< position in `columns` where each of them begins; one more at the end
    std::vector<int> columns;
    Slot firstSlot = 0;
    int usedRows = 0;     ///< one past the last row with a cell
    int usedColumns = 0;  ///< one past the last column with a cell
    std::vector<bool> hiddenRows;
    std::vector<bool> filteredRows;
    /// Cells that came into being after loading (an array spilled further than before), by key.
    std::map<std::uint64_t, Slot> added;

    /// Hidden by a filter (SUBTOTAL never counts these) or by either means.
    bool filtered(int row) const { return static_cast<std::size_t>(row) < filteredRows.size() && filteredRows[row]; }
    bool hidden(int row) const { return static_cast<std::size_t>(row) < hiddenRows.size() && hiddenRows[row]; }
};

/// All cells of a book. A number is in `numbers`; a NaN there sends to `others`.
class CellStore {
public:
    /// Lays out the sheets; `keys[sheet]` are the sorted, distinct cell keys.
    void build(const std::vector<std::vector<std::uint64_t>>& keys);

    int sheetCount() const { return static_cast<int>(sheets_.size()); }
    const SheetIndex& sheet(int index) const { return sheets_[index]; }
    SheetIndex& sheet(int index) { return sheets_[index]; }

    Slot find(int sheet, int row, int column) const;
    /// The slot of a cell, made when there is none.
    Slot findOrAdd(int sheet, int row, int column);
    Slot slotCount() const { return static_cast<Slot>(numbers_.size()); }

    Value get(Slot slot) const {
        const double number = numbers_[slot];
        return number == number ? Value(number) : others_[slot];
    }
    Value get(int sheet, int row, int column) const {
        allowance_.spend(1);
        const Slot slot = find(sheet, row, column);
        return slot == noSlot ? Value() : get(slot);
    }
    bool isNumber(Slot slot) const { return numbers_[slot] == numbers_[slot]; }
    double number(Slot slot) const { return numbers_[slot]; }
    const Value& other(Slot slot) const { return others_[slot]; }
    void set(Slot slot, const Value& value) {
        if (value.isNumber()) {
            numbers_[slot] = value.number();
        } else {
            numbers_[slot] = std::numeric_limits<double>::quiet_NaN();
            others_[slot] = value;
        }
    }
    /// True for the cell of a formula that SUBTOTAL or AGGREGATE heads (they leave each other out).
    bool isSubtotal(Slot slot) const { return static_cast<std::size_t>(slot) < subtotals_.size() && subtotals_[slot]; }
    void markSubtotal(Slot slot);
    double* numbers() { return numbers_.data(); }
    /// Numbers behind the cells for a compiled program; the first one's slot.
    Slot appendScratch(std::size_t count);
    /// Gives up the slots from `first` on.
    void truncate(Slot first);

    /// Reading by position and walking areas is charged to it, so that no function can read without end.
    Allowance& allowance() const { return allowance_; }

    /// Calls visit(row, column, slot) for each existing cell of the area, row by row.
    template <class Visit>
    void forEachSlot(const Area& area, Visit&& visit) const;

private:
    template <class Visit>
    static bool visited(Visit& visit, int row, int column, Slot slot) {
        if constexpr (std::is_same_v<decltype(visit(row, column, slot)), bool>) {
            return visit(row, column, slot);
        } else {
            visit(row, column, slot);
            return true;
        }
    }

    std::vector<SheetIndex> sheets_;
    std::vector<double> numbers_;
    std::vector<Value> others_;
    std::vector<bool> subtotals_;
    mutable Allowance allowance_;
};

std::size_t lowerBound(const std::vector<int>& sorted, std::size_t from, std::size_t to, int wanted);

/// Walks the existing cells of an area row by row, those loaded and those added as one sequence.
class CellCursor {
public:
    CellCursor(const CellStore& cells, const Area& area);
    /// Goes to the next cell, the first one to begin with; false when there is none left.
    bool next();
    int row() const { return static_cast<int>(key_ >> 14); }
    int column() const { return static_cast<int>(key_ & (maxColumns - 1)); }
    Slot slot() const { return slot_; }

private:
    void enterRow();
    void skipAddedOutside();

    const CellStore* cells_;
    const SheetIndex* index_;
    Area area_;
    std::size_t rowPosition_;   ///< in index_->rows; its size when no loaded cell is left
    std::size_t position_ = 0;  ///< in index_->columns
    std::map<std::uint64_t, Slot>::const_iterator added_;
    std::uint64_t key_ = 0;
    Slot slot_ = noSlot;
};

template <class Visit>
void CellStore::forEachSlot(const Area& area, Visit&& visit) const {
    const SheetIndex& index = sheets_[area.sheet];
    if (!index.added.empty()) {
        for (CellCursor cursor(*this, area); cursor.next();) {
            if (!visited(visit, cursor.row(), cursor.column(), cursor.slot())) {
                return;
            }
        }
        return;
    }
    for (std::size_t at = lowerBound(index.rows, 0, index.rows.size(), area.firstRow);
         at < index.rows.size() && index.rows[at] <= area.lastRow; ++at) {
        allowance_.spend(1);
        const std::size_t end = index.rowStart[at + 1];
        for (std::size_t i = lowerBound(index.columns, index.rowStart[at], end, area.firstColumn);
             i < end && index.columns[i] <= area.lastColumn; ++i) {
            allowance_.spend(1);
            if (!visited(visit, index.rows[at], index.columns[i], index.firstSlot + static_cast<Slot>(i))) {
                return;
            }
        }
    }
}

/// A rectangle of values, whether they come from an array or from cells. Rows and columns count from 0.
class Grid {
public:
    Grid() = default;
    explicit Grid(const Value& array) : array_(array), rows_(array.arrayRows()), columns_(array.arrayColumns()) {}
    Grid(const CellStore& cells, const Area& area)
        : cells_(&cells), area_(area), rows_(area.rows()), columns_(area.columns()) {}

    int rows() const { return rows_; }
    int columns() const { return columns_; }
    std::int64_t size() const { return static_cast<std::int64_t>(rows_) * columns_; }
    bool fromCells() const { return cells_ != nullptr; }
    /// The cells it shows; meaningful only when fromCells().
    const Area& area() const { return area_; }
    const CellStore& store() const { return *cells_; }
    /// Rows and columns beyond which every cell is blank (whole columns are a million rows long).
    int usedRows() const;
    int usedColumns() const;

    Value at(int row, int column) const {
        return cells_ ? cells_->get(area_.sheet, area_.firstRow + row, area_.firstColumn + column)
                      : array_.arrayCells()[static_cast<std::size_t>(row) * columns_ + column];
    }
    /// The i-th value, row by row.
    Value at(std::int64_t index) const {
        return at(static_cast<int>(index / columns_), static_cast<int>(index % columns_));
    }
    /// Calls visit(value, row, column) for every value except cells that do not exist, row by row. A visit that returns
    /// a bool ends the walk with false.
    template <class Visit>
    void forEach(Visit&& visit) const {
        if (cells_) {
            cells_->forEachSlot(area_, [&](int row, int column, Slot slot) {
                return visit(cells_->get(slot), row - area_.firstRow, column - area_.firstColumn);
            });
            return;
        }
        const auto& cells = array_.arrayCells();
        for (int row = 0; row < rows_; ++row) {
            for (int column = 0; column < columns_; ++column) {
                const Value& value = cells[static_cast<std::size_t>(row) * columns_ + column];
                if constexpr (std::is_same_v<decltype(visit(value, row, column)), bool>) {
                    if (!visit(value, row, column)) {
                        return;
                    }
                } else {
                    visit(value, row, column);
                }
            }
        }
    }

private:
    Value array_;
    const CellStore* cells_ = nullptr;
    Area area_{};
    int rows_ = 0;
    int columns_ = 0;
};

}  // namespace quorva::workbook
