// The families of worksheet functions; each is a table in the file of its name.
#pragma once

#include <span>

#include "workbook/function_api.h"

namespace quorva::workbook {

std::span<const FunctionRow> mathFunctions();          ///< arithmetic, rounding, trigonometry, sums, matrices
std::span<const FunctionRow> statisticsFunctions();    ///< averages, counts, order statistics, regression
std::span<const FunctionRow> distributionFunctions();  ///< distributions, inverses, tests
std::span<const FunctionRow> financeFunctions();
std::span<const FunctionRow> dateFunctions();
std::span<const FunctionRow> textFunctions();
std::span<const FunctionRow> engineeringFunctions();  ///< bases, bits, CONVERT, complex numbers, Bessel
std::span<const FunctionRow> lookupFunctions();       ///< VLOOKUP, MATCH, XLOOKUP, ADDRESS ...
std::span<const FunctionRow> arrayFunctions();        ///< SEQUENCE, SORT, FILTER, UNIQUE ...
std::span<const FunctionRow> informationFunctions();  ///< ISNUMBER, TYPE, N ... and NOT, XOR
std::span<const FunctionRow> databaseFunctions();     ///< DSUM and its kind
std::span<const FunctionRow> conditionalFunctions();  ///< SUMIF, COUNTIFS, AVERAGEIFS, MAXIFS, SUBTOTAL, AGGREGATE

}  // namespace quorva::workbook
