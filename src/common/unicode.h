// Texts in UTF-8 and in the 16-bit units of the host, one from the other.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorva {

/// Stands for what is no character.
constexpr char32_t replacementCharacter = 0xFFFD;

/// What becomes of half a surrogate pair: worksheets cut texts between the halves and join them again.
enum class LoneSurrogates { Replace, Keep };

/// The code point at `position`, which moves behind it; a malformed byte gives the replacement character and clears
/// `valid`, when there is one.
char32_t nextCodePoint(std::string_view text, std::size_t& position,
                       LoneSurrogates surrogates = LoneSurrogates::Replace, bool* valid = nullptr);
/// Appends the code point as UTF-8.
void appendUtf8(std::string& text, char32_t point);

/// UTF-8 from 16-bit units.
std::string utf8FromUtf16(std::u16string_view text, LoneSurrogates surrogates = LoneSurrogates::Replace);
/// 16-bit units from UTF-8; a malformed byte becomes the replacement character and clears `valid`, when there is one.
std::u16string utf16FromUtf8(std::string_view text, LoneSurrogates surrogates = LoneSurrogates::Replace,
                             bool* valid = nullptr);

}  // namespace quorva
