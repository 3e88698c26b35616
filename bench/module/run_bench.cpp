// Runs with ten statistic fields: what a statistic costs that is read from running moments, and one that needs the
// order of the values.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "../../tests/module/model_sheet.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

/// A distribution, a result and `wrappers.size()` statistics of the two in turn.
ModelSheet modelWith(const std::vector<std::string>& wrappers) {
    ModelSheet model;
    model.set(0, [](auto&) { return QUORVA_EXPORT(QUORVA_SimNormal)("a_input", 10, 2, 0, 0, 0, 0, 0, 1); });
    model.set(1, [](auto& m) { return QUORVA_EXPORT(QUORVA_SimRes)("b_result", m.value(0) * 2, 0, 0, 1); });
    for (std::size_t i = 0; i < wrappers.size(); ++i) {
        auto* statistic = ModuleUnderTest::instance().function<double(const char*, XLOPER*, int)>(wrappers[i]);
        model.set(static_cast<int>(i) + 2, [=, name = "c_statistic" + std::to_string(i)](auto&) {
            XLOPER reference = ownSheetReference(static_cast<int>(i % 2));
            return statistic(name.c_str(), &reference, 1);
        });
    }
    return model;
}

void simulate(benchmark::State& state, const std::vector<std::string>& wrappers) {
    RunSettings settings;
    settings.nSim = static_cast<int>(state.range(0));
    for (auto _ : state) {
        host().reset();
        ModelSheet model = modelWith(wrappers);
        FieldCounts counts;
        beginRun(model, settings, counts);
        for (int k = 0; k < settings.nSim; ++k) {
            iterate(model);
        }
        benchmark::DoNotOptimize(model.value(2));
    }
    state.SetItemsProcessed(state.iterations() * settings.nSim);
}

void runWithoutStatistics(benchmark::State& state) { simulate(state, {}); }
void runWithTenMoments(benchmark::State& state) {
    simulate(state, {"QUORVA_SimStatMean", "QUORVA_SimStatStdevN1", "QUORVA_SimStatMinimum", "QUORVA_SimStatMaximum",
                     "QUORVA_SimStatSkewnessFisher", "QUORVA_SimStatVarianceN", "QUORVA_SimStatSum",
                     "QUORVA_SimStatVariation", "QUORVA_SimStatNbrObs", "QUORVA_SimStatAmplitude"});
}
void runWithTenMedians(benchmark::State& state) {
    simulate(state, std::vector<std::string>(10, "QUORVA_SimStatMedian"));
}

BENCHMARK(runWithoutStatistics)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(runWithTenMoments)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(runWithTenMedians)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
