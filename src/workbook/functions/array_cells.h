// Arrays as results of functions, and optional arguments.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "workbook/evaluation/function_api.h"

namespace quorva::workbook {

/// Row by row; a single cell becomes a scalar.
inline Value arrayOrScalar(int rows, int columns, std::vector<Value> cells) {
    return cells.size() == 1 ? std::move(cells[0]) : Value::array(rows, columns, std::move(cells));
}

/// Whether the argument is there and not written as empty.
inline bool present(Arguments arguments, std::size_t index) {
    return index < arguments.size() && !arguments[index].missing;
}

/// A number in a mapped argument; `otherwise` when there is none.
inline double optionalNumber(Arguments arguments, std::size_t index, double otherwise) {
    return present(arguments, index) ? arguments[index].number() : otherwise;
}

/// Negative sizes are #VALUE!, empty arrays #CALC!.
inline std::optional<ErrorCode> sizeError(double rows, double columns) {
    if (rows < 0 || columns < 0) {
        return ErrorCode::Value;
    }
    return rows == 0 || columns == 0 ? std::optional(ErrorCode::Calc) : std::nullopt;
}

/// Makes an array of this size cell by cell: make(row, column).
template <class Make>
Value buildArray(double rows, double columns, Make&& make) {
    if (rows * columns > static_cast<double>(largestArray)) {
        return ErrorCode::Num;
    }
    std::vector<Value> cells;
    cells.reserve(static_cast<std::size_t>(rows * columns));
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            cells.push_back(make(row, column));
        }
    }
    return arrayOrScalar(static_cast<int>(rows), static_cast<int>(columns), std::move(cells));
}

}  // namespace quorva::workbook
