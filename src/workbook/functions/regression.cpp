// Correlation, regression lines and least-squares fits.
#include <cmath>
#include <numeric>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"
#include "workbook/functions/least_squares.h"

namespace quorva::workbook {

namespace {

/// Means and centred sums of squares and products of pairs; y is the first argument, as in SLOPE.
struct PairMoments {
    double n = 0;
    double meanX = 0;
    double meanY = 0;
    double xx = 0;
    double yy = 0;
    double xy = 0;
};

PairMoments momentsOf(const std::vector<double>& y, const std::vector<double>& x) {
    PairMoments moments;
    moments.n = static_cast<double>(x.size());
    if (x.empty()) {
        return moments;
    }
    moments.meanX = std::accumulate(x.begin(), x.end(), 0.0) / moments.n;
    moments.meanY = std::accumulate(y.begin(), y.end(), 0.0) / moments.n;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double dx = x[i] - moments.meanX;
        const double dy = y[i] - moments.meanY;
        moments.xx += dx * dx;
        moments.yy += dy * dy;
        moments.xy += dx * dy;
    }
    return moments;
}

/// A statistic of two arrays of equal size, y first.
template <Value (*statistic)(const PairMoments&)>
Value ofPairs(Call& call, Arguments arguments) {
    const auto pairs = collectPairs(call, arguments[0], arguments[1]);
    return pairs ? statistic(momentsOf(pairs->first, pairs->second)) : Value(pairs.error());
}

Value correlation(const PairMoments& m) {
    return m.xx == 0 || m.yy == 0 ? Value(ErrorCode::Div0) : Value(m.xy / std::sqrt(m.xx * m.yy));
}
Value determination(const PairMoments& m) {
    return m.xx == 0 || m.yy == 0 ? Value(ErrorCode::Div0) : Value(m.xy * m.xy / (m.xx * m.yy));
}
Value populationCovariance(const PairMoments& m) { return m.n < 1 ? Value(ErrorCode::Div0) : Value(m.xy / m.n); }
Value sampleCovariance(const PairMoments& m) { return m.n < 2 ? Value(ErrorCode::Div0) : Value(m.xy / (m.n - 1)); }
Value slope(const PairMoments& m) { return m.xx == 0 ? Value(ErrorCode::Div0) : Value(m.xy / m.xx); }
Value intercept(const PairMoments& m) {
    return m.xx == 0 ? Value(ErrorCode::Div0) : Value(m.meanY - m.xy / m.xx * m.meanX);
}
Value standardError(const PairMoments& m) {
    return m.n < 3 || m.xx == 0 ? Value(ErrorCode::Div0)
                                : Value(std::sqrt(std::fmax(0, m.yy - m.xy * m.xy / m.xx) / (m.n - 2)));
}

/// FORECAST(x, known y, known x).
Value forecast(Call& call, Arguments arguments) {
    const auto pairs = collectPairs(call, arguments[1], arguments[2]);
    if (!pairs) {
        return pairs.error();
    }
    const PairMoments m = momentsOf(pairs->first, pairs->second);
    return m.xx == 0 ? Value(ErrorCode::Div0) : Value(m.meanY + m.xy / m.xx * (arguments[0].number() - m.meanX));
}

/// What a fit is made from: observations in rows, whichever way the ranges lie.
struct Observations {
    NumberMatrix y;         ///< as given
    NumberMatrix x;         ///< one observation a row
    bool inColumns = true;  ///< several variables stand side by side, observations below one another
    bool oneVariable = true;
    bool withIntercept = true;
};

NumberMatrix transposed(const NumberMatrix& matrix) {
    NumberMatrix result{matrix.columns, matrix.rows, std::vector<double>(matrix.cells.size())};
    for (int row = 0; row < matrix.rows; ++row) {
        for (int column = 0; column < matrix.columns; ++column) {
            result.at(column, row) = matrix.at(row, column);
        }
    }
    return result;
}

/// The numbers that a curve is fitted to or computed at. An error among them is #VALUE!, as a text is; only an argument
/// that is an error itself is passed on.
Result<NumberMatrix> readNumbers(const Call& call, const Argument& argument) {
    if (argument.value.isError()) {
        return argument.value.error();
    }
    auto numbers = toMatrix(call, argument);
    return numbers ? std::move(numbers) : ErrorCode::Value;
}

/// Lays a range of x values out as observations in rows; `like` is the range of y values or of known x values.
NumberMatrix asObservations(NumberMatrix x, const Observations& shape) {
    if (shape.oneVariable) {
        return {static_cast<int>(x.cells.size()), 1, std::move(x.cells)};
    }
    return shape.inColumns ? x : transposed(x);
}

/// Reads (known y, known x, const) of LINEST, TREND ...; y is replaced by its logarithm for the exponential curve.
Result<Observations> readObservations(const Call& call, Arguments arguments, std::size_t constantAt, bool logarithms) {
    Observations observations;
    auto y = readNumbers(call, arguments[0]);
    if (!y) {
        return y.error();
    }
    for (double& value : y->cells) {
        if (logarithms && value <= 0) {
            return ErrorCode::Num;
        }
        value = logarithms ? std::log(value) : value;
    }
    const int count = static_cast<int>(y->cells.size());
    NumberMatrix x{y->rows, y->columns, std::vector<double>(y->cells.size())};
    std::iota(x.cells.begin(), x.cells.end(), 1.0);
    if (present(arguments, 1)) {
        auto given = readNumbers(call, arguments[1]);
        if (!given) {
            return given.error();
        }
        x = std::move(*given);
    }
    observations.oneVariable = x.rows == y->rows && x.columns == y->columns;
    if (!observations.oneVariable) {
        observations.inColumns = y->columns == 1 && x.rows == y->rows;
        if (!observations.inColumns && !(y->rows == 1 && x.columns == y->columns)) {
            return ErrorCode::Ref;
        }
    } else {
        observations.inColumns = y->columns == 1 || y->rows > 1;
    }
    observations.withIntercept = !present(arguments, constantAt) || arguments[constantAt].boolean();
    observations.x = asObservations(std::move(x), observations);
    observations.y = std::move(*y);
    return observations.x.rows == count ? Result<Observations>(std::move(observations)) : ErrorCode::Ref;
}

/// LINEST and LOGEST (known y, known x, const, stats): slopes from the last variable to the first, then the intercept;
/// with stats their standard errors, r2 and the error of y, F and the degrees of freedom, the sums of squares.
template <bool exponential>
Value fitTable(Call& call, Arguments arguments) {
    const auto observations = readObservations(call, arguments, 2, exponential);
    if (!observations) {
        return observations.error();
    }
    call.spend(observations->x.rows * std::pow(observations->x.columns, 2));
    const LinearFit fit = fitLinear(observations->x, observations->y.cells, observations->withIntercept);
    const std::size_t variables = fit.slopes.size();
    const bool statistics = present(arguments, 3) && arguments[3].boolean();
    const std::size_t columns = variables + 1;
    std::vector<Value> cells((statistics ? 5 : 1) * columns, Value(ErrorCode::NA));
    const auto shown = [](double coefficient) { return Value(exponential ? std::exp(coefficient) : coefficient); };
    for (std::size_t j = 0; j < variables; ++j) {
        cells[variables - 1 - j] = shown(fit.slopes[j]);
    }
    cells[variables] = shown(fit.intercept);
    if (statistics) {
        for (std::size_t j = 0; j < variables; ++j) {
            cells[columns + variables - 1 - j] = fit.slopeErrors[j];
        }
        if (observations->withIntercept) {
            cells[columns + variables] = fit.interceptError;
        }
        const double total = fit.regressionSquares + fit.residualSquares;
        const double estimated =
            static_cast<double>(observations->x.rows) - fit.freedom - (observations->withIntercept ? 1 : 0);
        const double variance = fit.freedom > 0 ? fit.residualSquares / fit.freedom : 0;
        cells[2 * columns] = total == 0 ? Value(1.0) : Value(fit.regressionSquares / total);
        cells[2 * columns + 1] = std::sqrt(variance);
        cells[3 * columns] =
            variance == 0 ? Value(ErrorCode::Num) : Value(fit.regressionSquares / estimated / variance);
        cells[3 * columns + 1] = fit.freedom;
        cells[4 * columns] = fit.regressionSquares;
        cells[4 * columns + 1] = fit.residualSquares;
    }
    return arrayOrScalar(statistics ? 5 : 1, static_cast<int>(columns), std::move(cells));
}

/// TREND and GROWTH (known y, known x, new x, const).
template <bool exponential>
Value fittedValues(Call& call, Arguments arguments) {
    const auto observations = readObservations(call, arguments, 3, exponential);
    if (!observations) {
        return observations.error();
    }
    call.spend(observations->x.rows * std::pow(observations->x.columns, 2));
    const LinearFit fit = fitLinear(observations->x, observations->y.cells, observations->withIntercept);
    NumberMatrix points = observations->x;
    NumberMatrix result{observations->y.rows, observations->y.columns, {}};
    if (present(arguments, 2)) {
        auto given = readNumbers(call, arguments[2]);
        if (!given) {
            return given.error();
        }
        result = {given->rows, given->columns, {}};
        if (!observations->oneVariable) {
            result = observations->inColumns ? NumberMatrix{given->rows, 1, {}} : NumberMatrix{1, given->columns, {}};
        }
        points = asObservations(std::move(*given), *observations);
        if (points.columns != static_cast<int>(fit.slopes.size())) {
            return ErrorCode::Ref;
        }
    }
    for (int row = 0; row < points.rows; ++row) {
        double y = fit.intercept;
        for (int j = 0; j < points.columns; ++j) {
            y += fit.slopes[static_cast<std::size_t>(j)] * points.at(row, j);
        }
        result.cells.push_back(exponential ? std::exp(y) : y);
    }
    return fromMatrix(result);
}

constexpr FunctionRow row(std::string_view name, std::string_view kinds, Function function, int optional = 0) {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()) - optional,
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Statistics,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("CORREL", "AA", ofPairs<correlation>),
    row("COVAR", "AA", ofPairs<populationCovariance>),
    row("COVARIANCE.P", "AA", ofPairs<populationCovariance>),
    row("COVARIANCE.S", "AA", ofPairs<sampleCovariance>),
    row("FORECAST", "NAA", forecast),
    row("FORECAST.LINEAR", "NAA", forecast),
    row("GROWTH", "RRRB", fittedValues<true>, 3),
    row("INTERCEPT", "AA", ofPairs<intercept>),
    row("LINEST", "RRBB", fitTable<false>, 3),
    row("LOGEST", "RRBB", fitTable<true>, 3),
    row("PEARSON", "AA", ofPairs<correlation>),
    row("RSQ", "AA", ofPairs<determination>),
    row("SLOPE", "AA", ofPairs<slope>),
    row("STEYX", "AA", ofPairs<standardError>),
    row("TREND", "RRRB", fittedValues<false>, 3),
};

}  // namespace

std::span<const FunctionRow> regressionFunctions() { return table; }

}  // namespace quorva::workbook
