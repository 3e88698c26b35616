// Dates and times in number formats.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "workbook/values/convert.h"
#include "workbook/values/dates.h"
#include "workbook/values/number_format_parts.h"

namespace quorva::workbook::format {

namespace {

using Kind = Token::Kind;

constexpr std::array<std::string_view, 12> months{"January",   "February", "March",    "April",
                                                  "May",       "June",     "July",     "August",
                                                  "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> weekdays{"Saturday",  "Sunday",   "Monday", "Tuesday",
                                                   "Wednesday", "Thursday", "Friday"};

std::string padded(std::int64_t number, int width) {
    std::string text = std::to_string(number);
    return static_cast<int>(text.size()) < width
               ? std::string(static_cast<std::size_t>(width) - text.size(), '0') + text
               : text;
}

std::string writeMonth(int month, int count) {
    const std::string_view name = months[static_cast<std::size_t>(month - 1)];
    switch (count) {
        case 1:
        case 2:
            return padded(month, count);
        case 3:
            return std::string(name.substr(0, 3));
        case 5:
            return std::string(name.substr(0, 1));
        default:
            return std::string(name);
    }
}

std::string writeDay(int day, std::string_view weekday, int count) {
    if (count <= 2) {
        return padded(day, count);
    }
    return std::string(count == 3 ? weekday.substr(0, 3) : weekday);
}

/// A serial number taken apart, rounded to the smallest unit that the format shows.
struct Moment {
    CalendarDate date;
    std::string_view weekday;
    std::int64_t seconds = 0;   ///< of the day
    std::int64_t elapsed = 0;   ///< seconds since serial number 0
    std::int64_t fraction = 0;  ///< of the second, in units of its last digit shown
    bool half = false;          ///< hours run to 12
};

std::optional<Moment> momentOf(const Section& section, double serial, bool date1904) {
    int subDigits = 0;
    bool hasTime = false;
    Moment moment;
    for (const Token& token : section.tokens) {
        subDigits = std::max(subDigits, token.kind == Kind::SubSecond ? token.count : 0);
        hasTime = hasTime || token.kind >= Kind::Hour || token.kind == Kind::Minute;
        moment.half = moment.half || token.kind == Kind::HalfDay;
    }
    if (serial < 0 || serial >= lastSerial + 1) {
        return std::nullopt;
    }
    const double units = std::pow(10.0, subDigits);
    double day = std::floor(serial);
    double ticks = hasTime ? std::floor((serial - day) * 86400 * units + 0.5) : 0;
    if (ticks >= 86400 * units) {
        ++day;
        ticks = 0;
    }
    const auto date = dateFromSerial(day, date1904);
    if (!date) {
        return std::nullopt;
    }
    moment.date = *date;
    moment.weekday = weekdays[static_cast<std::size_t>(std::fmod(day + (date1904 ? 1462 : 0), 7))];
    moment.seconds = static_cast<std::int64_t>(ticks / units);
    moment.elapsed = static_cast<std::int64_t>(day) * 86400 + moment.seconds;
    moment.fraction = static_cast<std::int64_t>(std::fmod(ticks, units));
    return moment;
}

std::string writeHalfDay(const std::string& wanted, bool morning) {
    return wanted.size() > 3 ? (morning ? "AM" : "PM") : std::string(1, wanted[morning ? 0 : 2]);
}

std::string writeToken(const Token& token, const Moment& moment) {
    const std::int64_t hour = moment.seconds / 3600;
    const int width = std::min(token.count, 2);
    switch (token.kind) {
        case Kind::Year:
            return token.count <= 2 ? padded(moment.date.year % 100, 2) : padded(moment.date.year, 4);
        case Kind::Month:
            return writeMonth(moment.date.month, token.count);
        case Kind::Day:
            return writeDay(moment.date.day, moment.weekday, token.count);
        case Kind::Hour:
            return padded(moment.half ? (hour + 11) % 12 + 1 : hour, width);
        case Kind::Minute:
            return padded(moment.seconds / 60 % 60, width);
        case Kind::Second:
            return padded(moment.seconds % 60, width);
        case Kind::SubSecond:
            return "." + padded(moment.fraction, token.count);
        case Kind::Elapsed:
            return padded(moment.elapsed / (token.code == 'H' ? 3600 : token.code == 'M' ? 60 : 1), token.count);
        case Kind::HalfDay:
            return writeHalfDay(token.text, hour < 12);
        case Kind::Point:
            return ".";
        case Kind::Comma:
            return ",";
        case Kind::Percent:
            return "%";
        case Kind::Digit:
            return token.code == '0' ? "0" : "";
        default:
            return token.text;
    }
}

}  // namespace

std::optional<std::string> writeDate(const Section& section, double serial, bool date1904) {
    const auto moment = momentOf(section, serial, date1904);
    if (!moment) {
        return std::nullopt;
    }
    std::string text;
    for (const Token& token : section.tokens) {
        text += writeToken(token, *moment);
    }
    return text;
}

}  // namespace quorva::workbook::format
