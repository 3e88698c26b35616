// Any bytes as a workbook file: it is read, compiled and recalculated, or refused with a Failure.
#include <cstdint>
#include <string>

#include "workbook/workings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorva::workbook;
    try {
        Workings workings(readPackage(std::string(reinterpret_cast<const char*>(data), size), "Fuzz.xlsx"));
        workings.around.stepLimit = 1'000'000;  // the sanitizers make every step a hundred times slower
        if (workings.formulas.size() < 200) {
            workings.computeAll();
        }
    } catch (const Failure&) {
    }
    return 0;
}
