// Workbooks written as lines of text, for tests.
#pragma once

#include <memory>
#include <string_view>

#include "workbook/values/raw_book.h"

namespace quorva::workbook {

/// The lines as a raw book; text_book.cpp says how they are written. Throws Failure.
std::unique_ptr<RawBook> readText(std::string_view lines);

}  // namespace quorva::workbook
