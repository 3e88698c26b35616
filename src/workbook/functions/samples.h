// Statistics of a sample of numbers, shared by the statistical functions, SUBTOTAL, AGGREGATE and the database
// functions.
#pragma once

#include <span>
#include <vector>

#include "workbook/values/value.h"

namespace quorva::workbook {

/// A sample's numbers, in the order of the cells.
using Sample = std::span<const double>;

double sumOf(Sample sample);
/// Empty: #DIV/0!.
Value meanOf(Sample sample);
/// Sum of squared deviations from the mean, in two passes; 0 when empty.
double squaredDeviations(Sample sample);
/// Divided by n - 1 (n of at least 2, else #DIV/0!).
Value varianceOf(Sample sample);
/// Divided by n (n of at least 1, else #DIV/0!).
Value populationVarianceOf(Sample sample);
/// The square root of a variance; errors stay.
Value rootOf(const Value& variance);
/// 0 when empty.
Value maximumOf(Sample sample);
Value minimumOf(Sample sample);
/// 0 when empty.
Value productOf(Sample sample);
/// Empty: #NUM!.
Value medianOf(Sample sample);
/// The most frequent number, the first of them in order; none twice: #N/A.
Value modeOf(Sample sample);
/// Every most frequent number, in order of first appearance; empty when none is there twice.
std::vector<double> modesOf(Sample sample);

/// The k-th smallest or largest, k from 1, its fraction rounded up; outside 1..n: #NUM!.
Value smallestOf(Sample sample, double k);
Value largestOf(Sample sample, double k);

/// How a percentile's rank is counted: k (n - 1) + 1 or k (n + 1).
enum class Ranks { Inclusive, Exclusive };
/// The interpolated k-quantile; k out of range or an empty sample: #NUM!.
Value percentileOf(Sample sample, double k, Ranks ranks);
/// The percentile at `quart` / 4, its fraction left out.
Value quartileOf(Sample sample, double quart, Ranks ranks);

}  // namespace quorva::workbook
