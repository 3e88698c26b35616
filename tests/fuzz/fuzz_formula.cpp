// Any text as a formula: it is parsed and evaluated in a small book, or it is an unsupported cell.
#include <cstdint>
#include <string>

#include "workbook/recalculation/book.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorva::workbook;
    std::string formula(reinterpret_cast<const char*>(data), size);
    for (char& c : formula) {
        if (c == '\n' || c == '\r' || c == '\0') {
            c = ' ';
        }
    }
    try {
        Book book = Book::fromText(
            "A1: 1\nA2: 2.5\nA3: \"text\"\nB1: TRUE\nB2: #N/A\nB3: 43861\n"
            "name Total: Sheet1!$A$1:$B$3\nSheet2!A1: 7\nD5: =" +
            formula + "\n");
        book.setStepLimit(1'000'000);  // the sanitizers make every step a hundred times slower
        book.recalculateAll();
    } catch (const Failure&) {
    }
    return 0;
}
