// Dates and times as serial numbers.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "workbook/functions/day_count.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double numberOr(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() ? arguments[index].number() : otherwise;
}
bool validSerial(double serial, bool date1904) { return bool(dateFromSerial(serial, date1904)); }
Value fromResult(const Result<double>& result) { return result ? Value(*result) : Value(result.error()); }

/// Months must not carry over into the year 10000, even where days would lead back.
Value date(Call& call, Arguments arguments) {
    const double months = std::trunc(arguments[0].number()) * 12 + std::trunc(arguments[1].number());
    if (months > 9999 * 12 + 12) {
        return ErrorCode::Num;
    }
    return fromResult(
        serialFromDate(arguments[0].number(), arguments[1].number(), arguments[2].number(), call.date1904));
}

template <class Part>
Value datePart(const Call& call, Arguments arguments, Part part) {
    const auto parts = dateFromSerial(arguments[0].number(), call.date1904);
    return parts ? Value(part(*parts)) : Value(parts.error());
}
Value year(Call& call, Arguments arguments) {
    return datePart(call, arguments, [](const CalendarDate& parts) { return parts.year; });
}
Value month(Call& call, Arguments arguments) {
    return datePart(call, arguments, [](const CalendarDate& parts) { return parts.month; });
}
Value day(Call& call, Arguments arguments) {
    return datePart(call, arguments, [](const CalendarDate& parts) { return parts.day; });
}

double time(const double* x, int) {
    for (int i = 0; i < 3; ++i) {
        if (!(std::fabs(x[i]) < 32768)) {
            return nan;
        }
    }
    const double seconds = std::trunc(x[0]) * 3600 + std::trunc(x[1]) * 60 + std::trunc(x[2]);
    return seconds < 0 ? nan : std::fmod(seconds, 86400) / 86400;
}
/// The second of the day, to the nearest; NaN for a negative serial number.
double secondOfDay(double serial) {
    if (!(serial >= 0) || serial >= lastSerial + 1) {
        return nan;
    }
    return std::fmod(std::floor((serial - std::floor(serial)) * 86400 + 0.5), 86400);
}
double hour(const double* x, int) { return std::floor(secondOfDay(x[0]) / 3600); }
double minute(const double* x, int) { return std::fmod(std::floor(secondOfDay(x[0]) / 60), 60); }
double second(const double* x, int) { return std::fmod(secondOfDay(x[0]), 60); }

/// The serial number that a typed or stored text means; numbers are none.
std::optional<double> serialFromText(const Call& call, const Argument& argument) {
    if (!argument.value.isText()) {
        return std::nullopt;
    }
    const std::string& text = argument.text();
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        return std::nullopt;
    }
    return parseDateOrTime(std::string_view(text).substr(first, text.find_last_not_of(' ') - first + 1), call.date1904);
}
Value dateValue(Call& call, Arguments arguments) {
    const auto serial = serialFromText(call, arguments[0]);
    return serial ? Value(std::floor(*serial)) : Value(ErrorCode::Value);
}
Value timeValue(Call& call, Arguments arguments) {
    const auto serial = serialFromText(call, arguments[0]);
    // To the millisecond, which is what texts hold: the day in front of the time has taken its last digits.
    constexpr double milliseconds = 86400000;
    return serial ? Value(std::fmod(std::round((*serial - std::floor(*serial)) * milliseconds), milliseconds) /
                          milliseconds)
                  : Value(ErrorCode::Value);
}

Value today(Call& call, Arguments) { return std::floor(call.now()); }
Value now(Call& call, Arguments) { return call.now(); }

Value edate(Call& call, Arguments arguments) {
    return fromResult(addMonths(arguments[0].number(), std::trunc(arguments[1].number()), call.date1904));
}
Value endOfMonth(Call& call, Arguments arguments) {
    const auto parts = dateFromSerial(arguments[0].number(), call.date1904);
    if (!parts) {
        return parts.error();
    }
    // The day before the first of the month after, which DATE carries over.
    const double months = std::trunc(arguments[1].number());
    const double target = parts->year * 12 + parts->month - 1 + months;
    if (target < (call.date1904 ? 1904 : 1900) * 12) {
        return ErrorCode::Num;
    }
    return fromResult(serialFromDate(parts->year, parts->month + months + 1, 0, call.date1904));
}

// ---- weeks ----

