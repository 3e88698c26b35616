// Number formats: "#,##0.00;[Red](0)", "yyyy-mm-dd", "# ?/?", "0.00E+00", "@" ... as TEXT applies them (en-US).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "workbook/values/value.h"

namespace quorva::workbook {

/// The scalar as a format shows it, in unlimited width; colours are ignored. Nothing when the format is not one, or
/// shows a date and the number is none.
std::optional<std::string> formatValue(const Value& value, std::string_view format, bool date1904);

/// The number that a format shows: rounded to the digits or to the fraction that are written. Numbers in General format
/// and dates stay as they are.
double roundAsShown(double number, std::string_view format);

/// The number as a cell of usual width in General format shows it: at most 11 characters besides the sign.
std::string formatGeneral(double number);

/// The number with a fixed count of decimals (negative: rounded left of the point), half away from zero on 15
/// significant digits, with commas or without. No minus sign: that is the caller's.
std::string formatFixed(double magnitude, int decimals, bool thousands);

}  // namespace quorva::workbook
