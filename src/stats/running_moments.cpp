#include "stats/running_moments.h"

#include <algorithm>
#include <cmath>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/field_registry.h"
#include "engine/run_state.h"
#include "stats/descriptive.h"

namespace quorva {
namespace {

/// One-pass update of count, mean and the second to fourth central sums (Pébay 2008).
void update(matrix<double>& flags, int field, double x) {
    double& weight = flags(field, momentcolumn::weight);
    double& count = flags(field, momentcolumn::count);
    double& m2 = flags(field, momentcolumn::m2);
    double& m3 = flags(field, momentcolumn::m3);
    double& m4 = flags(field, momentcolumn::m4);
    double& mean = flags(field, momentcolumn::mean);

    weight += 1.0;
    count = wholeNumber(count) + 1;
    const double d = x - mean;
    const double b = 1.0 / weight;
    const double b2 = std::pow(b, 2.0);
    const double d2 = std::pow(d, 2.0);
    m4 += std::pow(d, 4.0) * ((6.0 * b - 4.0 - 3.0 * b2) * b + 1.0) + (3.0 * b * d * m2 - 2.0 * m3) * (2.0 * b * d);
    m3 = m3 + std::pow(d, 3.0) * (1.0 - 3.0 * b + 2.0 * b2) - 3.0 * b * d * m2;
    m2 += d2 * (1.0 - b);
    mean += d * b;
}

/// The value of a statistic field that was not recalculated in the iteration now ending.
void fillIn(int field) {
    const matrix<double>& table = run.fields.FieldTable;
    const auto cell = [&](int column) { return wholeNumber(table(field, column)); };
    const auto described = static_cast<int>(getFieldInfo(
        cell(fieldcolumn::referenceColumn), cell(fieldcolumn::referenceRow), cell(fieldcolumn::referenceSheet)));
    const auto own =
        static_cast<int>(getFieldInfo(cell(fieldcolumn::column), cell(fieldcolumn::row), cell(fieldcolumn::sheetSlot)));
    const SamplingState& sampling = run.sampling;
    const int nObs = std::min(sampling.iteration, sampling.nSim);
    const double value = SimCalcStat(nObs, described, own, cell(fieldcolumn::statistic));
    // One row below the row of the iteration that ends, where its other fields are; intended.
    const int row = sampling.nSim > 0 ? sampling.iteration % sampling.nSim + 1 : 0;
    if (run.sampling.SampleStore.contains(row, own)) {
        run.sampling.SampleStore(row, own) = value;
    }
}

}  // namespace
}  // namespace quorva

using namespace quorva;

void CalcSimStat(int field, double value) {
    matrix<double>& flags = run.fields.FieldFlags;
    if (!flags.contains(field, momentcolumn::maximum) || flags(field, momentcolumn::collect) != 1.0) {
        return;
    }
    if (value != MissingValue) {
        update(flags, field, value);
    }
    // A missing value counts here: it becomes the minimum; intended.
    double& minimum = flags(field, momentcolumn::minimum);
    double& maximum = flags(field, momentcolumn::maximum);
    minimum = value < minimum ? value : minimum;
    maximum = value > maximum ? value : maximum;
}

void SimUpdateStat() {
    matrix<double>& table = run.fields.FieldTable;
    const int fields = std::min(run.fields.nFields, table.rows());
    for (int field = 1; field <= fields; ++field) {
        if (isKind(field, FieldKind::Statistic) && table(field, fieldcolumn::done) == 0.0) {
            guarded([&] { fillIn(field); });
        }
    }
    if (fields > 0) {
        std::fill_n(table.column(fieldcolumn::done), fields, 0.0);
    }
}
