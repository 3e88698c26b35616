// Between the registration and the description of a model: correlation factor and groups, specification limits, and
// the tables that the fields will fill.
#include <algorithm>

#include "common/guarded.h"
#include "engine/correlation_groups.h"
#include "engine/run_state.h"
#include "numerics/linear_algebra.h"
#include "platform/front_end_arrays.h"
#include "quorva/front_end.h"

namespace quorva {
namespace {

/// Makes the correlation matrix a factor: triangular, else a symmetric square root, else repaired. Returns 0,
/// matrixRepaired, or matrixUnusable.
int factorise(matrix<double>& correlations, double* given) {
    CorrelationState& state = run.correlation;
    const int n = correlations.rows();
    M_ReplaceMissingByVal(correlations, n, n, 0.0);
    if (!isTrue(M_IsSymmetric(&correlations, n))) {
        return callcode::matrixUnusable;
    }
    int result = 0;
    if (M_CholDecomp(&correlations, n, &state.CorrFactor) >= 0) {
        state.method = FactorMethod::Triangular;
    } else if (M_SquareRoot(&correlations, n, &state.CorrFactor) >= 0) {
        state.method = FactorMethod::SquareRoot;
    } else {
        // The repaired matrix itself, not a factor of it, is what the draws are multiplied with; intended. The caller
        // gets it back and can start again with it to have a factor proper.
        state.CorrFactor = correlations;
        const bool sound = M_CorrMatFromSymMat(&state.CorrFactor, n) >= 0;
        state.method = FactorMethod::Triangular;
        result = sound ? callcode::matrixRepaired : callcode::matrixUnusable;
        copyToFrontEnd(state.CorrFactor, given);
    }
    FindSubGroups(&state.CorrFactor, n, &state.CorrGroups, &state.groups);
    return result;
}

int setUpCorrelation(double* iCorrMat, HostStringArray** labels) {
    CorrelationState& state = run.correlation;
    const int n = std::max(state.nCorr, 0);
    matrix<double> correlations(n, n, static_cast<const double*>(iCorrMat));
    state.CorrLabels = fromHostStringArray(labels ? *labels : nullptr, n);
    state.CorrFactor = matrix<double>(n, n);
    state.CorrGroups = matrix<double>(n, groupcolumn::count);
    state.CorrNormals = matrix<double>(n, 1);
    state.CorrUniforms = matrix<double>(n, 1);
    return factorise(correlations, iCorrMat);
}

void setUpCapability(const double* iLSL, const double* iUSL, const double* itarget, HostStringArray** labels) {
    CapabilityState& state = run.capability;
    if (!isTrue(state.iUseSpc)) {
        return;
    }
    state.SpcLabels = fromHostStringArray(labels ? *labels : nullptr, state.inSpc);
    state.SpcTable = matrix<double>(state.inSpc, capabilitycolumn::columns);
    for (int i = 1; i <= state.inSpc; ++i) {
        state.SpcTable(i, capabilitycolumn::lowerLimit) = iLSL[i - 1];
        state.SpcTable(i, capabilitycolumn::upperLimit) = iUSL[i - 1];
        state.SpcTable(i, capabilitycolumn::target) = itarget[i - 1];
    }
}

void createFieldTables() {
    FieldTables& fields = run.fields;
    fields.registered = std::max(fields.registered, 1);
    fields.FieldTable = matrix<double>(fields.registered, fieldcolumn::columns);
    fields.FieldFlags = matrix<double>(fields.registered, momentcolumn::columns);
    fields.FieldNames = matrix<std::u16string>(fields.registered, namecolumn::columns);
    std::fill_n(fields.FieldFlags.column(momentcolumn::minimum), fields.registered, MissingValueTwin);
    std::fill_n(fields.FieldFlags.column(momentcolumn::maximum), fields.registered, MissingValue);
}

/// Empties the grids in use; false when there is no memory for one.
bool clearGrids() {
    const int slots = isTrue(run.sheets.workbookModel) ? std::clamp(run.sheets.inUse, 1, limit::sheets) : 1;
    return std::all_of(run.sheets.grids.begin(), run.sheets.grids.begin() + slots,
                       [](FieldGrid& grid) { return grid.clear(); });
}

/// What is counted again in the description pass.
void restartCounts() {
    run.fields.nFields = 0;
    run.fields.nDist = 0;
    run.fields.nSVar = 0;
    run.fields.nRes = 0;
    run.fields.nStat = 0;
    run.correlation.groups = 0;
}

int outOfMemory() {
    recordOutOfMemory();
    run.correlation.UseCorr = hostFalse;
    run.correlation.nCorr = 0;
    return runerror::outOfMemory;
}

}  // namespace
}  // namespace quorva

using namespace quorva;

int Cpp_SimInit2(HostBool UseCorr, int nCorr, double* iCorrMat, HostStringArray** LabelCorrMat, HostBool iUseSpc,
                 int inSpc, double iSpcConf, double* iLSL, double* iUSL, double* itarget, HostStringArray** LabelSPC) {
    if (run.fields.nDist < 1 || run.fields.nRes < 1 || run.fields.registered < 1) {
        run.status.clear();
        return callcode::nothingRegistered;
    }
    if (isTrue(run.error.flag)) {
        return run.error.code;
    }
    restartCounts();
    run.correlation.UseCorr = UseCorr;
    run.correlation.nCorr = nCorr;
    run.correlation.method = FactorMethod::None;
    const int result = guarded(
        [&] {
            const int factorised = isTrue(UseCorr) ? setUpCorrelation(iCorrMat, LabelCorrMat) : 0;
            if (factorised < 0) {
                return factorised;
            }
            run.capability.iSpcConf = iSpcConf;
            run.capability.iUseSpc = iUseSpc;
            run.capability.inSpc = inSpc;
            setUpCapability(iLSL, iUSL, itarget, LabelSPC);
            createFieldTables();
            return clearGrids() ? factorised : runerror::outOfMemory;
        },
        runerror::outOfMemory);
    if (result == runerror::outOfMemory) {
        return outOfMemory();
    }
    if (result >= 0) {
        run.status.become(RunStatus::Prepared);
    }
    return result;
}
