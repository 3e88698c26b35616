// What a run found, as plain structures from which every report is written. Numbers that do not exist are NaN.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/results/settings.h"
#include "frontend/text/cell_address.h"

namespace quorva::frontend {

/// What a scenario variable may be.
struct ScenarioRange {
    double lower, upper;
    bool inSteps;  ///< or anything between the bounds
    double step;
};

/// A field of the model as it described itself.
struct Field {
    int number = 0;  ///< 1-based, in name order
    std::string name;
    std::string sheet;
    int row = 0;  ///< 0-based, as the host gives it
    int column = 0;
    FieldKind kind = FieldKind::Distribution;
    int law = 0;        ///< distribution: law identifier
    int statistic = 0;  ///< statistic: statistic identifier
    /// Distribution: law parameters; scenario variable: lower, upper, type (ScenarioMode), step.
    std::array<double, 4> parameters{};
    double defaultValue = 0;      ///< shown outside a run; NaN for results and statistics
    double lowerProbability = 0;  ///< distribution: bounds of the draw
    double upperProbability = 1;
    bool watched = false;              ///< result: marked for convergence
    bool unresolvedReference = false;  ///< statistic: describes a cell that is no field of its own sheet

    /// Of a scenario variable.
    ScenarioRange scenarioRange() const {
        const auto [lower, upper, type, step] = parameters;
        return {lower, upper, type != static_cast<double>(ScenarioMode::Quantitative), step};
    }
};

/// "Costs!B7": where a field stands.
inline std::string cellAddress(const Field& field) { return cellAddress(field.sheet, field.row, field.column); }

/// Names of the fields, or of those of one kind.
inline std::vector<std::string> fieldNames(const std::vector<Field>& fields,
                                           std::optional<FieldKind> kind = std::nullopt) {
    std::vector<std::string> names;
    for (const Field& field : fields) {
        if (!kind || field.kind == *kind) {
            names.push_back(field.name);
        }
    }
    return names;
}

/// Index of the field with a name; as many as there are fields when there is none.
inline std::size_t fieldIndex(const std::vector<Field>& fields, std::string_view name) {
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const Field& field) { return field.name == name; });
    return static_cast<std::size_t>(found - fields.begin());
}

/// Probabilities of the reported percentiles, in percent.
constexpr std::array<int, 9> reportedPercentiles{1, 5, 10, 25, 50, 75, 90, 95, 99};

struct Summary {
    std::string name;
    FieldKind kind = FieldKind::Result;
    long count = 0;   ///< iterations that gave a number
    long errors = 0;  ///< iterations that gave none
    double mean = 0, standardError = 0, stdev = 0, variance = 0;
    double skewness = 0;  ///< Fisher (G1)
    double kurtosis = 0;  ///< excess, Fisher (G2)
    double minimum = 0, maximum = 0;
    std::array<double, reportedPercentiles.size()> percentiles{};

    /// One of reportedPercentiles.
    double percentile(int percent) const {
        const auto* found = std::find(reportedPercentiles.begin(), reportedPercentiles.end(), percent);
        return percentiles[static_cast<std::size_t>(found - reportedPercentiles.begin())];
    }
};

/// What a short table shows of a field: mean, standard deviation, minimum, P5, P50, P95, maximum.
inline std::array<double, 7> keyFigures(const Summary& summary) {
    return {summary.mean,           summary.stdev,          summary.minimum, summary.percentile(5),
            summary.percentile(50), summary.percentile(95), summary.maximum};
}

/// Central interval of a field; the tails have the probability of RunSettings::tail.
struct Interval {
    std::string name;
    double lower = 0, median = 0, upper = 0, minimum = 0, maximum = 0;
};

struct Histogram {
    std::vector<double> edges;  ///< one more than counts
    std::vector<long> counts;
    std::vector<double> cumulative;  ///< share of the values up to the upper edge of each class
};

struct Correlations {
    std::vector<std::string> names;  ///< distributions, then results
    LabelledMatrix rank;
    LabelledMatrix linear;
    std::optional<LabelledMatrix> requested;
    std::optional<LabelledMatrix> repaired;
    double repairDistance = 0;  ///< largest change of an entry by the repair
};

