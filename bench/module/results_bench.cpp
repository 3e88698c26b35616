// The summary and the matrices of a large run.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "common/matrix.h"
#include "engine/run_state.h"
#include "quorva/front_end.h"

namespace {

using namespace quorva;

constexpr int fields = 100;
constexpr int nSim = 100'000;

/// 50 distributions and 50 results.
void fillRun() {
    if (run.fields.nFields == fields) {
        return;
    }
    run.fields.nFields = fields;
    run.fields.nRes = fields / 2;
    run.fields.FieldTable = matrix<double>(fields, fieldcolumn::columns);
    run.fields.FieldNames = matrix<std::u16string>(fields, 2, u"name");
    run.sampling.nSim = nSim;
    run.sampling.SampleStore = matrix<double>(nSim, fields);
    std::mt19937_64 generator(1);
    std::normal_distribution<double> normal;
    for (int j = 1; j <= fields; ++j) {
        run.fields.FieldTable(j, fieldcolumn::kind) = j % 2 == 0 ? 3 : 1;
        for (int i = 1; i <= nSim; ++i) {
            run.sampling.SampleStore(i, j) = normal(generator);
        }
    }
}

void simEnd(benchmark::State& state) {
    fillRun();
    matrix<double> general(fields, 14), convergence(2, fields), intervals(fields, 5);
    std::vector<HostString> names(2 * fields), monitored(fields);
    int last = 0;
    for (auto _ : state) {
        Cpp_SimEnd(0.05, nSim, general.data(), names.data(), convergence.data(), monitored.data(), &last,
                   intervals.data());
        benchmark::DoNotOptimize(intervals.data());
    }
    for (auto* name : names) {
        SysFreeString(name);
    }
}

void getSimMatSorted(benchmark::State& state) {
    fillRun();
    matrix<double> table(nSim, fields);
    std::vector<HostString> names(fields);
    for (auto _ : state) {
        Cpp_GetSimMatSorted(nSim, fields, table.data(), names.data());
        benchmark::DoNotOptimize(table.data());
    }
    for (auto* name : names) {
        SysFreeString(name);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(table.size() * sizeof(double)));
}

BENCHMARK(simEnd)->Unit(benchmark::kMillisecond);
BENCHMARK(getSimMatSorted)->Unit(benchmark::kMillisecond);

}  // namespace
