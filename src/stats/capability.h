// Process-capability indices of a field.
#pragma once

namespace quorva {

/// Capability statistic (81 to 103) of the first nObs values (at least one) of a field, with the specification limits
/// that were given for it. MissingValue for a field without limits and for any other identifier.
double capabilityStatistic(int nObs, int field, int statistic);

}  // namespace quorva
