#include "stats/descriptive.h"

#include <span>
#include <utility>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/run_state.h"
#include "numerics/law_table.h"
#include "numerics/quantiles.h"
#include "numerics/vector_statistics.h"
#include "stats/capability.h"
#include "stats/ordered_samples.h"
#include "stats/running_statistics.h"
#include "stats/samples.h"
#include "stats/statistic_id.h"

namespace quorva {

namespace {

/// Every identifier of the catalogue lies where the dispatch below looks for it.
constexpr bool inRangeOfItsPath(const StatisticEntry& entry) {
    switch (entry.path) {
        case StatisticPath::RunningMoments:
            return isRunningStatistic(entry.statistic);
        case StatisticPath::StoredSamples:
            return entry.statistic >= 1 && entry.statistic <= statistic::lastOfSamples;
        case StatisticPath::Theoretical:
            return entry.statistic >= statistic::firstTheoretical && entry.statistic <= statistic::lastTheoretical;
        case StatisticPath::Capability:
            return entry.statistic >= statistic::firstCapability && entry.statistic <= statistic::lastCapability;
    }
    return false;
}
static_assert([] {
    for (const auto& entry : statisticTable) {
        if (!inRangeOfItsPath(entry)) {
            return false;
        }
    }
    return true;
}());

/// Quantiles of a field's values, from their order where it is kept.
class Quantiles {
public:
    Quantiles(const Samples& samples, int field) : samples_(samples) {
        if (samples.weights() == nullptr) {
            ordered_ = orderedSamples(field, {samples.values(), static_cast<std::size_t>(samples.size())});
        }
    }
    double operator()(double p) const {
        if (!ordered_.empty()) {
            return quantileOfOrdered(ordered_, p);
        }
        return samples_.weights() == nullptr
                   ? V_QuantileM(samples_.values(), samples_.size(), nullptr, p)
                   : V_QuantileMW(samples_.values(), samples_.size(), nullptr, samples_.weights(), p);
    }

private:
    const Samples& samples_;
    std::span<const double> ordered_;
};

double frequency(const Samples& samples, double value) {
    constexpr double tolerance = 2.220446049250313E-16;
    return V_Freq(samples.values(), samples.size(), samples.weights(), value, tolerance);
}

double skewnessBowley(const Quantiles& quantile) {
    const double q1 = quantile(0.25);
    const double median = quantile(0.5);
    const double q3 = quantile(0.75);
    return q3 - q1 > 0.0 ? (q1 - 2.0 * median + q3) / (q3 - q1) : 0.0;
}

double meanAbsDeviation(const Samples& samples) {
    double mean = 0.0;
    double unused[7];
    V_MeanVarSkewPKurtP(samples.values(), samples.size(), mean, unused[0], unused[1], unused[2], unused[3], unused[4],
                        unused[5], unused[6], nullptr, samples.weights(), 0, 0);
    return V_MeanAbsDev(samples.values(), samples.size(), mean, nullptr, samples.weights());
}

std::pair<double, double> geometricMoments(const Samples& samples) {
    double mean = 0.0;
    double deviation = 0.0;
    V_GMeanGSD(samples.values(), samples.size(), nullptr, samples.weights(), mean, deviation);
    return {mean, deviation};
}

/// Statistics of the stored values; only what the identifier needs is computed.
double storedStatistic(int nObs, int field, int statistic) {
    const Samples samples(nObs, field);
    switch (statistic) {
        case statistic::freqMin:
            return frequency(samples, V_Min(samples.values(), samples.size(), nullptr));
        case statistic::freqMax:
            return frequency(samples, V_Max(samples.values(), samples.size(), nullptr));
        case statistic::firstQuartile:
            return Quantiles(samples, field)(0.25);
        case statistic::median:
            return Quantiles(samples, field)(0.5);
        case statistic::thirdQuartile:
            return Quantiles(samples, field)(0.75);
        case statistic::skewnessBowley:
            return skewnessBowley(Quantiles(samples, field));
        case statistic::meanAbsDeviation:
            return meanAbsDeviation(samples);
        case statistic::medianAbsDeviation:
            return V_MedianAbsDev(samples.values(), samples.size(), Quantiles(samples, field)(0.5), nullptr,
                                  samples.weights());
        case statistic::geometricMean:
            return geometricMoments(samples).first;
        case statistic::geometricStdev:
            return geometricMoments(samples).second;
        case statistic::harmonicMean:
            return V_HarmonicMean(samples.values(), samples.size(), nullptr, samples.weights());
        default:
            return MissingValue;
    }
}

double theoreticalStatistic(int field, int statistic) {
    const auto& table = std::as_const(run.fields.FieldTable);
    if (!isKind(field, FieldKind::Distribution) || statistic > statistic::lastTheoretical) {
        return MissingValue;
    }
    return TheoStat(wholeNumber(table(field, fieldcolumn::law)), statistic - statistic::lastOfSamples,
                    table(field, fieldcolumn::param1), table(field, fieldcolumn::param2),
                    table(field, fieldcolumn::param3), table(field, fieldcolumn::param4));
}

double fieldStatistic(int nObs, int field, int statistic) {
    if (isRunningStatistic(statistic)) {
        return runningStatistic(nObs, field, statistic);
    }
    if (nObs < 1) {
        return 0.0;
    }
    if (statistic <= statistic::lastOfSamples) {
        return storedStatistic(nObs, field, statistic);
    }
    return statistic <= statistic::lastOfLaw ? theoreticalStatistic(field, statistic)
                                             : capabilityStatistic(nObs, field, statistic);
}

}  // namespace

}  // namespace quorva

double SimCalcStat(int nObs, int field, int /*ownField*/, int statistic) {
    return quorva::guarded([&] { return quorva::fieldStatistic(nObs, field, statistic); }, quorva::MissingValue);
}
