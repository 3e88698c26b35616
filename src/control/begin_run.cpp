// From a described model to a running one: checks, numbers in name order, tables of the run, what is monitored.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "control/checks.h"
#include "control/field_order.h"
#include "engine/field_registry.h"
#include "engine/run_state.h"
#include "quorva/front_end.h"

namespace quorva {
namespace {

/// What Cpp_SimBegin is told about convergence.
struct ConvergenceSettings {
    HostBool check;
    double percent;
    double confidence;
    HostBool allResults;
    int criterion;
    double percentile;
};

/// nSim x nFields as the 32-bit product that the limit has always been compared with.
int sampleCells(int nSim) {
    return static_cast<int>(static_cast<std::uint32_t>(nSim) * static_cast<std::uint32_t>(run.fields.nFields));
}

/// The true number of cells of a table; a negative dimension counts as 0.
std::int64_t cellsOf(std::int64_t rows, std::int64_t columns) {
    return std::max<std::int64_t>(rows, 0) * std::max<std::int64_t>(columns, 0);
}

/// The stratification table; false when there is no memory for it, or its rows cannot even be counted.
bool createStrata(int inbuckets) {
    if (inbuckets < 1) {
        return true;
    }
    if (inbuckets == std::numeric_limits<int>::max()) {
        return false;
    }
    run.sampling.LhsTable = {};
    try {
        run.sampling.LhsTable = matrix<double>(inbuckets + 1, run.fields.nDist);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

/// The sample store; false when it is too large to be held, which a product that wrapped around 32 bits hides from the
/// limit.
bool createSampleStore(int nSim) {
    if (cellsOf(nSim, run.fields.nFields) > limit::sampleCells) {
        return false;
    }
    run.sampling.SampleStore = {};
    run.sampling.ordered.clear();
    run.sampling.SampleStore = matrix<double>(nSim, run.fields.nFields);
    return true;
}

void setUpConvergence(const ConvergenceSettings& settings) {
    ConvergenceState& convergence = run.convergence;
    convergence.iCheckConv = settings.check;
    bool monitored = false;
    for (int field = 1; field <= run.fields.nFields; ++field) {
        if (isKind(field, FieldKind::Result) &&
            (isTrue(settings.allResults) || run.fields.FieldTable(field, fieldcolumn::convergence) > 0.0)) {
            run.fields.FieldFlags(field, momentcolumn::collect) = 1.0;
            monitored = true;
        }
    }
    if (!isTrue(settings.allResults) && !monitored) {
        convergence.iCheckConv = hostFalse;
        return;
    }
    if (!isTrue(settings.check)) {
        return;
    }
    convergence.iconvPerc = settings.percent;
    convergence.ipercentile = settings.percentile;
    convergence.iconf = settings.confidence;
    convergence.iallRes = settings.allResults;
    convergence.inCrit = settings.criterion;
    convergence.table =
        matrix<double>(convergencetable::rows, std::max(convergencecolumn::columns(run.fields.nRes), 1));
    convergence.firstCheck = hostTrue;
}

/// Keeps the running moments of every field that a statistic field describes.
void collectForStatistics() {
    const matrix<double>& table = run.fields.FieldTable;
    for (int field = 1; field <= run.fields.nFields; ++field) {
        if (!isKind(field, FieldKind::Statistic)) {
            continue;
        }
        const std::uint32_t described = getFieldInfo(wholeNumber(table(field, fieldcolumn::referenceColumn)),
                                                     wholeNumber(table(field, fieldcolumn::referenceRow)),
                                                     wholeNumber(table(field, fieldcolumn::referenceSheet)));
        run.fields.FieldFlags(static_cast<int>(described), momentcolumn::collect) = 1.0;
    }
}

int fail(int code) {
    run.status.running = hostFalse;
    return code;
}

int failOutOfMemory() {
    recordOutOfMemory();
    return fail(runerror::outOfMemory);
}

int beginRun(int nSim, int inbuckets, const ConvergenceSettings& settings, int* const counts[5]) {
    run.status.become(RunStatus::Running);
    run.sampling.iteration = 0;
    run.sampling.nSim = nSim;
    run.sampling.inbuckets = inbuckets;
    const FieldTables& fields = run.fields;
    if (fields.nDist < 1 || fields.nRes < 1 || fields.nFields < 1) {
        return fail(callcode::modelIncomplete);
    }
    if (fields.nFields > fields.registered) {
        return fail(runerror::notDescribed);
    }
    int result = isTrue(run.error.flag) ? run.error.code : 0;
    const bool stratified = createStrata(inbuckets);
    if (sampleCells(nSim) > limit::sampleCells) {
        return fail(callcode::tooManyCells);
    }
    if (!stratified) {
        return failOutOfMemory();
    }
    if (checkVarlistDoubles() < 0) {
        return fail(runerror::duplicateName);
    }
    renumberInNameOrder();
    enterFieldsInGrids();
    if (!createSampleStore(nSim)) {
        return failOutOfMemory();
    }
    const int numbers[5] = {fields.nFields, fields.nDist, fields.nSVar, fields.nRes, fields.nStat};
    for (int i = 0; i < 5; ++i) {
        *counts[i] = numbers[i];
    }
    if (isTrue(run.correlation.UseCorr)) {
        result = checkVarlistCorr();
    }
    if (isTrue(run.capability.iUseSpc)) {
        // The capability check's 0 takes the place of whatever the correlation check found; intended.
        result = checkVarlistSPC();
    }
    setUpConvergence(settings);
    if (result < 0) {
        run.status.clear();
    }
    collectForStatistics();
    return result;
}

}  // namespace
}  // namespace quorva

using namespace quorva;

int Cpp_SimBegin(int nSim, int inbuckets, HostBool iCheckConv, int /*iVerifInt*/, double iconvPerc, double iconf,
                 HostBool iallRes, int inCrit, double ipercentile, int* oFieldNbr, int* oFNbrTyp1, int* oFNbrTyp2,
                 int* oFNbrTyp3, int* oFNbrTyp4) {
    int* const counts[5] = {oFieldNbr, oFNbrTyp1, oFNbrTyp2, oFNbrTyp3, oFNbrTyp4};
    const ConvergenceSettings settings{iCheckConv, iconvPerc, iconf, iallRes, inCrit, ipercentile};
    const int begun = guarded([&] { return beginRun(nSim, inbuckets, settings, counts); }, 1);
    return begun == 1 ? failOutOfMemory() : begun;  // no step of its own gives 1
}
