// A number that does not exist: NaN in the front end, MissingValue at the module's edge.
#pragma once

#include <cmath>
#include <limits>

#include "quorva/wire_format.h"

namespace quorva::frontend {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

inline double fromModule(double value) { return value == MissingValue ? noNumber : value; }
/// A value of a run: infinity is no number either.
inline double numberOrNone(double value) { return std::isfinite(value) ? fromModule(value) : noNumber; }
inline double toModule(double value) { return std::isnan(value) ? MissingValue : value; }

}  // namespace quorva::frontend
