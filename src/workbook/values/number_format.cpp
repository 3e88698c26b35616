#include "workbook/values/number_format.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "workbook/values/convert.h"
#include "workbook/values/number_format_parts.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace format {

namespace {

using Kind = Token::Kind;

bool startsWithWord(std::string_view text, std::string_view word) {
    return text.size() >= word.size() && toUpper(text.substr(0, word.size())) == word;
}

bool isDateKind(Kind kind) { return kind >= Kind::Year; }

/// What stands in brackets: a colour, a condition, a currency with a locale, or an elapsed time. False: none of them.
bool parseBracket(std::string_view inside, Section& section) {
    const std::string upper = toUpper(inside);
    if (!upper.empty() && upper.find_first_not_of(upper[0]) == std::string::npos &&
        (upper[0] == 'H' || upper[0] == 'M' || upper[0] == 'S')) {
        section.tokens.push_back({Kind::Elapsed, upper[0], static_cast<int>(upper.size()), {}});
        return true;
    }
    if (!inside.empty() && inside[0] == '$') {
        const std::string symbol(
            inside.substr(1, inside.find('-') == std::string_view::npos ? inside.size() : inside.find('-') - 1));
        section.tokens.push_back({Kind::Literal, 0, 0, symbol});
        return true;
    }
    constexpr std::array<std::pair<std::string_view, Condition::Comparison>, 6> comparisons{{
        {"<=", Condition::Comparison::LessOrEqual},
        {">=", Condition::Comparison::GreaterOrEqual},
        {"<>", Condition::Comparison::Different},
        {"<", Condition::Comparison::Less},
        {">", Condition::Comparison::Greater},
        {"=", Condition::Comparison::Equal},
    }};
    for (const auto& [sign, comparison] : comparisons) {
        if (inside.substr(0, sign.size()) == sign) {
            const auto limit = parseNumber(inside.substr(sign.size()));
            section.condition = {comparison, limit.value_or(0)};
            return limit.has_value();
        }
    }
    constexpr std::array<std::string_view, 8> colours{"BLACK",   "BLUE", "CYAN",  "GREEN",
                                                      "MAGENTA", "RED",  "WHITE", "YELLOW"};
    return std::find(colours.begin(), colours.end(), upper) != colours.end() || upper.rfind("COLOR", 0) == 0 ||
           upper.rfind("DBNUM", 0) == 0 || upper.rfind("NATNUM", 0) == 0;
}

/// A run of date letters at the start of `rest`; its length, 0 when there is none.
std::size_t parseDateLetters(std::string_view rest, Section& section) {
    for (const std::string_view half : {"AM/PM", "A/P"}) {
        if (startsWithWord(rest, half)) {
            section.tokens.push_back({Kind::HalfDay, 0, 0, std::string(rest.substr(0, half.size()))});
            return half.size();
        }
    }
    const char letter = static_cast<char>(rest[0] >= 'A' && rest[0] <= 'Z' ? rest[0] + 32 : rest[0]);
    constexpr std::string_view letters = "ymdhsea";
    constexpr std::array kinds{Kind::Year,   Kind::MonthOrMinute, Kind::Day, Kind::Hour,
                               Kind::Second, Kind::Year,          Kind::Day};
    const auto at = letters.find(letter);
    if (at == std::string_view::npos) {
        return 0;
    }
    std::size_t count = 1;
    while (count < rest.size() && (rest[count] == letter || rest[count] == letter - 32)) {
        ++count;
    }
    if (letter == 'a' && count < 3) {  // aaa and aaaa are the day of the week
        return 0;
    }
    section.tokens.push_back({kinds[at], letter, letter == 'e' ? 4 : static_cast<int>(count), {}});
    return count;
}

void literal(Section& section, std::string_view text) {
    section.tokens.push_back({Kind::Literal, 0, 0, std::string(text)});
}

/// The length of the UTF-8 character at the start of the text.
std::size_t characterLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
        ++length;
    }
    return length;
}

