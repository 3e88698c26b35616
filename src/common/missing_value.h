// The marker for "no value" in statistics and returned tables, and the host's booleans.
#pragma once

#include <bit>
#include <cstdint>

#include "quorva/automation.h"

namespace quorva {

/// "No value"; as a default of a distribution field, "use the theoretical mean". Compared by exact equality. The
/// literal has 15 digits, so it is not the lowest double.
constexpr double MissingValue = -1.79769313486231E+308;
/// The positive twin of MissingValue, at which running minima start.
constexpr double MissingValueTwin = 1.79769313486231E+308;
static_assert(std::bit_cast<std::uint64_t>(MissingValue) == 0xFFEFFFFFFFFFFFE2);
static_assert(std::bit_cast<std::uint64_t>(MissingValueTwin) == 0x7FEFFFFFFFFFFFE2);

constexpr HostBool hostTrue = -1;
constexpr HostBool hostFalse = 0;
constexpr bool isTrue(HostBool flag) { return flag == hostTrue; }
constexpr HostBool toHostBool(bool value) { return value ? hostTrue : hostFalse; }

}  // namespace quorva
