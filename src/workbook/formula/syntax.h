// Formulas as trees: what the parser makes and the evaluator walks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbook/formula/function_table.h"
#include "workbook/formula/lazy_function_table.h"
#include "workbook/values/value.h"

namespace quorva::workbook {

enum class Operator : std::uint8_t {
    Add,
    Subtract,
    Multiply,
    Divide,
    Power,
    Concat,
    Equal,
    Different,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Negate,
    Plus,
    Percent,
    Range,
    Intersection,
    Union
};

struct Node {
    enum class Kind : std::uint8_t {
        Constant,
        Reference,
        Missing,
        Unary,
        Binary,
        TableCall,
        LazyCall,
        ModelCall,
        Variable,
        Call,
        Unsupported
    };

    Kind kind = Kind::Missing;
    Operator op{};
    LazyFunction lazy{};         ///< of a LazyCall
    bool explicitSheet = false;  ///< of a reference: its sheet was written
    bool parenthesised = false;
    bool unread = false;               ///< stands for text that could not be parsed: what it refers to is not known
    int depth = 1;                     ///< of the tree from here down; the parser sets its limit
    int index = 0;                     ///< variable or model function
    Value value;                       ///< constant or reference
    const FunctionRow* row = nullptr;  ///< of a call, or of a function that stands for a lambda
    std::string text;                  ///< Unsupported: what is not supported
    std::vector<int> parameters;       ///< variables of LET and LAMBDA, in order; ~i marks an optional one
    std::vector<Node> children;
};

}  // namespace quorva::workbook
