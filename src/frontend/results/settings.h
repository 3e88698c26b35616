// What a run is asked to do, as plain values.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quorva/wire_format.h"

namespace quorva::frontend {

/// A square table with a name per row and column, stored row by row. NaN marks an empty cell.
struct LabelledMatrix {
    std::vector<std::string> names;
    std::vector<double> values;  ///< names.size() squared

    double& at(std::size_t row, std::size_t column) { return values[row * names.size() + column]; }
    double at(std::size_t row, std::size_t column) const { return values[row * names.size() + column]; }
};

/// Limits of one field for the capability indices. NaN: absent.
struct SpecificationLimits {
    std::string name;
    double lower;
    double upper;
    double target;
};

struct ConvergenceSettings {
    /// The statistic whose confidence interval has to settle.
    ConvergenceCriterion criterion = ConvergenceCriterion::Mean;
    double percentile = 50.0;       ///< in percent, for Percentile
    double tolerancePercent = 3.0;  ///< largest accepted movement of a bound between two checks
    double confidence = 0.95;       ///< two-sided level of the intervals
    int checkEvery = 100;           ///< iterations between two checks
    bool allResults = false;        ///< watch every result, marked or not
};

/// The one-at-a-time analysis.
struct TornadoSettings {
    int points = 5;
    TornadoSpread spread = TornadoSpread::Interval;
    TornadoBase base = TornadoBase::Median;
    double width = 0.1;  ///< half-width of the band, as a share of the base value
};

enum class SensitivityMeasure { Rank, Linear };

constexpr int largestStrata = 100000;

struct RunSettings {
    int iterations = 10000;
    int seed = 1;               ///< 1..2147483647
    std::optional<int> strata;  ///< Latin hypercube strata; absent: one per iteration, 0: plain random sampling
    bool workbookModel = true;  ///< fields may stand on several sheets
    std::optional<LabelledMatrix> correlation;
    std::vector<SpecificationLimits> capability;
    double capabilityConfidence = 0.95;
    std::optional<ConvergenceSettings> convergence;
    double tail = 0.05;  ///< probability on each side of the central interval
    std::optional<TornadoSettings> tornado;
    SensitivityMeasure sensitivity = SensitivityMeasure::Rank;
    std::vector<std::string> requirements;

    int effectiveStrata() const { return strata.value_or(iterations < largestStrata ? iterations : largestStrata); }
};

}  // namespace quorva::frontend
