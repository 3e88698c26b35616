// Numbers as texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorva::frontend {

/// The shortest text that reads back as the same double (at most 17 significant digits); empty when not finite.
std::string exactNumber(double value);
/// A number for people: at most `digits` significant digits, no needless exponent; "-" when it does not exist.
std::string readableNumber(double value, int digits = 6);
/// The nearest whole number with a comma every three digits.
std::string groupedNumber(double value);
/// The number that the whole text is (decimal point, optional sign, exponent), surrounding blanks allowed.
std::optional<double> parseNumber(std::string_view text);

}  // namespace quorva::frontend
