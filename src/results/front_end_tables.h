// Lists of strings that a front end lends to an accessor.
#pragma once

#include <algorithm>

#include "common/matrix.h"
#include "platform/front_end_arrays.h"

namespace quorva {

/// A caller's list of strings: read on construction, written back entry by entry where the text has changed.
class LentStrings {
public:
    LentStrings(HostString* strings, int rows, int columns)
        : lent_(strings),
          texts_(strings == nullptr ? matrix<std::u16string>() : readHostStrings(strings, rows, columns)) {}

    matrix<std::u16string>* texts() { return &texts_; }
    void writeBack() {
        if (!texts_.empty()) {
            writeBackHostStrings(texts_, lent_);
        }
    }

private:
    HostString* lent_;
    matrix<std::u16string> texts_;
};

/// A caller's table of rows x columns doubles, set to 0 and written in place.
inline matrix<double> clearedTable(double* storage, int rows, int columns) {
    auto table = matrix<double>::over(storage, rows, columns);
    std::fill_n(table.data(), table.size(), 0.0);
    return table;
}

}  // namespace quorva
