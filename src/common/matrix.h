// matrix<T>: the dense matrix that carries every table of a run.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace quorva {

/// Dense matrix, column-major, addressed 1-based as (row, column). An access outside rows x columns reads or writes
/// the scratch element instead of failing: an out-of-range read gives what the scratch element last received, -1 at
/// first for numbers and the empty text for strings.
template <class T>
class matrix {
public:
    matrix() = default;

    /// rows x columns elements, all `fill`. Negative dimensions count as 0.
    matrix(int rows, int columns, const T& fill = T{}) : matrix() {
        reshape(rows, columns);
        std::fill(storage_, storage_ + count_, fill);
    }

    /// rows x columns elements copied from a column-major array.
    matrix(int rows, int columns, const T* source) : matrix() {
        reshape(rows, columns);
        std::copy_n(source, count_, storage_);
    }

    /// A matrix over rows x columns elements that somebody else owns and keeps for its life: a front end's array, read
    /// and written in place. No elements when there is no array.
    static matrix over(T* storage, int rows, int columns) {
        matrix view;
        if (storage != nullptr) {
            view.ownsStorage_ = false;
            view.storage_ = storage;
            view.rows_ = std::max(rows, 0);
            view.columns_ = std::max(columns, 0);
            view.count_ = static_cast<std::size_t>(view.rows_) * static_cast<std::size_t>(view.columns_);
            view.allocated_ = view.count_;
        }
        return view;
    }

    matrix(const matrix& other) : matrix() { *this = other; }
    matrix(matrix&& other) noexcept { swap(other); }
    matrix& operator=(matrix&& other) noexcept {
        matrix taken(std::move(other));
        swap(taken);
        return *this;
    }

    matrix& operator=(const matrix& other) {
        if (this != &other) {
            reshape(other.rows_, other.columns_);
            std::copy_n(other.storage_, count_, storage_);
            scratch_ = other.scratch_;
        }
        return *this;
    }

    virtual ~matrix() {
        if (ownsStorage_) {
            delete[] storage_;
        }
    }

    T& operator()(int row, int column) { return contains(row, column) ? storage_[position(row, column)] : scratch_; }
    const T& operator()(int row, int column) const {
        return contains(row, column) ? storage_[position(row, column)] : scratch_;
    }

    bool contains(int row, int column) const { return row >= 1 && row <= rows_ && column >= 1 && column <= columns_; }
    int rows() const { return rows_; }
    int columns() const { return columns_; }
    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    T* data() { return storage_; }
    const T* data() const { return storage_; }
    /// First element of a column that exists; the column's elements follow each other.
    T* column(int column) { return storage_ + position(1, column); }
    const T* column(int column) const { return storage_ + position(1, column); }
    T& scratch() { return scratch_; }

    /// A matrix with at least `rows` and at least `columns` keeps its dimensions and zeroes its first rows x columns
    /// block; any other becomes exactly rows x columns zeros.
    void zeroResize(int rows, int columns) {
        rows = std::max(rows, 0);
        columns = std::max(columns, 0);
        if (rows_ >= rows && columns_ >= columns) {
            for (int j = 1; j <= columns; ++j) {
                std::fill_n(column(j), rows, T{});
            }
            return;
        }
        reshape(rows, columns);
        std::fill(storage_, storage_ + count_, T{});
    }

    void swap(matrix& other) noexcept {
        std::swap(scratch_, other.scratch_);
        std::swap(ownsStorage_, other.ownsStorage_);
        std::swap(count_, other.count_);
        std::swap(allocated_, other.allocated_);
        std::swap(rows_, other.rows_);
        std::swap(columns_, other.columns_);
        std::swap(storage_, other.storage_);
    }

private:
    static T firstScratch() {
        if constexpr (std::is_arithmetic_v<T>) {
            return T(-1);
        } else {
            return T{};
        }
    }

    std::size_t position(int row, int column) const {
        return static_cast<std::size_t>(row - 1) +
               static_cast<std::size_t>(column - 1) * static_cast<std::size_t>(rows_);
    }

    void reshape(int rows, int columns) {
        rows = std::max(rows, 0);
        columns = std::max(columns, 0);
        const auto needed = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
        if (needed > allocated_ || !ownsStorage_) {
            T* fresh = needed > 0 ? new T[needed] : nullptr;
            if (ownsStorage_) {
                delete[] storage_;
            }
            storage_ = fresh;
            allocated_ = needed;
            ownsStorage_ = true;
        }
        count_ = needed;
        rows_ = rows;
        columns_ = columns;
    }

    T scratch_ = firstScratch();
    bool ownsStorage_ = true;
    std::size_t count_ = 0;
    std::size_t allocated_ = 0;
    std::int32_t rows_ = 0;
    std::int32_t columns_ = 0;
    T* storage_ = nullptr;
};

/// Copies rows r1..r2 and columns c1..c2 of `source` into `target` from its (1, 1). A source element outside the
/// source reads as its scratch value; a target element outside the target is skipped.
template <class T>
void copyBlock(const matrix<T>& source, int r1, int r2, int c1, int c2, matrix<T>& target) {
    const auto last = [](int from, int to, int room) {
        return static_cast<int>(std::min<std::int64_t>(std::int64_t{to} - from + 1, room));
    };
    const int rows = last(r1, r2, target.rows());
    const int columns = last(c1, c2, target.columns());
    if (rows < 1 || columns < 1) {
        return;
    }
    if (source.contains(r1, c1) && source.contains(r1 + (rows - 1), c1 + (columns - 1))) {
        for (int j = 1; j <= columns; ++j) {
            std::copy_n(&source(r1, c1 + (j - 1)), rows, target.column(j));
        }
        return;
    }
    for (int j = 1; j <= columns; ++j) {
        for (int i = 1; i <= rows; ++i) {
            target(i, j) = source(r1 + (i - 1), c1 + (j - 1));
        }
    }
}

}  // namespace quorva
