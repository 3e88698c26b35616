// Texts in UTF-8 that are counted, cut, compared and matched the way worksheets do: in UTF-16 units, without case.
#pragma once

#include <string>
#include <string_view>

namespace quorva::workbook {

/// 16-bit units and back; a text cut between the halves of a pair keeps its half.
std::u16string toUtf16(std::string_view text);
std::string toUtf8(std::u16string_view text);
int utf16Length(std::string_view text);
/// `count` units from `from` (both clipped to the text).
std::string utf16Slice(std::string_view text, double from, double count);
std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);

/// Texts compared without case: negative, 0 or positive.
int compareTexts(std::string_view a, std::string_view b);

/// Whether the text matches a pattern with ? * and ~ as escape, without case.
bool matchesWildcard(std::string_view text, std::string_view pattern);
/// Where in the text (in UTF-16 units from 0, starting at `from`) the pattern is first found, -1 when nowhere (SEARCH).
int searchWildcard(std::string_view text, std::string_view pattern, int from);
bool hasWildcard(std::string_view pattern);

}  // namespace quorva::workbook
