#include "numerics/linear_algebra.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "numerics/quantiles.h"
#include "quorva/automation.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

using Square = Eigen::MatrixXd;

constexpr int failed = -1;

Square blockOf(const matrix<double>& a, int n) {
    Square block(n, n);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            block(i, j) = a(i + 1, j + 1);
        }
    }
    return block;
}

void writeBlock(const Square& block, matrix<double>& target) {
    for (int j = 0; j < block.cols(); ++j) {
        for (int i = 0; i < block.rows(); ++i) {
            target(i + 1, j + 1) = block(i, j);
        }
    }
}

/// The sets of rows that non-zero entries link. A function of a matrix keeps this structure; taken set by set, its
/// zeros are exact, and unrelated variables stay unrelated.
std::vector<std::vector<int>> linkedSets(const Square& a) {
    const int n = static_cast<int>(a.rows());
    std::vector<std::vector<int>> sets;
    std::vector<bool> seen(static_cast<std::size_t>(n), false);
    for (int start = 0; start < n; ++start) {
        if (seen[static_cast<std::size_t>(start)]) {
            continue;
        }
        seen[static_cast<std::size_t>(start)] = true;
        std::vector<int> set{start};
        for (std::size_t next = 0; next < set.size(); ++next) {
            for (int k = 0; k < n; ++k) {
                if (!seen[static_cast<std::size_t>(k)] && (a(k, set[next]) != 0 || a(set[next], k) != 0)) {
                    seen[static_cast<std::size_t>(k)] = true;
                    set.push_back(k);
                }
            }
        }
        std::sort(set.begin(), set.end());
        sets.push_back(std::move(set));
    }
    return sets;
}

/// Applies `transform` (false on failure) to the block of each linked set; what links no set is 0.
bool setBySet(const Square& a, Square& result, const std::function<bool(Square&)>& transform) {
    result = Square::Zero(a.rows(), a.cols());
    for (const auto& set : linkedSets(a)) {
        Square block = a(set, set);
        if (!transform(block)) {
            return false;
        }
        result(set, set) = block;
    }
    return true;
}

Square symmetricPart(const Square& a) { return (a + a.transpose()) / 2; }

/// V f(D) V' from the eigen-decomposition, exactly symmetric.
template <class Function>
Square rebuilt(const Eigen::SelfAdjointEigenSolver<Square>& eigen, Function function) {
    const Square& vectors = eigen.eigenvectors();
    return symmetricPart(vectors * eigen.eigenvalues().unaryExpr(function).asDiagonal() * vectors.transpose());
}

/// Nearest positive semidefinite matrix in the Frobenius norm: negative eigenvalues become 0.
bool projectToSemidefinite(Square& a) {
    const Eigen::SelfAdjointEigenSolver<Square> eigen(a);
    if (eigen.info() != Eigen::Success) {
        return false;
    }
    a = rebuilt(eigen, [](double value) { return std::max(value, 0.0); });
    return true;
}

double relativeChange(const Square& now, const Square& before) {
    const double size = now.norm();
    return size > 0 ? (now - before).norm() / size : 0;
}

/// Alternating projections onto the semidefinite matrices and the unit-diagonal ones, with Dykstra's correction for
/// the first (Higham 2002, algorithm 3.3 and its stopping test). The last iterate has a unit diagonal and is
/// semidefinite up to the tolerance; a last projection, scaled back to the diagonal, makes it semidefinite.
bool nearestCorrelation(Square& a) {
    constexpr int rounds = 10000;
    constexpr double tolerance = 1e-10;
    Square correction = Square::Zero(a.rows(), a.cols());
    Square y = a;
    Square x = a;
    for (int round = 0; round < rounds; ++round) {
        const Square before = x;
        const Square r = y - correction;
        x = r;
        if (!projectToSemidefinite(x)) {
            return false;
        }
        correction = x - r;
        const Square yBefore = y;
        y = x;
        y.diagonal().setOnes();
        if (std::max({relativeChange(x, before), relativeChange(y, yBefore), relativeChange(y, x)}) <= tolerance) {
            if (!projectToSemidefinite(y)) {
                return false;
            }
            const Eigen::VectorXd scale = y.diagonal().cwiseSqrt().cwiseInverse();
            a = symmetricPart(scale.asDiagonal() * y * scale.asDiagonal());
            a.diagonal().setOnes();
            return a.allFinite();
        }
    }
    return false;
}

/// The first row that equals each row.
std::vector<int> firstEqualRows(const Square& a) {
    std::vector<int> first(static_cast<std::size_t>(a.rows()));
    for (int i = 0; i < a.rows(); ++i) {
        int j = 0;
        while (j < i && a.row(j) != a.row(i)) {
            ++j;
        }
        first[static_cast<std::size_t>(i)] = j;
    }
    return first;
}

