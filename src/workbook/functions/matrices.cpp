// Matrix functions and SUMPRODUCT.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

Value matrixProduct(Call& call, Arguments arguments) {
    const auto left = toMatrix(call, arguments[0]);
    if (!left) {
        return left.error();
    }
    const auto right = toMatrix(call, arguments[1]);
    if (!right) {
        return right.error();
    }
    if (left->columns != right->rows) {
        return ErrorCode::Value;
    }
    call.spend(static_cast<double>(left->rows) * left->columns * right->columns);
    NumberMatrix product{left->rows, right->columns,
                         std::vector<double>(static_cast<std::size_t>(left->rows) * right->columns)};
    for (int i = 0; i < left->rows; ++i) {
        for (int k = 0; k < left->columns; ++k) {
            const double factor = left->at(i, k);
            for (int j = 0; j < right->columns; ++j) {
                product.at(i, j) += factor * right->at(k, j);
            }
        }
    }
    return fromMatrix(product);
}

Result<NumberMatrix> squareMatrix(const Call& call, const Argument& argument) {
    auto matrix = toMatrix(call, argument);
    if (matrix && matrix->rows != matrix->columns) {
        return ErrorCode::Value;
    }
    if (matrix) {
        call.spend(std::pow(matrix->rows, 3));
    }
    return matrix;
}

/// Gaussian elimination with partial pivoting of a square matrix, in place; the same steps are applied to `right`, when
/// there is one. Returns the determinant; stops at 0.
double eliminate(NumberMatrix& matrix, NumberMatrix* right) {
    const int n = matrix.rows;
    double determinant = 1;
    for (int step = 0; step < n; ++step) {
        int pivot = step;
        for (int row = step + 1; row < n; ++row) {
            if (std::fabs(matrix.at(row, step)) > std::fabs(matrix.at(pivot, step))) {
                pivot = row;
            }
        }
        if (matrix.at(pivot, step) == 0) {
            return 0;
        }
        if (pivot != step) {
            determinant = -determinant;
            for (int column = 0; column < n; ++column) {
                std::swap(matrix.at(step, column), matrix.at(pivot, column));
                if (right) {
                    std::swap(right->at(step, column), right->at(pivot, column));
                }
            }
        }
        determinant *= matrix.at(step, step);
        for (int row = step + 1; row < n; ++row) {
            const double factor = matrix.at(row, step) / matrix.at(step, step);
            for (int column = step; column < n; ++column) {
                matrix.at(row, column) -= factor * matrix.at(step, column);
            }
            for (int column = 0; right && column < n; ++column) {
                right->at(row, column) -= factor * right->at(step, column);
            }
        }
    }
    return determinant;
}

NumberMatrix identity(int n) {
    NumberMatrix matrix{n, n, std::vector<double>(static_cast<std::size_t>(n) * n)};
    for (int i = 0; i < n; ++i) {
        matrix.at(i, i) = 1;
    }
    return matrix;
}

Value determinant(Call& call, Arguments arguments) {
    auto matrix = squareMatrix(call, arguments[0]);
    return matrix ? Value(eliminate(*matrix, nullptr)) : Value(matrix.error());
}

Value inverse(Call& call, Arguments arguments) {
    auto matrix = squareMatrix(call, arguments[0]);
    if (!matrix) {
        return matrix.error();
    }
    const int n = matrix->rows;
    NumberMatrix result = identity(n);
    if (eliminate(*matrix, &result) == 0) {
        return ErrorCode::Num;
    }
    for (int row = n - 1; row >= 0; --row) {
        for (int column = 0; column < n; ++column) {
            double rest = result.at(row, column);
            for (int k = row + 1; k < n; ++k) {
                rest -= matrix->at(row, k) * result.at(k, column);
            }
            result.at(row, column) = rest / matrix->at(row, row);
        }
    }
    return fromMatrix(result);
}

Value unitMatrix(Call&, Arguments arguments) {
    const double n = std::trunc(arguments[0].number());
    if (n < 1) {
        return ErrorCode::Value;
    }
    return n > 4096 ? Value(ErrorCode::Num) : fromMatrix(identity(static_cast<int>(n)));
}

