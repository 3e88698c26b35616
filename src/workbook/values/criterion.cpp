#include "workbook/values/criterion.h"

#include "workbook/values/convert.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

Criterion::Criterion(const Value& condition, bool date1904) {
    if (condition.isBlank()) {
        operand_ = Value(0.0);  // an empty cell as condition means the number 0
        return;
    }
    if (!condition.isText()) {
        operand_ = condition;
        return;
    }
    std::string_view rest = condition.text();
    const std::pair<std::string_view, Comparison> operators[] = {
        {"<=", Comparison::LessOrEqual}, {">=", Comparison::GreaterOrEqual},
        {"<>", Comparison::Different},   {"=", Comparison::Equal},
        {"<", Comparison::Less},         {">", Comparison::Greater}};
    for (const auto& [text, comparison] : operators) {
        if (rest.starts_with(text)) {
            comparison_ = comparison;
            explicitOperator_ = true;
            rest.remove_prefix(text.size());
            break;
        }
    }
    ErrorCode error{};
    const std::string upper = toUpper(rest);
    if (const auto number = parseNumber(rest, date1904)) {
        operand_ = Value(*number);
    } else if (upper == "TRUE" || upper == "FALSE") {
        operand_ = Value(upper == "TRUE");
    } else if (errorFromText(upper, error)) {
        operand_ = Value(error);
    } else if (rest.empty() && explicitOperator_) {
        operand_ = Value();
    } else {
        operand_ = Value(rest);
        wildcard_ = hasWildcard(rest);
    }
}

bool Criterion::equals(const Value& value) const {
    switch (operand_.type()) {
        case Value::Type::Blank:
            return value.isBlank();
        case Value::Type::Number:
            if (value.isText()) {
                const auto number = parseNumber(value.text());
                return number && compareNumbers(*number, operand_.number()) == 0;
            }
            return value.isNumber() && compareNumbers(value.number(), operand_.number()) == 0;
        case Value::Type::Boolean:
            return value.isBoolean() && value.boolean() == operand_.boolean();
        case Value::Type::Error:
            return value.isError() && value.error() == operand_.error();
        case Value::Type::Text:
            if (operand_.text().empty()) {
                return value.isBlank() || (value.isText() && value.text().empty());
            }
            return value.isText() && (wildcard_ ? matchesWildcard(value.text(), operand_.text())
                                                : compareTexts(value.text(), operand_.text()) == 0);
        default:
            return false;
    }
}

bool Criterion::matches(const Value& value) const {
    if (comparison_ == Comparison::Equal) {
        return equals(value);
    }
    if (comparison_ == Comparison::Different) {
        return !equals(value);
    }
    if (value.type() != operand_.type() || value.isBlank() || value.isError()) {
        return false;
    }
    const int order = compareValues(value, operand_);
    switch (comparison_) {
        case Comparison::Less:
            return order < 0;
        case Comparison::LessOrEqual:
            return order <= 0;
        case Comparison::Greater:
            return order > 0;
        default:
            return order >= 0;
    }
}

}  // namespace quorva::workbook
