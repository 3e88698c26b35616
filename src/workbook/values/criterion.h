// Conditions on cells, as SUMIF and its kind take them.
#pragma once

#include "workbook/values/value.h"

namespace quorva::workbook {

/// A condition as SUMIF, COUNTIFS, AVERAGEIF ... take it: 5, "text", ">=3", "<>", "a*".
class Criterion {
public:
    explicit Criterion(const Value& condition, bool date1904 = false);
    bool matches(const Value& value) const;
    /// Whether a cell that does not exist matches, so that walks over existing cells know about the others.
    bool matchesBlank() const { return matches(Value()); }

private:
    enum class Comparison { Equal, Different, Less, LessOrEqual, Greater, GreaterOrEqual };
    bool equals(const Value& value) const;

    Comparison comparison_ = Comparison::Equal;
    Value operand_;
    bool explicitOperator_ = false;
    bool wildcard_ = false;
};

}  // namespace quorva::workbook
