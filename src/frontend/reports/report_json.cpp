#include "frontend/reports/report_json.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "common/cell_names.h"
#include "frontend/reports/model_terms.h"
#include "frontend/text/cell_address.h"

namespace quorva::frontend {

namespace {
using Json = nlohmann::ordered_json;

Json number(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json rows(const LabelledMatrix& matrix) {
    Json table = Json::array();
    for (std::size_t i = 0; i < matrix.names.size(); ++i) {
        Json row = Json::array();
        for (std::size_t j = 0; j < matrix.names.size(); ++j) {
            row.push_back(number(matrix.at(i, j)));
        }
        table.push_back(std::move(row));
    }
    return table;
}

Json labelled(const std::optional<LabelledMatrix>& matrix) {
    return matrix ? Json{{"names", matrix->names}, {"matrix", rows(*matrix)}} : Json(nullptr);
}

Json parametersJson(const Field& field) {
    Json parameters = Json::object();
    if (field.kind == FieldKind::Distribution) {
        for (int i = 0; i < lawParameterCount(field.law); ++i) {
            parameters[lawParameterName(field.law, i)] = number(field.parameters[i]);
        }
    } else if (field.kind == FieldKind::ScenarioVariable) {
        constexpr const char* names[] = {"lower", "upper", "type", "step"};
        for (int i = 0; i < 4; ++i) {
            parameters[names[i]] = number(field.parameters[i]);
        }
    }
    return parameters;
}

Json summaryJson(const std::vector<Summary>& summaries) {
    Json list = Json::array();
    for (const Summary& summary : summaries) {
        Json percentiles = Json::object();
        for (std::size_t i = 0; i < reportedPercentiles.size(); ++i) {
            percentiles[std::to_string(reportedPercentiles[i])] = number(summary.percentiles[i]);
        }
        list.push_back({{"name", summary.name},
                        {"kind", kindName(summary.kind)},
                        {"count", summary.count},
                        {"errors", summary.errors},
                        {"mean", number(summary.mean)},
                        {"standard_error", number(summary.standardError)},
                        {"stdev", number(summary.stdev)},
                        {"variance", number(summary.variance)},
                        {"skewness", number(summary.skewness)},
                        {"kurtosis", number(summary.kurtosis)},
                        {"min", number(summary.minimum)},
                        {"max", number(summary.maximum)},
                        {"percentiles", std::move(percentiles)}});
    }
    return list;
}

Json intervalsJson(const std::vector<Interval>& intervals) {
    Json list = Json::array();
    for (const Interval& interval : intervals) {
        list.push_back({{"name", interval.name},
                        {"lower", number(interval.lower)},
                        {"median", number(interval.median)},
                        {"upper", number(interval.upper)},
                        {"min", number(interval.minimum)},
                        {"max", number(interval.maximum)}});
    }
    return list;
}

Json sensitivityJson(const std::vector<Sensitivity>& sensitivities) {
    Json list = Json::array();
    for (const Sensitivity& sensitivity : sensitivities) {
        Json inputs = Json::array();
        for (const SensitivityInput& input : sensitivity.inputs) {
            inputs.push_back({{"name", input.name},
                              {"correlation", number(input.correlation)},
                              {"contribution", number(input.contribution)}});
        }
        list.push_back({{"result", sensitivity.result}, {"inputs", std::move(inputs)}});
    }
    return list;
}

Json tornadoJson(const std::vector<Tornado>& tornados) {
    Json list = Json::array();
    for (const Tornado& tornado : tornados) {
        Json inputs = Json::array();
        for (const TornadoInput& input : tornado.inputs) {
            inputs.push_back({{"name", input.name},
                              {"low", number(input.low)},
                              {"high", number(input.high)},
                              {"swing", number(input.swing)},
                              {"values", numbersJson(input.values)}});
        }
        list.push_back({{"result", tornado.result},
                        {"base", number(tornado.base)},
                        {"points", tornado.points},
                        {"inputs", std::move(inputs)}});
    }
    return list;
}

Json convergenceJson(const std::optional<Convergence>& convergence) {
    if (!convergence) {
        return nullptr;
    }
    Json checks = Json::array();
    for (const ConvergenceCheck& check : convergence->checks) {
        Json bounds = Json::array();
        for (const ConvergenceBound& bound : check.bounds) {
            bounds.push_back({{"name", bound.name},
                              {"lower", number(bound.lower)},
                              {"upper", number(bound.upper)},
                              {"movement", number(bound.movement)}});
        }
        checks.push_back({{"iteration", check.iteration}, {"bounds", std::move(bounds)}});
    }
    return {{"criterion", convergence->criterion},
            {"converged", convergence->converged},
            {"at", convergence->converged ? Json(convergence->at) : Json(nullptr)},
            {"watched", convergence->watched},
            {"checks", std::move(checks)}};
}

Json capabilityJson(const std::vector<Capability>& capabilities) {
    Json list = Json::array();
    for (const Capability& capability : capabilities) {
        Json indices = Json::object();
        for (std::size_t i = 0; i < capabilityNames.size(); ++i) {
            indices[capabilityNames[i].key] = number(capability.indices[i]);
        }
        list.push_back({{"name", capability.limits.name},
                        {"lsl", number(capability.limits.lower)},
                        {"usl", number(capability.limits.upper)},
                        {"target", number(capability.limits.target)},
                        {"indices", std::move(indices)}});
    }
    return list;
}

Json requirementsJson(const std::vector<RequirementOutcome>& requirements) {
    Json list = Json::array();
    for (const RequirementOutcome& requirement : requirements) {
        list.push_back({{"expression", requirement.expression},
                        {"value", number(requirement.value)},
                        {"limit", number(requirement.limit)},
                        {"passed", requirement.passed}});
    }
    return list;
}
}  // namespace

Json numbersJson(const std::vector<double>& values) {
    Json list = Json::array();
    for (const double value : values) {
        list.push_back(number(value));
    }
    return list;
}

Json fieldsJson(const std::vector<Field>& fields) {
    Json list = Json::array();
    for (const Field& field : fields) {
        const bool distribution = field.kind == FieldKind::Distribution;
        Json entry{{"number", field.number},
                   {"name", field.name},
                   {"sheet", field.sheet},
                   {"cell", cellName(field.row, field.column)},
                   {"kind", kindName(field.kind)},
                   {"law", distribution ? Json(lawName(field.law)) : Json(nullptr)},
                   {"parameters", parametersJson(field)},
                   {"default", number(field.defaultValue)}};
        if (distribution) {
            entry["truncation"] = {{"lower", number(field.lowerProbability)},
                                   {"upper", number(field.upperProbability)}};
        } else if (field.kind == FieldKind::Statistic) {
            entry["statistic"] = statisticName(field.statistic);
        }
        list.push_back(std::move(entry));
    }
    return list;
}

Json runJson(const RunResults& results) {
    const Correlations& correlations = results.correlations;
    return {{"workbook", results.workbook},
            {"planned", results.settings.iterations},
            {"iterations", results.iterations},
            {"seed", results.settings.seed},
            {"sampling", {{"strata", results.settings.effectiveStrata()}}},
            {"fields", fieldsJson(results.fields)},
            {"summary", summaryJson(results.summary)},
            {"intervals", intervalsJson(results.intervals)},
            {"correlations",
             {{"names", correlations.names},
              {"rank", rows(correlations.rank)},
              {"linear", rows(correlations.linear)},
              {"requested", labelled(correlations.requested)},
              {"repaired", labelled(correlations.repaired)}}},
            {"sensitivity", sensitivityJson(results.sensitivity)},
            {"tornado", tornadoJson(results.tornado)},
            {"convergence", convergenceJson(results.convergence)},
            {"capability", capabilityJson(results.capability)},
            {"requirements", requirementsJson(results.requirements)},
            {"notes", results.notes},
            {"warnings", results.warnings}};
}

std::string jsonText(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n"; }

}  // namespace quorva::frontend
