// Statistics that are read from a field's running moments in constant time.
#pragma once

#include <cstdint>

#include "quorva/catalogue.h"

namespace quorva {

/// Bit k is set when statistic k is read from the running moments.
constexpr std::uint32_t runningStatistics = [] {
    std::uint32_t mask = 0;
    for (const auto& entry : statisticTable) {
        if (entry.path == StatisticPath::RunningMoments) {
            mask |= std::uint32_t{1} << entry.statistic;
        }
    }
    return mask;
}();
static_assert(runningStatistics == 0x1FDFF13E);

constexpr bool isRunningStatistic(int statistic) {
    return statistic >= 0 && statistic < 32 && (runningStatistics >> statistic & 1U) != 0;
}

/// A statistic of the running path for a field after nObs iterations.
double runningStatistic(int nObs, int field, int statistic);

}  // namespace quorva
