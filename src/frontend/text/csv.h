// Comma-separated values as RFC 4180 has them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorva::frontend {

/// The separator of a file: a semicolon where the first line holds more of them than commas, quoted parts aside.
char csvSeparator(std::string_view text);

/// Rows of fields; quotes, doubled quotes, line breaks in quotes, CRLF and a byte-order mark are understood. Empty
/// lines are left out.
std::vector<std::vector<std::string>> parseCsv(std::string_view text);

/// A field as it stands in a line: in quotes where needed.
std::string csvField(std::string_view text);
/// As csvField, with an apostrophe before text that a spreadsheet would take for a formula.
std::string csvName(std::string_view text);

}  // namespace quorva::frontend
