#include "workbook/workings.h"
namespace quorva::workbook {
std::unique_ptr<RawBook> readFile(const std::filesystem::path&) {
    throw Failure(Failure::Kind::Unreadable, "Workbook files cannot be read yet.");
}
}  // namespace quorva::workbook
