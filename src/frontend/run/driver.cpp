#include "frontend/run/driver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "frontend/run/analysis.h"
#include "frontend/run/host_arrays.h"
#include "frontend/run/missing_numbers.h"
#include "frontend/run/parallel.h"
#include "frontend/run/run_errors.h"
#include "frontend/run/statistics.h"
#include "frontend/run/tornado_pass.h"
#include "frontend/text/cell_address.h"
#include "frontend/text/number_text.h"
#include "quorva/front_end.h"

namespace quorva::frontend {

namespace {
/// Counts that Cpp_SimBegin returns.
struct Counts {
    int fields = 0, distributions = 0, scenarios = 0, results = 0, statistics = 0;
};

/// Column tables as the module takes them.
std::vector<double> columnMajor(const LabelledMatrix& matrix) {
    const std::size_t n = matrix.names.size();
    std::vector<double> values(n * n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            values[tableElement(i + 1, static_cast<int>(j) + 1, n)] = toModule(matrix.at(i, j));
        }
    }
    return values;
}

/// Registration and description passes. False when the correlation matrix was repaired: the repaired one is in
/// `correlation`, and the fields have not described themselves.
bool prepare(const RunSettings& settings, std::optional<LabelledMatrix>& correlation, const Host& host,
             const std::vector<Field>& fields) {
    int seed = settings.seed, used = 0;
    Cpp_SimInit(toHostBool(settings.workbookModel), &seed, hostTrue, &used);
    host.recalculate();

    const bool correlated = correlation.has_value();
    std::vector<double> matrix = correlated ? columnMajor(*correlation) : std::vector<double>(1);
    HostLabels labels(correlated ? std::span<const std::string>(correlation->names) : std::span<const std::string>{});
    std::vector<std::string> limitNames;
    std::vector<double> lower, upper, target;
    for (const SpecificationLimits& limits : settings.capability) {
        limitNames.push_back(limits.name);
        lower.push_back(toModule(limits.lower));
        upper.push_back(toModule(limits.upper));
        target.push_back(toModule(limits.target));
    }
    HostLabels limitLabels(limitNames);
    const int code = Cpp_SimInit2(toHostBool(correlated), correlated ? static_cast<int>(correlation->names.size()) : 0,
                                  matrix.data(), labels.address(), toHostBool(!limitNames.empty()),
                                  static_cast<int>(limitNames.size()), settings.capabilityConfidence, lower.data(),
                                  upper.data(), target.data(), limitLabels.address());
    if (code < 0) {
        throw runError(code, fields);
    }
    if (code == callcode::matrixRepaired) {
        const std::size_t n = correlation->names.size();
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                correlation->at(i, j) = matrix[tableElement(i + 1, static_cast<int>(j) + 1, n)];
            }
        }
        return false;
    }
    host.recalculate();
    return true;
}

Counts begin(const RunSettings& settings, bool monitored, bool everyResult, const std::vector<Field>& fields) {
    const ConvergenceSettings convergence = settings.convergence.value_or(ConvergenceSettings{});
    Counts counts;
    const int code =
        Cpp_SimBegin(settings.iterations, settings.effectiveStrata(), toHostBool(monitored), convergence.checkEvery,
                     convergence.tolerancePercent, (1 + convergence.confidence) / 2, toHostBool(everyResult),
                     static_cast<int>(convergence.criterion), convergence.percentile, &counts.fields,
                     &counts.distributions, &counts.scenarios, &counts.results, &counts.statistics);
    if (code < 0 || runErrorPending()) {
        throw runError(code, fields);
    }
    return counts;
}

/// What Cpp_SimEnd hands over.
struct EndTables {
    std::vector<double> general;
    std::vector<std::string> names, sheets;
    std::vector<double> intervals;
};

EndTables end(const Counts& counts, double tail, int iterations) {
    const std::size_t n = counts.fields;
    const auto bounds = static_cast<std::size_t>(std::max(convergencecolumn::columns(counts.results), 1));
    EndTables tables;
    tables.general.resize(n * generalcolumn::columns);
    tables.intervals.resize(n * intervalcolumn::columns);
    HostStrings texts(n * namecolumn::columns), watched(bounds);
    std::vector<double> convergence(bounds * convergencerow::rows);
    int last = 0;
    Cpp_SimEnd(tail, iterations, tables.general.data(), texts.data(), convergence.data(), watched.data(), &last,
               tables.intervals.data());
    for (std::size_t row = 1; row <= n; ++row) {
        tables.names.push_back(texts.utf8(tableElement(row, namecolumn::field, n)));
        tables.sheets.push_back(sheetOfHostName(texts.utf8(tableElement(row, namecolumn::sheet, n))));
    }
    return tables;
}