Value transpose(Call& call, Arguments arguments) {
    if (arguments[0].value.isError()) {
        return arguments[0].value;
    }
    const Grid grid = arguments[0].grid(call);
    if (grid.size() > largestArray) {
        return ErrorCode::Num;
    }
    std::vector<Value> cells(static_cast<std::size_t>(grid.size()));
    grid.forEach([&](const Value& value, int row, int column) {
        cells[static_cast<std::size_t>(column) * grid.rows() + row] = value;
    });
    return cells.size() == 1 ? cells[0] : Value::array(grid.columns(), grid.rows(), std::move(cells));
}

/// SUMPRODUCT of ranges too large to be laid out side by side: cell by cell of those that exist.
Value sumProductOfFewCells(Call& call, Arguments arguments) {
    for (const Argument& argument : arguments) {
        if (const auto error = forEachNumber(call, argument, plainNumbers, [](double) {})) {
            return *error;
        }
    }
    double total = 0;
    arguments[0].grid(call).forEach([&](const Value& value, int row, int column) {
        double product = value.isNumber() ? value.number() : 0;
        for (std::size_t i = 1; i < arguments.size() && product != 0; ++i) {
            const Value factor = arguments[i].grid(call).at(row, column);
            product *= factor.isNumber() ? factor.number() : 0;
        }
        total += product;
    });
    return total;
}

/// Anything but a number counts as 0; the first error in the leftmost array that has one wins.
Value sumProduct(Call& call, Arguments arguments) {
    const Grid first = arguments[0].grid(call);
    // Beyond what one array uses every product is 0, but errors there count.
    int rows = first.rows();
    int columns = first.columns();
    for (const Argument& argument : arguments) {
        if (argument.value.isError()) {
            return argument.value;
        }
        const Grid grid = argument.grid(call);
        if (grid.rows() != first.rows() || grid.columns() != first.columns()) {
            return ErrorCode::Value;
        }
        rows = std::min(rows, grid.usedRows());
        columns = std::min(columns, grid.usedColumns());
    }
    if (static_cast<std::int64_t>(rows) * columns > largestArray) {
        return sumProductOfFewCells(call, arguments);
    }
    call.spend(static_cast<double>(rows) * columns);
    // Kept between calls, so that recalculations do not allocate.
    thread_local std::vector<double> products;
    thread_local std::vector<double> factors;
    products.assign(static_cast<std::size_t>(rows) * columns, 1.0);
    for (const Argument& argument : arguments) {
        factors.assign(products.size(), 0.0);
        std::optional<ErrorCode> error;
        argument.grid(call).forEach([&](const Value& value, int row, int column) -> bool {
            if (value.isError()) {
                error = value.error();
                return false;
            }
            if (value.isNumber() && row < rows && column < columns) {
                factors[static_cast<std::size_t>(row) * columns + column] = value.number();
            }
            return true;
        });
        if (error) {
            return *error;
        }
        for (std::size_t i = 0; i < products.size(); ++i) {
            products[i] *= factors[i];
        }
    }
    double total = 0;
    for (const double product : products) {
        total += product;
    }
    return total;
}

constexpr FunctionRow table[] = {
    {.name = "MDETERM", .minArgs = 1, .maxArgs = 1, .kinds = "A", .function = determinant},
    {.name = "MINVERSE", .minArgs = 1, .maxArgs = 1, .kinds = "A", .function = inverse},
    {.name = "MMULT", .minArgs = 2, .maxArgs = 2, .kinds = "AA", .function = matrixProduct},
    {.name = "MUNIT", .minArgs = 1, .maxArgs = 1, .kinds = "N", .function = unitMatrix},
    {.name = "SUMPRODUCT", .minArgs = 1, .maxArgs = anyCount, .kinds = "A", .function = sumProduct},
    {.name = "TRANSPOSE",
     .minArgs = 1,
     .maxArgs = 1,
     .kinds = "A",
     .category = Category::Lookup,
     .function = transpose},
};

}  // namespace

std::span<const FunctionRow> matrixFunctions() { return table; }

}  // namespace quorva::workbook
