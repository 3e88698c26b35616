#include "numerics/linear_algebra.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "quorva/automation.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

struct ReferenceCase {
    std::string name;
    int n;
    matrix<double> given;
    matrix<double> expected;
};

std::vector<ReferenceCase> referenceCases() {
    std::ifstream file(std::string(QUORVA_SOURCE_DIR) + "/tests/numerics/reference/matrices.txt");
    std::vector<ReferenceCase> cases;
    const auto block = [&file](int n) {
        matrix<double> m(n, n, 0.0);
        for (int i = 1; i <= n; ++i) {
            for (int j = 1; j <= n; ++j) {
                std::string word;
                file >> word;
                m(i, j) = std::strtod(word.c_str(), nullptr);
            }
        }
        return m;
    };
    std::string name;
    int n = 0;
    while (file >> name >> n) {
        matrix<double> given = block(n);
        cases.push_back({name, n, given, block(n)});
    }
    return cases;
}

void expectNear(const matrix<double>& a, const matrix<double>& b, int n, double tolerance) {
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            EXPECT_NEAR(a(i, j), b(i, j), tolerance) << i << " " << j;
        }
    }
}

matrix<double> productWithTransposed(const matrix<double>& a, int n) {
    matrix<double> result(n, n, 0.0);
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            for (int k = 1; k <= n; ++k) {
                result(i, j) += a(i, k) * a(j, k);
            }
        }
    }
    return result;
}

TEST(LinearAlgebra, FactorsAndNearestMatricesMatchTheReference) {
    const auto cases = referenceCases();
    ASSERT_EQ(cases.size(), 6u);
    for (const auto& reference : cases) {
        SCOPED_TRACE(reference.name + " " + std::to_string(reference.n));
        matrix<double> result = reference.given;
        if (reference.name == "root") {
            ASSERT_EQ(M_SquareRoot(&reference.given, reference.n, &result), 0);
            expectNear(result, reference.expected, reference.n, 2e-15);
        } else {
            ASSERT_LT(M_CholDecomp(&reference.given, reference.n, &result), 0);
            ASSERT_LT(M_SquareRoot(&reference.given, reference.n, &result), 0);
            ASSERT_EQ(M_CorrMatFromSymMat(&result, reference.n), 0);
            expectNear(result, reference.expected, reference.n, 1e-9);
        }
    }
}

TEST(LinearAlgebra, ARepairedMatrixIsACorrelationMatrixWithAFactor) {
    for (const auto& reference : referenceCases()) {
        if (reference.name == "nearest") {
            matrix<double> repaired = reference.given;
            ASSERT_EQ(M_CorrMatFromSymMat(&repaired, reference.n), 0);
            EXPECT_EQ(M_IsSymmetric(&repaired, reference.n), hostTrue);
            for (int i = 1; i <= reference.n; ++i) {
                EXPECT_EQ(repaired(i, i), 1);
            }
            matrix<double> factor(reference.n, reference.n, 0.0);
            EXPECT_EQ(M_SquareRoot(&repaired, reference.n, &factor), 0);
            expectNear(productWithTransposed(factor, reference.n), repaired, reference.n, 1e-12);
        }
    }
}

TEST(LinearAlgebra, CholeskyFactorIsExactWhereTheArithmeticIs) {
    // L = [2 0 0; 1 3 0; -1 0.5 1], L L' = A.
    const double values[] = {4, 2, -2, 2, 10, 0.5, -2, 0.5, 2.25};
    const matrix<double> a(3, 3, values);
    matrix<double> factor(4, 5, 7.0);
    ASSERT_EQ(M_CholDecomp(&a, 3, &factor), 0);
    const double expected[3][3] = {{2, 0, 0}, {1, 3, 0}, {-1, 0.5, 1}};
    for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j) {
            EXPECT_EQ(factor(i, j), expected[i - 1][j - 1]);
        }
    }
    EXPECT_EQ(factor(4, 1), 7);
    EXPECT_EQ(factor(1, 4), 7);
}