/// Symmetric square root of a set of variables; `n` and `largest` are size and largest eigenvalue of the whole matrix,
/// by which rounding is measured: positive eigenvalues up to n eps largest and negative ones down to -1e-10 largest
/// count as 0. False when one lies lower.
bool squareRoot(Square& a, int n, double largest) {
    const Eigen::SelfAdjointEigenSolver<Square> eigen(a);
    constexpr double repairable = 1e-10;
    const double scale = std::max(largest, 0.0);
    if (eigen.info() != Eigen::Success || !(eigen.eigenvalues().minCoeff() >= -repairable * scale)) {
        return false;
    }
    const double rounding = n * std::numeric_limits<double>::epsilon() * scale;
    const Square root = rebuilt(eigen, [rounding](double value) { return value > rounding ? std::sqrt(value) : 0.0; });
    // Equal variables have equal rows, to the last bit, so that they draw the same numbers.
    const std::vector<int> first = firstEqualRows(a);
    a = root(first, first);
    return true;
}

}  // namespace

void M_ReplaceMissingByVal(matrix<double>& table, int rows, int cols, double value) {
    for (int j = 1; j <= cols; ++j) {
        for (int i = 1; i <= rows; ++i) {
            if (table(i, j) == MissingValue) {
                table(i, j) = value;
            }
        }
    }
}

short M_IsSymmetric(const matrix<double>* a, int n) {
    for (int j = 1; j <= n; ++j) {
        for (int i = 1; i <= n; ++i) {
            const double entry = (*a)(i, j);
            const double difference = std::abs(entry - (*a)(j, i));
            if (i != j && !(difference <= 1e-12 * std::max(1.0, std::abs(entry)))) {
                return hostFalse;
            }
        }
    }
    return hostTrue;
}

int M_CholDecomp(const matrix<double>* a, int n, matrix<double>* factor) {
    const Square block = blockOf(*a, n);
    Square lower = Square::Zero(n, n);
    const double smallestPivot = n > 0 ? n * std::numeric_limits<double>::epsilon() * block.diagonal().maxCoeff() : 0;
    for (int j = 0; j < n; ++j) {
        const double pivot = block(j, j) - lower.row(j).head(j).squaredNorm();
        if (!(pivot > smallestPivot) || !std::isfinite(pivot)) {
            return failed;
        }
        lower(j, j) = std::sqrt(pivot);
        for (int i = j + 1; i < n; ++i) {
            lower(i, j) = (block(i, j) - lower.row(i).head(j).dot(lower.row(j).head(j))) / lower(j, j);
        }
    }
    writeBlock(lower, *factor);
    return 0;
}

int M_SquareRoot(const matrix<double>* a, int n, matrix<double>* factor) {
    const Square block = blockOf(*a, n);
    Square root;
    if (!block.allFinite()) {
        return failed;
    }
    const Eigen::SelfAdjointEigenSolver<Square> eigen(block, Eigen::EigenvaluesOnly);
    const double largest = n > 0 ? eigen.eigenvalues().maxCoeff() : 0;
    if (eigen.info() != Eigen::Success ||
        !setBySet(block, root, [n, largest](Square& set) { return squareRoot(set, n, largest); })) {
        return failed;
    }
    writeBlock(root, *factor);
    return 0;
}

int M_CorrMatFromSymMat(matrix<double>* a, int n) {
    const Square block = blockOf(*a, n);
    Square nearest;
    if (!block.allFinite() || !setBySet(symmetricPart(block), nearest, nearestCorrelation)) {
        return failed;
    }
    writeBlock(nearest, *a);
    return 0;
}

void M_ProductBV(const matrix<double>& a, int rows, int cols, const matrix<double>* x, matrix<double>& y) {
    for (int i = 1; i <= rows; ++i) {
        double sum = 0;
        for (int j = 1; j <= cols; ++j) {
            sum += a(i, j) * (*x)(j, 1);
        }
        y(i, 1) = sum;
    }
}

void M_MinMax(const matrix<double>* table, int rows, int cols, matrix<double>* minima, matrix<double>* maxima,
              const short* flags, short skipMissing) {
    const bool skips = isTrue(skipMissing);
    for (int j = 1; j <= cols; ++j) {
        double least = MissingValue;
        double greatest = MissingValue;
        bool found = false;
        for (int i = 1; i <= rows; ++i) {
            const double value = (*table)(i, j);
            if ((flags != nullptr && flags[i - 1] != 0) || (skips && value == MissingValue)) {
                continue;
            }
            least = found && !(value < least) && !std::isnan(least) ? least : value;
            greatest = found && !(value > greatest) && !std::isnan(greatest) ? greatest : value;
            found = true;
        }
        (*minima)(j, 1) = least;
        (*maxima)(j, 1) = greatest;
    }
}

double M_QuantileMW(const matrix<double>* table, int n, int column, const short* flags, const matrix<double>* weights,
                    double p) {
    const double* columnWeights = nullptr;
    std::vector<double> copied;
    if (weights != nullptr) {
        if (weights->contains(std::max(n, 1), 1)) {
            columnWeights = weights->column(1);
        } else {
            for (int i = 1; i <= n; ++i) {
                copied.push_back((*weights)(i, 1));
            }
            columnWeights = copied.data();
        }
    }
    if (table->contains(std::max(n, 1), column)) {
        return quantileOf(table->column(column), n, flags, columnWeights, p);
    }
    std::vector<double> values;
    for (int i = 1; i <= n; ++i) {
        values.push_back((*table)(i, column));
    }
    return quantileOf(values.data(), n, flags, columnWeights, p);
}

}  // namespace quorva
