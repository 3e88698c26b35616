// What the names in formulas mean.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "workbook/formula/function_table.h"
#include "workbook/values/raw_book.h"

namespace quorva::workbook {

/// What names in formulas refer to: sheets, defined names, tables, worksheet functions and model functions.
class Symbols {
public:
    /// Both stay with the caller and outlive it.
    Symbols(const RawBook& book, const FunctionTable& functions);

    const FunctionRow* function(std::string_view name) const { return functions_->find(name); }
    int sheet(std::string_view name) const;  ///< -1 when there is none
    const RawName* name(std::string_view name, int sheet) const;
    const RawTable* table(std::string_view name) const;
    const RawTable* tableAt(int sheet, int row, int column) const;
    /// Number of a model function by its name; made on first use.
    int modelFunction(std::string_view name);
    const std::vector<std::string>& modelFunctions() const { return modelNames_; }

private:
    const RawBook* book_;
    const FunctionTable* functions_;
    std::unordered_map<std::string, int> sheets_;
    std::unordered_map<std::string, std::vector<const RawName*>> names_;
    std::unordered_map<std::string, const RawTable*> tables_;
    std::vector<std::string> modelNames_;
};

}  // namespace quorva::workbook
