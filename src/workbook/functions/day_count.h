// How many days and years lie between two dates by the conventions of worksheets and of securities.
#pragma once

#include "workbook/values/dates.h"

namespace quorva::workbook {

/// The conventions in the order of their codes (0 to 4).
enum class Basis { UsThirty360, ActualActual, Actual360, Actual365, EuropeanThirty360 };

/// The basis of a code as the functions take it (its fraction is left out); nothing when it is none.
std::optional<Basis> basisFromCode(double code);

bool isLastOfFebruary(const CalendarDate& date);

/// Days between two dates in years of twelve months of 30 days, as DAYS360 counts them. Negative when `to` is earlier.
int days360(const CalendarDate& from, const CalendarDate& to, bool european);
/// As days360, with the rule for the end of February that YEARFRAC and the functions of securities follow.
int days360Securities(CalendarDate from, CalendarDate to, bool european);

/// YEARFRAC: the years between two serial numbers, in any order; fractions of days are left out. #NUM! out of range.
Result<double> yearFraction(double from, double to, Basis basis, bool date1904);

/// The serial number `months` after a date of its own, on the same day or the last of the month. #NUM! out of range.
Result<double> addMonths(double serial, double months, bool date1904);

}  // namespace quorva::workbook
