#pragma once

#include <cmath>

#include "quorva/wire_format.h"

namespace quorva {

/// Square root; MissingValue of a negative number.
inline double safeSqrt(double x) { return x < 0.0 ? MissingValue : std::sqrt(x); }

}  // namespace quorva
