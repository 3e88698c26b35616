#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

Value left(Call&, Arguments arguments) {
    const double count = arguments.size() > 1 ? arguments[1].number() : 1;
    if (count < 0) {
        return ErrorCode::Value;
    }
    return utf16Slice(arguments[0].text(), 0, count);
}

constexpr FunctionRow table[] = {
    {.name = "LEFT", .minArgs = 1, .maxArgs = 2, .kinds = "TN", .category = Category::Text, .function = left},
};

}  // namespace

std::span<const FunctionRow> textFunctions() { return table; }

}  // namespace quorva::workbook
