// Dates and times in number formats.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "workbook/convert.h"
#include "workbook/number_format_parts.h"

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

}  // namespace

std::optional<std::string> writeDate(const Section& section, double serial, bool date1904) {
    const auto& tokens = section.tokens;
    int subDigits = 0;
    bool hasTime = false;
    bool half = false;
    for (const Token& token : tokens) {
        subDigits = std::max(subDigits, token.kind == Kind::SubSecond ? token.count : 0);
        hasTime = hasTime || token.kind >= Kind::Hour || token.kind == Kind::Minute;
        half = half || token.kind == Kind::HalfDay;
    }
    if (serial < 0 || serial >= lastSerial + 1) {
        return std::nullopt;
    }
    // Rounded to the smallest unit shown, so that 0.99999 s does not read 59 s.
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
    const std::int64_t seconds = static_cast<std::int64_t>(ticks / units);
    const std::int64_t hour = seconds / 3600;
    const std::int64_t total = static_cast<std::int64_t>(day) * 86400 + seconds;
    const std::string_view weekday = weekdays[static_cast<std::size_t>(std::fmod(day + (date1904 ? 1462 : 0), 7))];
    std::string text;
    for (const Token& token : tokens) {
        switch (token.kind) {
            case Kind::Year:
                text += token.count <= 2 ? padded(date->year % 100, 2) : padded(date->year, 4);
                break;
            case Kind::Month:
                text += writeMonth(date->month, token.count);
                break;
            case Kind::Day:
                text += writeDay(date->day, weekday, token.count);
                break;
            case Kind::Hour:
                text += padded(half ? (hour + 11) % 12 + 1 : hour, std::min(token.count, 2));
                break;
            case Kind::Minute:
                text += padded(seconds / 60 % 60, std::min(token.count, 2));
                break;
            case Kind::Second:
                text += padded(seconds % 60, std::min(token.count, 2));
                break;
            case Kind::SubSecond:
                text += "." + padded(static_cast<std::int64_t>(std::fmod(ticks, units)), token.count);
                break;
            case Kind::Elapsed:
                text += padded(token.code == 'H' ? total / 3600 : token.code == 'M' ? total / 60 : total, token.count);
                break;
            case Kind::HalfDay:
                text +=
                    token.text.size() > 3 ? (hour < 12 ? "AM" : "PM") : std::string(1, token.text[hour < 12 ? 0 : 2]);
                break;
            case Kind::Point:
                text += '.';
                break;
            case Kind::Comma:
                text += ',';
                break;
            case Kind::Percent:
                text += '%';
                break;
            case Kind::Digit:
                text += token.code == '0' ? "0" : "";
                break;
            default:
                text += token.text;
        }
    }
    return text;
}

}  // namespace quorva::workbook::format