struct SensitivityInput {
    std::string name;
    double correlation;
    double contribution;  ///< signed share of the explained variability
};

struct Sensitivity {
    std::string result;
    std::vector<SensitivityInput> inputs;  ///< largest contribution first
};

struct TornadoInput {
    std::string name;
    double low, high, swing;
    std::vector<double> values;  ///< the result at each point; NaN where the point left the simulated range
};

struct Tornado {
    std::string result;
    double base;  ///< the result with every input at its base value
    std::vector<std::string> points;
    std::vector<TornadoInput> inputs;  ///< widest swing first
};

struct ConvergenceBound {
    std::string name;
    double lower, upper;
    double movement;  ///< in percent, the larger of both bounds; NaN at the first check
};

struct ConvergenceCheck {
    int iteration;
    std::vector<ConvergenceBound> bounds;
};

struct Convergence {
    std::string criterion;  ///< "mean", "stdev" or "percentile=P"
    bool converged = false;
    int at = 0;                 ///< iteration of convergence; 0 when not reached
    bool watchesEvery = false;  ///< every result, not only the marked ones
    std::vector<std::string> watched;
    std::vector<ConvergenceCheck> checks;
};

/// Running mean of a result with the 95 % interval, for the convergence trace of the report.
struct Trace {
    std::vector<int> iterations;
    std::vector<double> mean, lower, upper;
};

/// Points of the strongest input against a result.
struct Scatter {
    std::string input;
    std::vector<double> x, y;
};

constexpr int capabilityIndices = 23;
struct CapabilityName {
    const char* key;    ///< in JSON and in requirements
    const char* label;  ///< for people
};
/// In the order of the numerical library's indices 1 to 23.
constexpr std::array<CapabilityName, capabilityIndices> capabilityNames{{
    {"cp", "Cp"},
    {"cpl", "Cpl"},
    {"cpu", "Cpu"},
    {"cpk", "Cpk"},
    {"pp", "Pp"},
    {"ppl", "Ppl"},
    {"ppu", "Ppu"},
    {"ppk", "Ppk"},
    {"cpm", "Cpm"},
    {"cpm_boyles", "Cpm (Boyles)"},
    {"cp_5_15", "Cp 5.15"},
    {"cpk_5_15", "Cpk 5.15"},
    {"cpmk", "Cpmk"},
    {"cs_wright", "Wright's Cs"},
    {"z_below", "Z below"},
    {"z_above", "Z above"},
    {"z_total", "Z total"},
    {"p_below", "p below"},
    {"p_above", "p above"},
    {"p_total", "p total"},
    {"ppm_below", "PPM below"},
    {"ppm_above", "PPM above"},
    {"ppm_total", "PPM total"},
}};

/// Index from 0 of a key; nothing when it is none.
inline std::optional<int> capabilityIndex(std::string_view key) {
    for (int i = 0; i < capabilityIndices; ++i) {
        if (key == capabilityNames[i].key) {
            return i;
        }
    }
    return std::nullopt;
}

struct Capability {
    SpecificationLimits limits;
    std::array<double, capabilityIndices> indices{};
};

struct RequirementOutcome {
    std::string expression;
    double value;
    double limit;
    bool passed;
};

/// What the charts of one result are drawn from.
struct ResultCharts {
    std::string name;
    Histogram histogram;
    Trace trace;
    Scatter scatter;
};

/// The values of a run, one column per field in field-number order; NaN where an iteration gave no number.
struct SampleTable {
    int iterations = 0;
    std::vector<std::vector<double>> columns;
};

struct RunResults {
    std::string workbook;
    RunSettings settings;
    int iterations = 0;  ///< done
    bool interrupted = false;
    bool incomplete = false;  ///< iterations were lost with a process that died
    std::vector<Field> fields;
    std::vector<Summary> summary;
    std::vector<Interval> intervals;
    Correlations correlations;
    std::vector<Sensitivity> sensitivity;
    std::vector<Tornado> tornado;
    std::optional<Convergence> convergence;
    std::vector<Capability> capability;
    std::vector<RequirementOutcome> requirements;
    std::vector<std::string> notes;  ///< where a setting came from
    std::vector<std::string> warnings;
    std::vector<ResultCharts> charts;
    SampleTable samples;
};

}  // namespace quorva::frontend
