// How values turn into one another, compare and match, the way worksheets do it (en-US).
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "workbook/values/value.h"

namespace quorva::workbook {

/// Reads "12", " 1,234.5 ", "1e3", "50%", "$5", "(3)", "1 1/2", "1/31/2020", "31-Jan-2020", "12:30 PM" ... as a
/// number; nothing when the text is none of them. Dates become serial numbers of the date system named; with blanks
/// around it a text is no date.
std::optional<double> parseNumber(std::string_view text, bool date1904 = false);
/// Reads a plain decimal number (sign, digits, point, exponent) that takes up the whole text.
std::optional<double> parsePlainNumber(std::string_view text);
/// The number as a cell in General format of unlimited width shows it: up to 15 digits.
std::string numberToText(double number);

/// Conversions of one scalar; errors stay errors.
Result<double> toNumber(const Value& value, bool date1904 = false);
Result<std::string> toText(const Value& value);
Result<bool> toBoolean(const Value& value);

/// Numbers compared on 15 significant digits: negative, 0 or positive.
int compareNumbers(double a, double b);
/// The order of =, <, > and of sorted lookups: numbers before texts before Booleans; texts without case; a blank is 0,
/// "" or FALSE, as its partner is. Both scalars and neither an error.
int compareValues(const Value& a, const Value& b);
/// Same type and equal (a lookup's idea of a match: a blank equals nothing but a blank, 1 is not TRUE).
bool equalValues(const Value& a, const Value& b);

}  // namespace quorva::workbook
