// Recalculations per second and loading time of the benchmark workbooks. make_model.py writes them to the folder for
// temporary files when they are not there yet.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "workbook/recalculation/book.h"

namespace {

using quorva::workbook::Book;

std::filesystem::path model(const std::string& kind, int sheets) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("quorva_plant_" + kind + "_" + std::to_string(sheets) + ".xlsx");
    if (!std::filesystem::exists(file)) {
        const std::string command = "/usr/bin/python3 " QUORVA_SOURCE_DIR "/bench/make_model.py plant " + kind + " " +
                                    std::to_string(sheets) + " " + file.string();
        if (std::system(command.c_str()) != 0) {
            return {};
        }
    }
    return file;
}

void recalculate(benchmark::State& state) {
    const auto file = model("rand", static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the benchmark workbook cannot be made");
        return;
    }
    Book book(file);
    book.recalculate();
    for (auto _ : state) {
        book.recalculate();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(recalculate)->Arg(1)->Arg(247);

void load(benchmark::State& state) {
    const auto file = model("rand", static_cast<int>(state.range(0)));
    if (file.empty()) {
        state.SkipWithError("the benchmark workbook cannot be made");
        return;
    }
    for (auto _ : state) {
        Book book(file);
        book.recalculate();
        benchmark::DoNotOptimize(book);
    }
}
BENCHMARK(load)->Arg(1)->Arg(247)->Unit(benchmark::kMillisecond);

}  // namespace
