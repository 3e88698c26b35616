#include "workbook/functions/day_count.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorva::workbook {

namespace {

int thirty360(const CalendarDate& from, const CalendarDate& to) {
    return (to.year - from.year) * 360 + (to.month - from.month) * 30 + (to.day - from.day);
}

/// Whether the dates are at most a year apart.
bool withinOneYear(const CalendarDate& from, const CalendarDate& to) {
    return from.year == to.year ||
           (from.year + 1 == to.year && (from.month > to.month || (from.month == to.month && from.day >= to.day)));
}

/// Whether a 29 February lies in [from, to]; the dates are at most a year apart.
bool holdsLeapDay(const CalendarDate& from, const CalendarDate& to) {
    const auto afterFebruary = [](const CalendarDate& date) { return date.month > 2; };
    if (from.year == to.year) {
        return isLeapYear(from.year) && !afterFebruary(from) && (afterFebruary(to) || (to.month == 2 && to.day == 29));
    }
    return (isLeapYear(from.year) && !afterFebruary(from)) ||
           (isLeapYear(to.year) && (afterFebruary(to) || (to.month == 2 && to.day == 29)));
}

/// The length of the year that ACT/ACT divides by: of the year itself within one year, else the mean of the calendar
/// years touched.
double actualYear(const CalendarDate& from, const CalendarDate& to) {
    if (withinOneYear(from, to)) {
        if (from.year == to.year) {
            return isLeapYear(from.year) ? 366 : 365;
        }
        return holdsLeapDay(from, to) ? 366 : 365;
    }
    int days = 0;
    for (int year = from.year; year <= to.year; ++year) {
        days += isLeapYear(year) ? 366 : 365;
    }
    return static_cast<double>(days) / (to.year - from.year + 1);
}

}  // namespace

std::optional<Basis> basisFromCode(double code) {
    const double whole = std::trunc(code);
    return whole >= 0 && whole <= 4 ? std::optional(static_cast<Basis>(static_cast<int>(whole))) : std::nullopt;
}

bool isLastOfFebruary(const CalendarDate& date) { return date.month == 2 && date.day >= daysInMonth(date.year, 2); }

int days360(const CalendarDate& from, const CalendarDate& to, bool european) {
    CalendarDate start = from;
    CalendarDate end = to;
    if (european) {
        start.day = std::min(start.day, 30);
        end.day = std::min(end.day, 30);
    } else {
        if (start.day == 31 || isLastOfFebruary(start)) {
            start.day = 30;
        }
        if (end.day == 31) {
            if (start.day < 30) {
                end.day = 1;  // the first of the next month; thirty360 needs no carry into the year
                ++end.month;
            } else {
                end.day = 30;
            }
        }
    }
    return thirty360(start, end);
}

int days360Securities(CalendarDate from, CalendarDate to, bool european) {
    if (european) {
        from.day = std::min(from.day, 30);
        to.day = std::min(to.day, 30);
    } else if (from.day == 31 && to.day == 31) {
        from.day = to.day = 30;
    } else if (from.day == 31) {
        from.day = 30;
    } else if (from.day == 30 && to.day == 31) {
        to.day = 30;
    } else if (isLastOfFebruary(from)) {
        from.day = 30;
        if (isLastOfFebruary(to)) {
            to.day = 30;
        }
    }
    return thirty360(from, to);
}

Result<double> yearFraction(double from, double to, Basis basis, bool date1904) {
    from = std::floor(from);
    to = std::floor(to);
    if (from > to) {
        std::swap(from, to);
    }
    const auto start = dateFromSerial(from, date1904);
    const auto end = dateFromSerial(to, date1904);
    if (!start || !end) {
        return ErrorCode::Num;
    }
    if (from == to) {
        return 0.0;
    }
    switch (basis) {
        case Basis::UsThirty360:
            return days360Securities(*start, *end, false) / 360.0;
        case Basis::ActualActual:
            return (to - from) / actualYear(*start, *end);
        case Basis::Actual360:
            return (to - from) / 360;
        case Basis::Actual365:
            return (to - from) / 365;
        default:
            return days360Securities(*start, *end, true) / 360.0;
    }
}

Result<double> addMonths(double serial, double months, bool date1904) {
    const auto date = dateFromSerial(serial, date1904);
    if (!date || std::fabs(months) > 120000) {
        return ErrorCode::Num;
    }
    const int total = date->year * 12 + date->month - 1 + static_cast<int>(months);
    const int year = total / 12;
    const int month = total % 12 + 1;
    if (total < 0 || year < (date1904 ? 1904 : 1900)) {
        return ErrorCode::Num;
    }
    const int last = year == 1900 && month == 2 && !date1904 ? 29 : daysInMonth(year, month);
    return serialFromDate(year, month, std::min(date->day, last), date1904);
}

}  // namespace quorva::workbook
