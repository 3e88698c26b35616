// Workbook files as raw books.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "workbook/values/raw_book.h"

namespace quorva::workbook {

/// An .xlsx or .xlsm file; throws Failure.
std::unique_ptr<RawBook> readFile(const std::filesystem::path& file);
/// The same from the file's bytes; its name is for messages.
std::unique_ptr<RawBook> readPackage(const std::string& bytes, const std::string& fileName);

}  // namespace quorva::workbook
