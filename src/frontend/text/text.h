// Pieces of UTF-8 text: trimmed, fitted to a terminal, joined, compared.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::frontend {

std::string_view trimmed(std::string_view text);
std::string lowerCase(std::string_view text);
/// Columns that the text takes on a terminal: two for East Asian wide characters, none for combining ones.
std::size_t displayWidth(std::string_view text);
/// Bytes of the longest beginning of the text that takes at most so many columns.
std::size_t bytesWithin(std::string_view text, std::size_t width);
/// The text cut or filled with blanks to a number of columns.
std::string fitLeft(std::string_view text, std::size_t width);
/// The text, cut where it takes more columns.
std::string shortened(std::string_view text, std::size_t width);
std::string fitRight(std::string_view text, std::size_t width);
/// The text without control characters, for a terminal or one line of a report.
std::string printable(std::string_view text);
std::string joined(std::span<const std::string> parts, std::string_view separator);

/// The candidate that differs least from `text`, or an empty text when none is near.
std::string nearestName(std::string_view text, std::span<const std::string> candidates);
/// "; did you mean 'x'?", or nothing.
std::string nearestHint(std::string_view text, std::span<const std::string> candidates);

}  // namespace quorva::frontend
