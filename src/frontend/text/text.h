// Text as the front end reads and writes it: UTF-8 inside, UTF-16 at the module's edge, numbers, cell addresses.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::frontend {

/// UTF-8 from 16-bit code units; a lone surrogate becomes the replacement character.
std::string toUtf8(std::u16string_view text);
/// 16-bit code units from UTF-8; a malformed byte becomes the replacement character.
std::u16string toUtf16(std::string_view text);

/// The shortest text that reads back as the same double (at most 17 significant digits); empty when not finite.
std::string exactNumber(double value);
/// A number for people: at most `digits` significant digits, no needless exponent; "-" when it does not exist.
std::string readableNumber(double value, int digits = 6);
/// The number that the whole text is (decimal point, optional sign, exponent), surrounding blanks allowed.
std::optional<double> parseNumber(std::string_view text);

/// "B7" of a 0-based row and column.
std::string cellAddress(int row, int column);
/// "Costs!B7", the sheet in quotes where its name needs them.
std::string cellAddress(std::string_view sheet, int row, int column);
/// "Sheet" of the host's "[Book]Sheet".
std::string sheetOfHostName(std::string_view hostName);

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
