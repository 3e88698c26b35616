#include "workbook/values/texts.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <vector>

#include "common/unicode.h"

namespace quorva::workbook {

namespace {

bool ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

/// Simple case folding of the alphabets that fold one to one: Latin, Greek, Cyrillic, Armenian.
char16_t upperUnit(char16_t c) {
    if (c < 128) {
        return c >= 'a' && c <= 'z' ? static_cast<char16_t>(c - 32) : c;
    }
    if ((c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) ||
        (c >= 0x430 && c <= 0x44F)) {
        return static_cast<char16_t>(c - 32);
    }
    if (c == 0xFF) {
        return 0x178;
    }
    if (c >= 0x100 && c <= 0x17F) {
        const bool oddIsLower = c <= 0x137 || c >= 0x14A;
        if (c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F || c == 0x178) {
            return c;
        }
        if (c >= 0x179 && c <= 0x17E) {
            return c % 2 == 0 ? static_cast<char16_t>(c - 1) : c;
        }
        return (c % 2 == 1) == oddIsLower ? static_cast<char16_t>(c - 1) : c;
    }
    if (c >= 0x450 && c <= 0x45F) {
        return static_cast<char16_t>(c - 80);
    }
    if (c >= 0x460 && c <= 0x481) {
        return static_cast<char16_t>(c & ~1);
    }
    if (c >= 0x561 && c <= 0x586) {
        return static_cast<char16_t>(c - 48);
    }
    if (c >= 0x3AC && c <= 0x3CE) {
        switch (c) {
            case 0x3AC:
                return 0x386;
            case 0x3AD:
                return 0x388;
            case 0x3AE:
                return 0x389;
            case 0x3AF:
                return 0x38A;
            case 0x3CC:
                return 0x38C;
            case 0x3CD:
                return 0x38E;
            case 0x3CE:
                return 0x38F;
            case 0x3C2:
                return 0x3A3;
            default:
                return c;
        }
    }
    if (c >= 0x1E00 && c <= 0x1E95) {
        return static_cast<char16_t>(c & ~1);
    }
    return c;
}

char16_t lowerUnit(char16_t c) {
    if (c < 128) {
        return c >= 'A' && c <= 'Z' ? static_cast<char16_t>(c + 32) : c;
    }
    for (const int offset : {1, 32, 48, 80}) {
        const char16_t candidate = static_cast<char16_t>(c + offset);
        if (c < 0xFF00 && upperUnit(c) == c && candidate != 0x3C2 && upperUnit(candidate) == c) {
            return candidate;
        }
    }
    if (c == 0x178) {
        return 0xFF;
    }
    return c;
}

std::u16string folded(std::string_view text) {
    std::u16string units = toUtf16(text);
    for (char16_t& c : units) {
        c = upperUnit(c);
    }
    return units;
}

}  // namespace

std::u16string toUtf16(std::string_view text) { return utf16FromUtf8(text, LoneSurrogates::Keep); }
std::string toUtf8(std::u16string_view text) { return utf8FromUtf16(text, LoneSurrogates::Keep); }

int utf16Length(std::string_view text) {
    int length = 0;
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        length += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1;
    }
    return length;
}

std::string utf16Slice(std::string_view text, double from, double count) {
    if (ascii(text)) {
        const double length = static_cast<double>(text.size());
        const double start = std::clamp(std::floor(from), 0.0, length);
        const double end = std::clamp(start + std::floor(std::max(count, 0.0)), 0.0, length);
        return std::string(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
    }
    const std::u16string units = toUtf16(text);
    const double length = static_cast<double>(units.size());
    const double start = std::clamp(std::floor(from), 0.0, length);
    const double end = std::clamp(start + std::floor(std::max(count, 0.0)), 0.0, length);
    return toUtf8(
        std::u16string_view(units).substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
}

namespace {
char upperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }
}  // namespace

std::string toUpper(std::string_view text) {
    if (ascii(text)) {
        std::string upper(text);
        std::transform(upper.begin(), upper.end(), upper.begin(), upperAscii);
        return upper;
    }
    return toUtf8(folded(text));
}

std::string toLower(std::string_view text) {
    std::u16string units = toUtf16(text);
    for (char16_t& c : units) {
        c = lowerUnit(c);
    }
    return toUtf8(units);
}

int compareTexts(std::string_view a, std::string_view b) {
    // Lookups compare most texts by their first characters: nothing is copied for that.
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t at = 0;
    for (; at < common && ((a[at] | b[at]) & 0x80) == 0; ++at) {
        const char left = upperAscii(a[at]);
        const char right = upperAscii(b[at]);
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    if (at == common) {
        return static_cast<int>(a.size() > common) - static_cast<int>(b.size() > common);
    }
    const int order = folded(a).compare(folded(b));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

bool hasWildcard(std::string_view pattern) { return pattern.find_first_of("*?~") != std::string_view::npos; }

namespace {

struct PatternUnit {
    char16_t unit;
    enum class Kind : std::uint8_t { Literal, One, Many } kind;
};

/// A ~ at the very end escapes nothing: it stands for itself, or is left out.
enum class LoneEscape : bool { Kept, Dropped };

std::vector<PatternUnit> parsePattern(std::string_view pattern, LoneEscape loneEscape) {
    std::vector<PatternUnit> parsed;
    const std::u16string units = folded(pattern);
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char16_t c = units[i];
        if (c == '~' && i + 1 < units.size() && (units[i + 1] == '*' || units[i + 1] == '?' || units[i + 1] == '~')) {
            parsed.push_back({units[++i], PatternUnit::Kind::Literal});
        } else if (c == '~' && i + 1 == units.size() && loneEscape == LoneEscape::Dropped) {
            break;
        } else if (c == '*') {
            if (parsed.empty() || parsed.back().kind != PatternUnit::Kind::Many) {
                parsed.push_back({c, PatternUnit::Kind::Many});
            }
        } else {
            parsed.push_back({c, c == '?' ? PatternUnit::Kind::One : PatternUnit::Kind::Literal});
        }
    }
    return parsed;
}

/// Matches from the start of the text; the whole text, or only a beginning of it.
bool matchPattern(std::u16string_view text, const std::vector<PatternUnit>& pattern, bool whole) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t star = std::u16string_view::npos;
    std::size_t mark = 0;
    for (;;) {
        if (p == pattern.size() && (!whole || t == text.size())) {
            return true;
        }
        if (p < pattern.size() && pattern[p].kind == PatternUnit::Kind::Many) {
            star = ++p;
            mark = t;
        } else if (t < text.size() && p < pattern.size() &&
                   (pattern[p].kind == PatternUnit::Kind::One || pattern[p].unit == text[t])) {
            ++t;
            ++p;
        } else if (star != std::u16string_view::npos && mark < text.size()) {
            p = star;
            t = ++mark;
        } else {
            return false;
        }
    }
}

}  // namespace

bool matchesWildcard(std::string_view text, std::string_view pattern) {
    return matchPattern(folded(text), parsePattern(pattern, LoneEscape::Kept), true);
}

int searchWildcard(std::string_view text, std::string_view pattern, int from) {
    const std::u16string units = folded(text);
    const auto parsed = parsePattern(pattern, LoneEscape::Dropped);
    for (std::size_t i = static_cast<std::size_t>(std::max(from, 0)); i <= units.size(); ++i) {
        if (matchPattern(std::u16string_view(units).substr(i), parsed, false)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace quorva::workbook