/// Reads one piece from the start of `rest` into the section; its length, 0 when the format is not one.
std::size_t parsePiece(std::string_view rest, Section& section) {
    const char c = rest[0];
    switch (c) {
        case '"': {
            const auto end = std::min(rest.find('"', 1), rest.size());
            literal(section, rest.substr(1, end - 1));
            return std::min(end + 1, rest.size());
        }
        case '\\': {
            const std::size_t length = rest.size() > 1 ? characterLength(rest.substr(1)) : 0;
            literal(section, rest.substr(1, length));
            return 1 + length;
        }
        case '_':
        case '*': {  // a blank as wide as the next character; a fill, for which there is no width here
            const std::size_t length = rest.size() > 1 ? characterLength(rest.substr(1)) : 0;
            literal(section, c == '_' ? " " : "");
            return 1 + length;
        }
        case '[': {
            const auto end = rest.find(']');
            return end != std::string_view::npos && parseBracket(rest.substr(1, end - 1), section) ? end + 1 : 0;
        }
        default:
            break;
    }
    constexpr std::string_view signs = "0#?.,%/@";
    constexpr std::array kinds{Kind::Digit, Kind::Digit,   Kind::Digit, Kind::Point,
                               Kind::Comma, Kind::Percent, Kind::Slash, Kind::Text};
    if (const auto at = signs.find(c); at != std::string_view::npos) {
        section.tokens.push_back({kinds[at], c, 0, c == '/' ? "/" : ""});
        section.text = section.text || c == '@';
        return 1;
    }
    if (startsWithWord(rest, "GENERAL")) {
        section.tokens.push_back({Kind::General, 0, 0, {}});
        return 7;
    }
    if ((c == 'E' || c == 'e') && rest.size() > 1 && (rest[1] == '+' || rest[1] == '-')) {
        section.tokens.push_back({Kind::Exponent, rest[1], 0, std::string(1, c)});
        return 2;
    }
    if (const std::size_t length = parseDateLetters(rest, section)) {
        return length;
    }
    const std::size_t length = characterLength(rest);
    literal(section, rest.substr(0, length));
    return length;
}

/// m means minutes right after hours or right before seconds.
void resolveMonths(Section& section) {
    auto& tokens = section.tokens;
    const auto neighbour = [&](std::size_t from, int step) {
        for (std::size_t i = from + step; i < tokens.size(); i += step) {
            if (isDateKind(tokens[i].kind) && tokens[i].kind != Kind::HalfDay) {
                return &tokens[i];
            }
        }
        return static_cast<Token*>(nullptr);
    };
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind != Kind::MonthOrMinute) {
            continue;
        }
        const Token* before = neighbour(i, -1);
        const Token* after = neighbour(i, 1);
        const bool minutes =
            tokens[i].count <= 2 &&
            ((before && (before->kind == Kind::Hour || (before->kind == Kind::Elapsed && before->code == 'H'))) ||
             (after && (after->kind == Kind::Second || (after->kind == Kind::Elapsed && after->code == 'S'))));
        tokens[i].kind = minutes ? Kind::Minute : Kind::Month;
    }
}

/// Whether placeholders stand on both sides of a slash, or a number behind it; literals may stand between them.
bool isFraction(const std::vector<Token>& tokens) {
    const auto slash = std::find_if(tokens.begin(), tokens.end(), [](const Token& t) { return t.kind == Kind::Slash; });
    const auto notLiteral = [](const Token& t) { return t.kind != Kind::Literal; };
    const auto numerator = std::find_if(std::make_reverse_iterator(slash), tokens.rend(), notLiteral);
    if (slash == tokens.end() || numerator == tokens.rend() || numerator->kind != Kind::Digit) {
        return false;
    }
    const auto next = std::next(slash);
    if (next != tokens.end() && next->kind == Kind::Literal && !next->text.empty() && next->text[0] >= '1' &&
        next->text[0] <= '9') {
        return true;
    }
    const auto denominator = std::find_if(next, tokens.end(), notLiteral);
    return denominator != tokens.end() && denominator->kind == Kind::Digit;
}

/// Turns ".00" after seconds into one token, and says what kind of section this is.
void finish(Section& section) {
    auto& tokens = section.tokens;
    section.date = std::any_of(tokens.begin(), tokens.end(), [](const Token& t) { return isDateKind(t.kind); });
    if (section.date) {
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            std::size_t digits = 0;
            while (tokens[i].kind == Kind::Point && i + 1 + digits < tokens.size() &&
                   tokens[i + 1 + digits].kind == Kind::Digit && tokens[i + 1 + digits].code == '0') {
                ++digits;
            }
            if (digits > 0) {
                tokens[i] = {Kind::SubSecond, 0, static_cast<int>(std::min<std::size_t>(digits, 3)), {}};
                tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                             tokens.begin() + static_cast<std::ptrdiff_t>(i + 1 + digits));
            }
        }
        resolveMonths(section);
        return;
    }
    bool afterDigit = false;
    for (Token& token : tokens) {  // a comma groups or divides only where it follows digits directly
        if (token.kind == Kind::Comma && !afterDigit) {
            token = {Kind::Literal, 0, 0, ","};
        }
        afterDigit =
            token.kind == Kind::Digit || (afterDigit && (token.kind == Kind::Comma || token.kind == Kind::Point));
    }
    section.fraction = isFraction(tokens);
}

}  // namespace

bool Condition::holds(double number) const {
    switch (comparison) {
        case Comparison::Less:
            return number < limit;
        case Comparison::LessOrEqual:
            return number <= limit;
        case Comparison::Equal:
            return number == limit;
        case Comparison::Different:
            return number != limit;
        case Comparison::GreaterOrEqual:
            return number >= limit;
        case Comparison::Greater:
            return number > limit;
        default:
            return true;
    }
}

