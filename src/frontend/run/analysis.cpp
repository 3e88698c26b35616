#include "frontend/run/analysis.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

#include "frontend/run/convergence_criterion.h"
#include "frontend/run/missing_numbers.h"
#include "frontend/run/parallel.h"
#include "frontend/run/statistics.h"
#include "frontend/text/number_text.h"
#include "quorva/front_end.h"

namespace quorva::frontend {

namespace {
/// Distributions, then results: the order of the module's reduced matrix.
std::vector<std::size_t> correlatedFields(const std::vector<Field>& fields) {
    std::vector<std::size_t> order;
    for (const FieldKind kind : {FieldKind::Distribution, FieldKind::Result}) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (fields[i].kind == kind) {
                order.push_back(i);
            }
        }
    }
    return order;
}

/// Names and columns of the correlated fields; the columns are taken or copied from `from`.
template <class Columns>
LabelledMatrix correlationOf(const std::vector<Field>& fields, Columns&& from) {
    std::vector<std::string> names;
    std::vector<std::vector<double>> columns;
    for (const std::size_t i : correlatedFields(fields)) {
        names.push_back(fields[i].name);
        if constexpr (std::is_lvalue_reference_v<Columns>) {
            columns.push_back(from[i]);
        } else {
            columns.push_back(std::move(from[i]));
        }
    }
    return correlationMatrix(std::move(names), std::move(columns));
}

double largestDifference(const LabelledMatrix& a, const LabelledMatrix& b) {
    double largest = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i) {
        largest = std::max(largest, std::fabs(a.values[i] - b.values[i]));
    }
    return largest;
}

/// The module's ranked contributions for one result. An input without a correlation comes last with no contribution.
Sensitivity sensitivityOf(std::size_t result, const std::vector<Field>& fields, std::vector<double>& table,
                          int distributions) {
    const int n = static_cast<int>(fields.size());
    const std::size_t rows = distributions;
    std::vector<double> ranked(rows * sensitivitycolumn::columns);
    constexpr int largestFirst = 1;
    Cpp_GetSensitivity(n, table.data(), distributions, static_cast<int>(result) + 1, largestFirst, ranked.data());
    Sensitivity sensitivity{fields[result].name, {}};
    std::vector<SensitivityInput> undefined;
    for (std::size_t row = 1; row <= rows; ++row) {
        const auto column = [&](int c) { return ranked[tableElement(row, c, rows)]; };
        const std::string& name = fields[static_cast<std::size_t>(column(sensitivitycolumn::field)) - 1].name;
        const double correlation = column(sensitivitycolumn::association);
        if (correlation == MissingValue) {
            undefined.push_back({name, noNumber, noNumber});
        } else {
            sensitivity.inputs.push_back({name, correlation, column(sensitivitycolumn::contribution)});
        }
    }
    sensitivity.inputs.insert(sensitivity.inputs.end(), undefined.begin(), undefined.end());
    return sensitivity;
}

std::vector<Sensitivity> sensitivities(const RunSettings& settings, const std::vector<Field>& fields,
                                       const Correlations& correlations) {
    const std::vector<std::size_t> order = correlatedFields(fields);
    const std::size_t n = fields.size();
    const LabelledMatrix& matrix =
        settings.sensitivity == SensitivityMeasure::Rank ? correlations.rank : correlations.linear;
    std::vector<double> table(n * n, MissingValue);
    int distributions = 0;
    for (std::size_t a = 0; a < order.size(); ++a) {
        distributions += fields[order[a]].kind == FieldKind::Distribution ? 1 : 0;
        for (std::size_t b = 0; b < order.size(); ++b) {
            table[tableElement(order[a] + 1, static_cast<int>(order[b]) + 1, n)] = toModule(matrix.at(a, b));
        }
    }
    std::vector<Sensitivity> all;
    for (std::size_t i = 0; i < n; ++i) {
        if (fields[i].kind == FieldKind::Result) {
            all.push_back(sensitivityOf(i, fields, table, distributions));
        }
    }
    return all;
}

