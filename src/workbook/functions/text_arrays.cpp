// Texts cut at delimiters, and values and arrays written as texts.
#include <algorithm>
#include <cmath>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// The most characters that a cell's text may have.
constexpr std::size_t longestText = 32767;

/// Where a delimiter stands in a text, in bytes.
struct Cut {
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Delimiters of an argument, which may be one or an array of them; empty ones are kept.
Result<std::vector<std::string>> delimitersOf(const Call& call, const Argument& argument) {
    std::vector<std::string> delimiters;
    std::optional<ErrorCode> error;
    const auto take = [&](const Value& value, int, int) -> bool {
        const auto text = toText(value);
        if (text) {
            delimiters.push_back(*text);
            return true;
        }
        error = text.error();
        return false;
    };
    if (argument.value.isScalar()) {
        take(argument.value, 0, 0);
    } else {
        argument.grid(call).forEach(take);
    }
    return error ? Result<std::vector<std::string>>(*error) : delimiters;
}

/// Every place where one of the delimiters stands, from left to right; of several at one place the longest.
std::vector<Cut> findCuts(const Call& call, std::string_view text, const std::vector<std::string>& delimiters,
                          bool ignoreCase) {
    const std::string folded = ignoreCase ? toLower(text) : std::string(text);
    // Folding keeps the length for nearly every text; where it does not, case counts.
    const bool usable = folded.size() == text.size();
    const std::string_view within = usable ? std::string_view(folded) : text;
    std::vector<std::string> wanted = delimiters;
    if (ignoreCase && usable) {
        std::transform(wanted.begin(), wanted.end(), wanted.begin(), [](const std::string& d) { return toLower(d); });
    }
    call.spend(static_cast<double>(within.size()) * static_cast<double>(wanted.size()));
    std::vector<Cut> cuts;
    for (std::size_t at = 0; at < within.size();) {
        std::size_t longest = 0;
        for (const std::string& delimiter : wanted) {
            if (!delimiter.empty() && within.substr(at, delimiter.size()) == delimiter) {
                longest = std::max(longest, delimiter.size());
            }
        }
        if (longest > 0) {
            cuts.push_back({at, at + longest});
        }
        at += std::max<std::size_t>(longest, 1);
    }
    return cuts;
}

bool flag(Arguments arguments, std::size_t index) {
    return index < arguments.size() && std::trunc(arguments[index].number()) != 0;
}

/// TEXTBEFORE and TEXTAFTER: text, delimiters, instance, match mode, match end, otherwise.
Value textBeside(const Call& call, Arguments arguments, bool before) {
    const std::string& text = arguments[0].text();
    const auto delimiters = delimitersOf(call, arguments[1]);
    if (!delimiters) {
        return delimiters.error();
    }
    if (!text.empty() && !delimiters->empty() &&
        std::all_of(delimiters->begin(), delimiters->end(),
                    [&](const std::string& delimiter) { return utf16Length(delimiter) > utf16Length(text); })) {
        return ErrorCode::Value;
    }
    const double instance = arguments.size() > 2 && !arguments[2].missing ? std::trunc(arguments[2].number()) : 1;
    if (instance == 0 || std::fabs(instance) > std::max(utf16Length(text), 1)) {
        return ErrorCode::Value;
    }
    std::vector<Cut> cuts;
    if (std::any_of(delimiters->begin(), delimiters->end(), [](const std::string& d) { return d.empty(); })) {
        // An empty delimiter is found at once, at the end from which the search starts.
        const std::size_t at = instance > 0 ? 0 : text.size();
        return before ? text.substr(0, at) : text.substr(at);
    }
    cuts = findCuts(call, text, *delimiters, flag(arguments, 3));
    if (flag(arguments, 4)) {
        if (instance > 0) {
            cuts.push_back({text.size(), text.size()});
        } else {
            cuts.insert(cuts.begin(), {0, 0});
        }
    }
    const double count = static_cast<double>(cuts.size());
    const double index = instance > 0 ? instance - 1 : count + instance;
    if (index < 0 || index >= count) {
        return arguments.size() > 5 && !arguments[5].missing ? arguments[5].value : Value(ErrorCode::NA);
    }
    const Cut cut = cuts[static_cast<std::size_t>(index)];
    return before ? text.substr(0, cut.begin) : text.substr(cut.end);
}
Value textBefore(Call& call, Arguments arguments) { return textBeside(call, arguments, true); }
Value textAfter(Call& call, Arguments arguments) { return textBeside(call, arguments, false); }

std::vector<std::string> split(const Call& call, const std::string& text, const std::vector<std::string>& delimiters,
                               bool skipEmpty, bool ignoreCase) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    const auto add = [&](std::size_t end) {
        if (end > from || !skipEmpty) {
            pieces.push_back(text.substr(from, end - from));
        }
    };
    for (const Cut& cut : findCuts(call, text, delimiters, ignoreCase)) {
        add(cut.begin);
        from = cut.end;
    }
    add(text.size());
    return pieces;
}

