// Functions for Asian and Thai texts, as far as plain texts and numbers go.
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/functions/rounding.h"

namespace quorva::workbook {

namespace {

bool plain(std::string_view text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 128) {
            return false;
        }
    }
    return true;
}

/// ASC and DBCS change the width of Asian characters only, and only a cell's furigana differs from its text in
/// PHONETIC.
Value unchanged(Call&, Arguments arguments) {
    const Value& value = arguments[0].value;
    if (!value.isText() || !plain(value.text())) {
        throw Unsupported{"a function for Asian texts on anything but plain text"};
    }
    return value;
}

constexpr std::string_view digitWords[] = {"", "หนึ่ง", "สอง", "สาม", "สี่", "ห้า", "หก", "เจ็ด", "แปด", "เก้า"};
constexpr std::string_view placeWords[] = {"", "สิบ", "ร้อย", "พัน", "หมื่น", "แสน"};
constexpr int placesOfMillion = 6;

/// Fewer than six digits in words; `led` when more stand before them.
std::string block(std::string_view digits, bool led) {
    std::string words;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const int digit = digits[i] - '0';
        const std::size_t place = digits.size() - 1 - i;
        if (digit == 0) {
            continue;
        }
        const bool beforeTens = place == 0 && i > 0 && digits[i - 1] != '0';
        if (place == 0 && digit == 1 && beforeTens) {
            words += "เอ็ด";
        } else if (place == 0 && digit == 1 && (led || !words.empty())) {
            throw Unsupported{"BAHTTEXT of a number that ends in 01, which is read in two ways"};
        } else if (place == 1 && digit <= 2) {
            words += digit == 2 ? "ยี่" : "";
        } else {
            words += digitWords[digit];
        }
        words += placeWords[place];
    }
    return words;
}

std::string inWords(std::string_view digits) {
    const std::size_t first = digits.find_first_not_of('0');
    if (first == std::string_view::npos) {
        return "";
    }
    digits.remove_prefix(first);
    if (digits.size() <= placesOfMillion) {
        return block(digits, false);
    }
    const std::size_t millions = digits.size() - placesOfMillion;
    return inWords(digits.substr(0, millions)) + "ล้าน" + block(digits.substr(millions), true);
}

/// BAHTTEXT: an amount of baht and satang in Thai words.
Value bahtText(Call&, Arguments arguments) {
    constexpr double largest = 1e13;  // whose satang the 15 digits of a number still tell
    const double amount = roundHalfAway(std::fabs(arguments[0].number()), 2);
    if (amount >= largest) {
        throw Unsupported{"BAHTTEXT of so large a number"};
    }
    const std::string satang = std::to_string(std::llround(amount * 100));
    const bool below = satang.size() <= 2;
    const std::string baht = below ? "" : inWords(std::string_view(satang).substr(0, satang.size() - 2));
    const std::string rest = inWords(below ? satang : std::string_view(satang).substr(satang.size() - 2));
    const std::string sign = arguments[0].number() < 0 && amount > 0 ? "ลบ" : "";
    if (amount == 0) {
        return "ศูนย์บาทถ้วน";
    }
    return sign + baht + (baht.empty() ? "" : "บาท") + (rest.empty() ? "ถ้วน" : rest + "สตางค์");
}

constexpr FunctionRow row(std::string_view name, std::string_view kinds, Function function) {
    return {.name = name, .minArgs = 1, .maxArgs = 1, .kinds = kinds, .category = Category::Text, .function = function};
}

constexpr FunctionRow table[] = {
    row("ASC", "T", unchanged),
    row("BAHTTEXT", "N", bahtText),
    row("DBCS", "T", unchanged),
    row("PHONETIC", "C", unchanged),
};

}  // namespace

std::span<const FunctionRow> asianTextFunctions() { return table; }

}  // namespace quorva::workbook