/// Days since the last Saturday, 0 to 6, in the calendar where 1 January 1900 is a Sunday.
int daysSinceSaturday(double serial, bool date1904) {
    return static_cast<int>(std::fmod(std::floor(serial) + (date1904 ? 1462 : 0), 7));
}
/// Days since the last `first` day of the week (0 Saturday, 1 Sunday, 2 Monday ...).
int dayOfWeek(double serial, int first, bool date1904) { return (daysSinceSaturday(serial, date1904) - first + 7) % 7; }
/// The first day of the week that the code of WEEKDAY or WEEKNUM means; -1 when there is none.
int firstDayOfWeek(double code) {
    const double type = std::trunc(code);
    if (type == 1 || type == 17) {
        return 1;
    }
    if (type == 2 || type == 11) {
        return 2;
    }
    return type >= 12 && type <= 16 ? (static_cast<int>(type) - 9) % 7 : -1;
}

Value weekday(Call& call, Arguments arguments) {
    const double serial = arguments[0].number();
    const double type = numberOr(arguments, 1, 1);
    const bool fromZero = std::trunc(type) == 3;
    const int first = fromZero ? 2 : firstDayOfWeek(type);
    if (first < 0 || !validSerial(serial, call.date1904)) {
        return ErrorCode::Num;
    }
    return dayOfWeek(serial, first, call.date1904) + (fromZero ? 0 : 1);
}

double isoWeek(double serial, bool date1904) {
    const double thursday = std::floor(serial) - dayOfWeek(serial, 2, date1904) + 3;
    const auto parts = dateFromSerial(thursday, date1904);
    if (!parts) {
        return date1904 ? 53 : 52;  // the week began before the calendar does
    }
    return std::floor((thursday - *serialFromDate(parts->year, 1, 1, date1904)) / 7) + 1;
}
Value isoWeekNumber(Call& call, Arguments arguments) {
    const double serial = arguments[0].number();
    return validSerial(serial, call.date1904) ? Value(isoWeek(serial, call.date1904)) : Value(ErrorCode::Num);
}
Value weekNumber(Call& call, Arguments arguments) {
    const double serial = std::floor(arguments[0].number());
    const double type = numberOr(arguments, 1, 1);
    const auto parts = dateFromSerial(serial, call.date1904);
    if (!parts) {
        return parts.error();
    }
    if (std::trunc(type) == 21) {
        return isoWeek(serial, call.date1904);
    }
    const int first = firstDayOfWeek(type);
    if (first < 0) {
        return ErrorCode::Num;
    }
    const double newYear = *serialFromDate(parts->year, 1, 1, call.date1904);
    return std::floor((serial - newYear + dayOfWeek(newYear, first, call.date1904)) / 7) + 1;
}

// ---- working days ----

/// Which days of the week are off, by days since Saturday.
using Weekend = std::array<bool, 7>;
constexpr Weekend saturdayAndSunday{true, true, false, false, false, false, false};

Result<Weekend> weekendFromCode(const Argument& argument) {
    if (argument.missing || argument.value.isBlank()) {
        return saturdayAndSunday;
    }
    Weekend weekend{};
    if (argument.value.isText()) {
        const std::string& days = argument.text();
        if (days.size() != 7 || days.find_first_not_of("01") != std::string::npos) {
            return ErrorCode::Value;
        }
        for (std::size_t i = 0; i < 7; ++i) {  // Monday first
            weekend[(i + 2) % 7] = days[i] == '1';
        }
        return weekend;
    }
    const double code = std::trunc(argument.value.number());
    if (code >= 1 && code <= 7) {  // two days, 1: Saturday and Sunday
        weekend[static_cast<std::size_t>(code - 1)] = true;
        weekend[static_cast<std::size_t>(code) % 7] = true;
        return weekend;
    }
    if (code >= 11 && code <= 17) {  // one day, 11: Sunday
        weekend[static_cast<std::size_t>(code - 10) % 7] = true;
        return weekend;
    }
    return ErrorCode::Num;
}

/// The calendar of working days that an argument list describes.
struct WorkCalendar {
    Weekend weekend = saturdayAndSunday;
    std::vector<double> holidays;  ///< sorted, distinct
    bool date1904 = false;

    bool isOff(double serial) const {
        return weekend[static_cast<std::size_t>(daysSinceSaturday(serial, date1904))] ||
               std::binary_search(holidays.begin(), holidays.end(), serial);
    }
};

