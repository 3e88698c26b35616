#include "results/summary.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "common/guarded.h"
#include "common/whole_number.h"
#include "engine/run_state.h"
#include "numerics/quantiles.h"
#include "quorva/front_end.h"
#include "results/front_end_tables.h"

namespace quorva {

namespace {

/// The interval table: lower bound, median and upper bound of the central interval, minimum and maximum of each
/// field's first nSim values. A field without values has MissingValue throughout.
void fillIntervals(double TorProb, int nSim, matrix<double>& IntT) {
    const auto& store = std::as_const(run.sampling.SampleStore);
    std::array<double, intervalcolumn::columns> probabilities{};
    probabilities[intervalcolumn::lower - 1] = TorProb;
    probabilities[intervalcolumn::median - 1] = 0.5;
    probabilities[intervalcolumn::upper - 1] = 1.0 - TorProb;
    probabilities[intervalcolumn::minimum - 1] = 0.0;
    probabilities[intervalcolumn::maximum - 1] = 1.0;
    std::array<double, intervalcolumn::columns> quantiles{};
    const int n = std::clamp(nSim, 0, store.rows());
    const int fields = std::min(run.fields.nFields, IntT.rows());
    std::vector<double> values;
    for (int field = 1; field <= fields; ++field) {
        values.clear();
        if (n > 0 && field <= store.columns()) {
            values.assign(store.column(field), store.column(field) + n);
        }
        quantilesOf(values, probabilities, quantiles);
        for (int j = 1; j <= std::min(intervalcolumn::columns, IntT.columns()); ++j) {
            IntT(field, j) = quantiles[static_cast<std::size_t>(j - 1)];
        }
    }
}

/// Bounds and movements of the convergence table with the names of their fields. *pConv becomes the last column that
/// carries a field: its number, not a count.
void fillConvergence(matrix<double>& ResConv, matrix<std::u16string>& ConvStr, int* pConv) {
    const auto& table = std::as_const(run.convergence.table);
    const int columns = std::min(wholeNumber(2LL * run.fields.nRes), table.columns());
    copyBlock(table, 1, convergencerow::rows, 1, columns, ResConv);
    for (int j = 1; j <= columns; ++j) {
        const int field = table(convergencetable::field, j) > 0.0 ? wholeNumber(table(convergencetable::field, j)) : 0;
        if (field < 1) {
            continue;
        }
        if (ConvStr.contains(j, 1)) {
            ConvStr(j, 1) = std::as_const(run.fields.FieldNames)(field, namecolumn::field);
        }
        if (pConv != nullptr) {
            *pConv = j;
        }
    }
}

int convergenceColumns() { return wholeNumber(2LL * run.fields.nRes); }

}  // namespace

}  // namespace quorva

void SimEnd(double TorProb, int nSim, quorva::matrix<double>* ResGen, quorva::matrix<std::u16string>* ResStr,
            quorva::matrix<double>* ResConv, quorva::matrix<std::u16string>* ConvStr, int* pConv,
            quorva::matrix<double>* IntT) {
    using namespace quorva;
    guarded([&] {
        run.status.running = hostFalse;
        run.status.analysing = hostFalse;
        const int n = run.fields.nFields;
        copyBlock(run.fields.FieldTable, 1, n, 1, generalcolumn::columns, *ResGen);
        copyBlock(run.fields.FieldNames, 1, n, 1, namecolumn::columns, *ResStr);
        fillIntervals(TorProb, nSim, *IntT);
        if (isTrue(run.convergence.iCheckConv)) {
            fillConvergence(*ResConv, *ConvStr, pConv);
        }
    });
}

void Cpp_SimEnd(double TorProb, int nSim, double* ResGen, quorva::HostString* ResStr, double* ResConv,
                quorva::HostString* ConvStr, int* pConv, double* IntT) {
    using namespace quorva;
    guarded([&] {
        const int n = run.fields.nFields;
        auto general = clearedTable(ResGen, n, generalcolumn::columns);
        auto convergence = clearedTable(ResConv, convergencerow::rows, std::max(1, convergenceColumns()));
        auto intervals = clearedTable(IntT, n, intervalcolumn::columns);
        LentStrings names(ResStr, n, namecolumn::columns);
        LentStrings monitored(ConvStr, convergenceColumns(), 1);
        SimEnd(TorProb, nSim, &general, names.texts(), &convergence, monitored.texts(), pConv, &intervals);
        monitored.writeBack();
        names.writeBack();
    });
}
