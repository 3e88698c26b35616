#include "engine/correlated_draw.h"

#include <algorithm>
#include <optional>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/latin_hypercube.h"
#include "engine/run_state.h"
#include "numerics/core.h"
#include "numerics/linear_algebra.h"
#include "quorva/catalogue.h"

namespace quorva {
namespace {

/// Labels that the tables have room for: as many as were set up.
int labelCount() { return std::min(run.correlation.nCorr, run.correlation.CorrNormals.rows()); }

int fieldOf(int label) { return wholeNumber(run.correlation.CorrGroups(label, groupcolumn::field)); }

void drawIndependentNormals(int* seed, short seedInit, int* seedUpdate) {
    CorrelationState& state = run.correlation;
    for (int label = 1; label <= labelCount(); ++label) {
        const int stream = wholeNumber(state.CorrGroups(label, groupcolumn::stream));
        const double uniform = getLHSRandom01(-1, stream, 0.0, 1.0, seed, seedInit, seedUpdate);
        if (state.CorrGroups(label, groupcolumn::opening) > 0.0) {
            run.fields.FieldTable(fieldOf(label), fieldcolumn::correlatedDraw) = uniform;
        }
        state.CorrNormals(label, 1) = InvCDFNormalStd(uniform);
    }
}

void mixAndMapBack() {
    CorrelationState& state = run.correlation;
    const int n = labelCount();
    M_ProductBV(state.CorrFactor, n, n, &state.CorrNormals, state.CorrUniforms);
    for (int label = 1; label <= labelCount(); ++label) {
        const int field = fieldOf(label);
        double& draw = state.CorrUniforms(label, 1);
        const double law = run.fields.FieldTable(field, fieldcolumn::law);
        if (law == law::normal || law == law::normalStd) {
            run.fields.FieldTable(field, fieldcolumn::correlatedDraw) = draw;
        }
        draw = CDFNormalStd(draw);
    }
}

/// The field of the first label whose uniform is outside the field's bounds; nothing when all are inside.
std::optional<int> firstOutside() {
    const CorrelationState& state = run.correlation;
    const matrix<double>& table = run.fields.FieldTable;
    for (int label = 1; label <= labelCount(); ++label) {
        const int field = fieldOf(label);
        const double uniform = state.CorrUniforms(label, 1);
        if (uniform < table(field, fieldcolumn::lowerProbability) ||
            uniform > table(field, fieldcolumn::upperProbability)) {
            return field;
        }
    }
    return std::nullopt;
}

void drawJointly(int* seed, short seedInit, int* seedUpdate) {
    int failing = 0;
    for (int attempts = 0;; ++attempts) {
        drawIndependentNormals(seed, seedInit, seedUpdate);
        mixAndMapBack();
        const std::optional<int> outside = firstOutside();
        failing = outside.value_or(failing);
        if (attempts > limit::redraws) {
            const matrix<double>& table = run.fields.FieldTable;
            // Column 20 of the names does not exist: the sheet is what such a read gives; intended.
            recordError(runerror::noDrawInBounds, wholeNumber(table(failing, fieldcolumn::row)),
                        wholeNumber(table(failing, fieldcolumn::column)), run.fields.FieldNames(failing, 20));
            break;
        }
        if (!outside) {
            break;
        }
    }
    for (int label = 1; label <= labelCount(); ++label) {
        run.correlation.CorrGroups(label, groupcolumn::drawn) = 1.0;
    }
}

}  // namespace
}  // namespace quorva

using namespace quorva;

double getNormalCorr(int field, int* seed, short seedInit, int* seedUpdate) {
    const int label = wholeNumber(run.fields.FieldTable(field, fieldcolumn::correlationPosition));
    if (run.correlation.CorrGroups(label, groupcolumn::drawn) == 0.0) {
        guarded([&] { drawJointly(seed, seedInit, seedUpdate); });
    }
    return run.correlation.CorrUniforms(label, 1);
}
