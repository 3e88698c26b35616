#include "stats/capability.h"

#include <utility>

#include "common/whole_number.h"
#include "engine/run_state.h"
#include "numerics/studies.h"
#include "numerics/vector_statistics.h"
#include "stats/samples.h"
#include "stats/statistic_id.h"

namespace quorva {

double capabilityStatistic(int nObs, int field, int statistic) {
    const int row = wholeNumber(std::as_const(run.fields.FieldTable)(field, fieldcolumn::capability));
    if (row < 1 || statistic < statistic::firstCapability || statistic > statistic::lastCapability) {
        return MissingValue;
    }
    const Samples samples(nObs, field);
    double mean = 0.0;
    double stdev = 0.0;
    V_MeanStdev(samples.values(), samples.size(), mean, stdev, nullptr, samples.weights(), -1, 0);
    const auto& limits = std::as_const(run.capability.SpcTable);
    double index = 0.0;
    calcPcapDescOne(nObs, limits(row, capabilitycolumn::lowerLimit), limits(row, capabilitycolumn::upperLimit),
                    limits(row, capabilitycolumn::target), run.capability.iSpcConf, stdev, mean, index,
                    statistic - statistic::firstCapability + 1);
    return index;
}

}  // namespace quorva
