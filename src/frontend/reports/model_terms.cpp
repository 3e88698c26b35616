#include "frontend/reports/model_terms.h"

#include <algorithm>

#include "quorva/catalogue.h"

#include "frontend/text/number_text.h"

namespace quorva::frontend {

namespace {
const LawEntry* entryOf(int law) {
    const auto* found =
        std::find_if(lawTable.begin(), lawTable.end(), [&](const LawEntry& entry) { return entry.law == law; });
    return found == lawTable.end() ? nullptr : found;
}

std::string withoutPrefix(std::string_view wrapper) {
    for (const std::string_view prefix : {"QUORVA_SimStat", "QUORVA_SimSPC", "QUORVA_Sim"}) {
        if (wrapper.starts_with(prefix)) {
            return std::string(wrapper.substr(prefix.size()));
        }
    }
    return std::string(wrapper);
}

std::string scenarioText(const ScenarioRange& range) {
    return readableNumber(range.lower) + " to " + readableNumber(range.upper) +
           (range.inSteps ? " in steps of " + readableNumber(range.step) : "");
}

std::string distributionText(const Field& field) {
    std::string parameters;
    for (int i = 0; i < lawParameterCount(field.law); ++i) {
        parameters += parameters.empty() ? "" : ", ";
        parameters += lawParameterName(field.law, i) + " " + readableNumber(field.parameters[i]);
    }
    std::string text = lawName(field.law) + (parameters.empty() ? "" : "(" + parameters + ")");
    if (field.lowerProbability > 0 || field.upperProbability < 1) {
        text += " truncated to probabilities " + readableNumber(field.lowerProbability) + " to " +
                readableNumber(field.upperProbability);
    }
    return text;
}
}  // namespace

std::string lawName(int law) {
    if (law == empiricLaw) {
        return "Empirical";
    }
    const LawEntry* entry = entryOf(law);
    return entry ? withoutPrefix(entry->wrapper) : "";
}

int lawParameterCount(int law) {
    if (law == empiricLaw) {
        return 2;
    }
    const LawEntry* entry = entryOf(law);
    return entry ? std::min(entry->parameters, 4) : 0;
}

std::string lawParameterName(int law, int index) {
    if (law == empiricLaw) {
        return index == 0 ? "first" : "last";
    }
    const LawEntry* entry = entryOf(law);
    return entry ? std::string(entry->parameterNames[index]) : "";
}

std::string statisticName(int statistic) {
    for (const StatisticEntry& entry : statisticTable) {
        if (entry.statistic == statistic) {
            return withoutPrefix(entry.wrapper);
        }
    }
    return "";
}

std::string_view kindName(FieldKind kind) {
    switch (kind) {
        case FieldKind::Distribution:
            return "distribution";
        case FieldKind::ScenarioVariable:
            return "scenario";
        case FieldKind::Result:
            return "result";
        case FieldKind::Statistic:
            return "statistic";
    }
    return "";
}

std::string fieldDescription(const Field& field) {
    switch (field.kind) {
        case FieldKind::Distribution:
            return distributionText(field);
        case FieldKind::ScenarioVariable:
            return scenarioText(field.scenarioRange());
        case FieldKind::Result:
            return field.watched ? "marked for convergence" : "";
        case FieldKind::Statistic:
            return statisticName(field.statistic);
    }
    return "";
}

}  // namespace quorva::frontend
