// The quantile tables in use: which laws at which parameters have been asked for often enough to have one.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "numerics/law_functions.h"

namespace quorva {

/// By law index: calls in a row that met neither a table nor their own count.
extern std::array<std::atomic<std::uint32_t>, lawCount> callsWithoutTable;

/// Whether to look for a table at this call. A law whose parameters change with every call gains nothing: after 64 such
/// calls in a row only one in 32 looks again.
inline bool worthLookingUp(int law) {
    constexpr std::uint32_t patience = 64;
    constexpr std::uint32_t skippedCalls = 32;
    if (law < 0 || law >= static_cast<int>(lawCount)) {
        return false;
    }
    auto& calls = callsWithoutTable[static_cast<std::size_t>(law)];
    const std::uint32_t inARow = calls.load(std::memory_order_relaxed);
    if (inARow < patience) {
        return true;
    }
    calls.store(inARow + 1, std::memory_order_relaxed);
    return inARow % skippedCalls == 0;
}

/// The quantile out of a table, or NaN where the law has to be asked; worthLookingUp(law) holds. Counts the calls of
/// each law and shape; the call that makes one worth a table builds it. Locations and scales are factored out, so that
/// laws which differ in nothing else share a table. Reading is safe from several threads.
double tabulatedQuantile(int law, double u, const LawParameters& parameters);

}  // namespace quorva
