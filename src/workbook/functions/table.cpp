// The one function table: every family's rows, by name.
#include <algorithm>
#include <string>
#include <unordered_map>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

std::vector<const FunctionRow*> collectRows() {
    std::vector<const FunctionRow*> rows;
    for (const auto& family : {mathFunctions(),
                               roundingFunctions(),
                               trigonometryFunctions(),
                               combinatoricFunctions(),
                               matrixFunctions(),
                               statisticsFunctions(),
                               orderStatisticsFunctions(),
                               regressionFunctions(),
                               distributionFunctions(),
                               discreteDistributionFunctions(),
                               testFunctions(),
                               financeFunctions(),
                               dateFunctions(),
                               textFunctions(),
                               textArrayFunctions(),
                               depreciationFunctions(),
                               securityFunctions(),
                               engineeringFunctions(),
                               unitFunctions(),
                               complexFunctions(),
                               lookupFunctions(),
                               arrayFunctions(),
                               sortingFunctions(),
                               randomFunctions(),
                               informationFunctions(),
                               databaseFunctions(),
                               conditionalFunctions(),
                               subtotalFunctions()}) {
        for (const FunctionRow& row : family) {
            rows.push_back(&row);
        }
    }
    std::sort(rows.begin(), rows.end(), [](const auto* a, const auto* b) { return a->name < b->name; });
    return rows;
}

const std::vector<const FunctionRow*>& rowsByName() {
    static const std::vector<const FunctionRow*> rows = collectRows();
    return rows;
}

}  // namespace

std::span<const FunctionRow* const> allFunctions() { return rowsByName(); }

const FunctionRow* findFunction(std::string_view name) {
    static const std::unordered_map<std::string_view, const FunctionRow*> byName = [] {
        std::unordered_map<std::string_view, const FunctionRow*> map;
        for (const FunctionRow* row : rowsByName()) {
            map.emplace(row->name, row);
        }
        return map;
    }();
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
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
