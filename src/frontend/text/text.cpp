#include "frontend/text/text.h"

#include <algorithm>

#include "common/unicode.h"

namespace quorva::frontend {

namespace {
struct CodeRange {
    char32_t first, last;
};
/// The larger blocks of Unicode's East Asian Width property W and F.
constexpr CodeRange wide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},  {0x3400, 0x4DBF},
                              {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},
                              {0xFE30, 0xFE4F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
                              {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
constexpr CodeRange combining[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};

/// Columns that a character takes on a terminal.
std::size_t columnsOf(char32_t c) {
    const auto holds = [c](const CodeRange& range) { return c >= range.first && c <= range.last; };
    if (c < 0x300) {
        return 1;
    }
    return std::any_of(std::begin(combining), std::end(combining), holds) ? 0
           : std::any_of(std::begin(wide), std::end(wide), holds)         ? 2
                                                                          : 1;
}

std::u32string codePoints(std::string_view text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size();) {
        points += nextCodePoint(text, i);
    }
    return points;
}

std::size_t editDistance(const std::u32string& a, const std::u32string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t substitution = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, substitution});
        }
    }
    return row[b.size()];
}
}  // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const char32_t c : codePoints(text)) {
        width += columnsOf(c);
    }
    return width;
}

std::size_t bytesWithin(std::string_view text, std::size_t width) {
    std::size_t taken = 0;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t before = i;
        taken += columnsOf(nextCodePoint(text, i));
        if (taken > width) {
            return before;
        }
    }
    return text.size();
}

std::string fitLeft(std::string_view text, std::size_t width) {
    const std::string fitting = shortened(text, width);
    return fitting + std::string(width - std::min(width, displayWidth(fitting)), ' ');
}

std::string shortened(std::string_view text, std::size_t width) {
    return displayWidth(text) <= width
               ? std::string(text)
               : std::string(text.substr(0, bytesWithin(text, width > 0 ? width - 1 : 0))) + "…";
}

std::string fitRight(std::string_view text, std::size_t width) {
    const std::size_t taken = displayWidth(text);
    return taken >= width ? std::string(text) : std::string(width - taken, ' ') + std::string(text);
}

std::string printable(std::string_view text) {
    std::string out;
    for (const char32_t c : codePoints(text)) {
        appendUtf8(out, c < 0x20 || (c >= 0x7F && c < 0xA0) ? U' ' : c);
    }
    return out;
}

std::string joined(std::span<const std::string> parts, std::string_view separator) {
    std::string out;
    for (const std::string& part : parts) {
        out += out.empty() ? "" : separator;
        out += part;
    }
    return out;
}

std::string nearestName(std::string_view text, std::span<const std::string> candidates) {
    const std::u32string wanted = codePoints(lowerCase(trimmed(text)));
    std::string best;
    std::size_t bestDistance = std::max<std::size_t>(wanted.size() / 2, 2) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = editDistance(wanted, codePoints(lowerCase(candidate)));
        if (distance < bestDistance && distance < displayWidth(candidate)) {
            bestDistance = distance;
            best = candidate;
        }
    }
    return best;
}

std::string nearestHint(std::string_view text, std::span<const std::string> candidates) {
    const std::string nearest = nearestName(text, candidates);
    return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

}  // namespace quorva::frontend
