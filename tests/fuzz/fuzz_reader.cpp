// Any bytes as a workbook file: it is read, compiled and recalculated, or refused with a Failure. Bytes that begin with
// a control character 1 are the parts of a workbook (unpack_seeds.py writes them) and are packed first: changed bytes
// of an archive would mostly fail at its checksums.
#include <cstdint>
#include <string>

#include "package_maker.h"
#include "workbook/file/book_reader.h"
#include "workbook/recalculation/recalculation.h"

namespace {

std::string packed(const std::string& text) {
    quorva::workbook::Parts parts;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = std::min(text.find('\1', at + 1), text.size());
        const std::size_t line = std::min(text.find('\n', at), next);
        parts[text.substr(at + 1, line - at - 1)] =
            text.substr(std::min(line + 1, next), next - std::min(line + 1, next));
        at = next;
    }
    return quorva::workbook::zipped(parts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorva::workbook;
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (bytes.starts_with('\1')) {
        bytes = packed(bytes);
    }
    try {
        Recalculation recalculation(readPackage(bytes, "Fuzz.xlsx"));
        recalculation.context.stepLimit = 1'000'000;  // the sanitizers make every step a hundred times slower
        if (recalculation.formulas.size() < 200) {
            recalculation.computeAll();
        }
    } catch (const Failure&) {
    }
    return 0;
}
