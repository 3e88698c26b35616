// The order of a field's values, kept up with the iterations instead of being found anew at each of them.
#pragma once

#include <span>

namespace quorva {

/// The n values of a field in ascending order, NaN last; empty where the order is not kept, and a selection from the
/// values themselves is due. It is kept for a field that is asked for from the first iterations on: a call takes in
/// the values that have come since the call before, after checking that those taken in then are still the same.
/// Valid until the next call.
std::span<const double> orderedSamples(int field, std::span<const double> values);

}  // namespace quorva
