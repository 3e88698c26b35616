// Fields of a run by their names.
#pragma once

#include <string>

#include "engine/run_state.h"

namespace quorva::testing {

/// The number of the field of that name; 0 when there is none.
inline int numberOf(const std::u16string& name) {
    for (int i = 1; i <= run.fields.nFields; ++i) {
        if (run.fields.FieldNames(i, namecolumn::field) == name) {
            return i;
        }
    }
    return 0;
}

inline double stored(int iteration, const std::u16string& name) {
    return run.sampling.SampleStore(iteration, numberOf(name));
}

}  // namespace quorva::testing
