// Texts: parts of them, case, characters, search and replacement, and numbers read from and written as texts.
#include <algorithm>
#include <array>
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/values/number_format.h"

namespace quorva::workbook {

namespace {

/// The most characters that a cell's text may have.
constexpr std::size_t longestText = 32767;

double countOr(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() ? std::trunc(arguments[index].number()) : otherwise;
}
/// More bytes than any text of that length has: what grows beyond need not grow further.
constexpr std::size_t mostBytes = 4 * longestText;

Value limited(std::string text) {
    return text.size() > longestText && utf16Length(text) > static_cast<int>(longestText) ? Value(ErrorCode::Value)
                                                                                          : Value(std::move(text));
}

// ---- parts ----

Value left(Call&, Arguments arguments) {
    const double count = countOr(arguments, 1, 1);
    return count < 0 ? Value(ErrorCode::Value) : Value(utf16Slice(arguments[0].text(), 0, count));
}
Value right(Call&, Arguments arguments) {
    const double count = countOr(arguments, 1, 1);
    if (count < 0) {
        return ErrorCode::Value;
    }
    const std::string& text = arguments[0].text();
    const double length = utf16Length(text);
    return utf16Slice(text, std::max(length - count, 0.0), count);
}
Value middle(Call&, Arguments arguments) {
    const double from = countOr(arguments, 1, 1);
    const double count = countOr(arguments, 2, 0);
    return from < 1 || count < 0 ? Value(ErrorCode::Value) : Value(utf16Slice(arguments[0].text(), from - 1, count));
}
Value length(Call&, Arguments arguments) { return utf16Length(arguments[0].text()); }

Value replace(Call&, Arguments arguments) {
    const double from = countOr(arguments, 1, 1);
    const double count = countOr(arguments, 2, 0);
    if (from < 1 || count < 0) {
        return ErrorCode::Value;
    }
    const std::string& text = arguments[0].text();
    const double end = from - 1 + count;
    return limited(utf16Slice(text, 0, from - 1) + arguments[3].text() + utf16Slice(text, end, utf16Length(text)));
}

Value substitute(Call&, Arguments arguments) {
    const std::string& text = arguments[0].text();
    const std::string& old = arguments[1].text();
    const double wanted = countOr(arguments, 3, 0);
    if (arguments.size() > 3 && wanted < 1) {
        return ErrorCode::Value;
    }
    if (old.empty()) {
        return text;
    }
    std::string result;
    std::size_t from = 0;
    double occurrence = 0;
    for (std::size_t at = text.find(old); at != std::string::npos; at = text.find(old, at + old.size())) {
        ++occurrence;
        if (wanted == 0 || occurrence == wanted) {
            result.append(text, from, at - from).append(arguments[2].text());
            from = at + old.size();
        }
        if (result.size() > mostBytes) {
            return ErrorCode::Value;
        }
    }
    return limited(result.append(text, from));
}

// ---- search ----

Value find(Call&, Arguments arguments) {
    const double start = countOr(arguments, 2, 1);
    const std::u16string within = toUtf16(arguments[1].text());
    if (start < 1 || start > static_cast<double>(within.size()) + 1) {
        return ErrorCode::Value;
    }
    const auto at = within.find(toUtf16(arguments[0].text()), static_cast<std::size_t>(start) - 1);
    return at == std::u16string::npos ? Value(ErrorCode::Value) : Value(at + 1);
}
Value search(Call&, Arguments arguments) {
    const double start = countOr(arguments, 2, 1);
    if (start < 1 || start > utf16Length(arguments[1].text()) + 1) {
        return ErrorCode::Value;
    }
    const int at = searchWildcard(arguments[1].text(), arguments[0].text(), static_cast<int>(start) - 1);
    return at < 0 ? Value(ErrorCode::Value) : Value(at + 1);
}
Value exact(Call&, Arguments arguments) { return arguments[0].text() == arguments[1].text(); }

// ---- case and characters ----

Value upper(Call&, Arguments arguments) { return toUpper(arguments[0].text()); }
Value lower(Call&, Arguments arguments) { return toLower(arguments[0].text()); }

/// Letters are what has a case, and the letters of scripts without one.
bool isLetter(char16_t unit) {
    if (unit < 128) {
        return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
    }
    return unit == 0xAA || unit == 0xB5 || unit == 0xBA ||
           (unit >= 0xC0 && unit != 0xD7 && unit != 0xF7 && unit < 0x2000) || (unit >= 0x3040 && unit < 0xE000);
}
Value proper(Call&, Arguments arguments) {
    const std::u16string units = toUtf16(arguments[0].text());
    const std::u16string small = toUtf16(toLower(arguments[0].text()));
    const std::u16string capital = toUtf16(toUpper(arguments[0].text()));
    std::u16string result;
    bool inWord = false;
    for (std::size_t i = 0; i < units.size(); ++i) {
        result.push_back(inWord ? small[i] : capital[i]);
        inWord = isLetter(units[i]);
    }
    return toUtf8(result);
}

Value trim(Call&, Arguments arguments) {
    std::string result;
    for (const char c : arguments[0].text()) {
        if (c != ' ' || (!result.empty() && result.back() != ' ')) {
            result.push_back(c);
        }
    }
    if (!result.empty() && result.back() == ' ') {
        result.pop_back();
    }
    return result;
}
Value clean(Call&, Arguments arguments) {
    std::string result = arguments[0].text();
    std::erase_if(result, [](char c) { return static_cast<unsigned char>(c) < 32; });
    return result;
}
Value repeat(Call&, Arguments arguments) {
    const std::string& text = arguments[0].text();
    const double count = countOr(arguments, 1, 0);
    if (count < 0 || utf16Length(text) * count > static_cast<double>(longestText)) {
        return ErrorCode::Value;
    }
    std::string result;
    for (double i = 0; !text.empty() && i < count; ++i) {
        result += text;
    }
    return result;
}

/// Code page 1252 from 128 to 159; codes that it leaves open stand for themselves.
constexpr std::array<char16_t, 32> codePage{0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                            0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

Value character(Call&, Arguments arguments) {
    const double code = countOr(arguments, 0, 0);
    if (!(code >= 1 && code <= 255)) {
        return ErrorCode::Value;
    }
    const auto unit = static_cast<char16_t>(code);
    return toUtf8(std::u16string(1, unit >= 128 && unit < 160 ? codePage[static_cast<std::size_t>(unit) - 128] : unit));
}
Value code(Call&, Arguments arguments) {
    const std::u16string units = toUtf16(arguments[0].text());
    if (units.empty()) {
        return ErrorCode::Value;
    }
    const auto at = std::find(codePage.begin(), codePage.end(), units[0]);
    if (at != codePage.end()) {
        return 128 + (at - codePage.begin());
    }
    return units[0] < 256 && !(units[0] >= 128 && units[0] < 160) ? static_cast<int>(units[0]) : int{'?'};
}
Value unicodeCharacter(Call&, Arguments arguments) {
    const double point = countOr(arguments, 0, 0);
    if (!(point >= 1 && point <= 0x10FFFF)) {
        return ErrorCode::Value;
    }
    if ((point >= 0xD800 && point < 0xE000) || point == 0xFFFE || point == 0xFFFF) {
        return ErrorCode::NA;
    }
    if (point < 0x10000) {
        return toUtf8(std::u16string(1, static_cast<char16_t>(point)));
    }
    const auto above = static_cast<std::uint32_t>(point) - 0x10000;
    return toUtf8(
        std::u16string{static_cast<char16_t>(0xD800 + (above >> 10)), static_cast<char16_t>(0xDC00 + (above & 0x3FF))});
}
Value unicodePoint(Call&, Arguments arguments) {
    const std::u16string units = toUtf16(arguments[0].text());
    if (units.empty()) {
        return ErrorCode::Value;
    }
    if (units[0] >= 0xD800 && units[0] < 0xDC00 && units.size() > 1) {
        return 0x10000 + ((units[0] - 0xD800) << 10) + (units[1] - 0xDC00);
    }
    return static_cast<int>(units[0]);
}

// ---- joining ----

Value concatenate(Call&, Arguments arguments) {
    std::string result;
    for (const Argument& argument : arguments) {
        result += argument.text();
    }
    return limited(std::move(result));
}

/// Calls visit(text) for every value of an argument, blanks too; the first error, of a value or of a visit, ends the
/// walk.
template <class Visit>
std::optional<ErrorCode> forEachText(const Call& call, const Argument& argument, Visit&& visit) {
    std::optional<ErrorCode> error;
    const auto take = [&](const Value& value) -> bool {
        const auto text = toText(value);
        error = text ? visit(*text) : std::optional(text.error());
        return !error;
    };
    if (argument.value.isScalar()) {
        take(argument.value);
        return error;
    }
    const auto walk = [&](const Grid& grid) {
        const int rows = std::min(grid.rows(), grid.usedRows());
        for (int row = 0; row < rows && !error; ++row) {
            for (int column = 0; column < grid.columns() && !error; ++column) {
                take(grid.at(row, column));
            }
        }
    };
    if (argument.value.isReference()) {
        for (const Area& area : argument.value.areas()) {
            walk(Grid(call.cells, area));
        }
    } else {
        walk(argument.grid(call));
    }
    return error;
}

std::optional<ErrorCode> tooLong(const std::string& text) {
    return text.size() > mostBytes ? std::optional(ErrorCode::Value) : std::nullopt;
}

Value concat(Call& call, Arguments arguments) {
    std::string result;
    for (const Argument& argument : arguments) {
        const auto error = forEachText(call, argument, [&](const std::string& text) {
            result += text;
            return tooLong(result);
        });
        if (error) {
            return *error;
        }
    }
    return limited(std::move(result));
}

Value textJoin(Call& call, Arguments arguments) {
    std::vector<std::string> delimiters;
    const auto delimiterError = forEachText(call, arguments[0], [&](const std::string& text) {
        delimiters.push_back(text);
        return std::optional<ErrorCode>();
    });
    if (delimiterError) {
        return *delimiterError;
    }
    if (delimiters.empty()) {
        delimiters.emplace_back();
    }
    const bool skipEmpty = arguments[1].missing || arguments[1].boolean();
    std::string result;
    std::size_t joined = 0;
    for (const Argument& argument : arguments.subspan(2)) {
        const auto error = forEachText(call, argument, [&](const std::string& text) {
            if (skipEmpty && text.empty()) {
                return std::optional<ErrorCode>();
            }
            if (joined > 0) {
                result += delimiters[(joined - 1) % delimiters.size()];
            }
            result += text;
            ++joined;
            return tooLong(result);
        });
        if (error) {
            return *error;
        }
    }
    return limited(std::move(result));
}

// ---- numbers and texts ----

Value text(Call& call, Arguments arguments) {
    Value value = arguments[0].value;
    if (value.isText()) {
        if (const auto number = parseNumber(value.text(), call.date1904)) {
            value = *number;
        }
    }
    const auto shown = formatValue(value, arguments[1].text(), call.date1904);
    return shown ? limited(*shown) : Value(ErrorCode::Value);
}

Value value(Call& call, Arguments arguments) {
    const Value& given = arguments[0].value;
    if (given.isBoolean()) {
        return ErrorCode::Value;
    }
    const auto number = toNumber(given, call.date1904);
    return number ? Value(*number) : Value(number.error());
}

Value numberValue(Call&, Arguments arguments) {
    const std::string point = arguments.size() > 1 ? arguments[1].text().substr(0, 1) : ".";
    const std::string group = arguments.size() > 2 ? arguments[2].text().substr(0, 1) : ",";
    if (point.empty() || (arguments.size() > 2 && group.empty())) {
        return ErrorCode::Value;
    }
    std::string plain;
    int percents = 0;
    bool fraction = false;
    for (const char c : arguments[0].text()) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
            continue;
        }
        if (c == point[0] && !fraction) {
            fraction = true;
            plain.push_back('.');
        } else if (c == group[0] && c != point[0]) {
            if (fraction) {
                return ErrorCode::Value;
            }
        } else if (c == '%') {
            ++percents;
        } else if (percents > 0 || c == '(' || c == ')') {
            return ErrorCode::Value;
        } else {
            plain.push_back(c);
        }
    }
    if (plain.empty()) {
        return percents > 0 ? Value(ErrorCode::Value) : Value(0.0);
    }
    const auto number = parseNumber(plain);
    return number ? Value(*number / std::pow(100.0, percents)) : Value(ErrorCode::Value);
}

constexpr double mostDecimals = 127;

/// The magnitude rounded and written out; empty when there are too many decimals.
std::optional<std::string> rounded(Arguments arguments, bool thousands) {
    const double decimals = countOr(arguments, 1, 2);
    return decimals > mostDecimals
               ? std::nullopt
               : std::optional(formatFixed(std::fabs(arguments[0].number()),
                                           static_cast<int>(std::max(decimals, -400.0)), thousands));
}
bool isNegative(Arguments arguments, const std::string& shown) {
    return arguments[0].number() < 0 && shown.find_first_of("123456789") != std::string::npos;
}
Value fixed(Call&, Arguments arguments) {
    const auto shown = rounded(arguments, arguments.size() < 3 || !arguments[2].boolean());
    if (!shown) {
        return ErrorCode::Value;
    }
    return (isNegative(arguments, *shown) ? "-" : "") + *shown;
}
Value dollar(Call&, Arguments arguments) {
    const auto shown = rounded(arguments, true);
    if (!shown) {
        return ErrorCode::Value;
    }
    return isNegative(arguments, *shown) ? "($" + *shown + ")" : "$" + *shown;
}

Value asText(Call&, Arguments arguments) {
    const Value& given = arguments[0].value;
    return given.isText() ? given : Value("");
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Text,
            .function = function};
}

