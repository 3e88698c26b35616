// Numbers, fractions and powers of ten in number formats.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "workbook/values/convert.h"
#include "workbook/values/number_format_parts.h"

namespace quorva::workbook {

namespace format {

Decimal Decimal::of(double number) {
    Decimal decimal;
    if (number == 0) {
        return decimal;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.14e", std::fabs(number));
    decimal.digits = std::string(1, text[0]) + std::string(text + 2, 14);
    decimal.point = std::atoi(text + 17) + 1;
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
    return decimal;
}

void Decimal::round(int places) {
    const int keep = point + places;
    if (keep >= static_cast<int>(digits.size())) {
        return;
    }
    const bool up = keep >= 0 && digits[static_cast<std::size_t>(keep)] >= '5';
    digits.resize(static_cast<std::size_t>(std::max(keep, 0)));
    if (up) {
        int i = keep - 1;
        while (i >= 0 && digits[static_cast<std::size_t>(i)] == '9') {
            digits[static_cast<std::size_t>(i--)] = '0';
        }
        if (i >= 0) {
            ++digits[static_cast<std::size_t>(i)];
        } else {
            digits.insert(digits.begin(), '1');
            ++point;
        }
    }
    digits.erase(digits.find_last_not_of('0') + 1);
}

std::string Decimal::whole() const {
    if (digits.empty() || point <= 0) {
        return {};
    }
    const auto count = static_cast<std::size_t>(point);
    return digits.size() >= count ? digits.substr(0, count) : digits + std::string(count - digits.size(), '0');
}

std::string Decimal::decimals() const {
    if (digits.empty() || point >= static_cast<int>(digits.size())) {
        return {};
    }
    return point >= 0 ? digits.substr(static_cast<std::size_t>(point))
                      : std::string(static_cast<std::size_t>(-point), '0') + digits;
}

namespace {

using Kind = Token::Kind;
using Tokens = std::vector<Token>;

/// What a placeholder shows where the number has no digit.
std::string padding(char code) { return code == '0' ? "0" : code == '?' ? " " : ""; }

/// How the digits of a section are arranged.
struct Layout {
    std::size_t point = 0;     ///< index of the point, or of the end of the digits before it
    std::size_t exponent = 0;  ///< index of E+, or the end
    bool hasPoint = false;
    int wholeDigits = 0;
    int decimals = 0;
    bool thousands = false;
    int scale = 0;  ///< powers of ten: 2 for each percent sign, -3 for each scaling comma
};

Layout layoutOf(const Tokens& tokens) {
    Layout layout;
    layout.exponent = static_cast<std::size_t>(
        std::find_if(tokens.begin(), tokens.end(), [](const Token& t) { return t.kind == Kind::Exponent; }) -
        tokens.begin());
    layout.point = layout.exponent;
    for (std::size_t i = 0; i < layout.exponent; ++i) {
        if (tokens[i].kind == Kind::Point && !layout.hasPoint) {
            layout.hasPoint = true;
            layout.point = i;
        } else if (tokens[i].kind == Kind::Digit) {
            ++(layout.hasPoint ? layout.decimals : layout.wholeDigits);
        }
    }
    for (const Token& token : tokens) {
        layout.scale += token.kind == Kind::Percent ? 2 : 0;
    }
    // A comma with digits on both sides groups by thousands; commas after the last digit of the whole part divide.
    const auto digitIn = [&](std::size_t from, std::size_t to) {
        return std::any_of(tokens.begin() + static_cast<std::ptrdiff_t>(from),
                           tokens.begin() + static_cast<std::ptrdiff_t>(to),
                           [](const Token& t) { return t.kind == Kind::Digit; });
    };
    const bool scientific = layout.exponent < tokens.size();
    for (std::size_t i = 0; i < layout.exponent; ++i) {
        if (tokens[i].kind != Kind::Comma) {
            continue;
        }
        if (i < layout.point && digitIn(0, i) && digitIn(i, layout.point)) {
            layout.thousands = true;
        } else if (digitIn(0, i) && !scientific) {
            layout.scale -= 3;
        }
    }
    return layout;
}

/// The tokens before the point, filled from the right with the digits of the whole part.
std::string writeWhole(const Tokens& tokens, std::size_t end, std::string_view digits, bool thousands) {
    std::vector<std::string> pieces;
    std::size_t left = digits.size();
    int written = 0;
    const auto put = [&](std::string piece) {
        if (thousands && written > 0 && written % 3 == 0 && !piece.empty()) {
            pieces.push_back(piece == " " ? " " : ",");
        }
        written += piece.empty() ? 0 : 1;
        pieces.push_back(std::move(piece));
    };
    std::size_t first = 0;
    while (first < end && tokens[first].kind != Kind::Digit) {
        ++first;
    }
    for (std::size_t i = end; i-- > 0;) {
        if (tokens[i].kind == Kind::Digit) {
            put(left > 0 ? std::string(1, digits[--left]) : padding(tokens[i].code));
            while (i == first && left > 0) {
                put(std::string(1, digits[--left]));
            }
        } else if (tokens[i].kind == Kind::Percent) {
            pieces.push_back("%");
        } else {
            pieces.push_back(tokens[i].text);
        }
    }
    if (first == end) {  // no placeholder before the point: the digits stand right before it
        pieces.insert(pieces.begin(), std::string(digits.substr(0, left)));
    }
    std::string text;
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
        text += *piece;
    }
    return text;
}

std::string writeDecimals(const Tokens& tokens, std::size_t from, std::size_t end, std::string_view digits) {
    std::string text;
    std::size_t next = 0;
    for (std::size_t i = from; i < end; ++i) {
        switch (tokens[i].kind) {
            case Kind::Digit:
                text += next < digits.size() ? std::string(1, digits[next]) : padding(tokens[i].code);
                ++next;
                break;
            case Kind::Percent:
                text += '%';
                break;
            case Kind::Point:
                text += '.';
                break;
            default:
                text += tokens[i].text;
        }
    }
    return text;
}

/// The exponent of a number whose mantissa has `wholeDigits` digits before the point, after rounding.
int exponentFor(Decimal& decimal, const Layout& layout) {
    if (decimal.digits.empty()) {
        return 0;
    }
    const int step = std::max(layout.wholeDigits, 1);
    const auto floorTo = [&](int exponent) {
        return exponent >= 0 ? exponent / step * step : -((-exponent + step - 1) / step * step);
    };
    for (int round = 0; round < 2; ++round) {  // rounding may carry into one more digit
        const int exponent = layout.wholeDigits == 0 ? decimal.point : floorTo(decimal.point - 1);
        Decimal mantissa = decimal;
        mantissa.point -= exponent;
        mantissa.round(layout.decimals);
        if (mantissa.point <= std::max(layout.wholeDigits, layout.wholeDigits == 0 ? 0 : step)) {
            decimal = mantissa;
            return exponent;
        }
        decimal = mantissa;
        decimal.point += exponent;
    }
    return 0;
}

std::string writeExponent(const Tokens& tokens, std::size_t from, int exponent) {
    std::string text = tokens[from].text;
    auto digits = tokens.begin() + static_cast<std::ptrdiff_t>(from) + 1;
    for (; digits != tokens.end() && digits->kind == Kind::Literal; ++digits) {  // the sign stands before the digits
        text += digits->text;
    }
    text += exponent < 0 ? "-" : tokens[from].code == '+' ? "+" : "";
    const Tokens rest(digits, tokens.end());
    // Digits and what stands between them; literals behind the digits stay where they are.
    return text + writeWhole(rest, rest.size(), exponent == 0 ? "" : std::to_string(std::abs(exponent)), false);
}

std::string writeGeneralSection(const Tokens& tokens, double magnitude) {
    std::string text;
    for (const Token& token : tokens) {
        switch (token.kind) {
            case Kind::General:
                text += formatGeneral(magnitude);
                break;
            case Kind::Text:
                text += numberToText(magnitude);
                break;
            default:
                text += token.text;
        }
    }
    return text;
}

}  // namespace

namespace {

bool isGeneral(const Tokens& tokens) {
    return std::any_of(tokens.begin(), tokens.end(),
                       [](const Token& t) { return t.kind == Kind::General || t.kind == Kind::Text; });
}

/// Scales and rounds to the digits that the layout has room for; the exponent to write.
int arrange(Decimal& decimal, const Layout& layout, bool scientific) {
    decimal.point += layout.scale;
    if (scientific) {
        return exponentFor(decimal, layout);
    }
    decimal.round(layout.decimals);
    return 0;
}

}  // namespace

std::string writeNumber(const Section& section, double magnitude) {
    const Tokens& tokens = section.tokens;
    if (isGeneral(tokens)) {
        return writeGeneralSection(tokens, magnitude);
    }
    const Layout layout = layoutOf(tokens);
    Decimal decimal = Decimal::of(magnitude);
    const bool scientific = layout.exponent < tokens.size();
    const int exponent = arrange(decimal, layout, scientific);
    const bool placeholders = layout.wholeDigits > 0 || layout.hasPoint;
    const bool zeroMantissa = scientific && decimal.digits.empty();  // 0 has a mantissa of 0 even where # stands
    const std::string whole = zeroMantissa ? "0" : decimal.whole();
    std::string text = writeWhole(tokens, layout.point, placeholders ? whole : std::string(), layout.thousands);
    text += writeDecimals(tokens, layout.point, layout.exponent, decimal.decimals());
    return scientific ? text + writeExponent(tokens, layout.exponent, exponent) : text;
}

namespace {

struct Ratio {
    double numerator = 0;
    double denominator = 1;
};

/// The last convergent of the continued fraction of x in [0, 1) whose denominator is at most `limit`. It need not be
/// the closest fraction: 0.456 with one digit is 1/2, not 4/9, as worksheets show it.
Ratio convergent(double x, double limit) {
    Ratio before{1, 0};
    Ratio ratio{0, 1};
    for (int step = 0; step < 40; ++step) {
        if (std::fabs(ratio.numerator / ratio.denominator - x) < 1e-13) {
            break;
        }
        const double rest = (before.numerator - x * before.denominator) / (x * ratio.denominator - ratio.numerator);
        const double whole = std::floor(rest);
        const Ratio next{whole * ratio.numerator + before.numerator, whole * ratio.denominator + before.denominator};
        if (!(next.denominator <= limit)) {
            break;
        }
        before = ratio;
        ratio = next;
    }
    return ratio;
}

/// Where the parts of a fraction stand among the tokens.
struct FractionLayout {
    std::size_t wholeEnd = 0;      ///< behind the last placeholder of the whole part, 0 when there is none
    bool optionalWhole = true;     ///< all placeholders of the whole part are #
    std::size_t numerator = 0;     ///< its first placeholder
    std::size_t numeratorEnd = 0;  ///< behind its last placeholder
    std::size_t slash = 0;
    std::size_t denominator = 0;
    std::size_t after = 0;         ///< behind the denominator
    std::size_t placeholders = 0;  ///< of the denominator
    double fixed = 0;              ///< the denominator when it is written as a number
};

/// The literals from one token to another.
std::string between(const Tokens& tokens, std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t i = from; i < to; ++i) {
        text += tokens[i].kind == Kind::Percent ? "%" : tokens[i].text;
    }
    return text;
}

FractionLayout fractionLayout(const Tokens& tokens) {
    FractionLayout layout;
    const auto isDigit = [&](std::size_t at) { return at < tokens.size() && tokens[at].kind == Kind::Digit; };
    while (tokens[layout.slash].kind != Kind::Slash) {
        ++layout.slash;
    }
    layout.numeratorEnd = layout.slash;
    while (!isDigit(layout.numeratorEnd - 1)) {
        --layout.numeratorEnd;
    }
    layout.numerator = layout.numeratorEnd;
    while (layout.numerator > 0 && isDigit(layout.numerator - 1)) {
        --layout.numerator;
    }
    layout.denominator = layout.slash + 1;
    const bool number = tokens[layout.denominator].kind == Kind::Literal && !tokens[layout.denominator].text.empty() &&
                        tokens[layout.denominator].text[0] >= '1' && tokens[layout.denominator].text[0] <= '9';
    while (!number && !isDigit(layout.denominator)) {
        ++layout.denominator;
    }
    layout.after = layout.denominator;
    while (isDigit(layout.after)) {
        ++layout.after;
    }
    layout.placeholders = layout.after - layout.denominator;
    for (; layout.after < tokens.size(); ++layout.after) {  // "8", "100": a 0 in it reads as a placeholder
        const Token& token = tokens[layout.after];
        const bool literal =
            token.kind == Kind::Literal && token.text.size() == 1 && token.text[0] >= '0' && token.text[0] <= '9';
        if (!literal && !(layout.fixed > 0 && token.kind == Kind::Digit && token.code == '0')) {
            break;
        }
        layout.fixed = layout.fixed * 10 + (literal ? token.text[0] - '0' : 0);
    }
    for (std::size_t i = 0; i < layout.numerator; ++i) {
        if (isDigit(i)) {
            layout.wholeEnd = i + 1;
            layout.optionalWhole = layout.optionalWhole && tokens[i].code == '#';
        }
    }
    return layout;
}

}  // namespace

namespace {

/// A whole number and the fraction beside it, in [0, 1).
struct Mixed {
    double whole = 0;
    Ratio ratio;
};

Mixed mixedNumber(const FractionLayout& layout, double magnitude) {
    double whole = std::floor(magnitude);
    const double fixed = layout.fixed;
    const double limit = std::pow(10.0, static_cast<double>(std::min<std::size_t>(layout.placeholders, 5))) - 1;
    Ratio ratio =
        fixed > 0 ? Ratio{std::floor((magnitude - whole) * fixed + 0.5), fixed} : convergent(magnitude - whole, limit);
    if (ratio.numerator >= ratio.denominator) {
        ++whole;
        ratio = {0, fixed > 0 ? fixed : 1};
    }
    return {whole, ratio};
}

}  // namespace

double shownMagnitude(const Section& section, double magnitude) {
    const Tokens& tokens = section.tokens;
    if (isGeneral(tokens)) {
        return magnitude;
    }
    if (section.fraction) {
        const Mixed shown = mixedNumber(fractionLayout(tokens), magnitude);
        return shown.whole + shown.ratio.numerator / shown.ratio.denominator;
    }
    const Layout layout = layoutOf(tokens);
    if (layout.wholeDigits + layout.decimals == 0) {
        return magnitude;  // nothing of the number is written
    }
    Decimal decimal = Decimal::of(magnitude);
    const int exponent = arrange(decimal, layout, layout.exponent < tokens.size());
    const std::string digits = "0." + decimal.digits + "e" + std::to_string(decimal.point + exponent - layout.scale);
    return decimal.digits.empty() ? 0 : std::strtod(digits.c_str(), nullptr);
}

std::string writeFraction(const Section& section, double magnitude) {
    const Tokens& tokens = section.tokens;
    const FractionLayout layout = fractionLayout(tokens);
    auto [whole, ratio] = mixedNumber(layout, magnitude);
    const auto digits = [](double x) { return Decimal::of(x).whole(); };
    std::string text;
    const bool hasWhole = layout.wholeEnd > 0;
    if (hasWhole) {
        const bool zero = whole == 0 && ratio.numerator == 0;
        text = writeWhole(tokens, layout.wholeEnd, zero ? "0" : digits(whole), false);
        const std::string separator = between(tokens, layout.wholeEnd, layout.numerator);
        // Without a whole part nothing but a blank is left of what separates it.
        if (whole != 0 || zero || !layout.optionalWhole || separator.find_first_not_of(' ') == std::string::npos) {
            text += separator;
        }
    } else {
        text = writeWhole(tokens, layout.numerator, "", false);
        ratio.numerator += whole * ratio.denominator;
    }
    std::string below = digits(ratio.denominator);
    if (below.size() < layout.placeholders) {
        below += std::string(layout.placeholders - below.size(), ' ');
    }
    const Tokens upper(tokens.begin() + static_cast<std::ptrdiff_t>(layout.numerator),
                       tokens.begin() + static_cast<std::ptrdiff_t>(layout.numeratorEnd));
    const std::string slash = between(tokens, layout.numeratorEnd, layout.slash) + "/" +
                              between(tokens, layout.slash + 1, layout.denominator);
    if (hasWhole && ratio.numerator == 0 && upper.back().code != '0') {
        text += std::string(upper.size() + slash.size() + below.size(), ' ');
    } else {
        text += writeWhole(upper, upper.size(), ratio.numerator == 0 ? "0" : digits(ratio.numerator), false) + slash +
                below;
    }
    return text + writeDecimals(tokens, layout.after, tokens.size(), "");
}

}  // namespace format

