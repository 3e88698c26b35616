// Dates and times of day as serial numbers, in both date systems.
#pragma once

#include <optional>
#include <string_view>

#include "workbook/values/value.h"

namespace quorva::workbook {

struct CalendarDate {
    int year = 1900;
    int month = 1;  ///< 1 to 12
    int day = 0;    ///< 1 to 31; 0 for the serial number 0 of the 1900 system
};
/// The serial number of the last day that exists, 31 December 9999, in the 1900 system.
constexpr double lastSerial = 2958465;

/// The date of a serial number (its fraction is left out). 60 is 29 February 1900, as in every worksheet. Out of
/// range: #NUM!.
Result<CalendarDate> dateFromSerial(double serial, bool date1904);
/// The serial number of a date; months and days beyond their ranges carry over; years 0 to 1899 count from 1900 as DATE
/// does. Out of range: #NUM!.
Result<double> serialFromDate(double year, double month, double day, bool date1904);
bool isLeapYear(int year);
int daysInMonth(int year, int month);

/// Reads a date, a time of day or both ("1/31/2020 12:30") as a serial number; nothing when the text is neither.
std::optional<double> parseDateOrTime(std::string_view text, bool date1904);
/// Reads a time of day without a date ("12:30", "3 PM") as a fraction of a day.
std::optional<double> parseTimeOfDay(std::string_view text);

}  // namespace quorva::workbook
