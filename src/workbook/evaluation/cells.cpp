#include "workbook/evaluation/cells.h"

#include <algorithm>

namespace quorva::workbook {

void CellStore::build(const std::vector<std::vector<std::uint64_t>>& keys) {
    sheets_.assign(keys.size(), {});
    Slot next = 0;
    for (std::size_t s = 0; s < keys.size(); ++s) {
        SheetIndex& index = sheets_[s];
        index.firstSlot = next;
        for (const std::uint64_t key : keys[s]) {
            const int row = static_cast<int>(key >> 14);
            const int column = static_cast<int>(key & 16383);
            if (index.rows.empty() || index.rows.back() != row) {
                index.rows.push_back(row);
                index.rowStart.push_back(index.columns.size());
            }
            index.columns.push_back(column);
            index.usedRows = row + 1;
            index.usedColumns = std::max(index.usedColumns, column + 1);
        }
        index.rowStart.push_back(index.columns.size());
        next += static_cast<Slot>(keys[s].size());
    }
    numbers_.assign(next, std::numeric_limits<double>::quiet_NaN());
    others_.assign(next, Value());
}

std::size_t lowerBound(const std::vector<int>& sorted, std::size_t from, std::size_t to, int wanted) {
    return static_cast<std::size_t>(std::lower_bound(sorted.begin() + from, sorted.begin() + to, wanted) -
                                    sorted.begin());
}

Slot CellStore::find(int sheet, int row, int column) const {
    const SheetIndex& index = sheets_[sheet];
    const std::size_t at = lowerBound(index.rows, 0, index.rows.size(), row);
    if (at < index.rows.size() && index.rows[at] == row) {
        const std::size_t end = index.rowStart[at + 1];
        const std::size_t i = lowerBound(index.columns, index.rowStart[at], end, column);
        if (i < end && index.columns[i] == column) {
            return index.firstSlot + static_cast<Slot>(i);
        }
    }
    if (!index.added.empty()) {
        const auto found = index.added.find(cellKey(row, column));
        if (found != index.added.end()) {
            return found->second;
        }
    }
    return noSlot;
}

Slot CellStore::findOrAdd(int sheet, int row, int column) {
    Slot slot = find(sheet, row, column);
    if (slot == noSlot) {
        slot = slotCount();
        numbers_.push_back(std::numeric_limits<double>::quiet_NaN());
        others_.emplace_back();
        SheetIndex& index = sheets_[sheet];
        index.added.emplace(cellKey(row, column), slot);
        index.usedRows = std::max(index.usedRows, row + 1);
        index.usedColumns = std::max(index.usedColumns, column + 1);
    }
    return slot;
}

Slot CellStore::appendScratch(std::size_t count) {
    const Slot first = slotCount();
    numbers_.resize(numbers_.size() + count, std::numeric_limits<double>::quiet_NaN());
    others_.resize(others_.size() + count);
    return first;
}

void CellStore::truncate(Slot first) {
    numbers_.resize(static_cast<std::size_t>(first));
    others_.resize(static_cast<std::size_t>(first));
}

void CellStore::markSubtotal(Slot slot) {
    subtotals_.resize(numbers_.size());
    subtotals_[slot] = true;
}

CellCursor::CellCursor(const CellStore& cells, const Area& area)
    : cells_(&cells),
      index_(&cells.sheet(area.sheet)),
      area_(area),
      rowPosition_(lowerBound(index_->rows, 0, index_->rows.size(), area.firstRow)),
      added_(index_->added.lower_bound(cellKey(area.firstRow, area.firstColumn))) {
    enterRow();
    skipAddedOutside();
}

/// To the first loaded cell of the area in the rows from rowPosition_ on.
void CellCursor::enterRow() {
    const auto& rows = index_->rows;
    for (; rowPosition_ < rows.size() && rows[rowPosition_] <= area_.lastRow; ++rowPosition_) {
        cells_->allowance().spend(1);
        const std::size_t end = index_->rowStart[rowPosition_ + 1];
        position_ = lowerBound(index_->columns, index_->rowStart[rowPosition_], end, area_.firstColumn);
        if (position_ < end && index_->columns[position_] <= area_.lastColumn) {
            return;
        }
    }
    rowPosition_ = rows.size();
}

/// To the first added cell from added_ on that lies in the area.
void CellCursor::skipAddedOutside() {
    const auto& added = index_->added;
    while (added_ != added.end()) {
        const int row = static_cast<int>(added_->first >> 14);
        const int column = static_cast<int>(added_->first & (maxColumns - 1));
        if (row > area_.lastRow) {
            added_ = added.end();
        } else if (column < area_.firstColumn) {
            added_ = added.lower_bound(cellKey(row, area_.firstColumn));
        } else if (column > area_.lastColumn) {
            added_ = added.lower_bound(cellKey(row + 1, area_.firstColumn));
        } else {
            return;
        }
    }
}

bool CellCursor::next() {
    const bool loaded = rowPosition_ < index_->rows.size();
    const bool added = added_ != index_->added.end();
    if (!loaded && !added) {
        return false;
    }
    cells_->allowance().spend(1);
    const std::uint64_t key = loaded ? cellKey(index_->rows[rowPosition_], index_->columns[position_]) : 0;
    if (added && (!loaded || added_->first < key)) {
        key_ = added_->first;
        slot_ = added_->second;
        ++added_;
        skipAddedOutside();
        return true;
    }
    key_ = key;
    slot_ = index_->firstSlot + static_cast<Slot>(position_);
    ++position_;
    if (position_ == index_->rowStart[rowPosition_ + 1] || index_->columns[position_] > area_.lastColumn) {
        ++rowPosition_;
        enterRow();
    }
    return true;
}

int Grid::usedRows() const {
    return cells_ ? std::clamp(cells_->sheet(area_.sheet).usedRows - area_.firstRow, 0, rows_) : rows_;
}

int Grid::usedColumns() const {
    return cells_ ? std::clamp(cells_->sheet(area_.sheet).usedColumns - area_.firstColumn, 0, columns_) : columns_;
}

}  // namespace quorva::workbook
