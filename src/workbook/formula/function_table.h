// What is known of the worksheet functions: name, arity, arguments, and what computes them.
#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workbook/values/value.h"

namespace quorva::workbook {

enum class Category {
    Math,
    Trigonometry,
    Statistics,
    Distribution,
    Finance,
    Date,
    Text,
    Engineering,
    Lookup,
    Array,
    Information,
    Logic,
    Database
};
std::string_view categoryName(Category category);

/// Volatile functions (RAND, NOW ...) are evaluated at every recalculation.
enum class Volatility : bool { Stable, Volatile };

constexpr int anyCount = 255;

struct Call;
struct Argument;
using Arguments = std::span<const Argument>;

using Function = Value (*)(Call& call, Arguments arguments);
using NumericFunction = double (*)(const double* arguments, int count);

struct FunctionRow {
    std::string_view name;
    int minArgs = 0;
    int maxArgs = 0;
    std::string_view kinds;
    Category category = Category::Math;
    Volatility volatility = Volatility::Stable;
    Function function = nullptr;
    NumericFunction numeric = nullptr;
    /// Functions that came from the analysis tool pack give #VALUE! for a range of several cells in a scalar's place.
    bool refusesRanges = false;
};

/// The letter of `kinds` for the argument at `index` (from 0).
char argumentKind(std::string_view kinds, int index);

/// The rows of several families, by name. The parser is given one, so that it does not depend on what computes them.
class FunctionTable {
public:
    explicit FunctionTable(std::initializer_list<std::span<const FunctionRow>> families);
    /// Every row, sorted by name.
    std::span<const FunctionRow* const> rows() const { return rows_; }
    /// The function of a name in capitals, without prefixes; null when there is none.
    const FunctionRow* find(std::string_view name) const;

private:
    std::vector<const FunctionRow*> rows_;
    std::unordered_map<std::string_view, const FunctionRow*> byName_;
};

}  // namespace quorva::workbook
