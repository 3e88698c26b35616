#include "common/sort_rows.h"

#include <cmath>
#include <execution>
#include <future>
#include <utility>
#include <vector>

namespace quorva {
namespace {

constexpr std::int64_t taskThreshold = 50'000;

/// NaN keys come last in either direction, so that the order is a strict one.
bool precedes(double left, double right) { return std::isnan(right) ? !std::isnan(left) : left < right; }
bool follows(double left, double right) { return std::isnan(right) ? !std::isnan(left) : left > right; }
bool precedes(const std::u16string& left, const std::u16string& right) { return left < right; }
bool follows(const std::u16string& left, const std::u16string& right) { return left > right; }

template <class T>
using KeyedRows = std::vector<std::pair<T, int>>;

template <class T>
void rearrange(matrix<T>& table, int firstColumn, int lastColumn, const KeyedRows<T>& sorted) {
    std::vector<T> moved(sorted.size());
    for (int column = firstColumn; column <= lastColumn; ++column) {
        T* elements = table.column(column);
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            moved[i] = std::move(elements[sorted[i].second]);
        }
        std::move(moved.begin(), moved.end(), elements);
    }
}

template <class T>
void sortRows(matrix<T>& table, int rows, int cols, int keyColumn, int count, bool descending) {
    count = std::min({count, rows, table.rows()});
    cols = std::min(cols, table.columns());
    if (count < 2 || keyColumn < 1 || keyColumn > table.columns()) {
        return;
    }
    KeyedRows<T> sorted(static_cast<std::size_t>(count));
    T* keys = table.column(keyColumn);
    for (int i = 0; i < count; ++i) {
        sorted[static_cast<std::size_t>(i)] = {keys[i], i};
    }
    if (descending) {
        std::stable_sort(std::execution::par, sorted.begin(), sorted.end(),
                         [](const auto& left, const auto& right) { return follows(left.first, right.first); });
    } else {
        std::stable_sort(std::execution::par, sorted.begin(), sorted.end(),
                         [](const auto& left, const auto& right) { return precedes(left.first, right.first); });
    }
    for (int i = 0; i < count; ++i) {
        keys[i] = sorted[static_cast<std::size_t>(i)].first;
    }
    const auto left = [&] { rearrange(table, 1, keyColumn - 1, sorted); };
    const auto right = [&] { rearrange(table, keyColumn + 1, cols, sorted); };
    if (std::int64_t{rows} * cols > taskThreshold) {
        auto leftTask = std::async(std::launch::async, left);
        auto rightTask = std::async(std::launch::async, right);
        leftTask.get();
        rightTask.get();
    } else {
        left();
        right();
    }
}

}  // namespace

void SortQMatrixCol(matrix<double>& table, int rows, int cols, int keyColumn, int /*ignored*/, int count,
                    bool descending) {
    sortRows(table, rows, cols, keyColumn, count, descending);
}

void SortQMatrixCol(matrix<std::u16string>& table, int rows, int cols, int keyColumn, int /*ignored*/, int count,
                    bool descending) {
    sortRows(table, rows, cols, keyColumn, count, descending);
}

}  // namespace quorva
