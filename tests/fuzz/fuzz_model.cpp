// Any bytes as a small model: what is computed in compiled live parts has the bits of a recalculation of the whole.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "random_model.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorva::workbook;
    const Choice below = [&](int limit) {
        int chosen = 0;
        for (int left = limit - 1; left > 0 && size > 0; left /= 256) {
            chosen = chosen * 256 + *data++;
            --size;
        }
        return chosen % limit;
    };
    const RandomModel model = randomModel(below);
    Book live = Book::fromText(model.lines);
    Book whole = Book::fromText(model.lines);
    std::string difference;
    try {
        for (unsigned edit = 0; edit < 3 && difference.empty(); ++edit) {
            difference = recalculateBoth(edit, live, whole);
            editBoth(model, below, live, whole);
        }
    } catch (const Failure& failure) {
        // The live part needs something that cannot be computed: the whole must say so of a cell.
        whole.recalculateAll();
        const auto formulas = whole.formulas();
        if (std::none_of(formulas.begin(), formulas.end(), [](const FormulaCell& cell) { return cell.unsupported; })) {
            difference = failure.what();
        }
    }
    if (!difference.empty()) {
        std::fprintf(stderr, "%s\n%s", difference.c_str(), model.lines.c_str());
        std::abort();
    }
    return 0;
}