TEST(LinearAlgebra, CholeskyRefusesCorrelationOneAndTheSquareRootTakesIt) {
    const matrix<double> a(2, 2, 1.0);
    matrix<double> factor(2, 2, 0.0);
    EXPECT_LT(M_CholDecomp(&a, 2, &factor), 0);
    EXPECT_EQ(M_SquareRoot(&a, 2, &factor), 0);
    EXPECT_NEAR(factor(1, 2), 0.70710678118654752, 4e-16);
    EXPECT_NEAR(factor(1, 1), factor(1, 2), 4e-16);
}

// The square root of an eigenvalue of 1e-16, which is rounding, is 1e-8, which is not.
TEST(LinearAlgebra, TheSquareRootOfASingularMatrixIsExactAndEqualVariablesShareTheirRow) {
    for (const int n : {2, 3, 5, 12}) {
        const matrix<double> a(n, n, 1.0);
        matrix<double> factor(n, n, 0.0);
        ASSERT_EQ(M_SquareRoot(&a, n, &factor), 0);
        for (int i = 1; i <= n; ++i) {
            for (int j = 1; j <= n; ++j) {
                EXPECT_NEAR(factor(i, j), 1 / std::sqrt(n), 4e-16) << n;
                EXPECT_EQ(factor(i, j), factor(1, j)) << n;
                EXPECT_EQ(factor(i, j), factor(j, i)) << n;
            }
        }
    }
    // 2 and 3 are one variable, correlated with 1 and 4; no two others are equal.
    const double values[] = {1, 0.5, 0.5, 0.2, 0.5, 1, 1, -0.3, 0.5, 1, 1, -0.3, 0.2, -0.3, -0.3, 1};
    const matrix<double> a(4, 4, values);
    matrix<double> factor(4, 4, 0.0);
    ASSERT_EQ(M_SquareRoot(&a, 4, &factor), 0);
    for (int j = 1; j <= 4; ++j) {
        EXPECT_EQ(factor(2, j), factor(3, j));
        EXPECT_NE(factor(1, j), factor(2, j));
        EXPECT_NE(factor(4, j), factor(2, j));
    }
    expectNear(productWithTransposed(factor, 4), a, 4, 1e-14);
}

// What counts as rounding is measured by the largest eigenvalue of the whole matrix, here 10, and not by that of the
// two variables whose correlation is a little above 1.
TEST(LinearAlgebra, AnEigenvalueIsRoundingAgainstTheLargestOfTheMatrix) {
    constexpr int n = 12;
    matrix<double> a(n, n, 0.0);
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            a(i, j) = i == j || (i <= 10 && j <= 10) ? 1 : 0;
        }
    }
    matrix<double> factor(n, n, 0.0);
    a(11, 12) = a(12, 11) = 1 + 9e-10;
    EXPECT_EQ(M_SquareRoot(&a, n, &factor), 0);
    a(11, 12) = a(12, 11) = 1 + 11e-10;
    EXPECT_LT(M_SquareRoot(&a, n, &factor), 0);
}

TEST(LinearAlgebra, UnrelatedVariablesStayUnrelatedInFactorAndRepair) {
    // 1 and 3 are the same variable, 2 and 4 stand alone.
    matrix<double> a(4, 4, 0.0);
    for (int i = 1; i <= 4; ++i) {
        a(i, i) = 1;
    }
    a(1, 3) = a(3, 1) = 1;
    matrix<double> factor(4, 4, 5.0);
    ASSERT_EQ(M_SquareRoot(&a, 4, &factor), 0);
    a(1, 3) = a(3, 1) = 1.5;
    ASSERT_LT(M_SquareRoot(&a, 4, &factor), 0);
    ASSERT_EQ(M_CorrMatFromSymMat(&a, 4), 0);
    EXPECT_NEAR(a(1, 3), 1, 1e-9);
    for (int j = 1; j <= 4; ++j) {
        if (j != 2) {
            EXPECT_EQ(factor(2, j), 0);
            EXPECT_EQ(a(2, j), 0);
        }
        if (j != 4) {
            EXPECT_EQ(factor(4, j), 0);
            EXPECT_EQ(a(4, j), 0);
        }
    }
}

