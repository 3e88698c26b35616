#include "workbook/formula/function_table.h"

#include <algorithm>

namespace quorva::workbook {

FunctionTable::FunctionTable(std::initializer_list<std::span<const FunctionRow>> families) {
    for (const auto& family : families) {
        for (const FunctionRow& row : family) {
            rows_.push_back(&row);
            byName_.emplace(row.name, &row);
        }
    }
    std::sort(rows_.begin(), rows_.end(), [](const auto* a, const auto* b) { return a->name < b->name; });
}

const FunctionRow* FunctionTable::find(std::string_view name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

char argumentKind(std::string_view kinds, int index) {
    const auto open = kinds.find('(');
    if (open == std::string_view::npos) {
        return kinds.empty() ? 'S' : kinds[std::min<std::size_t>(static_cast<std::size_t>(index), kinds.size() - 1)];
    }
    if (static_cast<std::size_t>(index) < open) {
        return kinds[static_cast<std::size_t>(index)];
    }
    const std::string_view group = kinds.substr(open + 1, kinds.size() - open - 2);
    return group[(static_cast<std::size_t>(index) - open) % group.size()];
}

std::string_view categoryName(Category category) {
    switch (category) {
        case Category::Math:
            return "Math";
        case Category::Trigonometry:
            return "Trigonometry";
        case Category::Statistics:
            return "Statistics";
        case Category::Distribution:
            return "Distribution";
        case Category::Finance:
            return "Finance";
        case Category::Date:
            return "Date and time";
        case Category::Text:
            return "Text";
        case Category::Engineering:
            return "Engineering";
        case Category::Lookup:
            return "Lookup and reference";
        case Category::Array:
            return "Dynamic arrays";
        case Category::Information:
            return "Information";
        case Category::Logic:
            return "Logic";
        case Category::Database:
            return "Database";
    }
    return "";
}

}  // namespace quorva::workbook