Field fieldOf(const EndTables& tables, std::size_t index, bool workbookModel) {
    const std::size_t n = tables.names.size();
    const auto column = [&](int c) { return tables.general[tableElement(index + 1, c, n)]; };
    Field field;
    field.number = static_cast<int>(index) + 1;
    field.name = tables.names[index];
    field.sheet = tables.sheets[index];
    field.kind = static_cast<FieldKind>(static_cast<int>(column(generalcolumn::kind)));
    field.row = static_cast<int>(column(generalcolumn::row));
    field.column = static_cast<int>(column(generalcolumn::column));
    field.defaultValue = noNumber;
    switch (field.kind) {
        case FieldKind::Distribution:
            field.law = static_cast<int>(column(generalcolumn::law));
            field.lowerProbability = column(generalcolumn::lowerProbability);
            field.upperProbability = column(generalcolumn::upperProbability);
            [[fallthrough]];
        case FieldKind::ScenarioVariable:
            field.parameters = {column(generalcolumn::param1), column(generalcolumn::param2),
                                column(generalcolumn::param3), column(generalcolumn::param4)};
            field.defaultValue = fromModule(column(generalcolumn::defaultValue));
            break;
        case FieldKind::Result:
            field.watched = column(generalcolumn::convergence) > 0;
            break;
        case FieldKind::Statistic:
            field.statistic = static_cast<int>(column(generalcolumn::statistic));
            field.unresolvedReference = workbookModel && column(generalcolumn::referenceSheet) < 1;
            break;
    }
    return field;
}

/// The standard deviation's own check, which the module's fixed formula does not give: textbook intervals, and the
/// module's rule for their movement.
class StdevMonitor {
public:
    StdevMonitor(const ConvergenceSettings& settings, std::vector<std::size_t> results)
        : settings_(settings), results_(std::move(results)), bounds_(2 * results_.size(), noNumber) {}

    bool converged(int iteration) {
        const bool first = std::exchange(first_, false);
        bool settled = true;
        std::vector<double> values(iteration);
        for (std::size_t i = 0; i < results_.size(); ++i) {
            Cpp_GetSimRes(static_cast<int>(results_[i]) + 1, iteration, values.data());
            double bounds[2];
            stdevInterval(values, settings_.confidence, bounds[0], bounds[1]);
            for (std::size_t k = 0; k < 2; ++k) {
                const double old = std::exchange(bounds_[2 * i + k], bounds[k]);
                settled = settled && movementPercent(bounds[k], old) <= settings_.tolerancePercent;
            }
        }
        return settled && !first;
    }

private:
    ConvergenceSettings settings_;
    std::vector<std::size_t> results_;
    std::vector<double> bounds_;
    bool first_ = true;
};

/// Iterations in which a cell showed an error, per field.
using Gaps = std::vector<std::vector<int>>;

void iterate(const RunSettings& settings, const std::vector<Field>& fields, bool monitored, const Host& host,
             const Observer& observer, RunRecord& record, Gaps& gaps) {
    std::optional<StdevMonitor> stdev;
    if (settings.convergence && !monitored) {
        stdev.emplace(*settings.convergence, record.watched);
    }
    for (int k = 1; k <= settings.iterations; ++k) {
        if (observer.interrupted()) {
            record.interrupted = true;
            break;
        }
        if (const int code = Cpp_SimNext(); code != callcode::success) {
            throw runError(code, fields);
        }
        host.recalculate();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (host.showsError(i)) {
                gaps[i].push_back(k - 1);
            }
        }
        record.iterations = k;
        observer.progress(k, settings.iterations);
        if (settings.convergence && k % settings.convergence->checkEvery == 0) {
            record.checks.push_back(k);
            if (stdev ? stdev->converged(k) : Cpp_SimConv() == callcode::converged) {
                record.convergedAt = k;
                break;
            }
        }
    }
    if (runErrorPending()) {
        throw runError(callcode::errorRecorded, fields);
    }
}

/// The stored values. A cell that shows an error was not evaluated, which leaves the store's zero in its place; such a
/// zero is no value.
void fetchSamples(const std::vector<Field>& fields, const Gaps& gaps, RunRecord& record) {
    record.samples.iterations = record.iterations;
    record.samples.columns.resize(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        auto& column = record.samples.columns[i];
        column.resize(record.iterations);
        Cpp_GetSimRes(fields[i].number, record.iterations, column.data());
        for (const int k : gaps[i]) {
            if (column[k] == 0) {
                column[k] = noNumber;
            }
        }
        for (double& value : column) {
            value = numberOrNone(value);
        }
    }
}

}  // namespace

