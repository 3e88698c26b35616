// Whole numbers out of tables of doubles.
#pragma once

#include <limits>

namespace quorva {

/// The whole number that a table cell holds, cut towards zero. NaN gives 0; what an int cannot hold, the nearest int.
constexpr int wholeNumber(double cell) {
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    if (cell != cell) {
        return 0;
    }
    return cell <= lowest    ? std::numeric_limits<int>::min()
           : cell >= highest ? std::numeric_limits<int>::max()
                             : static_cast<int>(cell);
}

/// A count or row number that may exceed an int, kept within it.
constexpr int wholeNumber(long long value) {
    constexpr long long lowest = std::numeric_limits<int>::min();
    constexpr long long highest = std::numeric_limits<int>::max();
    return static_cast<int>(value < lowest ? lowest : value > highest ? highest : value);
}

}  // namespace quorva
