// Drives a run through the module's exported functions and a host's recalculation, in the order that the module asks
// for. It knows no workbook, so that any host that can recalculate and show a cell can use it; only one run at a time.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "frontend/results/run_results.h"
#include "frontend/results/settings.h"
#include "frontend/text/command_failure.h"

namespace quorva::frontend {

/// What the driver asks of the host that holds the model.
struct Host {
    /// Recalculates every volatile and model cell and what depends on them, on the calling thread.
    std::function<void()> recalculate;
    /// Names the cells that `showsError` will be asked for, by index.
    std::function<void(std::span<const Field>)> watch;
    /// Whether a watched cell shows an error after a recalculation.
    std::function<bool(std::size_t)> showsError;
    /// Starts the host's own random numbers (RAND and its kind); may be absent.
    std::function<void(int seed)> seedRandom;
};

/// What watches a run.
struct Observer {
    std::function<bool()> interrupted = [] { return false; };
    std::function<void(int done, int planned)> progress = [](int, int) {};
};

/// The fields of the model, in the order of their final numbers: both passes of a run, then its end. Throws
/// CommandFailure (Model) with sheet, cell and name.
std::vector<Field> describeModel(const Host& host, bool workbookModel);

/// Answers of the module during a run, from which the results are made.
struct RunRecord {
    int iterations = 0;  ///< done
    bool interrupted = false;
    int convergedAt = 0;
    std::vector<int> checks;           ///< iterations at which convergence was looked at
    bool watchesEvery = false;         ///< convergence watches every result, not only the marked ones
    std::vector<std::size_t> watched;  ///< indices of the results that convergence watches
    std::vector<double> intervals;     ///< a row per field, the columns of intervalcolumn
    std::optional<LabelledMatrix> repaired;
    SampleTable samples;
    std::vector<Tornado> tornado;
    std::vector<std::string> incidents;  ///< a sentence for each process of a run in blocks that died
    bool incomplete = false;             ///< a block is missing
};

/// Leaves the module idle, however a run ends.
class IdleAfterwards {
public:
    IdleAfterwards() = default;
    IdleAfterwards(const IdleAfterwards&) = delete;
    IdleAfterwards& operator=(const IdleAfterwards&) = delete;
    ~IdleAfterwards();
};

/// What to throw when a run is interrupted before it has anything to report.
CommandFailure interruptedTooEarly();

// The steps of a run, for those who need them one by one.

/// Throws CommandFailure (Usage) for more values than the module stores.
void checkSize(const RunSettings& settings, std::size_t fields);
/// Both passes, all iterations, the end. The module keeps its tables. Throws CommandFailure.
RunRecord drawRun(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                  const Observer& observer);
/// The fields' intervals out of the samples: of all fields, or of those with iterations without a value.
void takeIntervals(const RunSettings& settings, const std::vector<Field>& fields, RunRecord& record, bool all);
/// What follows the samples: the tornado pass, which needs the module's tables, and the analyses.
RunResults concludeRun(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                       const Observer& observer, RunRecord& record);

/// One whole run. `fields` is what describeModel found. Throws CommandFailure; whatever happens, the module is idle
/// afterwards.
RunResults runModel(const RunSettings& settings, const std::vector<Field>& fields, const Host& host,
                    const Observer& observer);

}  // namespace quorva::frontend
