#include "common/unicode.h"

namespace quorva {

namespace {

bool isSurrogate(char32_t point) { return point >= 0xD800 && point < 0xE000; }

/// Bytes that follow the first of a sequence; -1 when the byte begins none.
int followingBytes(unsigned char first) {
    if (first < 0x80) {
        return 0;
    }
    return first >= 0xF5 ? -1 : first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC2 ? 1 : -1;
}

}  // namespace

char32_t nextCodePoint(std::string_view text, std::size_t& position, LoneSurrogates surrogates, bool* valid) {
    constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    const auto malformed = [valid] {
        if (valid) {
            *valid = false;
        }
        return replacementCharacter;
    };
    const auto first = static_cast<unsigned char>(text[position++]);
    const int following = followingBytes(first);
    if (following < 0) {
        return malformed();
    }
    char32_t point = following == 0 ? first : first & (0x3Fu >> following);
    for (int i = 0; i < following; ++i) {
        if (position >= text.size() || (static_cast<unsigned char>(text[position]) & 0xC0) != 0x80) {
            return malformed();
        }
        point = point << 6 | (static_cast<unsigned char>(text[position++]) & 0x3F);
    }
    if (point < smallest[following] || point > 0x10FFFF ||
        (isSurrogate(point) && surrogates == LoneSurrogates::Replace)) {
        return malformed();
    }
    return point;
}

void appendUtf8(std::string& text, char32_t point) {
    const auto byte = [&text](char32_t value) { text += static_cast<char>(static_cast<unsigned char>(value)); };
    if (point < 0x80) {
        byte(point);
    } else if (point < 0x800) {
        byte(0xC0 | point >> 6);
        byte(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        byte(0xE0 | point >> 12);
        byte(0x80 | (point >> 6 & 0x3F));
        byte(0x80 | (point & 0x3F));
    } else {
        byte(0xF0 | point >> 18);
        byte(0x80 | (point >> 12 & 0x3F));
        byte(0x80 | (point >> 6 & 0x3F));
        byte(0x80 | (point & 0x3F));
    }
}

std::string utf8FromUtf16(std::u16string_view text, LoneSurrogates surrogates) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (unit >= 0xD800 && unit < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            appendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00u));
        } else {
            const bool lone = isSurrogate(unit) && surrogates == LoneSurrogates::Replace;
            appendUtf8(bytes, lone ? replacementCharacter : unit);
        }
    }
    return bytes;
}

std::u16string utf16FromUtf8(std::string_view text, LoneSurrogates surrogates, bool* valid) {
    std::u16string units;
    units.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t point = nextCodePoint(text, i, surrogates, valid);
        if (point < 0x10000) {
            units += static_cast<char16_t>(point);
        } else {
            units += static_cast<char16_t>(0xD7C0 + (point >> 10));
            units += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        }
    }
    return units;
}

}  // namespace quorva