/// The intervals that the checks compared, from the samples with the module's formulas.
Convergence convergenceOf(const ConvergenceSettings& settings, const std::vector<Field>& fields,
                          const RunRecord& record) {
    Convergence convergence{
        criterionText(settings), record.convergedAt > 0, record.convergedAt, record.watchesEvery, {}, {}};
    for (const std::size_t i : record.watched) {
        convergence.watched.push_back(fields[i].name);
    }
    for (const int iteration : record.checks) {
        ConvergenceCheck check{iteration, {}};
        for (const std::size_t i : record.watched) {
            const std::span<const double> values(record.samples.columns[i].data(), iteration);
            ConvergenceBound bound{fields[i].name, noNumber, noNumber, noNumber};
            switch (settings.criterion) {
                case ConvergenceCriterion::Mean:
                    meanInterval(values, settings.confidence, bound.lower, bound.upper);
                    break;
                case ConvergenceCriterion::StandardDeviation:
                    stdevInterval(values, settings.confidence, bound.lower, bound.upper);
                    break;
                case ConvergenceCriterion::Percentile:
                    percentileInterval(values, settings.percentile / 100, settings.confidence, bound.lower,
                                       bound.upper);
                    break;
            }
            if (!convergence.checks.empty()) {
                const ConvergenceBound& old = convergence.checks.back().bounds[check.bounds.size()];
                bound.movement =
                    std::max(movementPercent(bound.lower, old.lower), movementPercent(bound.upper, old.upper));
            }
            check.bounds.push_back(std::move(bound));
        }
        convergence.checks.push_back(std::move(check));
    }
    return convergence;
}

Scatter scatterOf(const Sensitivity& sensitivity, std::size_t result, const std::vector<Field>& fields,
                  const SampleTable& samples) {
    constexpr std::size_t most = 800;
    if (sensitivity.inputs.empty() || std::isnan(sensitivity.inputs[0].correlation)) {
        return {};
    }
    Scatter scatter{sensitivity.inputs[0].name, {}, {}};
    const auto& x = samples.columns[fieldIndex(fields, scatter.input)];
    const auto& y = samples.columns[result];
    const std::size_t step = std::max<std::size_t>(1, (x.size() + most - 1) / most);
    for (std::size_t k = 0; k < x.size(); k += step) {
        if (!std::isnan(x[k]) && !std::isnan(y[k])) {
            scatter.x.push_back(x[k]);
            scatter.y.push_back(y[k]);
        }
    }
    return scatter;
}

/// What the values of one field give reason to warn of.
void warnOfValues(const Field& field, const Summary& summary, int iterations, std::vector<std::string>& warnings) {
    const std::string who = "'" + field.name + "' (" + cellAddress(field) + ")";
    const std::string errors = std::to_string(summary.errors) + " of " + std::to_string(iterations) + " iterations";
    if (field.kind == FieldKind::Distribution && summary.errors > 0) {
        warnings.push_back("the distribution " + who + " gave no number in " + errors +
                           ": its parameters define no law there");
    } else if (field.kind == FieldKind::Result && summary.count == 0) {
        warnings.push_back("the result " + who + " is not numeric: it shows an error or a text in every iteration");
    } else if (field.kind == FieldKind::Result && summary.errors > 0) {
        warnings.push_back("the result " + who + " is an error in " + errors + "; they are left out of its statistics");
    }
    const bool varies = field.kind == FieldKind::Distribution || field.kind == FieldKind::Result;
    if (varies && summary.count > 1 && summary.minimum == summary.maximum) {
        warnings.push_back(std::string(field.kind == FieldKind::Result ? "the result " : "the distribution ") + who +
                           " never changes: it is " + readableNumber(summary.minimum) + " in every iteration");
    }
    if (field.unresolvedReference) {
        warnings.push_back("the statistic " + who +
                           " refers to another sheet or to no cell, which is not resolved: it has no value");
    }
}

/// A scenario variable that moves in steps may need more points than there are to cross its interval.
void warnOfSteps(const TornadoSettings& tornado, RunResults& results) {
    for (const Field& field : results.fields) {
        const ScenarioRange range = field.scenarioRange();
        if (field.kind != FieldKind::ScenarioVariable || !range.inSteps || !(range.step > 0)) {
            continue;
        }
        const double last = range.lower + (tornado.points - 1) * range.step;
        if (last + range.step <= range.upper) {
            const double steps = std::floor((range.upper - range.lower) / range.step);
            results.warnings.push_back("the tornado moves '" + field.name + "' (" + cellAddress(field) +
                                       ") in steps of " + readableNumber(range.step) + " from " +
                                       readableNumber(range.lower) + " to " + readableNumber(last) +
                                       " only; --points " + readableNumber(steps + 1) + " reaches " +
                                       readableNumber(range.lower + steps * range.step));
        }
    }
}

