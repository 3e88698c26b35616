// Cost of one draw of every law, of the uniform generator, of quantiles and of a correlation repair.
#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "numerics/core.h"
#include "numerics/laws.h"
#include "numerics/linear_algebra.h"
#include "numerics/uniforms.h"
#include "quorva/automation.h"
#include "quorva/catalogue.h"

namespace quorva {
namespace {

std::vector<double> uniforms(int n) {
    matrix<double> column(n, 1, 0.0);
    int seed = 20240229;
    int update = 0;
    M_GenerateRandom01(column, n, 1, &seed, hostTrue, &update);
    return {column.data(), column.data() + n};
}

/// Parameters of middling size that suit every law: by law identifier where the usual ones do not.
std::array<double, 4> parametersOf(int law) {
    switch (law) {
        case 2:
            return {40, 0.3, 0, 0};
        case 3:
            return {5, 0.2, 0, 0};
        case 17:
            return {3, 1, 0, 0};
        case 24:
            return {2, 0.1, 1, 0};
        case 26:
        case 27:
            return {1, 4, 9, 0};
        case 29:
            return {1, 100, 0, 0};
        case 30:
            return {2, 3, -1, 4};
        case 31:
            return {1, 2, 5, 9};
        case 32:
        case 35:
            return {0.3, 0, 0, 0};
        default:
            return {5, 7, 2, 0};
    }
}

void draw(benchmark::State& state, int law) {
    const auto u = uniforms(4096);
    const auto p = parametersOf(law);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(InvCDFFunction(law - 1, u[i++ % u.size()], p[0], p[1], p[2], p[3]));
    }
}

/// Tables forgotten and switched on or off, and switched on again when the row is done.
class Tables {
public:
    explicit Tables(bool on) { useQuantileTables(on); }
    ~Tables() { useQuantileTables(true); }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;
};

/// A law with parameters that are the same at every call, or change a little with each.
struct Shaped {
    int law;
    double p1, p2, p3;

    double draw(double u, double change) const {
        return InvCDFFunction(law - 1, u, p1 * (1 + change), p2 * (1 + change), p3, 0);
    }
};

void constantParameters(benchmark::State& state, const Shaped& law) {
    const Tables tables(state.range(0) != 0);
    const auto u = uniforms(4096);
    for (const double each : u) {
        law.draw(each, 0);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(law.draw(u[i++ % u.size()], 0));
    }
}

void changingParameters(benchmark::State& state, const Shaped& law) {
    const Tables tables(state.range(0) != 0);
    const auto u = uniforms(4096);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(law.draw(u[i % u.size()], static_cast<double>(i % 1'000'003) * 1e-9));
        ++i;
    }
}

/// What a field costs in its first draws, the table that it earns included.
void firstDraws(benchmark::State& state, const Shaped& law) {
    constexpr int draws = 2000;
    const Tables tables(true);
    const auto u = uniforms(draws);
    for (auto _ : state) {
        state.PauseTiming();
        useQuantileTables(state.range(0) != 0);
        state.ResumeTiming();
        for (const double each : u) {
            benchmark::DoNotOptimize(law.draw(each, 0));
        }
    }
    state.SetItemsProcessed(state.iterations() * draws);
}

void tableRows(const std::string& name, const Shaped& law) {
    using Row = void (*)(benchmark::State&, const Shaped&);
    const std::pair<const char*, Row> rows[] = {{"draw with constant parameters/", constantParameters},
                                                {"draw with parameters that change at every call/", changingParameters},
                                                {"first 2,000 draws/", firstDraws}};
    for (const auto& [title, row] : rows) {
        benchmark::RegisterBenchmark((title + name).c_str(),
                                     [row = row, law](benchmark::State& state) { row(state, law); })
            ->ArgName("tables")
            ->Arg(1)
            ->Arg(0);
    }
}

const bool tablesRegistered = [] {
    tableRows("normal", {15, 100, 15, 0});
    tableRows("gamma", {12, 2.5, 40, 0});
    tableRows("beta", {1, 2, 5, 0});
    tableRows("student", {19, 7, 0, 0});
    tableRows("weibull", {22, 2, 113, 0});
    tableRows("triangular", {26, 60, 100, 140});
    tableRows("poisson", {18, 4, 0, 0});
    return true;
}();

const bool drawsRegistered = [] {
    for (const LawEntry& entry : lawTable) {
        if (entry.parameters <= 4) {
            const int law = entry.law;
            benchmark::RegisterBenchmark(("Draw/" + std::string(entry.wrapper)).c_str(),
                                         [law](benchmark::State& state) { draw(state, law); });
        }
    }
    return true;
}();

void uniform(benchmark::State& state) {
    int seed = 1;
    int update = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(GenerateRandom01(&seed, hostTrue, &update));
        seed = update;
    }
}
BENCHMARK(uniform)->Name("GenerateRandom01");

void normalCdf(benchmark::State& state) {
    double x = -4;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CDFNormalStd(x));
        x = x > 4 ? -4 : x + 0.001;
    }
}
BENCHMARK(normalCdf)->Name("CDFNormalStd");

void weightedQuantile(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const auto values = uniforms(n);
    const matrix<double> table(n, 1, values.data());
    const matrix<double> weights(n, 1, 1.0);
    const std::vector<short> flags(values.size(), 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(M_QuantileMW(&table, n, 1, flags.data(), &weights, 0.95));
    }
}
BENCHMARK(weightedQuantile)->Name("M_QuantileMW")->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void nearestCorrelation(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const auto u = uniforms(n * n);
    matrix<double> given(n, n, 1.0);
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j < i; ++j) {
            given(i, j) = given(j, i) = 2 * u[static_cast<std::size_t>(i * n + j - n - 1)] - 1;
        }
    }
    for (auto _ : state) {
        matrix<double> repaired = given;
        benchmark::DoNotOptimize(M_CorrMatFromSymMat(&repaired, n));
    }
}
BENCHMARK(nearestCorrelation)->Name("M_CorrMatFromSymMat")->Arg(50)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorva
