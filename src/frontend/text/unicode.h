// UTF-8, which the front end speaks inside, and UTF-16 at the module's edge.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorva::frontend {

/// UTF-8 from 16-bit code units; a lone surrogate becomes the replacement character.
std::string toUtf8(std::u16string_view text);
/// 16-bit code units from UTF-8; a malformed byte becomes the replacement character.
std::u16string toUtf16(std::string_view text);

/// The code point at `position` of UTF-8 text; `position` moves behind it.
char32_t nextCodePoint(std::string_view text, std::size_t& position);
std::u32string codePoints(std::string_view text);
void appendUtf8(std::string& out, char32_t c);

}  // namespace quorva::frontend
