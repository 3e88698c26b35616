#include "workbook/values/convert.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "workbook/values/dates.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() &&
           (text.front() == ' ' || text.front() == '\t' || text.front() == '\n' || text.front() == '\r')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\n' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Removes thousands separators; false when one stands where none may (not followed by three digits, in the fraction).
bool removeThousands(std::string_view text, std::string& plain) {
    bool fraction = false;
    bool separated = false;
    int sinceSeparator = 0;
    for (const char c : text) {
        if (c == ',') {
            if (fraction || plain.empty() || (separated && sinceSeparator != 3)) {
                return false;
            }
            separated = true;
            sinceSeparator = 0;
            continue;
        }
        if (!isDigit(c)) {
            if (separated && !fraction && sinceSeparator != 3) {
                return false;
            }
            fraction = true;
        } else {
            ++sinceSeparator;
        }
        plain.push_back(c);
    }
    return !separated || fraction || sinceSeparator == 3;
}

/// "1 1/2" and "1/2 " with an integer part: a fraction (a bare "1/2" is a date).
std::optional<double> parseFraction(std::string_view text) {
    const auto blank = text.find(' ');
    const auto slash = text.find('/');
    if (blank == std::string_view::npos || slash == std::string_view::npos || slash < blank) {
        return std::nullopt;
    }
    const auto digits = [](std::string_view part) -> std::optional<double> {
        part = trimmed(part);
        if (part.empty() || part.size() > 9 || !std::all_of(part.begin(), part.end(), isDigit)) {
            return std::nullopt;
        }
        return parsePlainNumber(part);
    };
    const auto whole = digits(text.substr(0, blank));
    const auto numerator = digits(text.substr(blank + 1, slash - blank - 1));
    const auto denominator = digits(text.substr(slash + 1));
    if (!whole || !numerator || !denominator || *denominator == 0) {
        return std::nullopt;
    }
    return *whole + *numerator / *denominator;
}

/// Digits with separators, point and exponent, a percent sign and a dollar sign; no sign, no blanks around.
std::optional<double> parseUnsigned(std::string_view text, bool& percent, bool& currency) {
    if (!text.empty() && text.front() == '$' && !currency) {
        currency = true;
        text = trimmed(text.substr(1));
    }
    if (!text.empty() && text.back() == '%' && !percent) {
        percent = true;
        text = trimmed(text.substr(0, text.size() - 1));
    } else if (!text.empty() && text.front() == '%' && !percent) {
        percent = true;
        text = trimmed(text.substr(1));
    }
    if (text.empty() || !(isDigit(text.front()) || text.front() == '.')) {
        return std::nullopt;
    }
    std::string plain;
    if (!removeThousands(text, plain)) {
        return std::nullopt;
    }
    auto number = parsePlainNumber(plain);
    if (!number) {
        number = parseFraction(text);
    }
    return number;
}

}  // namespace

