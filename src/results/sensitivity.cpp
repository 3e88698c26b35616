#include "results/sensitivity.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "common/guarded.h"
#include "common/sort_rows.h"
#include "engine/run_state.h"
#include "quorva/front_end.h"

namespace quorva {

namespace {

/// Writes field number and association with field iField of every distribution; returns the sum of the squares of
/// the associations that exist. A NaN takes part and makes the sum NaN.
double readAssociations(const matrix<double>& associations, int iField, int rows, matrix<double>& table) {
    double sum = 0.0;
    int k = 0;
    for (int field = 1; field <= run.fields.nFields; ++field) {
        if (!isKind(field, FieldKind::Distribution)) {
            continue;
        }
        ++k;
        const double c = associations(iField, field);
        if (k <= rows) {
            table(k, sensitivitycolumn::field) = field;
            table(k, sensitivitycolumn::association) = c;
        }
        if (c != MissingValue) {
            sum += std::pow(c, 2.0);
        }
    }
    return sum;
}

void sensitivity(const matrix<double>& associations, int nFtyp1, int iField, int order, matrix<double>& table) {
    const int rows = std::min(nFtyp1, table.rows());
    const double sum = readAssociations(associations, iField, rows, table);
    for (int k = 1; k <= rows; ++k) {
        // Intended: a missing association goes through the same formula, overflows and so ranks first.
        const double c = table(k, sensitivitycolumn::association);
        table(k, sensitivitycolumn::contribution) = sum != 0.0 ? std::abs(c) * c / sum : 0.0;
        table(k, sensitivitycolumn::size) = std::abs(table(k, sensitivitycolumn::contribution));
    }
    if (order == 1 && rows > 0) {
        SortQMatrixCol(table, rows, sensitivitycolumn::columns, sensitivitycolumn::size, 0, rows, true);
    }
}

}  // namespace

}  // namespace quorva

void GetSensitivity(int /*nFields*/, quorva::matrix<double>* VarCovT, int nFtyp1, int iField, int order,
                    quorva::matrix<double>* SensT) {
    quorva::guarded([&] { quorva::sensitivity(*VarCovT, nFtyp1, iField, order, *SensT); });
}

void Cpp_GetSensitivity(int nFields, double* VarCovT, int nFtyp1, int iField, int order, double* SensT) {
    quorva::guarded([&] {
        auto associations = quorva::matrix<double>::over(VarCovT, nFields, nFields);
        const auto caller = quorva::matrix<double>::over(SensT, nFtyp1, quorva::sensitivitycolumn::columns);
        auto table = caller;
        GetSensitivity(nFields, &associations, nFtyp1, iField, order, &table);
        std::copy_n(table.data(), table.size(), SensT);
    });
}
