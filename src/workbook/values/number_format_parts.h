// The pieces of a number format and how each kind of section is written out; used by number_format.cpp alone.
#pragma once

#include <string>
#include <vector>

#include "workbook/values/number_format.h"

namespace quorva::workbook::format {

struct Token {
    enum class Kind : std::uint8_t {
        Literal,   ///< text as it is
        Digit,     ///< 0, # or ? in `code`
        Point,     ///< the decimal point
        Comma,     ///< after a digit; between digits: thousands; after the last digit: divide by 1000
        Percent,   ///< a percent sign
        Exponent,  ///< E+ or E-: the sign in `code`, the letter in `text`
        Slash,     ///< / between digits: a fraction
        Text,      ///< @
        General,
        Year,  ///< y: `count` letters, as for all of the following
        MonthOrMinute,
        Month,
        Minute,
        Day,
        Hour,
        Second,
        SubSecond,  ///< .0 after seconds: `count` digits
        Elapsed,    ///< [h], [m] or [s]: the letter in `code`
        HalfDay,    ///< AM/PM or A/P: `text`
    } kind = Kind::Literal;
    char code = 0;
    int count = 0;
    std::string text;
};

struct Condition {
    enum class Comparison : std::uint8_t { None, Less, LessOrEqual, Equal, Different, GreaterOrEqual, Greater };
    Comparison comparison = Comparison::None;
    double limit = 0;

    bool given() const { return comparison != Comparison::None; }
    bool holds(double number) const;
};

struct Section {
    std::vector<Token> tokens;
    Condition condition;
    bool date = false;
    bool fraction = false;
    bool text = false;
};

/// Sections of a format, 1 to 4; empty when the format is not one.
std::vector<Section> parse(std::string_view format);

/// A magnitude as decimal digits: 0.d1d2d3... times 10 to the power `point`; no digits for 0.
struct Decimal {
    std::string digits;
    int point = 0;

    /// 15 significant digits of a number's magnitude.
    static Decimal of(double number);
    /// Rounds half away from zero to a count of decimals (negative: left of the point).
    void round(int decimals);
    /// Digits before the point, without leading zeros.
    std::string whole() const;
    /// Digits after the point, without trailing zeros.
    std::string decimals() const;
};

std::string writeNumber(const Section& section, double magnitude);
std::string writeFraction(const Section& section, double magnitude);
/// The magnitude whose digits or fraction such a section writes.
double shownMagnitude(const Section& section, double magnitude);
/// Nothing when the number is no date.
std::optional<std::string> writeDate(const Section& section, double serial, bool date1904);

}  // namespace quorva::workbook::format