Result<WorkCalendar> workCalendar(const Call& call, const Argument* weekend, const Argument* holidays) {
    WorkCalendar calendar;
    calendar.date1904 = call.date1904;
    if (weekend) {
        const auto days = weekendFromCode(*weekend);
        if (!days) {
            return days.error();
        }
        calendar.weekend = *days;
    }
    if (!holidays || holidays->missing) {
        return calendar;
    }
    std::optional<ErrorCode> error = holidays->value.isError() ? std::optional(holidays->value.error()) : std::nullopt;
    holidays->grid(call).forEach([&](const Value& value, int, int) -> bool {
        if (value.isBlank()) {
            return true;
        }
        const auto serial = value.isBoolean() ? Result<double>(ErrorCode::Value) : toNumber(value, call.date1904);
        if (!serial) {
            error = serial.error();
        } else if (!validSerial(*serial, call.date1904)) {
            error = ErrorCode::Num;
        } else {
            calendar.holidays.push_back(std::floor(*serial));
        }
        return !error;
    });
    if (error) {
        return *error;
    }
    std::sort(calendar.holidays.begin(), calendar.holidays.end());
    calendar.holidays.erase(std::unique(calendar.holidays.begin(), calendar.holidays.end()), calendar.holidays.end());
    return calendar;
}

Value networkDaysIn(const Call& call, Arguments arguments, const Result<WorkCalendar>& calendar) {
    double from = std::floor(arguments[0].number());
    double to = std::floor(arguments[1].number());
    if (!validSerial(from, call.date1904) || !validSerial(to, call.date1904)) {
        return ErrorCode::Num;
    }
    if (!calendar) {
        return calendar.error();
    }
    const double sign = from <= to ? 1 : -1;
    if (from > to) {
        std::swap(from, to);
    }
    const auto perWeek = std::count(calendar->weekend.begin(), calendar->weekend.end(), false);
    const double weeks = std::floor((to - from + 1) / 7);
    double count = weeks * static_cast<double>(perWeek);
    const auto weekendOn = [&](double serial) {
        return calendar->weekend[static_cast<std::size_t>(daysSinceSaturday(serial, call.date1904))];
    };
    for (double serial = from + weeks * 7; serial <= to; ++serial) {
        count += weekendOn(serial) ? 0 : 1;
    }
    for (const double holiday : calendar->holidays) {
        count -= holiday >= from && holiday <= to && !weekendOn(holiday) ? 1 : 0;
    }
    return sign * count;
}

Value workDayIn(const Call& call, Arguments arguments, const Result<WorkCalendar>& calendar) {
    double serial = std::floor(arguments[0].number());
    double days = std::trunc(arguments[1].number());
    if (!validSerial(serial, call.date1904)) {
        return ErrorCode::Num;
    }
    if (!calendar) {
        return calendar.error();
    }
    if (std::find(calendar->weekend.begin(), calendar->weekend.end(), false) == calendar->weekend.end()) {
        return ErrorCode::Value;
    }
    const double step = days < 0 ? -1 : 1;
    days = std::fabs(days);
    if (days > lastSerial) {
        return ErrorCode::Num;
    }
    call.spend(days);
    while (days > 0) {
        serial += step;
        if (!(serial >= 0 && serial <= lastSerial)) {
            return ErrorCode::Num;
        }
        days -= calendar->isOff(serial) ? 0 : 1;
    }
    return serial;
}

const Argument* argumentAt(Arguments arguments, std::size_t index) {
    return index < arguments.size() ? &arguments[index] : nullptr;
}
Value networkDays(Call& call, Arguments arguments) {
    return networkDaysIn(call, arguments, workCalendar(call, nullptr, argumentAt(arguments, 2)));
}
Value networkDaysInternational(Call& call, Arguments arguments) {
    return networkDaysIn(call, arguments, workCalendar(call, argumentAt(arguments, 2), argumentAt(arguments, 3)));
}
Value workDay(Call& call, Arguments arguments) {
    return workDayIn(call, arguments, workCalendar(call, nullptr, argumentAt(arguments, 2)));
}
Value workDayInternational(Call& call, Arguments arguments) {
    return workDayIn(call, arguments, workCalendar(call, argumentAt(arguments, 2), argumentAt(arguments, 3)));
}

// ---- differences ----