Value textSplit(Call& call, Arguments arguments) {
    std::vector<std::string> delimiters[2];  // of columns and of rows
    for (std::size_t i = 0; i < 2; ++i) {
        if (i + 1 < arguments.size() && !arguments[i + 1].missing) {
            auto read = delimitersOf(call, arguments[i + 1]);
            if (!read) {
                return read.error();
            }
            if (std::any_of(read->begin(), read->end(), [](const std::string& d) { return d.empty(); })) {
                return ErrorCode::Value;
            }
            delimiters[i] = std::move(*read);
        }
    }
    if (delimiters[0].empty() && delimiters[1].empty()) {
        return ErrorCode::Value;
    }
    const bool skipEmpty = flag(arguments, 3);
    const bool ignoreCase = flag(arguments, 4);
    const Value pad = arguments.size() > 5 && !arguments[5].missing ? arguments[5].value : Value(ErrorCode::NA);
    std::vector<std::vector<std::string>> rows;
    std::size_t columns = 0;
    for (const std::string& row : split(call, arguments[0].text(), delimiters[1], skipEmpty, ignoreCase)) {
        rows.push_back(split(call, row, delimiters[0], skipEmpty, ignoreCase));
        columns = std::max(columns, rows.back().size());
    }
    if (columns == 0) {
        return ErrorCode::Calc;
    }
    if (rows.size() * columns > largestArray) {
        return ErrorCode::Num;
    }
    call.spend(static_cast<double>(rows.size() * columns));
    std::vector<Value> cells;
    cells.reserve(rows.size() * columns);
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < columns; ++i) {
            cells.push_back(i < row.size() ? Value(row[i]) : pad);
        }
    }
    return Value::array(static_cast<int>(rows.size()), static_cast<int>(columns), std::move(cells));
}

// ---- values as texts ----

std::string written(const Value& value, bool strict) {
    if (value.isError()) {
        return std::string(errorText(value.error()));
    }
    const auto text = toText(value);
    if (!strict || !value.isText()) {
        return text ? *text : std::string();
    }
    std::string quoted = "\"";
    for (const char c : *text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

/// 0 or 1; nothing for other codes.
std::optional<bool> strictCode(Arguments arguments) {
    const double code = arguments.size() > 1 ? std::trunc(arguments[1].number()) : 0;
    return code == 0 || code == 1 ? std::optional(code == 1) : std::nullopt;
}

Value arrayToText(Call& call, Arguments arguments) {
    const auto strict = strictCode(arguments);
    if (!strict) {
        return ErrorCode::Value;
    }
    const Grid grid = arguments[0].grid(call);
    std::string text = *strict ? "{" : "";
    for (int row = 0; row < grid.rows(); ++row) {
        for (int column = 0; column < grid.columns(); ++column) {
            if (column > 0 || row > 0) {
                text += !*strict ? ", " : column > 0 ? "," : ";";
            }
            text += written(grid.at(row, column), *strict);
            if (text.size() > 4 * longestText) {
                return ErrorCode::Value;
            }
        }
    }
    text += *strict ? "}" : "";
    return utf16Length(text) > static_cast<int>(longestText) ? Value(ErrorCode::Value) : Value(std::move(text));
}

Value valueToText(Call&, Arguments arguments) {
    const auto strict = strictCode(arguments);
    return strict ? Value(written(arguments[0].value, *strict)) : Value(ErrorCode::Value);
}

Value encodeUrl(Call&, Arguments arguments) {
    std::string result;
    for (const char c : arguments[0].text()) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                           c == '_' || c == '.' || c == '~';
        if (plain) {
            result += c;
        } else {
            constexpr std::string_view digits = "0123456789ABCDEF";
            result += '%';
            result += digits[static_cast<unsigned char>(c) >> 4];
            result += digits[static_cast<unsigned char>(c) & 15];
        }
    }
    return result;
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Text,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("ARRAYTOTEXT", 1, 2, "AN", arrayToText), row("ENCODEURL", 1, 1, "T", encodeUrl),
    row("TEXTAFTER", 2, 6, "TANNNE", textAfter), row("TEXTBEFORE", 2, 6, "TANNNE", textBefore),
    row("TEXTSPLIT", 2, 6, "TAANNE", textSplit), row("VALUETOTEXT", 1, 2, "EN", valueToText),
};

}  // namespace

std::span<const FunctionRow> textArrayFunctions() { return table; }

}  // namespace quorva::workbook
