// Date serial numbers of both systems, and dates and times written as text (month first).
#include "workbook/values/dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>

#include "workbook/values/convert.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

/// Days since 1 March of the year 0 in the proleptic Gregorian calendar.
std::int64_t daysFromCivil(std::int64_t year, int month, int day) {
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
}

CalendarDate civilFromDays(std::int64_t days) {
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shifted = static_cast<int>((5 * dayOfYear + 2) / 153);
    CalendarDate date;
    date.day = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
    date.month = shifted < 10 ? shifted + 3 : shifted - 9;
    date.year = static_cast<int>(yearOfEra + era * 400 + (date.month <= 2));
    return date;
}

const std::int64_t day1900 = daysFromCivil(1899, 12, 31);  // serial 0; serials above 60 are one day further
const std::int64_t day1904 = daysFromCivil(1904, 1, 1);

constexpr std::array<std::string_view, 12> monthNames{"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                                      "MAY",       "JUNE",     "JULY",     "AUGUST",
                                                      "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};

int monthFromName(std::string_view word) {
    for (std::size_t i = 0; i < monthNames.size(); ++i) {
        if (word == monthNames[i] || word == monthNames[i].substr(0, 3)) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

int currentYear() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    return local.tm_year + 1900;
}

struct Piece {
    enum class Kind { Number, Word, Mark } kind;
    std::string text;
    int value = 0;
};

bool split(std::string_view text, std::vector<Piece>& pieces) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        const auto is = [&](auto test) { return i < text.size() && test(static_cast<unsigned char>(text[i])); };
        const auto digit = [](unsigned char c) { return c >= '0' && c <= '9'; };
        const auto letter = [](unsigned char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
        if (is(digit)) {
            while (is(digit)) {
                ++i;
            }
            if (i - start > 5) {
                return false;
            }
            pieces.push_back({Piece::Kind::Number, std::string(text.substr(start, i - start)), 0});
            pieces.back().value = std::stoi(pieces.back().text);
        } else if (is(letter)) {
            while (is(letter)) {
                ++i;
            }
            pieces.push_back({Piece::Kind::Word, toUpper(text.substr(start, i - start)), 0});
        } else {
            const bool blank = text[i] == ' ';
            while (blank && i < text.size() && text[i] == ' ') {
                ++i;
            }
            i += blank ? 0 : 1;
            pieces.push_back({Piece::Kind::Mark, std::string(text.substr(start, 1)), 0});
        }
        if (pieces.size() > 20) {
            return false;
        }
    }
    return true;
}

bool isMark(const std::vector<Piece>& pieces, std::size_t at, char mark) {
    return at < pieces.size() && pieces[at].kind == Piece::Kind::Mark && pieces[at].text[0] == mark;
}
bool isNumber(const std::vector<Piece>& pieces, std::size_t at) {
    return at < pieces.size() && pieces[at].kind == Piece::Kind::Number;
}

/// A time of day from `at` to the end: "12:30", "12:30:15.5 PM", "3 PM".
std::optional<double> parseTime(const std::vector<Piece>& pieces, std::size_t at) {
    if (!isNumber(pieces, at)) {
        return std::nullopt;
    }
    double hours = pieces[at++].value;
    double minutes = 0;
    double seconds = 0;
    int parts = 1;
    if (isMark(pieces, at, ':') && isNumber(pieces, at + 1)) {
        minutes = pieces[at + 1].value;
        at += 2;
        ++parts;
        if (isMark(pieces, at, ':') && isNumber(pieces, at + 1)) {
            seconds = pieces[at + 1].value;
            at += 2;
            ++parts;
        }
        if (isMark(pieces, at, '.') && isNumber(pieces, at + 1)) {
            if (parts == 2) {  // "mm:ss.0"
                seconds = minutes;
                minutes = hours;
                hours = 0;
            }
            seconds += pieces[at + 1].value / std::pow(10.0, static_cast<double>(pieces[at + 1].text.size()));
            at += 2;
        }
    } else if (isMark(pieces, at, ':')) {
        ++at;
    }
    const bool blank = isMark(pieces, at, ' ');
    at += blank ? 1 : 0;
    bool half = false;
    if (at < pieces.size() && pieces[at].kind == Piece::Kind::Word) {
        const std::string& word = pieces[at].text;
        if (word != "AM" && word != "PM" && word != "A" && word != "P") {
            return std::nullopt;
        }
        if (hours > 12 || !blank) {
            return std::nullopt;
        }
        half = true;
        hours = std::fmod(hours, 12) + (word[0] == 'P' ? 12 : 0);
        ++at;
    }
    if (at != pieces.size() || (parts == 1 && !half) || minutes > 59 || seconds >= 60 || hours > 9999) {
        return std::nullopt;
    }
    return (hours * 3600 + minutes * 60 + seconds) / 86400;
}

/// Takes the day of the week off the front: "Friday, January 31, 2020", "Fri 31-Jan-2020". It is not checked.
void removeWeekday(std::vector<Piece>& pieces) {
    constexpr std::array<std::string_view, 7> names{"MONDAY", "TUESDAY",  "WEDNESDAY", "THURSDAY",
                                                    "FRIDAY", "SATURDAY", "SUNDAY"};
    if (pieces.empty() || pieces[0].kind != Piece::Kind::Word ||
        std::none_of(names.begin(), names.end(), [&](std::string_view name) {
            return pieces[0].text == name || pieces[0].text == name.substr(0, 3);
        })) {
        return;
    }
    std::size_t at = 1;
    while (isMark(pieces, at, ',') || isMark(pieces, at, ' ')) {
        ++at;
    }
    pieces.erase(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(at));
}

struct DateParts {
    int year = -1;
    int month = 0;
    int day = 0;
    std::size_t next = 0;
};

int fullYear(const Piece& piece) {
    if (piece.text.size() > 2) {
        return piece.value;
    }
    return piece.value + (piece.value < 30 ? 2000 : 1900);
}

bool separator(const std::vector<Piece>& pieces, std::size_t at) {
    return isMark(pieces, at, '/') || isMark(pieces, at, '-') || isMark(pieces, at, ' ');
}

/// Day and month in words: "31-Jan-2020", "31 Jan", "Jan 31, 2020", "Jan-2020", "January 2020".
std::optional<DateParts> parseNamedDate(const std::vector<Piece>& pieces) {
    DateParts date;
    if (isNumber(pieces, 0)) {
        std::size_t at = separator(pieces, 1) ? 2 : 1;
        if (at >= pieces.size() || pieces[at].kind != Piece::Kind::Word) {
            return std::nullopt;
        }
        date.month = monthFromName(pieces[at].text);
        date.day = pieces[0].value;
        date.next = at + 1;
        at = date.next;
        at += separator(pieces, at) ? 1 : 0;
        if (isNumber(pieces, at) && !isMark(pieces, at + 1, ':')) {  // "5-Jan-2020", "5JAN2020"
            date.year = fullYear(pieces[at]);
            date.next = at + 1;
        }
    } else {
        if (pieces.empty() || pieces[0].kind != Piece::Kind::Word) {
            return std::nullopt;
        }
        date.month = monthFromName(pieces[0].text);
        const std::size_t at = separator(pieces, 1) ? 2 : 1;
        if (!isNumber(pieces, at)) {
            return std::nullopt;
        }
        date.next = at + 1;
        if (pieces[at].value > 31 || pieces[at].text.size() > 2) {
            date.year = fullYear(pieces[at]);
            date.day = 1;
        } else {
            date.day = pieces[at].value;
            std::size_t further = date.next + (isMark(pieces, date.next, ',') ? 1 : 0);
            further += separator(pieces, further) ? 1 : 0;
            if (further > date.next && isNumber(pieces, further) && !isMark(pieces, further + 1, ':')) {
                date.year = fullYear(pieces[further]);
                date.next = further + 1;
            }
        }
    }
    return date.month == 0 ? std::nullopt : std::optional(date);
}

/// Numbers only: "1/31/2020", "2020-01-31", "1/31", "1/2020".
std::optional<DateParts> parseNumericDate(const std::vector<Piece>& pieces) {
    if (!isNumber(pieces, 0) || !(isMark(pieces, 1, '/') || isMark(pieces, 1, '-')) || !isNumber(pieces, 2)) {
        return std::nullopt;
    }
    DateParts date;
    const bool three = (isMark(pieces, 3, '/') || isMark(pieces, 3, '-')) && isNumber(pieces, 4);
    if (three) {
        date.next = 5;
        if (pieces[0].text.size() > 2) {
            date.year = pieces[0].value;
            date.month = pieces[2].value;
            date.day = pieces[4].value;
        } else {
            date.month = pieces[0].value;
            date.day = pieces[2].value;
            date.year = fullYear(pieces[4]);
        }
        return date;
    }
    date.next = 3;
    date.month = pieces[0].value;
    if (pieces[2].value > 31 || pieces[2].text.size() > 2 ||
        (date.month >= 1 && date.month <= 12 && pieces[2].value > daysInMonth(currentYear(), date.month))) {
        date.year = fullYear(pieces[2]);
        date.day = 1;
    } else {
        date.day = pieces[2].value;
    }
    return date;
}

}  // namespace

