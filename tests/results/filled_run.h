// A run state filled by hand: fields of given kinds with names a, b, c … on sheet [Book]Model, and values.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>

#include "engine/run_state.h"

namespace quorva {

/// SampleStore(i, j) is 100 j + i; column c of field j's row is 1000 j + c but for the kind.
inline void fillRun(std::initializer_list<double> kinds, int nSim) {
    run = RunState{};
    const int n = static_cast<int>(kinds.size());
    auto& fields = run.fields;
    fields.nFields = fields.registered = n;
    fields.nRes = static_cast<int>(std::count(kinds.begin(), kinds.end(), 3.0));
    fields.FieldTable = matrix<double>(n, fieldcolumn::columns);
    fields.FieldFlags = matrix<double>(n, momentcolumn::columns);
    fields.FieldNames = matrix<std::u16string>(n, 2);
    run.sampling.nSim = nSim;
    run.sampling.SampleStore = matrix<double>(nSim, n);
    for (int j = 1; j <= n; ++j) {
        for (int c = 1; c <= fieldcolumn::columns; ++c) {
            fields.FieldTable(j, c) = 1000 * j + c;
        }
        fields.FieldTable(j, fieldcolumn::kind) = *(kinds.begin() + (j - 1));
        fields.FieldNames(j, 1) = std::u16string(1, static_cast<char16_t>(u'a' + j - 1));
        fields.FieldNames(j, 2) = u"[Book]Model";
        for (int i = 1; i <= nSim; ++i) {
            run.sampling.SampleStore(i, j) = 100 * j + i;
        }
    }
}

}  // namespace quorva
