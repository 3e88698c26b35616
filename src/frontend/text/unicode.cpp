#include "frontend/text/unicode.h"

namespace quorva::frontend {

namespace {
constexpr char32_t replacement = 0xFFFD;
}

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

std::u32string codePoints(std::string_view text) {
    std::u32string points;
    for (std::size_t i = 0; i < text.size();) {
        points += nextCodePoint(text, i);
    }
    return points;
}

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

}  // namespace quorva::frontend
