#include "frontend/commands/cli_lists.h"

#include <nlohmann/json.hpp>

#include "frontend/reports/report_json.h"
#include "frontend/text/output_file.h"
#include "frontend/text/text.h"
#include "frontend/text/text_table.h"
#include "quorva/catalogue.h"
#include "workbook/recalculation/book.h"

namespace quorva::frontend {

namespace {
using Json = nlohmann::ordered_json;

int show(const ListOptions& options, const Json& json, const std::vector<std::string>& header,
         const std::vector<std::vector<std::string>>& rows) {
    if (!options.json.empty()) {
        Outputs({}).reserve(options.json);
        Outputs::commit({{options.json, [&](Sink& sink) { sink.write(jsonText(json)); }}});
    }
    if (options.json != "-") {
        printOut(textTable(header, rows));
    }
    return 0;
}
}  // namespace

int lawsCommand(const ListOptions& options) {
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows;
    const auto add = [&](int law, std::string_view function, const std::vector<std::string>& parameters) {
        rows.push_back({std::to_string(law), std::string(function), joined(parameters, ", ")});
        json.push_back({{"law", law}, {"function", function}, {"parameters", parameters}});
    };
    for (const LawEntry& law : lawTable) {
        add(law.law, law.wrapper, {law.parameterNames.begin(), law.parameterNames.begin() + law.parameters});
    }
    add(empiricLaw, "QUORVA_SimEmpiricUniform", {"values"});
    return show(options, json, {"law", "function", "parameters"}, rows);
}

int functionsCommand(const ListOptions& options) {
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows;
    for (const workbook::FunctionInfo& function : workbook::functions()) {
        constexpr int any = 255;
        const std::string most = function.maxArgs >= any ? "any" : std::to_string(function.maxArgs);
        rows.push_back({std::string(function.name), std::string(function.category),
                        function.minArgs == function.maxArgs ? most : std::to_string(function.minArgs) + " to " + most,
                        function.isVolatile ? "yes" : ""});
        json.push_back({{"name", function.name},
                        {"category", function.category},
                        {"minimum_arguments", function.minArgs},
                        {"maximum_arguments", function.maxArgs},
                        {"volatile", function.isVolatile}});
    }
    return show(options, json, {"function", "category", "arguments", "volatile"}, rows);
}

int statisticsCommand(const ListOptions& options) {
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows;
    for (const StatisticEntry& statistic : statisticTable) {
        const std::string text(trimmed(statistic.help));
        rows.push_back({std::to_string(statistic.statistic), std::string(statistic.wrapper), text});
        json.push_back({{"statistic", statistic.statistic}, {"function", statistic.wrapper}, {"description", text}});
    }
    return show(options, json, {"statistic", "function", "description"}, rows);
}

}  // namespace quorva::frontend