double days(const double* x, int) {
    const auto valid = [](double serial) { return serial >= 0 && serial < lastSerial + 1; };
    return valid(x[0]) && valid(x[1]) ? std::floor(x[0]) - std::floor(x[1]) : nan;
}

Value days360Value(Call& call, Arguments arguments) {
    const auto from = dateFromSerial(arguments[0].number(), call.date1904);
    const auto to = dateFromSerial(arguments[1].number(), call.date1904);
    if (!from || !to) {
        return ErrorCode::Num;
    }
    return days360(*from, *to, arguments.size() > 2 && arguments[2].boolean());
}

Value yearFractionValue(Call& call, Arguments arguments) {
    const auto basis = basisFromCode(numberOr(arguments, 2, 0));
    return basis ? fromResult(yearFraction(arguments[0].number(), arguments[1].number(), *basis, call.date1904))
                 : Value(ErrorCode::Num);
}

Value dateDifference(Call& call, Arguments arguments) {
    const double first = std::floor(arguments[0].number());
    const double last = std::floor(arguments[1].number());
    const auto from = dateFromSerial(first, call.date1904);
    const auto to = dateFromSerial(last, call.date1904);
    if (!from || !to || first > last) {
        return ErrorCode::Num;
    }
    const std::string unit = toUpper(arguments[2].text());
    const int months = (to->year - from->year) * 12 + to->month - from->month - (to->day < from->day ? 1 : 0);
    if (unit == "Y") {
        return months / 12;
    }
    if (unit == "M") {
        return months;
    }
    if (unit == "YM") {
        return months % 12;
    }
    if (unit == "D") {
        return last - first;
    }
    if (unit == "MD") {
        // From the first date's day in the month before the last date; a day that this month lacks carries over, which
        // may make the difference negative (intended: it does in worksheets).
        return to->day >= from->day ? Value(to->day - from->day)
                                    : Value(last - *serialFromDate(to->year, to->month - 1, from->day, call.date1904));
    }
    if (unit == "YD") {
        auto moved = serialFromDate(from->year, to->month, to->day, call.date1904);
        if (moved && *moved < first) {
            moved = serialFromDate(from->year + 1, to->month, to->day, call.date1904);
        }
        return moved ? Value(*moved - first) : Value(moved.error());
    }
    return ErrorCode::Num;
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function,
                          bool toolPack = false) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Date,
            .function = function,
            .refusesRanges = toolPack};
}
constexpr FunctionRow numeric(std::string_view name, int args, NumericFunction function) {
    return {
        .name = name, .minArgs = args, .maxArgs = args, .kinds = "N", .category = Category::Date, .numeric = function};
}
constexpr FunctionRow clock(std::string_view name, Function function) {
    return {.name = name,
            .kinds = "",
            .category = Category::Date,
            .volatility = Volatility::Volatile,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("DATE", 3, 3, "N", date),
    row("DATEDIF", 3, 3, "NNT", dateDifference),
    row("DATEVALUE", 1, 1, "S", dateValue),
    row("DAY", 1, 1, "N", day),
    numeric("DAYS", 2, days),
    row("DAYS360", 2, 3, "NNB", days360Value),
    row("EDATE", 2, 2, "N", edate, true),
    row("EOMONTH", 2, 2, "N", endOfMonth, true),
    numeric("HOUR", 1, hour),
    row("ISOWEEKNUM", 1, 1, "N", isoWeekNumber),
    numeric("MINUTE", 1, minute),
    row("MONTH", 1, 1, "N", month),
    row("NETWORKDAYS", 2, 3, "NNA", networkDays, true),
    row("NETWORKDAYS.INTL", 2, 4, "NNSA", networkDaysInternational),
    clock("NOW", now),
    numeric("SECOND", 1, second),
    numeric("TIME", 3, time),
    row("TIMEVALUE", 1, 1, "S", timeValue),
    clock("TODAY", today),
    row("WEEKDAY", 1, 2, "N", weekday),
    row("WEEKNUM", 1, 2, "N", weekNumber, true),
    row("WORKDAY", 2, 3, "NNA", workDay, true),
    row("WORKDAY.INTL", 2, 4, "NNSA", workDayInternational),
    row("YEAR", 1, 1, "N", year),
    row("YEARFRAC", 2, 3, "N", yearFractionValue, true),
};

}  // namespace

std::span<const FunctionRow> dateFunctions() { return table; }

}  // namespace quorva::workbook
