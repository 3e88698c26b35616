#include "frontend/reports/settings_text.h"

#include "frontend/text/number_text.h"

namespace quorva::frontend {

std::vector<SettingText> settingTexts(const RunResults& results) {
    const RunSettings& settings = results.settings;
    const auto number = [](double value) { return exactNumber(value); };
    std::vector<SettingText> texts{
        {"Workbook", results.workbook},
        {"Iterations planned", number(settings.iterations)},
        {"Iterations done", number(results.iterations)},
        {"Seed", number(settings.seed)},
        {"Strata (0: plain random sampling)", number(settings.effectiveStrata())},
        {"Tail of the central interval", number(settings.tail)},
        {"Sensitivity", settings.sensitivity == SensitivityMeasure::Rank ? "rank correlation" : "linear correlation"},
    };
    if (const auto& tornado = settings.tornado) {
        const bool band = tornado->spread == TornadoSpread::Band;
        texts.push_back({"Tornado points", number(tornado->points)});
        texts.push_back({"Tornado spread", band ? "band" : "interval"});
        if (band) {
            texts.push_back({"Tornado width", number(tornado->width)});
        }
        texts.push_back({"Tornado base", tornado->base == TornadoBase::Default ? "default" : "median"});
    }
    if (const auto& convergence = settings.convergence) {
        texts.push_back({"Convergence criterion", results.convergence ? results.convergence->criterion : ""});
        texts.push_back({"Convergence tolerance, percent", number(convergence->tolerancePercent)});
        texts.push_back({"Convergence confidence", number(convergence->confidence)});
        texts.push_back({"Convergence check every", number(convergence->checkEvery)});
    }
    if (!settings.capability.empty()) {
        texts.push_back({"Capability confidence", number(settings.capabilityConfidence)});
    }
    return texts;
}

std::string samplingText(const RunResults& results) {
    const RunSettings& settings = results.settings;
    std::string text = std::to_string(results.iterations) + " iterations";
    text += results.iterations < settings.iterations ? " of " + std::to_string(settings.iterations) : "";
    text += settings.effectiveStrata() > 0
                ? ", Latin hypercube with " + std::to_string(settings.effectiveStrata()) + " strata"
                : ", plain random sampling";
    return text + ", seed " + std::to_string(settings.seed);
}

std::string convergenceText(const Convergence& convergence) {
    return "Criterion " + convergence.criterion +
           (convergence.converged ? ", converged at iteration " + std::to_string(convergence.at) : ", not converged");
}

}  // namespace quorva::frontend
