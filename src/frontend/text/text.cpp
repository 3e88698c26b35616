#include "frontend/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace quorva::frontend {

namespace {
constexpr char32_t replacement = 0xFFFD;

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

/// The code point at `position`, which moves behind it.
char32_t nextCodePoint(std::string_view text, std::size_t& position) {
    const auto first = static_cast<unsigned char>(text[position++]);
    if (first < 0x80) {
        return first;
    }
    const int following = first >= 0xF0 && first < 0xF5 ? 3 : first >= 0xE0 ? 2 : first >= 0xC2 ? 1 : 0;
    if (following == 0 || first >= 0xF5) {
        return replacement;
    }
    char32_t c = first & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        if (position >= text.size() || (static_cast<unsigned char>(text[position]) & 0xC0) != 0x80) {
            return replacement;
        }
        c = (c << 6) | (static_cast<unsigned char>(text[position++]) & 0x3F);
    }
    const bool overlong = (following == 2 && c < 0x800) || (following == 3 && c < 0x10000);
    return overlong || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000) ? replacement : c;
}

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

std::string toUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00u));
        } else {
            appendUtf8(out, unit >= 0xD800 && unit < 0xE000 ? replacement : unit);
        }
    }
    return out;
}

std::u16string toUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = nextCodePoint(text, i);
        if (c < 0x10000) {
            out += static_cast<char16_t>(c);
        } else {
            out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return out;
}

std::string exactNumber(double value) {
    if (!std::isfinite(value)) {
        return {};
    }
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string readableNumber(double value, int digits) {
    if (!std::isfinite(value)) {
        return "-";
    }
    if (value == 0) {
        return "0";
    }
    std::array<char, 64> buffer;
    const double magnitude = std::fabs(value);
    if (magnitude >= 1e15 || magnitude < 1e-6) {
        std::snprintf(buffer.data(), buffer.size(), "%.*e", std::max(digits - 1, 1), value);
        std::string text = buffer.data();
        const std::size_t exponent = text.find('e');
        const std::size_t last = text.find_last_not_of('0', exponent - 1);
        return text.erase(last + (text[last] == '.' ? 0 : 1), exponent - last - (text[last] == '.' ? 0 : 1));
    }
    const int whole = static_cast<int>(std::floor(std::log10(magnitude))) + 1;
    std::snprintf(buffer.data(), buffer.size(), "%.*f", std::clamp(digits - whole, 0, 12), value);
    std::string text = buffer.data();
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text;
}

std::optional<double> parseNumber(std::string_view text) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return std::nullopt;
        }
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::string cellAddress(int row, int column) {
    std::string letters;
    for (int c = column; c >= 0; c = c / 26 - 1) {
        letters.insert(letters.begin(), static_cast<char>('A' + c % 26));
    }
    return letters + std::to_string(row + 1);
}

std::string cellAddress(std::string_view sheet, int row, int column) {
    if (sheet.empty()) {
        return cellAddress(row, column);
    }
    const auto plain = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '.' || c >= 0x80; };
    const bool digitFirst = std::isdigit(static_cast<unsigned char>(sheet.front())) != 0;
    std::string name(sheet);
    if (digitFirst || !std::all_of(sheet.begin(), sheet.end(), plain)) {
        name = "'";
        for (const char c : sheet) {
            name += c;
            if (c == '\'') {
                name += c;
            }
        }
        name += "'";
    }
    return name + "!" + cellAddress(row, column);
}

std::string sheetOfHostName(std::string_view hostName) {
    const auto bracket = hostName.find(']');
    return std::string(hostName.starts_with('[') && bracket != std::string_view::npos ? hostName.substr(bracket + 1)
                                                                                      : hostName);
}

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