bool isLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysInMonth(int year, int month) {
    constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

Result<CalendarDate> dateFromSerial(double serial, bool date1904) {
    const double whole = std::floor(serial);
    if (!(whole >= 0) || whole > lastSerial - (date1904 ? 1462 : 0)) {
        return ErrorCode::Num;
    }
    const std::int64_t days = static_cast<std::int64_t>(whole);
    if (date1904) {
        return civilFromDays(day1904 + days);
    }
    if (days == 0) {
        return CalendarDate{1900, 1, 0};
    }
    if (days == 60) {
        return CalendarDate{1900, 2, 29};
    }
    return civilFromDays(day1900 + days - (days > 60 ? 1 : 0));
}

Result<double> serialFromDate(double year, double month, double day, bool date1904) {
    year = std::trunc(year);
    month = std::trunc(month);
    day = std::trunc(day);
    if (year >= 0 && year < (date1904 ? 1904 : 1900)) {
        year += 1900;
    }
    if (!(year >= 1900 && year < 10000) || std::fabs(month) > 120000 || std::fabs(day) > 4e6) {
        return ErrorCode::Num;
    }
    const std::int64_t months = static_cast<std::int64_t>(year) * 12 + static_cast<std::int64_t>(month) - 1;
    const std::int64_t realYear = months >= 0 ? months / 12 : (months - 11) / 12;
    const int realMonth = static_cast<int>(months - realYear * 12) + 1;
    const std::int64_t first = daysFromCivil(realYear, realMonth, 1);
    double serial;
    if (date1904) {
        serial = static_cast<double>(first - day1904) + day - 1;
    } else {
        // The first of the month in a calendar where 29 February 1900 exists; days carry over in that calendar.
        const std::int64_t start = first - day1900 + (first - day1900 >= 60 ? 1 : 0);
        serial = static_cast<double>(start) + day - 1;
    }
    if (!(serial >= 0) || serial > lastSerial - (date1904 ? 1462 : 0)) {
        return ErrorCode::Num;
    }
    return serial;
}

std::optional<double> parseTimeOfDay(std::string_view text) {
    std::vector<Piece> pieces;
    return split(text, pieces) ? parseTime(pieces, 0) : std::nullopt;
}

std::optional<double> parseDateOrTime(std::string_view text, bool date1904) {
    std::vector<Piece> pieces;
    if (!split(text, pieces) || pieces.empty()) {
        return std::nullopt;
    }
    if (const auto time = parseTime(pieces, 0)) {
        return time;
    }
    removeWeekday(pieces);
    auto date = parseNamedDate(pieces);
    if (!date) {
        date = parseNumericDate(pieces);
    }
    if (!date) {
        return std::nullopt;
    }
    const int year = date->year < 0 ? currentYear() : date->year;
    const bool leapDay1900 = year == 1900 && date->month == 2 && date->day == 29 && !date1904;
    if (year < (date1904 ? 1904 : 1900) || year > 9999 || date->month < 1 || date->month > 12 || date->day < 1 ||
        (date->day > daysInMonth(year, date->month) && !leapDay1900)) {
        return std::nullopt;
    }
    const auto serial = serialFromDate(year, date->month, date->day, date1904);
    if (!serial) {
        return std::nullopt;
    }
    if (date->next == pieces.size()) {
        return *serial;
    }
    if (!isMark(pieces, date->next, ' ')) {
        return std::nullopt;
    }
    const auto time = parseTime(pieces, date->next + 1);
    return time ? std::optional(*serial + *time) : std::nullopt;
}

}  // namespace quorva::workbook
