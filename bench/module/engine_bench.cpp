// The cost of a run's steps in a host that does next to nothing: field evaluations by law, joint draws, the step
// between iterations, set-up.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "engine/correlated_draw.h"
#include "engine/latin_hypercube.h"
#include "engine/run_state.h"
#include "platform/front_end_arrays.h"
#include "quorva/automation.h"
#include "quorva/front_end.h"
#include "quorva/worksheet.h"

using namespace quorva;

namespace {

int callingRow = 0;
int callingColumn = 0;
char sheetName[] = "\x0d[Book1]Sheet1";

}  // namespace

extern "C" int Excel4v(int function, XLOPER* result, int, XLOPER**) {
    switch (function) {
        case hostfunction::caller:
            result->type = hosttype::localReference;
            result->value.localReference.count = 1;
            result->value.localReference.range = {
                static_cast<std::uint16_t>(callingRow), static_cast<std::uint16_t>(callingRow),
                static_cast<std::uint8_t>(callingColumn), static_cast<std::uint8_t>(callingColumn)};
            break;
        case hostfunction::sheetName:
            result->type = hosttype::text;
            result->value.text = sheetName;
            break;
        case hostfunction::sheetId:
            result->type = hosttype::reference;
            result->value.reference.sheetId = 7;
            break;
        default:
            if (result) {
                result->type = hosttype::number;
            }
    }
    return 0;
}

