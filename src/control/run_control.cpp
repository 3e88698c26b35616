// The front end's calls that start a run, step it, and tell what went wrong.
#include "common/guarded.h"
#include "engine/run_state.h"
#include "numerics/laws.h"
#include "numerics/uniforms.h"
#include "platform/front_end_arrays.h"
#include "quorva/front_end.h"
#include "stats/running_moments.h"

namespace quorva {
namespace {

void resetSeed(const int* given, HostBool initialise, int* next) {
    SeedState& state = run.sampling.seed;
    state.initialise = initialise;
    state.seed = *given;
    GetSeed(&state.seed, &state.initialise, next);
    state.inUse = state.seed;
    state.initialise = hostTrue;
    GetSeedUpdate(&state.updated);
    *next = state.updated;
}

void releaseTables() {
    FieldTables& fields = run.fields;
    fields.FieldTable = {};
    fields.FieldFlags = {};
    fields.FieldNames = {};
    run.sampling.SampleStore = {};
    run.sampling.LhsTable = {};
    run.sampling.ordered.clear();
    run.sampling.permutation = {};
    run.convergence.table = {};
    CorrelationState& correlation = run.correlation;
    correlation.CorrFactor = {};
    correlation.CorrLabels = {};
    correlation.CorrGroups = {};
    correlation.CorrNormals = {};
    correlation.CorrUniforms = {};
    run.capability.SpcLabels = {};
    run.capability.SpcTable = {};
    run.tornado.intervals = {};
    run.tornado.points = {};
    run.tornado.store = {};
    run.tornado.resultOrder = {};
    for (FieldGrid& grid : run.sheets.grids) {
        grid.release();
    }
    run.sheets.inUse = 0;
}

/// The second location and its text, as the front end receives them.
void handOverSecondLocation(int* line, int* column, HostStringArray** sheets) {
    matrix<std::u16string> texts(2, 1);
    texts(1, 1) = run.error.second.sheet;
    texts(2, 1) = run.error.extraText;
    *line = run.error.second.line;
    *column = run.error.second.column;
    *sheets = toHostStringArray(texts);
}

}  // namespace
}  // namespace quorva

using namespace quorva;

void Cpp_SimReset(int* mioSeed, HostBool miSeedInit, int* moSeed) {
    guarded([&] {
        resetSeed(mioSeed, miSeedInit, moSeed);
        // Quantile tables are built by use: a run starts without any, so that one seed gives one run.
        useQuantileTables(true);
        run.sampling.inbuckets = 0;
        run.correlation.UseCorr = hostFalse;
        run.correlation.nCorr = 0;
        run.error.flag = hostFalse;
        releaseTables();
        run.status.clear();
        Cpp_SimNotVolatile();
    });
}

int Cpp_SimInit(HostBool iWorkbookModel, int* mioSeed, HostBool miSeedInit, int* moSeed) {
    Cpp_SimReset(mioSeed, miSeedInit, moSeed);
    const bool allocated = run.sheets.grids.front().clear();
    run.sheets.workbookModel = iWorkbookModel;
    run.sheets.inUse = 0;
    run.fields.registered = 0;
    run.fields.current = 0;
    run.fields.nDist = 0;
    run.fields.nSVar = 0;
    run.fields.nRes = 0;
    run.fields.nStat = 0;
    run.status.become(RunStatus::Initialised);
    if (!allocated) {
        recordOutOfMemory();
    }
    Cpp_SimVolatile();
    *moSeed = run.sampling.seed.inUse;
    return 0;
}

int Cpp_SimGetStatus() { return static_cast<int>(run.status.current()); }

int Cpp_SimNext() {
    return guarded(
        [] {
            SimUpdateStat();
            ++run.sampling.iteration;
            if (isTrue(run.correlation.UseCorr)) {
                for (int label = 1; label <= run.correlation.CorrGroups.rows(); ++label) {
                    run.correlation.CorrGroups(label, groupcolumn::drawn) = 0.0;
                }
            }
            return isTrue(run.error.flag) ? callcode::errorRecorded : callcode::success;
        },
        callcode::errorRecorded);
}

void Cpp_SimError(int* oSimError, int* oEline, int* oEcol, HostStringArray** oESheet) {
    if (!isTrue(run.error.flag)) {
        return;
    }
    guarded([&] {
        *oSimError = run.error.code;
        if (*oEline == askForSecondCell) {
            handOverSecondLocation(oEline, oEcol, oESheet);
            return;
        }
        matrix<std::u16string> sheet(1, 1);
        sheet(1, 1) = run.error.first.sheet;
        *oEline = run.error.first.line;
        *oEcol = run.error.first.column;
        *oESheet = toHostStringArray(sheet);
    });
}

void Cpp_SimError2(int* oSimError2, int* oEline, int* oEcol, HostStringArray** oESheet) {
    guarded([&] {
        *oSimError2 = run.error.code;
        handOverSecondLocation(oEline, oEcol, oESheet);
    });
}
