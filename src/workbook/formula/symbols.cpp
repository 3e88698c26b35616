#include "workbook/formula/symbols.h"

#include "workbook/values/texts.h"

namespace quorva::workbook {

Symbols::Symbols(const RawBook& book, const FunctionTable& functions) : book_(&book), functions_(&functions) {
    for (std::size_t i = 0; i < book.sheets.size(); ++i) {
        sheets_.emplace(toUpper(book.sheets[i].name), static_cast<int>(i));
    }
    for (const RawName& name : book.names) {
        names_[toUpper(name.name)].push_back(&name);
    }
    for (const RawTable& table : book.tables) {
        tables_.emplace(toUpper(table.name), &table);
    }
}

int Symbols::sheet(std::string_view name) const {
    const auto found = sheets_.find(toUpper(name));
    return found == sheets_.end() ? -1 : found->second;
}

const RawName* Symbols::name(std::string_view name, int sheet) const {
    const auto found = names_.find(toUpper(name));
    if (found == names_.end()) {
        return nullptr;
    }
    const RawName* global = nullptr;
    for (const RawName* candidate : found->second) {
        if (candidate->sheet == sheet) {
            return candidate;
        }
        if (candidate->sheet < 0) {
            global = candidate;
        }
    }
    return global;
}

const RawTable* Symbols::table(std::string_view name) const {
    const auto found = tables_.find(toUpper(name));
    return found == tables_.end() ? nullptr : found->second;
}

const RawTable* Symbols::tableAt(int sheet, int row, int column) const {
    for (const RawTable& table : book_->tables) {
        if (table.area.sheet == sheet && table.area.contains(row, column)) {
            return &table;
        }
    }
    return nullptr;
}

int Symbols::modelFunction(std::string_view name) {
    const std::string upper = toUpper(name);
    for (std::size_t i = 0; i < modelNames_.size(); ++i) {
        if (modelNames_[i] == upper) {
            return static_cast<int>(i);
        }
    }
    modelNames_.push_back(upper);
    return static_cast<int>(modelNames_.size()) - 1;
}

}  // namespace quorva::workbook
