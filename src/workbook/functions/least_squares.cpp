#include "workbook/functions/least_squares.h"

#include <cmath>

namespace quorva::workbook {

namespace {

double dot(const std::vector<double>& a, const std::vector<double>& b) {
    double total = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        total += a[i] * b[i];
    }
    return total;
}

double meanOf(const std::vector<double>& values) {
    double total = 0;
    for (const double value : values) {
        total += value;
    }
    return total / static_cast<double>(values.size());
}

void subtract(std::vector<double>& values, double amount) {
    for (double& value : values) {
        value -= amount;
    }
}

/// Columns made orthonormal one after the other, and the triangular factor that leads back to them.
struct Decomposition {
    std::vector<std::vector<double>> basis;       ///< orthonormal
    std::vector<std::vector<double>> triangular;  ///< [k][j]: share of basis k in kept column j >= k
    std::vector<std::size_t> kept;                ///< columns that are in the basis

    /// Takes the basis out of a column; the shares are returned. Twice, so that rounding leaves no part behind.
    std::vector<double> project(std::vector<double>& column) const {
        std::vector<double> shares(basis.size());
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t k = 0; k < basis.size(); ++k) {
                const double share = dot(basis[k], column);
                shares[k] += share;
                for (std::size_t i = 0; i < column.size(); ++i) {
                    column[i] -= share * basis[k][i];
                }
            }
        }
        return shares;
    }
};

Decomposition decompose(std::vector<std::vector<double>> columns) {
    constexpr double collinear = 1e-12;  // relative length of what is left of a column that the others explain
    Decomposition result;
    for (std::size_t j = 0; j < columns.size(); ++j) {
        const double length = std::sqrt(dot(columns[j], columns[j]));
        std::vector<double> shares = result.project(columns[j]);
        const double rest = std::sqrt(dot(columns[j], columns[j]));
        if (rest <= collinear * length) {
            continue;
        }
        for (double& value : columns[j]) {
            value /= rest;
        }
        shares.push_back(rest);
        for (std::size_t k = 0; k < shares.size(); ++k) {
            if (k == result.triangular.size()) {
                result.triangular.emplace_back(result.kept.size());
            }
            result.triangular[k].push_back(shares[k]);
        }
        result.kept.push_back(j);
        result.basis.push_back(std::move(columns[j]));
    }
    return result;
}

/// The inverse of the triangular factor, upper triangle.
std::vector<std::vector<double>> invertTriangular(const std::vector<std::vector<double>>& r) {
    const std::size_t n = r.size();
    std::vector<std::vector<double>> inverse(n, std::vector<double>(n));
    for (std::size_t j = 0; j < n; ++j) {
        inverse[j][j] = 1 / r[j][j];
        for (std::size_t i = j; i-- > 0;) {
            double total = 0;
            for (std::size_t k = i + 1; k <= j; ++k) {
                total += r[i][k] * inverse[k][j];
            }
            inverse[i][j] = -total / r[i][i];
        }
    }
    return inverse;
}

}  // namespace

LinearFit fitLinear(const NumberMatrix& x, const std::vector<double>& y, bool withIntercept) {
    const auto variables = static_cast<std::size_t>(x.columns);
    std::vector<std::vector<double>> columns(variables);
    std::vector<double> means(variables);
    for (std::size_t j = 0; j < variables; ++j) {
        for (int row = 0; row < x.rows; ++row) {
            columns[j].push_back(x.at(row, static_cast<int>(j)));
        }
        if (withIntercept) {
            means[j] = meanOf(columns[j]);
            subtract(columns[j], means[j]);
        }
    }
    std::vector<double> rest = y;
    const double meanY = withIntercept ? meanOf(y) : 0;
    subtract(rest, meanY);
    const double totalSquares = dot(rest, rest);

    const Decomposition decomposition = decompose(std::move(columns));
    const std::vector<double> shares = decomposition.project(rest);
    const auto inverse = invertTriangular(decomposition.triangular);
    const std::size_t kept = decomposition.kept.size();

    LinearFit fit;
    fit.slopes.assign(variables, 0);
    fit.slopeErrors.assign(variables, 0);
    fit.freedom = static_cast<double>(y.size()) - static_cast<double>(kept) - (withIntercept ? 1 : 0);
    fit.residualSquares = dot(rest, rest);
    if (fit.residualSquares < totalSquares * 1e-30) {
        fit.residualSquares = 0;  // a perfect fit but for rounding
    }
    fit.regressionSquares = dot(shares, shares);
    const double variance = fit.freedom > 0 ? fit.residualSquares / fit.freedom : 0;
    std::vector<double> meanShares(kept);  // of the means' row, in the basis
    for (std::size_t i = 0; i < kept; ++i) {
        double slope = 0;
        double spread = 0;
        for (std::size_t k = i; k < kept; ++k) {
            slope += inverse[i][k] * shares[k];
            spread += inverse[i][k] * inverse[i][k];
        }
        const std::size_t variable = decomposition.kept[i];
        fit.slopes[variable] = slope;
        fit.slopeErrors[variable] = std::sqrt(variance * spread);
        for (std::size_t k = i; k < kept; ++k) {
            meanShares[k] += inverse[i][k] * means[variable];
        }
    }
    if (withIntercept) {
        fit.intercept = meanY - dot(fit.slopes, means);
        fit.interceptError = std::sqrt(variance * (1 / static_cast<double>(y.size()) + dot(meanShares, meanShares)));
    }
    return fit;
}

}  // namespace quorva::workbook