// The variants for bytes count characters: so they do where the system's language has single-byte characters.
constexpr FunctionRow table[] = {
    row("CHAR", 1, 1, "N", character),
    row("CLEAN", 1, 1, "T", clean),
    row("CODE", 1, 1, "T", code),
    row("CONCAT", 1, anyCount, "R", concat),
    row("CONCATENATE", 1, anyCount, "T", concatenate),
    row("DOLLAR", 1, 2, "N", dollar),
    row("EXACT", 2, 2, "T", exact),
    row("FIND", 2, 3, "TTN", find),
    row("FINDB", 2, 3, "TTN", find),
    row("FIXED", 1, 3, "NNB", fixed),
    row("LEFT", 1, 2, "TN", left),
    row("LEFTB", 1, 2, "TN", left),
    row("LEN", 1, 1, "T", length),
    row("LENB", 1, 1, "T", length),
    row("LOWER", 1, 1, "T", lower),
    row("MID", 3, 3, "TNN", middle),
    row("MIDB", 3, 3, "TNN", middle),
    row("NUMBERVALUE", 1, 3, "T", numberValue),
    row("PROPER", 1, 1, "T", proper),
    row("REPLACE", 4, 4, "TNNT", replace),
    row("REPLACEB", 4, 4, "TNNT", replace),
    row("REPT", 2, 2, "TN", repeat),
    row("RIGHT", 1, 2, "TN", right),
    row("RIGHTB", 1, 2, "TN", right),
    row("SEARCH", 2, 3, "TTN", search),
    row("SEARCHB", 2, 3, "TTN", search),
    row("SUBSTITUTE", 3, 4, "TTTN", substitute),
    row("T", 1, 1, "C", asText),
    row("TEXT", 2, 2, "ST", text),
    row("TEXTJOIN", 3, anyCount, "RBR", textJoin),
    row("TRIM", 1, 1, "T", trim),
    row("UNICHAR", 1, 1, "N", unicodeCharacter),
    row("UNICODE", 1, 1, "T", unicodePoint),
    row("UPPER", 1, 1, "T", upper),
    row("USDOLLAR", 1, 2, "N", dollar),
    row("VALUE", 1, 1, "S", value),
};

}  // namespace

std::span<const FunctionRow> textFunctions() { return table; }

}  // namespace quorva::workbook
