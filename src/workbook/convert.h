// How values turn into one another, compare and match, the way worksheets do it (en-US).
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "workbook/value.h"

namespace quorva::workbook {

/// Reads "12", " 1,234.5 ", "1e3", "50%", "$5", "(3)", "1 1/2", "1/31/2020", "31-Jan-2020", "12:30 PM" ... as a
/// number; nothing when the text is none of them. Dates become serial numbers of the date system named.
std::optional<double> parseNumber(std::string_view text, bool date1904 = false);
/// Reads a date, a time of day or both ("1/31/2020 12:30") as a serial number; nothing when the text is neither.
std::optional<double> parseDateOrTime(std::string_view text, bool date1904);
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
/// Texts compared without case: negative, 0 or positive.
int compareTexts(std::string_view a, std::string_view b);
/// The order of =, <, > and of sorted lookups: numbers before texts before Booleans; texts without case; a blank is 0,
/// "" or FALSE, as its partner is. Both scalars and neither an error.
int compareValues(const Value& a, const Value& b);
/// Same type and equal (a lookup's idea of a match: a blank equals nothing but a blank, 1 is not TRUE).
bool equalValues(const Value& a, const Value& b);

/// Whether the text matches a pattern with ? * and ~ as escape, without case.
bool matchesWildcard(std::string_view text, std::string_view pattern);
/// Where in the text (in UTF-16 units from 0, starting at `from`) the pattern is first found, -1 when nowhere (SEARCH).
int searchWildcard(std::string_view text, std::string_view pattern, int from);
bool hasWildcard(std::string_view pattern);

/// A condition as SUMIF, COUNTIFS, AVERAGEIF ... take it: 5, "text", ">=3", "<>", "a*".
class Criterion {
public:
    explicit Criterion(const Value& condition, bool date1904 = false);
    bool matches(const Value& value) const;
    /// Whether a cell that does not exist matches, so that walks over existing cells know about the others.
    bool matchesBlank() const { return matches(Value()); }

private:
    enum class Comparison { Equal, Different, Less, LessOrEqual, Greater, GreaterOrEqual };
    bool equals(const Value& value) const;

    Comparison comparison_ = Comparison::Equal;
    Value operand_;
    bool explicitOperator_ = false;
    bool wildcard_ = false;
};

// ---- texts: worksheets count and cut in UTF-16 units ----

/// 16-bit units and back; a text cut between the halves of a pair keeps its half.
std::u16string toUtf16(std::string_view text);
std::string toUtf8(std::u16string_view text);
int utf16Length(std::string_view text);
/// `count` units from `from` (both clipped to the text).
std::string utf16Slice(std::string_view text, double from, double count);
std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);

// ---- dates ----

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

}  // namespace quorva::workbook
