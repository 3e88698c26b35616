// Convergence of a run: confidence bounds of the monitored results, and how far they moved since the last check.
#include <algorithm>
#include <cmath>
#include <utility>

#include "common/guarded.h"
#include "engine/run_state.h"
#include "numerics/core.h"
#include "numerics/laws.h"
#include "quorva/front_end.h"
#include "stats/safe_sqrt.h"

namespace quorva {

namespace {

struct Interval {
    double lower;
    double upper;
};

/// Standard deviation and excess kurtosis of the monitored field at hand. A field with fewer than two values leaves
/// them as they were for the field before it.
struct Spread {
    double stdev = 0.0;
    double kurtosis = 0.0;

    void read(int field) {
        const auto& flags = std::as_const(run.fields.FieldFlags);
        const double count = flags(field, momentcolumn::weight);
        if (count > 1.0) {
            const double variance = flags(field, momentcolumn::m2) / (count - 1.0);
            stdev = safeSqrt(variance);
            kurtosis = (flags(field, momentcolumn::m4) / count) / (variance * variance) - 3.0;
        }
    }
};

Interval meanBounds(int field, const Spread& spread, double n) {
    const double mean = std::as_const(run.fields.FieldFlags)(field, momentcolumn::mean);
    const double h = InvCDFNormalStd(run.convergence.iconf) * spread.stdev / std::sqrt(n);
    return {mean - h, mean + h};
}

/// Intended: no quantile of the confidence level enters this width, and the excess kurtosis is used less 1.
Interval stdevBounds(const Spread& spread, double n) {
    const double root = safeSqrt((spread.kurtosis - 1.0) / (4.0 * n - 4.0));
    const double h = root == MissingValue ? MissingValue : spread.stdev * root;
    return {spread.stdev - h, spread.stdev + h};
}

Interval percentileBounds(int field) {
    const auto& store = std::as_const(run.sampling.SampleStore);
    const int n = std::min(run.sampling.iteration, store.rows());
    Interval bounds{MissingValue, MissingValue};
    if (n >= 1 && store.contains(1, field)) {
        V_ConfQuantilesLargeSample(store.column(field), n, run.convergence.ipercentile / 100.0, run.convergence.iconf,
                                   bounds.lower, bounds.upper);
    }
    return bounds;
}

/// Relative movement of a bound that was `old`. Intended: divided by the signed old value, so that a negative bound
/// moves by a negative amount; a bound that was 0 has not moved.
double movement(double difference, double old) { return old == 0.0 ? 0.0 : std::abs(difference) / old; }

void recordBounds(int lowerColumn, const Interval& bounds, bool firstCheck) {
    auto& table = run.convergence.table;
    const int upperColumn = lowerColumn + 1;
    if (!firstCheck) {
        const double oldLower = table(convergencetable::bound, lowerColumn);
        const double oldUpper = table(convergencetable::bound, upperColumn);
        table(convergencetable::movement, lowerColumn) = movement(bounds.lower - oldLower, oldLower);
        table(convergencetable::movement, upperColumn) = movement(oldUpper - bounds.upper, oldUpper);
    }
    table(convergencetable::bound, lowerColumn) = bounds.lower;
    table(convergencetable::bound, upperColumn) = bounds.upper;
}

bool monitored(int field) {
    const auto& table = std::as_const(run.fields.FieldTable);
    return isKind(field, FieldKind::Result) &&
           (isTrue(run.convergence.iallRes) || !(table(field, fieldcolumn::convergence) <= 0.0));
}

/// Brings the table up to date; returns the number of monitored fields.
int updateBounds(bool firstCheck) {
    auto& table = run.convergence.table;
    const double n = run.sampling.iteration;
    Spread spread;
    int k = 0;
    for (int field = 1; field <= run.fields.nFields && convergencecolumn::upper(k + 1) <= table.columns(); ++field) {
        if (!monitored(field)) {
            continue;
        }
        ++k;
        const int lowerColumn = convergencecolumn::lower(k);
        if (firstCheck) {
            table(convergencetable::field, lowerColumn) = field;
            table(convergencetable::field, convergencecolumn::upper(k)) = field;
        }
        spread.read(field);
        switch (static_cast<ConvergenceCriterion>(run.convergence.inCrit)) {
            case ConvergenceCriterion::Mean:
                recordBounds(lowerColumn, meanBounds(field, spread, n), firstCheck);
                break;
            case ConvergenceCriterion::StandardDeviation:
                recordBounds(lowerColumn, stdevBounds(spread, n), firstCheck);
                break;
            case ConvergenceCriterion::Percentile:
                recordBounds(lowerColumn, percentileBounds(field), firstCheck);
                break;
            default:
                break;
        }
    }
    return k;
}

int checkConvergence() {
    auto& convergence = run.convergence;
    if (convergence.table.empty()) {
        return 0;
    }
    const bool firstCheck = isTrue(convergence.firstCheck);
    const int fields = updateBounds(firstCheck);
    if (firstCheck) {
        convergence.firstCheck = hostFalse;
        return 0;
    }
    for (int j = 1; j <= convergencecolumn::columns(fields); ++j) {
        if (convergence.iconvPerc < std::abs(convergence.table(convergencetable::movement, j) * 100.0)) {
            return 0;
        }
    }
    return callcode::converged;
}

}  // namespace

}  // namespace quorva

/// 1 when no bound of a monitored result has moved by more than the tolerance since the last check, else 0. The first
/// check of a run only sets the bounds.
int Cpp_SimConv() { return quorva::guarded(quorva::checkConvergence, 0); }
