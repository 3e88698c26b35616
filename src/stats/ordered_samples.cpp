#include "stats/ordered_samples.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "engine/run_state.h"
#include "numerics/quantiles.h"

namespace quorva {

namespace {

/// More values than this are not taken in at once: a selection is cheaper.
constexpr std::size_t newcomers = 64;
/// More values that have changed than this end the keeping of an order.
constexpr int changesFollowed = 4;
/// Bounds of the memory taken: 16 bytes for a value.
constexpr std::size_t keptValues = 200'000;
constexpr std::size_t keptColumns = 40;

bool sameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

void insert(std::vector<double>& ordered, double value) {
    ordered.insert(std::upper_bound(ordered.begin(), ordered.end(), value, NanLast()), value);
}

void remove(std::vector<double>& ordered, double value) {
    ordered.erase(std::lower_bound(ordered.begin(), ordered.end(), value, NanLast()));
}

/// Follows values that were replaced since they were taken in: a statistic that is asked before its field has drawn
/// sees a row that is written later. False when there are too many.
bool followChanges(OrderedColumn& column, std::span<const double> values) {
    if (column.seen.empty() ||
        std::memcmp(column.seen.data(), values.data(), column.seen.size() * sizeof(double)) == 0) {
        return true;
    }
    int changes = 0;
    for (std::size_t i = 0; i < column.seen.size(); ++i) {
        if (sameBits(column.seen[i], values[i])) {
            continue;
        }
        if (++changes > changesFollowed) {
            return false;
        }
        remove(column.ordered, column.seen[i]);
        insert(column.ordered, values[i]);
        column.seen[i] = values[i];
    }
    return true;
}

bool canFollow(const OrderedColumn& column, std::span<const double> values) {
    // The two differ when memory ran out between them.
    return column.seen.size() == column.ordered.size() && values.size() >= column.seen.size() &&
           values.size() - column.seen.size() <= newcomers && values.size() <= keptValues;
}

}  // namespace

std::span<const double> orderedSamples(int field, std::span<const double> values) {
    auto& columns = run.sampling.ordered;
    auto found = columns.find(field);
    if (found == columns.end()) {
        if (values.size() > newcomers || columns.size() >= keptColumns) {
            return {};
        }
        found = columns.try_emplace(field).first;
    }
    OrderedColumn& column = found->second;
    if (!canFollow(column, values) || !followChanges(column, values)) {
        columns.erase(found);
        return {};
    }
    for (const double value : values.subspan(column.seen.size())) {
        insert(column.ordered, value);
        column.seen.push_back(value);
    }
    return column.ordered;
}

}  // namespace quorva