std::string formatFixed(double magnitude, int decimals, bool thousands) {
    format::Decimal decimal = format::Decimal::of(magnitude);
    decimal.round(decimals);
    std::string whole = decimal.whole();
    if (whole.empty()) {
        whole = "0";
    }
    for (std::size_t i = whole.size(); thousands && i > 3;) {
        i -= 3;
        whole.insert(i, ",");
    }
    if (decimals <= 0) {
        return whole;
    }
    std::string fraction = decimal.decimals();
    fraction.resize(static_cast<std::size_t>(decimals), '0');
    return whole + "." + fraction;
}

std::string formatGeneral(double number) {
    constexpr int width = 11;
    const std::string sign = number < 0 ? "-" : "";
    format::Decimal decimal = format::Decimal::of(number);
    const int exponent = decimal.point - 1;
    const int digits = static_cast<int>(decimal.digits.size());
    const bool tooLong = exponent >= width || (exponent < -4 && 1 - exponent + digits > width);
    if (number == 0 || !tooLong) {
        const int wholeDigits = std::max(decimal.point, 1);
        decimal.round(std::max(width - 1 - wholeDigits, 0));
        const std::string whole = decimal.whole();
        const std::string fraction = decimal.decimals();
        return sign + (whole.empty() ? "0" : whole) + (fraction.empty() ? "" : "." + fraction);
    }
    decimal.point = 1;
    decimal.round(5);
    const int shown = exponent + decimal.point - 1;
    std::string text = sign + decimal.digits.substr(0, 1);
    if (decimal.digits.size() > 1) {
        text += "." + decimal.digits.substr(1);
    }
    char power[16];
    std::snprintf(power, sizeof power, "E%c%02d", shown < 0 ? '-' : '+', std::abs(shown));
    return text + power;
}

}  // namespace quorva::workbook
