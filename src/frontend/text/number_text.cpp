#include "frontend/text/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "frontend/text/text.h"

namespace quorva::frontend {

std::string exactNumber(double value) {
    if (!std::isfinite(value)) {
        return {};
    }
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string readableNumber(double value, int digits) {
    if (!std::isfinite(value)) {
        return "-";
    }
    if (value == 0) {
        return "0";
    }
    std::array<char, 64> buffer;
    const double magnitude = std::fabs(value);
    if (magnitude >= 1e15 || magnitude < 1e-6) {
        std::snprintf(buffer.data(), buffer.size(), "%.*e", std::max(digits - 1, 1), value);
        std::string text = buffer.data();
        const std::size_t exponent = text.find('e');
        const std::size_t last = text.find_last_not_of('0', exponent - 1);
        return text.erase(last + (text[last] == '.' ? 0 : 1), exponent - last - (text[last] == '.' ? 0 : 1));
    }
    const int whole = static_cast<int>(std::floor(std::log10(magnitude))) + 1;
    std::snprintf(buffer.data(), buffer.size(), "%.*f", std::clamp(digits - whole, 0, 12), value);
    std::string text = buffer.data();
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text;
}

std::optional<double> parseNumber(std::string_view text) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return std::nullopt;
        }
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::string groupedNumber(double value) {
    std::string digits = std::to_string(static_cast<long long>(std::llround(value)));
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
        digits.insert(static_cast<std::size_t>(at), ",");
    }
    return digits;
}

}  // namespace quorva::frontend
