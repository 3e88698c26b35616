// The families of worksheet functions; each is a table in the file of its name.
#pragma once

#include <span>

#include "workbook/evaluation/function_api.h"

namespace quorva::workbook {

/// Every function of the families below.
const FunctionTable& worksheetFunctions();

std::span<const FunctionRow> mathFunctions();      ///< arithmetic, powers, sums
std::span<const FunctionRow> roundingFunctions();  ///< ROUND, CEILING, EVEN ...
std::span<const FunctionRow> trigonometryFunctions();
std::span<const FunctionRow> combinatoricFunctions();     ///< factorials, divisors, numerals
std::span<const FunctionRow> matrixFunctions();           ///< MMULT, SUMPRODUCT ...
std::span<const FunctionRow> statisticsFunctions();       ///< averages, counts, extremes, spread
std::span<const FunctionRow> orderStatisticsFunctions();  ///< percentiles, ranks, modes
std::span<const FunctionRow> regressionFunctions();       ///< correlation, lines, LINEST
std::span<const FunctionRow> distributionFunctions();     ///< continuous ones: densities, probabilities, quantiles
std::span<const FunctionRow> discreteDistributionFunctions();
std::span<const FunctionRow> testFunctions();  ///< T.TEST, confidence intervals ...
std::span<const FunctionRow> financeFunctions();
std::span<const FunctionRow> dateFunctions();
std::span<const FunctionRow> textFunctions();
std::span<const FunctionRow> textArrayFunctions();  ///< TEXTBEFORE, TEXTSPLIT, ARRAYTOTEXT ...
std::span<const FunctionRow> regularExpressionFunctions();
std::span<const FunctionRow> asianTextFunctions();     ///< ASC, BAHTTEXT ...
std::span<const FunctionRow> depreciationFunctions();  ///< SLN, DB, VDB, AMORLINC ...
std::span<const FunctionRow> securityFunctions();      ///< PRICE, YIELD, COUPNUM, DISC, ACCRINT ...
std::span<const FunctionRow> engineeringFunctions();   ///< bases, bits, error functions
std::span<const FunctionRow> unitFunctions();          ///< CONVERT
std::span<const FunctionRow> euroFunctions();          ///< EUROCONVERT
std::span<const FunctionRow> complexFunctions();       ///< complex numbers, Bessel functions
std::span<const FunctionRow> lookupFunctions();        ///< VLOOKUP, MATCH, XLOOKUP, ADDRESS ...
std::span<const FunctionRow> arrayFunctions();         ///< SEQUENCE, TAKE, HSTACK ...
std::span<const FunctionRow> randomFunctions();
std::span<const FunctionRow> sortingFunctions();      ///< SORT, FILTER, UNIQUE ...
std::span<const FunctionRow> informationFunctions();  ///< ISNUMBER, TYPE, N ... and NOT, XOR
std::span<const FunctionRow> databaseFunctions();     ///< DSUM and its kind
std::span<const FunctionRow> conditionalFunctions();  ///< SUMIF, COUNTIFS, AVERAGEIFS, MAXIFS ...
std::span<const FunctionRow> subtotalFunctions();     ///< SUBTOTAL, AGGREGATE

}  // namespace quorva::workbook
