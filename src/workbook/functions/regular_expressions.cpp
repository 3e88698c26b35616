// REGEXTEST, REGEXEXTRACT and REGEXREPLACE: regular expressions in the dialect of PCRE2, which worksheets use.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "workbook/functions/array_cells.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

/// The most characters that a cell's text may have.
constexpr std::size_t longestText = 32767;
/// More bytes than any text of that length has.
constexpr std::size_t mostBytes = 4 * longestText;
/// Steps that one search may take; an expression that backtracks without end is told by it within some milliseconds.
constexpr std::uint32_t matchLimit = 1'000'000;

template <auto freeIt>
struct Freed {
    template <class T>
    void operator()(T* object) const {
        freeIt(object);
    }
};
using Code = std::unique_ptr<pcre2_code, Freed<pcre2_code_free>>;
using MatchData = std::unique_ptr<pcre2_match_data, Freed<pcre2_match_data_free>>;
using MatchContext = std::unique_ptr<pcre2_match_context, Freed<pcre2_match_context_free>>;

PCRE2_SPTR units(const std::string& text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

/// An expression ready for use; without code when it is none.
struct Expression {
    std::string pattern;
    bool ignoreCase = false;
    Code code;
    MatchData match;
    MatchContext context;
};

/// Compiled again only when the pattern differs from the one before: a column of cells shares one.
const Expression& compiledOnce(const std::string& pattern, bool ignoreCase) {
    thread_local Expression last;
    if (!last.code || last.pattern != pattern || last.ignoreCase != ignoreCase) {
        int error = 0;
        PCRE2_SIZE offset = 0;
        const std::uint32_t options = PCRE2_UTF | PCRE2_NEVER_BACKSLASH_C | (ignoreCase ? PCRE2_CASELESS : 0u);
        last.code.reset(pcre2_compile(units(pattern), pattern.size(), options, &error, &offset, nullptr));
        last.pattern = pattern;
        last.ignoreCase = ignoreCase;
        if (last.code) {
            last.match.reset(pcre2_match_data_create_from_pattern(last.code.get(), nullptr));
            last.context.reset(pcre2_match_context_create(nullptr));
            if (!last.match || !last.context) {
                throw std::bad_alloc();
            }
            pcre2_set_match_limit(last.context.get(), matchLimit);
        }
    }
    return last;
}

bool ascii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

/// What worksheets do with these is not documented.
void refuseUndocumented(const std::string& text, const std::string& pattern) {
    if (pattern.empty()) {
        throw Unsupported{"an empty regular expression"};
    }
    for (const std::string* one : {&text, &pattern}) {
        if (std::any_of(one->begin(), one->end(), [](char c) { return static_cast<unsigned char>(c) >= 0xF0; })) {
            throw Unsupported{"a regular expression on characters beyond 65535"};
        }
    }
    if (ascii(text)) {
        return;
    }
    for (std::size_t i = 0; i + 1 < pattern.size(); ++i) {
        const bool escaped = pattern[i] == '\\';
        if ((escaped && std::string_view("wWdDsSbB").find(pattern[i + 1]) != std::string_view::npos) ||
            (pattern[i] == '[' && pattern[i + 1] == ':')) {
            throw Unsupported{"classes of letters and digits in texts beyond ASCII"};
        }
        i += escaped ? 1 : 0;
    }
}

/// A part of a text, in bytes.
struct Part {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool empty() const { return begin == end; }
};

/// One search in a text after the other.
struct Search {
    const Call& call;
    const Expression& expression;
    const std::string& text;
    std::size_t from = 0;
    bool checked = false;       ///< the text is known to be good UTF-8
    std::uint32_t options = 0;  ///< of the next search

    const PCRE2_SIZE* offsets() const { return pcre2_get_ovector_pointer(expression.match.get()); }
    int groupCount() const { return static_cast<int>(pcre2_get_ovector_count(expression.match.get())) - 1; }
    /// What a group matched, 0 being the whole; nothing when it took no part.
    std::optional<Part> group(int index) const {
        const PCRE2_SIZE begin = offsets()[2 * index];
        const PCRE2_SIZE end = offsets()[2 * index + 1];
        return begin == PCRE2_UNSET ? std::nullopt : std::optional(Part{begin, end});
    }
    std::string textOf(Part part) const { return text.substr(part.begin, part.end - part.begin); }

    /// Finds the next match behind the one before; after an empty one, none that is empty at the same place.
    std::optional<Part> next() {
        for (;;) {
            call.spend(static_cast<double>(text.size() - std::min(from, text.size())) + 100);
            const int found = pcre2_match(expression.code.get(), units(text), text.size(), from,
                                          options | (checked ? PCRE2_NO_UTF_CHECK : 0u), expression.match.get(),
                                          expression.context.get());
            checked = true;
            if (found == PCRE2_ERROR_NOMATCH) {
                if (options == 0 || from >= text.size()) {
                    return std::nullopt;
                }
                options = 0;
                do {
                    ++from;
                } while (from < text.size() && (static_cast<unsigned char>(text[from]) & 0xC0) == 0x80);
                continue;
            }
            if (found < 0) {
                throw Unsupported{found == PCRE2_ERROR_MATCHLIMIT || found == PCRE2_ERROR_DEPTHLIMIT ||
                                          found == PCRE2_ERROR_HEAPLIMIT
                                      ? "a regular expression that takes too long"
                                      : "a regular expression on such a text"};
            }
            const std::optional<Part> match = group(0);
            if (match->begin > match->end || match->begin < from) {  // \K in a look-around
                throw Unsupported{"a regular expression whose match ends before it begins"};
            }
            from = match->end;
            options = match->empty() ? PCRE2_NOTEMPTY_ATSTART | PCRE2_ANCHORED : 0;
            return match;
        }
    }
};

/// Whether case is left out of account: 0 or nothing no, 1 yes; nothing for other codes.
std::optional<bool> ignoresCase(Arguments arguments, std::size_t index) {
    const double code = index < arguments.size() ? std::trunc(arguments[index].number()) : 0;
    return code == 0 || code == 1 ? std::optional(code == 1) : std::nullopt;
}

/// The expression of the arguments (text, pattern, ...), the case argument being at `caseAt`; null when it is none.
const Expression* expressionOf(Arguments arguments, std::size_t caseAt) {
    const auto ignoreCase = ignoresCase(arguments, caseAt);
    if (!ignoreCase) {
        return nullptr;
    }
    refuseUndocumented(arguments[0].text(), arguments[1].text());
    const Expression& expression = compiledOnce(arguments[1].text(), *ignoreCase);
    return expression.code ? &expression : nullptr;
}

/// REGEXTEST(text, pattern, case).
Value test(Call& call, Arguments arguments) {
    const Expression* expression = expressionOf(arguments, 2);
    if (!expression) {
        return ErrorCode::Value;
    }
    Search search{call, *expression, arguments[0].text()};
    return search.next().has_value();
}

/// REGEXEXTRACT(text, pattern, mode, case): the first match (0), all matches (1) or the groups of the first (2), side
/// by side.
Value extract(Call& call, Arguments arguments) {
    const double mode = arguments.size() > 2 ? std::trunc(arguments[2].number()) : 0;
    const Expression* expression = expressionOf(arguments, 3);
    if (!expression || !(mode == 0 || mode == 1 || mode == 2)) {
        return ErrorCode::Value;
    }
    Search search{call, *expression, arguments[0].text()};
    std::vector<Value> found;
    while (const auto match = search.next()) {
        if (mode == 0) {
            return search.textOf(*match);
        }
        if (mode == 2) {
            for (int i = 1; i <= search.groupCount(); ++i) {
                const auto group = search.group(i);
                if (!group) {
                    throw Unsupported{"a group of a regular expression that takes no part"};
                }
                found.emplace_back(search.textOf(*group));
            }
            if (found.empty()) {
                throw Unsupported{"the groups of a regular expression without any"};
            }
            break;
        }
        if (match->empty()) {
            throw Unsupported{"a regular expression that extracts empty texts"};
        }
        found.emplace_back(search.textOf(*match));
    }
    const int count = static_cast<int>(found.size());
    return count == 0 ? Value(ErrorCode::NA) : arrayOrScalar(1, count, std::move(found));
}

/// A replacement with $1 and its kind filled in from the match just made; nothing when it is longer than any text.
std::optional<std::string> filledIn(const Search& search, const std::string& replacement) {
    const auto references = static_cast<std::size_t>(std::count(replacement.begin(), replacement.end(), '$'));
    if (references == 0) {
        return replacement;
    }
    std::string result(std::min(mostBytes, replacement.size() + references * search.text.size() + 1), '\0');
    PCRE2_SIZE length = result.size();
    const int done =
        pcre2_substitute(search.expression.code.get(), units(search.text), search.text.size(), search.offsets()[0],
                         PCRE2_SUBSTITUTE_MATCHED | PCRE2_SUBSTITUTE_REPLACEMENT_ONLY | PCRE2_NO_UTF_CHECK,
                         search.expression.match.get(), search.expression.context.get(), units(replacement),
                         replacement.size(), reinterpret_cast<PCRE2_UCHAR*>(result.data()), &length);
    if (done == PCRE2_ERROR_NOMEMORY) {
        return std::nullopt;
    }
    if (done < 0) {
        throw Unsupported{"a replacement that cannot be read"};
    }
    result.resize(length);
    return result;
}

/// REGEXREPLACE(text, pattern, replacement, occurrence, case): every match (occurrence 0), or one counted from the
/// start, or from the end when negative.
Value replace(Call& call, Arguments arguments) {
    const std::string& text = arguments[0].text();
    const std::string& replacement = arguments[2].text();
    const double occurrence = arguments.size() > 3 ? std::trunc(arguments[3].number()) : 0;
    const Expression* expression = expressionOf(arguments, 4);
    if (!expression) {
        return ErrorCode::Value;
    }
    if (replacement.find('\\') != std::string::npos) {
        throw Unsupported{"a replacement with a backslash"};
    }
    double wanted = occurrence;
    if (occurrence < 0) {
        Search search{call, *expression, text};
        double count = 0;
        while (search.next()) {
            ++count;
        }
        wanted = count + occurrence + 1;
        if (wanted < 1) {
            return text;
        }
    }
    std::string result;
    std::size_t from = 0;
    Search search{call, *expression, text};
    for (double count = 1; const auto match = search.next(); ++count) {
        if (wanted != 0 && count != wanted) {
            continue;
        }
        const auto filled = filledIn(search, replacement);
        if (!filled || result.size() > mostBytes) {
            return ErrorCode::Value;
        }
        result.append(text, from, match->begin - from).append(*filled);
        from = match->end;
        call.spend(static_cast<double>(filled->size()));
        if (wanted != 0) {
            break;
        }
    }
    result.append(text, from);
    return utf16Length(result) > static_cast<int>(longestText) ? Value(ErrorCode::Value) : Value(std::move(result));
}

constexpr FunctionRow row(std::string_view name, int minArgs, std::string_view kinds, Function function) {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Text,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("REGEXEXTRACT", 2, "TTNN", extract),
    row("REGEXREPLACE", 3, "TTTNN", replace),
    row("REGEXTEST", 2, "TTN", test),
};

}  // namespace

std::span<const FunctionRow> regularExpressionFunctions() { return table; }

}  // namespace quorva::workbook