std::optional<double> parsePlainNumber(std::string_view text) {
    if (text.empty()) {
        return std::nullopt;
    }
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (*begin == '+') {
        ++begin;
        if (begin == end || *begin == '-' || *begin == '+') {
            return std::nullopt;
        }
    }
    if (!std::all_of(begin, end,
                     [](char c) { return isDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-'; })) {
        return std::nullopt;
    }
    double number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number, std::chars_format::general);
    if (error == std::errc::result_out_of_range && stop == end) {
        const bool tiny = std::string_view(begin, end).find("e-") != std::string_view::npos ||
                          std::string_view(begin, end).find("E-") != std::string_view::npos;
        return tiny ? std::optional(0.0) : std::nullopt;
    }
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<double> parseNumber(std::string_view text, bool date1904) {
    const std::size_t length = text.size();
    text = trimmed(text);
    if (text.empty()) {
        return std::nullopt;
    }
    if (const auto plain = parsePlainNumber(text)) {
        return plain;
    }
    std::string_view rest = text;
    bool negative = false;
    bool percent = false;
    bool currency = false;
    if (rest.front() == '(' && rest.back() == ')' && rest.size() > 2) {
        negative = true;
        rest = trimmed(rest.substr(1, rest.size() - 2));
    } else {
        if (rest.front() == '$') {
            currency = true;
            rest = trimmed(rest.substr(1));
        }
        if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) {
            negative = rest.front() == '-';
            rest = trimmed(rest.substr(1));
        }
    }
    if (auto number = parseUnsigned(rest, percent, currency)) {
        double result = negative ? -*number : *number;
        return percent ? result / 100 : result;
    }
    return text.size() == length ? parseDateOrTime(text, date1904) : parseTimeOfDay(text);
}

std::string numberToText(double number) {
    if (number == 0) {
        return "0";
    }
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.14e", number);
    std::string_view shown(digits);
    const auto mark = shown.find('e');
    const int exponent = std::atoi(digits + mark + 1);
    const bool negative = shown.front() == '-';
    std::string mantissa;
    for (const char c : shown.substr(0, mark)) {
        if (isDigit(c)) {
            mantissa.push_back(c);
        }
    }
    while (mantissa.size() > 1 && mantissa.back() == '0') {
        mantissa.pop_back();
    }
    const int count = static_cast<int>(mantissa.size());
    std::string text = negative ? "-" : "";
    const bool scientific = exponent > 20 || (exponent < -4 && count - 1 - exponent > 20);
    if (scientific) {
        text += mantissa.substr(0, 1);
        if (count > 1) {
            text += '.' + mantissa.substr(1);
        }
        char part[16];
        std::snprintf(part, sizeof part, "E%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
        return text + part;
    }
    if (exponent < 0) {
        return text + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + mantissa;
    }
    if (count <= exponent + 1) {
        return text + mantissa + std::string(static_cast<std::size_t>(exponent + 1 - count), '0');
    }
    return text + mantissa.substr(0, exponent + 1) + '.' + mantissa.substr(exponent + 1);
}

Result<double> toNumber(const Value& value, bool date1904) {
    switch (value.type()) {
        case Value::Type::Number:
        case Value::Type::Boolean:
            return value.number();
        case Value::Type::Blank:
            return 0.0;
        case Value::Type::Error:
            return value.error();
        case Value::Type::Text:
            if (const auto number = parseNumber(value.text(), date1904)) {
                return *number;
            }
            return ErrorCode::Value;
        case Value::Type::Lambda:
            return ErrorCode::Calc;
        default:
            return ErrorCode::Value;
    }
}

Result<std::string> toText(const Value& value) {
    switch (value.type()) {
        case Value::Type::Number:
            return numberToText(value.number());
        case Value::Type::Boolean:
            return std::string(value.boolean() ? "TRUE" : "FALSE");
        case Value::Type::Blank:
            return std::string();
        case Value::Type::Error:
            return value.error();
        case Value::Type::Text:
            return value.text();
        case Value::Type::Lambda:
            return ErrorCode::Calc;
        default:
            return ErrorCode::Value;
    }
}

Result<bool> toBoolean(const Value& value) {
    switch (value.type()) {
        case Value::Type::Number:
        case Value::Type::Boolean:
            return value.number() != 0;
        case Value::Type::Blank:
            return false;
        case Value::Type::Error:
            return value.error();
        case Value::Type::Text: {
            const std::string upper = toUpper(value.text());
            if (upper == "TRUE" || upper == "FALSE") {
                return upper == "TRUE";
            }
            return ErrorCode::Value;
        }
        case Value::Type::Lambda:
            return ErrorCode::Calc;
        default:
            return ErrorCode::Value;
    }
}

int compareNumbers(double a, double b) {
    if (a == b) {
        return 0;
    }
    const double difference = std::fabs(a - b);
    if (difference > 1e-14 * std::max(std::fabs(a), std::fabs(b))) {
        return a < b ? -1 : 1;
    }
    char first[40];
    char second[40];
    std::snprintf(first, sizeof first, "%.14e", a);
    std::snprintf(second, sizeof second, "%.14e", b);
    if (std::string_view(first) == second) {
        return 0;
    }
    return a < b ? -1 : 1;
}

namespace {
int rank(const Value& value) {
    switch (value.type()) {
        case Value::Type::Number:
            return 0;
        case Value::Type::Text:
            return 1;
        default:
            return 2;
    }
}
}  // namespace

int compareValues(const Value& a, const Value& b) {
    if (a.isBlank() || b.isBlank()) {
        const Value& other = a.isBlank() ? b : a;
        int order = 0;  // of the blank against the other
        if (other.isNumber()) {
            order = compareNumbers(0, other.number());
        } else if (other.isText()) {
            order = other.text().empty() ? 0 : -1;
        } else if (other.isBoolean()) {
            order = other.boolean() ? -1 : 0;
        }
        return a.isBlank() ? order : -order;
    }
    if (rank(a) != rank(b)) {
        return rank(a) < rank(b) ? -1 : 1;
    }
    if (a.isText()) {
        return compareTexts(a.text(), b.text());
    }
    return a.isNumber() ? compareNumbers(a.number(), b.number())
                        : static_cast<int>(a.boolean()) - static_cast<int>(b.boolean());
}

bool equalValues(const Value& a, const Value& b) {
    if (a.type() != b.type()) {
        return false;
    }
    switch (a.type()) {
        case Value::Type::Blank:
            return true;
        case Value::Type::Error:
            return a.error() == b.error();
        case Value::Type::Number:
        case Value::Type::Boolean:
        case Value::Type::Text:
            return compareValues(a, b) == 0;
        default:
            return false;
    }
}

}  // namespace quorva::workbook
