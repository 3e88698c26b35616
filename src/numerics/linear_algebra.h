// Correlation matrices and their factors. Matrices are n x n blocks from (1, 1). Functions that return int give a
// negative number on failure, else 0.
#pragma once

#include "common/matrix.h"

namespace quorva {

/// Replaces cells that hold MissingValue.
void M_ReplaceMissingByVal(matrix<double>& table, int rows, int cols, double value);
/// Host true (-1) when abs(a(i,j) - a(j,i)) <= 1e-12 max(1, abs(a(i,j))) everywhere, else 0.
short M_IsSymmetric(const matrix<double>* a, int n);
/// Lower factor L with L L' = A; fails when a pivot is not above n eps max(diag A).
int M_CholDecomp(const matrix<double>* a, int n, matrix<double>* factor);
/// Symmetric S with S S = A; eigenvalues in [-1e-10 lmax, n eps lmax] count as 0, lower ones fail. Equal rows of A give
/// equal rows of S.
int M_SquareRoot(const matrix<double>* a, int n, matrix<double>* factor);
/// The nearest correlation matrix in the Frobenius norm (Higham 2002), in place; fails without convergence in 10,000
/// rounds or with an entry that is not finite.
int M_CorrMatFromSymMat(matrix<double>* a, int n);
/// y = a x for the rows x cols block of a; x and y are columns.
void M_ProductBV(const matrix<double>& a, int rows, int cols, const matrix<double>* x, matrix<double>& y);
/// Minimum and maximum of each column over the rows whose flag is 0, into minima(j, 1) and maxima(j, 1);
/// skipMissing -1 leaves out MissingValue cells, and a column of nothing else gives MissingValue for both.
void M_MinMax(const matrix<double>* table, int rows, int cols, matrix<double>* minima, matrix<double>* maxima,
              const short* flags, short skipMissing);
/// Weighted p-quantile of the first n values of a 1-based column (see V_QuantileMW).
double M_QuantileMW(const matrix<double>* table, int n, int column, const short* flags, const matrix<double>* weights,
                    double p);

}  // namespace quorva