void takeIntervals(const RunSettings& settings, const std::vector<Field>& fields, RunRecord& record, bool all) {
    const std::size_t n = fields.size();
    forEachIndex(n, [&](std::size_t i) {
        const auto& column = record.samples.columns[i];
        if (!all && std::none_of(column.begin(), column.end(), [](double x) { return std::isnan(x); })) {
            return;
        }
        const Interval interval = centralInterval(fields[i], sortColumn(column), settings.tail);
        const auto put = [&](int c, double value) { record.intervals[tableElement(i + 1, c, n)] = value; };
        put(intervalcolumn::lower, interval.lower);
        put(intervalcolumn::median, interval.median);
        put(intervalcolumn::upper, interval.upper);
        put(intervalcolumn::minimum, interval.minimum);
        put(intervalcolumn::maximum, interval.maximum);
    });
}

namespace {
/// Decides which results convergence watches.
void chooseWatched(const RunSettings& settings, const std::vector<Field>& fields, RunRecord& record) {
    const bool marked = std::any_of(fields.begin(), fields.end(), [](const Field& f) { return f.watched; });
    record.watchesEvery = !marked || (settings.convergence && settings.convergence->allResults);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].kind == FieldKind::Result && (record.watchesEvery || fields[i].watched)) {
            record.watched.push_back(i);
        }
    }
}

}  // namespace

void checkSize(const RunSettings& settings, std::size_t fields) {
    const auto cells = static_cast<std::int64_t>(settings.iterations) * static_cast<std::int64_t>(fields);
    if (cells > limit::sampleCells) {
        throw CommandFailure(ExitStatus::Usage,
                             std::to_string(settings.iterations) + " iterations of " + std::to_string(fields) +
                                 " fields are " + std::to_string(cells) + " values; at most " +
                                 groupedNumber(limit::sampleCells) + " fit: ask for at most " +
                                 std::to_string(limit::sampleCells / static_cast<std::int64_t>(fields)) +
                                 " iterations");
    }
}

CommandFailure interruptedTooEarly() { return {ExitStatus::Interrupted, "interrupted before the first iteration"}; }

IdleAfterwards::~IdleAfterwards() {
    int seed = 1, used = 0;
    Cpp_SimReset(&seed, hostTrue, &used);
}

std::vector<Field> describeModel(const Host& host, bool workbookModel) {
    const IdleAfterwards idle;
    RunSettings settings;
    settings.iterations = 1;
    settings.strata = 0;
    settings.workbookModel = workbookModel;
    std::optional<LabelledMatrix> independent;
    prepare(settings, independent, host, {});
    const Counts counts = begin(settings, false, false, {});
    const EndTables tables = end(counts, settings.tail, 1);
    std::vector<Field> fields;
    for (int i = 0; i < counts.fields; ++i) {
        fields.push_back(fieldOf(tables, i, workbookModel));
    }
    return fields;
}

RunRecord drawRun(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                  const Observer& observer) {
    RunRecord record;
    std::optional<LabelledMatrix> correlation = settings.correlation;
    host.watch(fields);
    if (host.seedRandom) {
        host.seedRandom(settings.seed);
    }
    // A repaired matrix would serve as its own factor in this run; started again, the run finds a proper factor for it.
    constexpr int mostRepairs = 3;
    for (int repairs = 0; !prepare(settings, correlation, host, fields); ++repairs) {
        if (repairs == mostRepairs) {
            throw CommandFailure(ExitStatus::Model, "the correlation matrix is impossible and could not be repaired");
        }
        record.repaired = correlation;
    }
    chooseWatched(settings, fields, record);
    const bool monitored =
        settings.convergence && settings.convergence->criterion != ConvergenceCriterion::StandardDeviation;
    const Counts counts = begin(settings, monitored, record.watchesEvery, fields);
    if (counts.fields != static_cast<int>(fields.size())) {
        throw CommandFailure(ExitStatus::Model, "the number of fields changes from one recalculation to the next");
    }
    Gaps gaps(fields.size());
    iterate(settings, fields, monitored, host, observer, record, gaps);
    if (record.iterations == 0) {
        throw interruptedTooEarly();
    }
    record.intervals = end(counts, settings.tail, record.iterations).intervals;
    fetchSamples(fields, gaps, record);
    takeIntervals(settings, fields, record, false);
    return record;
}

RunResults concludeRun(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                       const Observer& observer, RunRecord& record) {
    if (settings.tornado && !record.interrupted) {
        record.tornado = tornadoPass({*settings.tornado, settings.tail, fields, record.intervals}, host, observer);
        record.interrupted = record.tornado.empty();
    }
    return analyseRun(settings, fields, record);
}

RunResults runModel(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                    const Observer& observer) {
    checkSize(settings, fields.size());
    const IdleAfterwards idle;
    RunRecord record = drawRun(settings, fields, host, observer);
    return concludeRun(settings, fields, host, observer, record);
}

}  // namespace quorva::frontend
