// EUROCONVERT: the currencies that became the euro, at the rates fixed by the Council of the European Union.
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/functions/rounding.h"

namespace quorva::workbook {

namespace {

struct Currency {
    std::string_view code;
    double perEuro;
    int decimals;  ///< that amounts are rounded to
};

/// Council regulations 2866/98, 1478/2000 and 1086/2006; decimals as the function's documentation lists them.
constexpr Currency currencies[] = {
    {"ATS", 13.7603, 2}, {"BEF", 40.3399, 0}, {"DEM", 1.95583, 2}, {"ESP", 166.386, 0},  {"EUR", 1, 2},
    {"FIM", 5.94573, 2}, {"FRF", 6.55957, 2}, {"GRD", 340.75, 0},  {"IEP", 0.787564, 2}, {"ITL", 1936.27, 0},
    {"LUF", 40.3399, 0}, {"NLG", 2.20371, 2}, {"PTE", 200.482, 0}, {"SIT", 239.64, 2},
};

const Currency* findCurrency(std::string_view code) {
    for (const Currency& currency : currencies) {
        if (compareTexts(currency.code, code) == 0) {
            return &currency;
        }
    }
    return nullptr;
}

/// EUROCONVERT(amount, from, to, all digits, digits of the amount in euros on the way between two other currencies).
Value euroConvert(Call&, Arguments arguments) {
    const Currency* from = findCurrency(arguments[1].text());
    const Currency* to = findCurrency(arguments[2].text());
    if (!from || !to) {
        return ErrorCode::Value;
    }
    if (from == to) {
        return arguments[0].number();
    }
    double euros = arguments[0].number() / from->perEuro;
    if (arguments.size() > 4 && !arguments[4].missing) {
        const double digits = std::trunc(arguments[4].number());
        if (digits < 3) {
            return ErrorCode::Value;
        }
        if (euros != 0) {
            euros = roundHalfAway(euros, digits - 1 - std::floor(std::log10(std::fabs(euros))));
        }
    }
    const double amount = euros * to->perEuro;
    const bool full = arguments.size() > 3 && arguments[3].boolean();
    return full ? amount : roundHalfAway(amount, to->decimals);
}

constexpr FunctionRow table[] = {
    {.name = "EUROCONVERT",
     .minArgs = 3,
     .maxArgs = 5,
     .kinds = "NTTBN",
     .category = Category::Finance,
     .function = euroConvert},
};

}  // namespace

std::span<const FunctionRow> euroFunctions() { return table; }

}  // namespace quorva::workbook
