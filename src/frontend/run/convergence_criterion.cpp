#include "frontend/run/convergence_criterion.h"

#include "frontend/text/number_text.h"

namespace quorva::frontend {

namespace {
constexpr std::string_view percentilePrefix = "percentile=";
}

bool readCriterion(std::string_view text, ConvergenceSettings& settings) {
    if (text == "mean" || text == "stdev") {
        settings.criterion = text == "mean" ? ConvergenceCriterion::Mean : ConvergenceCriterion::StandardDeviation;
        return true;
    }
    const auto percentile =
        text.starts_with(percentilePrefix) ? parseNumber(text.substr(percentilePrefix.size())) : std::nullopt;
    if (!percentile || !(*percentile > 0 && *percentile < 100)) {
        return false;
    }
    settings.criterion = ConvergenceCriterion::Percentile;
    settings.percentile = *percentile;
    return true;
}

std::string criterionText(const ConvergenceSettings& settings) {
    switch (settings.criterion) {
        case ConvergenceCriterion::Mean:
            return "mean";
        case ConvergenceCriterion::StandardDeviation:
            return "stdev";
        case ConvergenceCriterion::Percentile:
            return std::string(percentilePrefix) + exactNumber(settings.percentile);
    }
    return {};
}

}  // namespace quorva::frontend
