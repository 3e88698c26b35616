#include "host/worksheet_functions.h"

#include <utility>

namespace quorva {
namespace {

// The same sentence stands in three spellings; users know them so.
constexpr std::string_view restrictedHelp = "Show the details for this field in restricted output mode. ";
constexpr std::string_view restrictedHelpSpaced = "Show the details for this field in restricted output mode . ";
constexpr std::string_view activatedHelp = "Show the details for this field in activated output mode .  ";

constexpr std::string_view truncationHelp = "truncation mode : 0-off 1-absolute values 2-percentiles";
constexpr std::string_view theoreticDefaultHelp = "if True use DefaultValue else use theoretic mean";

WorksheetArgument argument(std::string_view name, char type, std::string_view help) {
    return {name, type, std::string(help)};
}

WorksheetFunction distribution() {
    return {"QUORVA_SimDist",
            "Define a Distribution function for a Simulation model",
            {argument("VarName", 'F', "Distribution name"), argument("Law", 'J', "Distribution identifier"),
             argument("Param1", 'B', "First Parameter, if necessary, else 0"),
             argument("Param2", 'B', "Second Parameter, if necessary, else 0"),
             argument("Param3", 'B', "Third Parameter, if necessary, else 0"),
             argument("Param4", 'B', "Fourth Parameter, if necessary, else 0"),
             argument("DefaultValue", 'B', "Default value returned outside the simulation"),
             argument("TruncMode", 'J', truncationHelp), argument("TruncLower", 'B', "lower truncation percentile"),
             argument("TruncUpper", 'B', "upper truncation percentile"), argument("Visible", 'J', restrictedHelp)}};
}

WorksheetFunction scenarioVariable() {
    return {"QUORVA_SimSVar",
            "Define a Scenario variable for a Simulation model",
            {argument("SVarName", 'F', "Scenario variable name"),
             argument("LowerBound", 'B', "Lower bound of the value intervall of the decision variable"),
             argument("UpperBound", 'B', "Upper bound of the value intervall of the decision variable"),
             argument("Type", 'J', "Type of decision variable 1=quantitative, 2=qualitative"),
             argument("Step", 'J', "Step size in case of qualitative decision variable"),
             argument("DefaultType", 'A', "if True use DefaultValue else use interval mean"),
             argument("DefaultValue", 'B', "DefaultValue"), argument("Visible", 'J', restrictedHelp)}};
}

WorksheetFunction result() {
    return {"QUORVA_SimRes",
            "Define a Result for a Simulation model",
            {argument("ResName", 'F', "Result name"), argument("Formula", 'B', "Calculation formula of the result"),
             argument("DefaultValue", 'B', "Default value returned outside the simulation"),
             argument("ConvCheck", 'A', "Check this result for conversion in selected conversion mode"),
             argument("Visible", 'J', restrictedHelpSpaced)}};
}

WorksheetArgument statisticName() { return argument("StatName", 'F', "Statistic name"); }
WorksheetArgument statisticReference() { return argument("Reference", 'R', "Simulation field to be analyzed"); }

WorksheetFunction statistic() {
    return {"QUORVA_SimStat",
            "Get a statistic of a running Simulation model",
            {statisticName(), statisticReference(), argument("Statistic", 'J', "descriptive statstic to be returned"),
             argument("Visible", 'J', restrictedHelpSpaced)}};
}

WorksheetFunction empiricUniform() {
    return {"QUORVA_SimEmpiricUniform",
            "User defined empiric, uniform, and discrete distribution without weighting.",
            {argument("VarName", 'F', "Distribution name"), argument("xi values", 'O', "xi values"),
             argument("DefaultType", 'A', theoreticDefaultHelp), argument("DefaultValue", 'B', "DefaultValue"),
             argument("Visible", 'J', activatedHelp)}};
}

std::string parameterHelp(std::string_view name) {
    if (name == "alpha") {
        return "Alpha Parameter";
    }
    if (name == "beta") {
        return "Beta Parameter";
    }
    return std::string(name) + " Parameter";
}

WorksheetFunction lawFunction(const LawEntry& law) {
    WorksheetFunction function{law.wrapper, law.help, {argument("VarName", 'F', "Distribution name")}};
    auto& arguments = function.arguments;
    for (int i = 0; i < law.parameters; ++i) {
        arguments.push_back({law.parameterNames[i], 'B', parameterHelp(law.parameterNames[i])});
    }
    arguments.push_back(argument("TruncMode", 'J', truncationHelp));
    arguments.push_back(argument("TruncLower", 'B', "lower truncation bound"));
    if (law.lowerBoundNamedFirst) {
        std::swap(arguments.back().name, arguments[arguments.size() - 2].name);
    }
    arguments.push_back(argument("TruncUpper", 'B', "upper truncation bound"));
    arguments.push_back(argument("DefaultType", 'A', theoreticDefaultHelp));
    // The law with five parameters fills all places for helps, and its default's help ends like a last one; intended.
    const bool fillsAllPlaces = law.parameters == 5;
    arguments.push_back(argument("DefaultValue", 'B', fillsAllPlaces ? "DefaultValue. " : "DefaultValue"));
    arguments.push_back(argument("Visible", 'J', activatedHelp));
    return function;
}

}  // namespace

std::vector<WorksheetFunction> modelFunctions() {
    std::vector<WorksheetFunction> functions{distribution(), scenarioVariable(), result(), statistic()};
    for (const LawEntry& law : lawTable) {
        functions.push_back(lawFunction(law));
    }
    functions.push_back(empiricUniform());
    return functions;
}

std::vector<WorksheetFunction> statisticFunctions() {
    std::vector<WorksheetFunction> functions;
    for (const StatisticEntry& entry : statisticTable) {
        functions.push_back({entry.wrapper,
                             entry.help,
                             {statisticName(), statisticReference(), argument("Visible", 'J', restrictedHelpSpaced)}});
    }
    return functions;
}

std::string typeText(const WorksheetFunction& function, Recalculation recalculation) {
    std::string text = "B";
    for (const WorksheetArgument& each : function.arguments) {
        text += each.type;
    }
    if (recalculation == Recalculation::Always) {
        text += '!';
    }
    return text;
}

std::string argumentText(const WorksheetFunction& function) {
    std::string text;
    for (const WorksheetArgument& each : function.arguments) {
        text += text.empty() ? "" : ", ";
        text += each.name;
    }
    return text;
}

std::vector<std::string> registrationTexts(const WorksheetFunction& function, Recalculation recalculation,
                                           int helpPlaces) {
    const std::string name(function.name);
    std::vector<std::string> texts{name, typeText(function, recalculation), name, argumentText(function)};
    texts.insert(texts.end(), {"1", "QUORVA-Sim", "", "", std::string(function.help)});
    const auto withoutHelps = texts.size();
    for (const WorksheetArgument& each : function.arguments) {
        texts.push_back(each.help);
    }
    const auto all = withoutHelps + static_cast<std::size_t>(helpPlaces);
    if (texts.size() < all) {
        texts.resize(all, "   ");
        texts.back() = ".";
    }
    for (std::string& text : texts) {
        text.insert(0, 1, ' ');
    }
    return texts;
}

}  // namespace quorva