namespace {

struct Law {
    int law;
    double p[4];
};

std::vector<std::string> fieldNames(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back("f" + std::to_string(100'000 + i));
    }
    return names;
}

void evaluate(const std::vector<std::string>& names, const Law& law) {
    callingColumn = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        callingRow = static_cast<int>(i);
        benchmark::DoNotOptimize(
            QUORVA_SimDist(names[i].c_str(), law.law, law.p[0], law.p[1], law.p[2], law.p[3], 0, 0, 0, 0, 1));
    }
}

void evaluateResult() {
    callingRow = 0;
    callingColumn = 1;
    benchmark::DoNotOptimize(QUORVA_SimRes("result", 1.0, 0, 0, 1));
}

void initialise() {
    int seed = 5;
    int next = 0;
    Cpp_SimInit(0, &seed, hostTrue, &next);
}

int setUp(const std::vector<std::string>& names, int labels, double correlation) {
    std::vector<double> matrixCells(static_cast<std::size_t>(labels * labels), correlation);
    matrix<std::u16string> texts(labels, 1);
    for (int i = 0; i < labels; ++i) {
        matrixCells[static_cast<std::size_t>(i * labels + i)] = 1.0;
        const std::string& name = names[static_cast<std::size_t>(i)];
        texts(i + 1, 1) = std::u16string(name.begin(), name.end());
    }
    HostStringArray* list = toHostStringArray(texts);
    const int result = Cpp_SimInit2(toHostBool(labels > 0), labels, matrixCells.data(), &list, 0, 0, 0, nullptr,
                                    nullptr, nullptr, nullptr);
    SafeArrayDestroy(list);
    return result;
}

int begin(int nSim, int strata) {
    int counts[5];
    return Cpp_SimBegin(nSim, strata, 0, 0, 3, 0.95, 0, 1, 0.5, counts, counts + 1, counts + 2, counts + 3, counts + 4);
}

/// A running model of fields of one law and a result.
bool start(const std::vector<std::string>& names, const Law& law, int nSim, int strata, int labels = 0) {
    initialise();
    evaluate(names, law);
    evaluateResult();
    if (setUp(names, labels, 0.5) < 0) {
        return false;
    }
    evaluate(names, law);
    evaluateResult();
    return begin(nSim, strata) == 0;
}

/// One evaluation of a field while running; the third argument is the number of fields of the model.
void fieldEvaluation(benchmark::State& state, const Law& law) {
    const auto names = fieldNames(static_cast<int>(state.range(1)));
    if (!start(names, law, 1000, static_cast<int>(state.range(0)))) {
        state.SkipWithError("the run does not begin");
        return;
    }
    for (auto _ : state) {
        Cpp_SimNext();
        evaluate(names, law);
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

/// One uniform of a stream with strata, its share of the permutation included.
void stratifiedUniform(benchmark::State& state) {
    const int strata = static_cast<int>(state.range(0));
    if (!start(fieldNames(1), {20, {0, 1}}, 1000, strata)) {
        state.SkipWithError("the run does not begin");
        return;
    }
    SeedState& seed = run.sampling.seed;
    for (auto _ : state) {
        for (int k = 0; k < strata; ++k) {
            benchmark::DoNotOptimize(getLHSRandom01(0, 1, 0.0, 1.0, &seed.seed, seed.initialise, &seed.updated));
        }
    }
    state.SetItemsProcessed(state.iterations() * strata);
    state.counters["ns"] = benchmark::Counter(static_cast<double>(state.iterations()) * strata * 1e-9,
                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void secondEvaluation(benchmark::State& state) {
    const auto names = fieldNames(100);
    start(names, {15, {0, 1}}, 1000, 0);
    Cpp_SimNext();
    evaluate(names, {15, {0, 1}});
    for (auto _ : state) {
        evaluate(names, {15, {0, 1}});
    }
    state.SetItemsProcessed(state.iterations() * 100);
}

void jointDraw(benchmark::State& state) {
    const int labels = static_cast<int>(state.range(0));
    if (!start(fieldNames(labels), {20, {0, 1}}, 1000, static_cast<int>(state.range(1)), labels)) {
        state.SkipWithError("the run does not begin");
        return;
    }
    SeedState& seed = run.sampling.seed;
    for (auto _ : state) {
        Cpp_SimNext();
        benchmark::DoNotOptimize(getNormalCorr(1, &seed.seed, seed.initialise, &seed.updated));
    }
    state.SetItemsProcessed(state.iterations() * labels);
}

void stepBetweenIterations(benchmark::State& state) {
    start(fieldNames(static_cast<int>(state.range(0)) - 1), {20, {0, 1}}, 100, 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Cpp_SimNext());
    }
}

void wholeSetUp(benchmark::State& state) {
    const auto names = fieldNames(static_cast<int>(state.range(0)) - 1);
    for (auto _ : state) {
        start(names, {20, {0, 1}}, 100, 100);
    }
}

void gridClear(benchmark::State& state) {
    FieldGrid grid;
    for (auto _ : state) {
        benchmark::DoNotOptimize(grid.clear());
        grid.set(1, 1, 1);
    }
}

void perLaw(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"strata", "fields"});
    for (const int strata : {0, 1000}) {
        bench->Args({strata, 100});
    }
}

BENCHMARK_CAPTURE(fieldEvaluation, uniform, Law{20, {0, 1}})->Apply(perLaw)->Args({0, 10'000 - 1});
BENCHMARK_CAPTURE(fieldEvaluation, normal, Law{15, {5, 2}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, exponential, Law{6, {2}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, triangular, Law{26, {1, 2, 5}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, logNormal, Law{14, {0, 1}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, weibull, Law{22, {1.5, 2}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, gamma, Law{12, {2.5, 3}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, beta, Law{1, {2, 3}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, pert, Law{27, {1, 2, 5}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, student, Law{19, {5}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, poisson, Law{18, {4.5}})->Apply(perLaw);
BENCHMARK_CAPTURE(fieldEvaluation, binomial, Law{2, {20, 0.3}})->Apply(perLaw);
BENCHMARK(stratifiedUniform)->ArgName("strata")->Arg(100)->Arg(1000)->Arg(10'000)->Arg(100'000);
BENCHMARK(secondEvaluation);
BENCHMARK(jointDraw)->ArgNames({"labels", "strata"})->ArgsProduct({{2, 10, 50}, {0, 1000}});
BENCHMARK(stepBetweenIterations)->Arg(10)->Arg(1000)->Arg(10'000);
BENCHMARK(wholeSetUp)->Arg(10)->Arg(1000)->Arg(10'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(gridClear)->Unit(benchmark::kMicrosecond);

}  // namespace