void warnOfRun(const RunSettings& settings, RunResults& results) {
    if (!results.tornado.empty()) {
        warnOfSteps(*settings.tornado, results);
    }
    if (results.correlations.repaired) {
        results.warnings.push_back(
            "the correlation matrix is impossible (not positive semi-definite) and was replaced "
            "by the nearest possible one; the largest change of an entry is " +
            readableNumber(results.correlations.repairDistance, 3));
    }
    if (results.convergence && !results.convergence->converged) {
        results.warnings.push_back("convergence was not reached within " + std::to_string(results.iterations) +
                                   " iterations (" + results.convergence->criterion + ", tolerance " +
                                   readableNumber(settings.convergence->tolerancePercent) + " %)");
    }
    if (results.interrupted) {
        results.warnings.push_back("interrupted after " + std::to_string(results.iterations) + " of " +
                                   std::to_string(settings.iterations) + " iterations");
    }
}

/// What each column tells by itself. Sorting the columns is most of the work; they do not depend on each other.
struct ColumnResults {
    std::vector<Summary> summary;
    std::vector<Interval> intervals;
    std::vector<std::vector<double>> ranks;  ///< of distributions and results
    std::vector<Histogram> histograms;       ///< of results
};

ColumnResults analyseColumns(const RunSettings& settings, const std::vector<Field>& fields,
                             const SampleTable& samples) {
    const std::size_t n = fields.size();
    ColumnResults found{std::vector<Summary>(n), std::vector<Interval>(n), std::vector<std::vector<double>>(n),
                        std::vector<Histogram>(n)};
    forEachIndex(n, [&](std::size_t i) {
        const auto& column = samples.columns[i];
        const SortedColumn sorted = sortColumn(column);
        found.summary[i] = summarise(fields[i], column, sorted);
        found.intervals[i] = centralInterval(fields[i], sorted, settings.tail);
        if (fields[i].kind == FieldKind::Distribution || fields[i].kind == FieldKind::Result) {
            found.ranks[i] = ranksOf(column, sorted);
        }
        if (fields[i].kind == FieldKind::Result) {
            found.histograms[i] = histogramOf(sorted);
        }
    });
    return found;
}

std::vector<ResultCharts> chartsOf(const std::vector<Field>& fields, const SampleTable& samples,
                                   const std::vector<Sensitivity>& sensitivity, std::vector<Histogram> histograms) {
    std::vector<ResultCharts> charts;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].kind == FieldKind::Result) {
            charts.push_back({fields[i].name, std::move(histograms[i]), traceOf(samples.columns[i]),
                              scatterOf(sensitivity[charts.size()], i, fields, samples)});
        }
    }
    return charts;
}
}  // namespace

RunResults analyseRun(const RunSettings& settings, const std::vector<Field>& fields, RunRecord& record) {
    RunResults results;
    results.settings = settings;
    results.iterations = record.iterations;
    results.interrupted = record.interrupted;
    results.incomplete = record.incomplete;
    results.fields = fields;
    // One after the other: a large run leaves room for one more copy of its values.
    results.correlations.linear = correlationOf(fields, record.samples.columns);
    ColumnResults columns = analyseColumns(settings, fields, record.samples);
    results.summary = std::move(columns.summary);
    results.intervals = std::move(columns.intervals);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        warnOfValues(fields[i], results.summary[i], record.iterations, results.warnings);
    }
    results.warnings.insert(results.warnings.end(), record.incidents.begin(), record.incidents.end());
    results.correlations.rank = correlationOf(fields, std::move(columns.ranks));
    results.correlations.names = results.correlations.rank.names;
    results.correlations.requested = settings.correlation;
    results.correlations.repaired = record.repaired;
    if (record.repaired) {
        results.correlations.repairDistance = largestDifference(*settings.correlation, *record.repaired);
    }
    results.sensitivity = sensitivities(settings, fields, results.correlations);
    if (settings.convergence) {
        results.convergence = convergenceOf(*settings.convergence, fields, record);
    }
    for (const SpecificationLimits& limits : settings.capability) {
        const auto& column = record.samples.columns[fieldIndex(fields, limits.name)];
        results.capability.push_back(capabilityOf(limits, column, settings.capabilityConfidence));
    }
    results.charts = chartsOf(fields, record.samples, results.sensitivity, std::move(columns.histograms));
    results.tornado = std::move(record.tornado);
    warnOfRun(settings, results);
    results.samples = std::move(record.samples);
    return results;
}

}  // namespace quorva::frontend
