// The one-at-a-time analysis after a run: every input moves over its points while the others stay at their base.
#pragma once

#include <vector>

#include "frontend/run/driver.h"

namespace quorva::frontend {

struct TornadoPlan {
    TornadoSettings settings;
    double tail;  ///< of the central interval
    const std::vector<Field>& fields;
    const std::vector<double>& intervals;  ///< as Cpp_SimEnd gives it: intervalcolumn
};

/// One analysis per result, in field order; nothing when interrupted. Needs a run that has ended and not been reset.
std::vector<Tornado> tornadoPass(const TornadoPlan& plan, const Host& host, const Observer& observer);

}  // namespace quorva::frontend
