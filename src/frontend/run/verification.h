// Recomputed values against the values that the file carries.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "workbook/recalculation/book.h"

namespace quorva::frontend {

struct VerificationCounts {
    int formulas = 0;
    int equal = 0;
    int different = 0;
    int unsupported = 0;
    int isVolatile = 0;  ///< depend on a volatile or model function and cannot be compared
    int unsaved = 0;     ///< nothing to compare with
};

struct Difference {
    std::string address;  ///< with the sheet
    std::string formula;
    std::string saved;
    std::string computed;  ///< of an unsupported cell: what is not supported
    bool unsupported = false;
};

struct Verification {
    std::vector<std::pair<std::string, VerificationCounts>> sheets;  ///< in workbook order, those with formulas
    VerificationCounts total;
    std::vector<Difference> differences;
};

/// Numbers are equal to 15 significant digits (relative 1e-14; 1e-9 where the formula solves by iteration); texts,
/// Booleans and errors exactly.
bool equalAsSaved(const workbook::CellValue& saved, const workbook::CellValue& computed, std::string_view formula);

/// Call after Book::recalculateAll.
Verification verifyBook(const workbook::Book& book);

}  // namespace quorva::frontend