std::vector<Section> parse(std::string_view format) {
    std::vector<Section> sections(1);
    while (!format.empty()) {
        if (startsWithWord(format, "[$-F800]") || startsWithWord(format, "[$-F400]")) {  // the system's own formats
            const bool isTime = format[4] == '4';
            return parse(isTime ? "h:mm:ss AM/PM" : "dddd, mmmm d, yyyy");
        }
        if (format[0] == ';') {
            sections.emplace_back();
            format.remove_prefix(1);
            continue;
        }
        const std::size_t length = parsePiece(format, sections.back());
        if (length == 0 || sections.size() > 4) {
            return {};
        }
        format.remove_prefix(length);
    }
    if (sections.size() > 4) {
        return {};
    }
    for (Section& section : sections) {
        finish(section);
    }
    return sections;
}

}  // namespace format

namespace {

using format::Condition;
using format::Section;

/// The section for a number, null when the only one has a condition that it does not meet, and whether the format
/// itself stands for the minus sign of a negative one.
struct Choice {
    const Section* section = nullptr;
    bool ownSign = false;
};

Choice chooseSection(const std::vector<Section>& sections, double number) {
    const std::size_t count = std::min<std::size_t>(sections.size(), 3);
    if (std::none_of(sections.begin(), sections.end(), [](const Section& s) { return s.condition.given(); })) {
        if (number < 0 && count > 1) {
            return {&sections[1], true};
        }
        return {&sections[number == 0 && count > 2 ? 2 : 0], false};
    }
    for (std::size_t i = 0; i < count; ++i) {
        Condition condition = sections[i].condition;
        if (!condition.given() && i + 1 < count) {
            condition =
                i == 0 ? Condition{Condition::Comparison::Greater, 0} : Condition{Condition::Comparison::Less, 0};
        }
        if (condition.holds(number)) {
            using enum Condition::Comparison;
            const bool negativesOnly = (condition.comparison == Less && condition.limit <= 0) ||
                                       (condition.comparison == LessOrEqual && condition.limit < 0) ||
                                       (condition.comparison == Equal && condition.limit < 0);
            return {&sections[i], negativesOnly};
        }
    }
    return {count > 1 ? &sections[count - 1] : nullptr, false};
}

std::string writeText(const std::vector<Section>& sections, const std::string& text) {
    const Section* section = sections.size() == 4 ? &sections[3] : nullptr;
    if (!section && sections.back().text) {
        section = &sections.back();
    }
    if (!section) {
        return text;
    }
    std::string result;
    for (const format::Token& token : section->tokens) {
        result += token.kind == format::Token::Kind::Text ? text : token.text;
    }
    return result;
}

}  // namespace

namespace {

/// The sections of a format, parsed again only when the format differs from the one before: a range of values is
/// written with one format, and a recalculated cell keeps its own.
const std::vector<format::Section>& parsedOnce(std::string_view pattern) {
    thread_local std::string last;
    thread_local std::vector<format::Section> sections = format::parse(last);
    if (pattern != last) {
        sections = format::parse(pattern);
        last = pattern;
    }
    return sections;
}

}  // namespace

std::optional<std::string> formatValue(const Value& value, std::string_view pattern, bool date1904) {
    const std::vector<format::Section>& sections = parsedOnce(pattern);
    if (sections.empty()) {
        return std::nullopt;
    }
    if (value.isText()) {
        return writeText(sections, value.text());
    }
    if (value.isBoolean()) {
        return writeText(sections, value.boolean() ? "TRUE" : "FALSE");
    }
    const double number = value.isNumber() ? value.number() : 0;
    const auto [section, ownSign] = chooseSection(sections, number);
    if (!section) {
        return formatGeneral(number);
    }
    const std::string sign = number < 0 && !ownSign ? "-" : "";
    const double magnitude = std::fabs(number);
    if (section->date) {
        if (!date1904) {
            return format::writeDate(*section, ownSign ? -number : number, false);
        }
        // Only the system of 1904 knows dates and times below 0: those of the magnitude, with a sign.
        auto shown = format::writeDate(*section, magnitude, true);
        return shown ? std::optional(sign + *shown) : shown;
    }
    if (section->fraction) {
        return sign + format::writeFraction(*section, magnitude);
    }
    return sign + format::writeNumber(*section, magnitude);
}

double roundAsShown(double number, std::string_view pattern) {
    const std::vector<format::Section>& sections = parsedOnce(pattern);
    if (sections.empty()) {
        return number;
    }
    const Section* section = chooseSection(sections, number).section;
    if (!section || section->date) {
        return number;
    }
    return std::copysign(format::shownMagnitude(*section, std::fabs(number)), number) + 0.0;
}

}  // namespace quorva::workbook
