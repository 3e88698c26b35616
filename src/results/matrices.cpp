#include "results/matrices.h"

#include <algorithm>
#include <utility>

#include "common/guarded.h"
#include "engine/run_state.h"
#include "quorva/front_end.h"
#include "results/front_end_tables.h"

namespace quorva {

namespace {

/// Packs the columns of all fields of one kind, in field-number order, into `values` from column `next` on, and their
/// names beside them; `next` moves on past them. A whole stored column is copied whatever the number of iterations
/// asked for, as far as `values` has rows.
void packKind(double kind, matrix<double>& values, matrix<std::u16string>& names, int& next) {
    const auto& store = std::as_const(run.sampling.SampleStore);
    const auto& fieldNames = std::as_const(run.fields.FieldNames);
    const int rows = std::min(store.rows(), values.rows());
    for (int field = 1; field <= run.fields.nFields; ++field) {
        if (std::as_const(run.fields.FieldTable)(field, fieldcolumn::kind) != kind) {
            continue;
        }
        if (field <= store.columns() && next <= values.columns()) {
            std::copy_n(store.column(field), rows, values.column(next));
        }
        if (names.contains(next, 1)) {
            names(next, 1) = fieldNames(field, namecolumn::field);
        }
        ++next;
    }
}

void packKinds(std::initializer_list<double> kinds, matrix<double>* values, matrix<std::u16string>* names) {
    int next = 1;
    for (const double kind : kinds) {
        packKind(kind, *values, *names, next);
    }
}

constexpr double kindOf(FieldKind kind) { return static_cast<double>(kind); }

/// A front end's call: lends its table and its list of names to `accessor(values, names)`.
template <class Accessor>
void withLentTables(int nSim, int nFields, double* Res, HostString* ResStr, Accessor accessor) {
    guarded([&] {
        auto values = clearedTable(Res, nSim, std::max(1, nFields));
        LentStrings names(ResStr, nFields, 1);
        accessor(&values, names.texts());
        names.writeBack();
    });
}

}  // namespace

}  // namespace quorva

using quorva::FieldKind;
using quorva::kindOf;
using quorva::run;

void GetSimRes(int iFieldNbr, int nSim, quorva::matrix<double>* Res) {
    quorva::guarded([&] {
        if (iFieldNbr >= 1 && iFieldNbr <= run.fields.nFields) {
            copyBlock(run.sampling.SampleStore, 1, nSim, iFieldNbr, iFieldNbr, *Res);
        }
    });
}

void GetSimMat(int nSim, int nFields, quorva::matrix<double>* Res) {
    quorva::guarded([&] { copyBlock(run.sampling.SampleStore, 1, nSim, 1, nFields, *Res); });
}

void GetSimMatGrp(int /*nSim*/, int /*nFields*/, quorva::matrix<double>* Res, int FType,
                  quorva::matrix<std::u16string>* ResStr) {
    quorva::guarded([&] { quorva::packKinds({static_cast<double>(FType)}, Res, ResStr); });
}

void GetSimMatRed(int /*nSim*/, int /*nFields*/, quorva::matrix<double>* Res, quorva::matrix<std::u16string>* ResStr) {
    quorva::guarded([&] {
        quorva::packKinds({kindOf(FieldKind::Distribution), kindOf(FieldKind::Result)}, Res, ResStr);
    });
}

void GetSimMatSorted(int /*nSim*/, int /*nFields*/, quorva::matrix<double>* Res,
                     quorva::matrix<std::u16string>* ResStr) {
    quorva::guarded([&] {
        quorva::packKinds({kindOf(FieldKind::Distribution), kindOf(FieldKind::Result), kindOf(FieldKind::Statistic)},
                          Res, ResStr);
    });
}

void Cpp_GetSimRes(int iFieldNbr, int nSim, double* Res) {
    quorva::guarded([&] {
        auto values = quorva::clearedTable(Res, nSim, 1);
        GetSimRes(iFieldNbr, nSim, &values);
    });
}

void Cpp_GetSimMat(int nSim, int nFields, double* Res) {
    quorva::guarded([&] {
        auto values = quorva::clearedTable(Res, nSim, std::max(1, nFields));
        GetSimMat(nSim, nFields, &values);
    });
}

void Cpp_GetSimMatGrp(int nSim, int nFields, double* Res, int FType, quorva::HostString* ResStr) {
    quorva::withLentTables(nSim, nFields, Res, ResStr,
                           [&](auto* values, auto* names) { GetSimMatGrp(nSim, nFields, values, FType, names); });
}

void Cpp_GetSimMatRed(int nSim, int nFields, double* Res, quorva::HostString* ResStr) {
    quorva::withLentTables(nSim, nFields, Res, ResStr,
                           [&](auto* values, auto* names) { GetSimMatRed(nSim, nFields, values, names); });
}

void Cpp_GetSimMatSorted(int nSim, int nFields, double* Res, quorva::HostString* ResStr) {
    quorva::withLentTables(nSim, nFields, Res, ResStr,
                           [&](auto* values, auto* names) { GetSimMatSorted(nSim, nFields, values, names); });
}