TEST(LinearAlgebra, EntriesThatAreNotFiniteFail) {
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        matrix<double> a(2, 2, 1.0);
        a(1, 2) = a(2, 1) = bad;
        matrix<double> factor(2, 2, 0.0);
        EXPECT_LT(M_CholDecomp(&a, 2, &factor), 0);
        EXPECT_LT(M_SquareRoot(&a, 2, &factor), 0);
        EXPECT_LT(M_CorrMatFromSymMat(&a, 2), 0);
    }
}

TEST(LinearAlgebra, SymmetryIsJudgedRelativeToTheEntry) {
    matrix<double> a(2, 2, 1.0);
    a(1, 2) = 1 + 5e-13;
    EXPECT_EQ(M_IsSymmetric(&a, 2), hostTrue);
    a(1, 2) = 1 + 5e-12;
    EXPECT_EQ(M_IsSymmetric(&a, 2), hostFalse);
    a(1, 2) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(M_IsSymmetric(&a, 2), hostFalse);
}

TEST(LinearAlgebra, MissingCellsAreReplacedWithinTheBlock) {
    matrix<double> a(3, 2, MissingValue);
    a(1, 1) = 4;
    M_ReplaceMissingByVal(a, 2, 2, 0);
    EXPECT_EQ(a(1, 1), 4);
    EXPECT_EQ(a(2, 1), 0);
    EXPECT_EQ(a(2, 2), 0);
    EXPECT_EQ(a(3, 1), MissingValue);
}

TEST(LinearAlgebra, ProductOfABlockWithAColumn) {
    const double values[] = {1, 2, 3, 4, 5, 6};
    const matrix<double> a(3, 2, values);
    const double column[] = {10, 100};
    const matrix<double> x(2, 1, column);
    matrix<double> y(3, 1, -7.0);
    M_ProductBV(a, 2, 2, &x, y);
    EXPECT_EQ(y(1, 1), 410);
    EXPECT_EQ(y(2, 1), 520);
    EXPECT_EQ(y(3, 1), -7);
}

TEST(LinearAlgebra, ColumnExtremesSkipFlaggedRowsAndMissingCells) {
    const double values[] = {5, MissingValue, -3, 100, MissingValue, MissingValue, MissingValue, 100};
    const matrix<double> table(4, 2, values);
    matrix<double> minima(2, 1, 0.0);
    matrix<double> maxima(2, 1, 0.0);
    const short flags[] = {0, 0, 0, -1};
    M_MinMax(&table, 4, 2, &minima, &maxima, flags, hostTrue);
    EXPECT_EQ(minima(1, 1), -3);
    EXPECT_EQ(maxima(1, 1), 5);
    EXPECT_EQ(minima(2, 1), MissingValue);
    EXPECT_EQ(maxima(2, 1), MissingValue);
    M_MinMax(&table, 4, 2, &minima, &maxima, flags, hostFalse);
    EXPECT_EQ(minima(1, 1), MissingValue);
    EXPECT_EQ(maxima(1, 1), 5);
}

TEST(LinearAlgebra, WeightedQuantileOfAColumnUsesItsFirstRows) {
    const double values[] = {9, 9, 9, 9, 4, 1, 3, 2};
    const matrix<double> table(4, 2, values);
    const matrix<double> weights(4, 1, 1.0);
    const short flags[] = {0, 0, 0, 0};
    EXPECT_EQ(M_QuantileMW(&table, 4, 2, flags, &weights, 0.25), 1.75);
    EXPECT_EQ(M_QuantileMW(&table, 3, 2, flags, &weights, 0), 1);
    EXPECT_EQ(M_QuantileMW(&table, 3, 2, flags, nullptr, 1), 4);
}

}  // namespace
}  // namespace quorva
