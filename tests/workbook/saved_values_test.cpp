// Recalculates the workbooks that a spreadsheet program saved and compares with the values in the files.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

#include "common/cell_names.h"
#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

const std::filesystem::path folder = QUORVA_SOURCE_DIR "/tests/data/excel-saved";

std::string show(const CellValue& value) {
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.17g", value.number);
    switch (value.type) {
        case CellValue::Type::Blank:
            return "blank";
        case CellValue::Type::Number:
            return digits;
        case CellValue::Type::Boolean:
            return value.number != 0 ? "TRUE" : "FALSE";
        case CellValue::Type::Text:
            return '"' + value.text + '"';
        default:
            return value.text;
    }
}

bool same(const CellValue& saved, const CellValue& computed, const std::string& formula) {
    if (saved.type != computed.type) {
        return false;
    }
    const bool iterative = formula.find("IRR(") != std::string::npos || formula.find("RATE(") != std::string::npos;
    const double tolerance = iterative ? 1e-9 : 1e-14;
    return saved.type == CellValue::Type::Number
               ? std::fabs(saved.number - computed.number) <= tolerance * std::fabs(saved.number)
               : saved.number == computed.number && saved.text == computed.text;
}

/// Files of another program that answers otherwise than Excel documents: it writes Booleans as numbers, and #VALUE!
/// where the square root of a negative number is #NUM!.
bool savedByAnother(const std::string& file, const CellValue& saved, const CellValue& computed) {
    if (file == "logical.xlsx" || file == "INFORMATION.xlsx") {
        return computed.type == CellValue::Type::Boolean && saved.type == CellValue::Type::Number &&
               saved.number == computed.number;
    }
    return file == "SQRT.xlsx" && saved.text == "#VALUE!" && computed.text == "#NUM!";
}

TEST(SavedValues, AreReproducedByRecalculation) {
    int equal = 0;
    int different = 0;
    int unsupported = 0;
    int changing = 0;
    int another = 0;
    std::map<std::string, int> reasons;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (!entry.path().extension().string().starts_with(".xls")) {
            continue;
        }
        Book book(entry.path());
        book.recalculateAll();
        for (const FormulaCell& cell : book.formulas()) {
            const std::string place = entry.path().filename().string() + " " + book.sheetName(cell.cell.sheet) + "!" +
                                      cellName(cell.cell.row, cell.cell.column);
            if (cell.unsupported) {
                ++unsupported;
                ++reasons[cell.why];
            } else if (cell.isVolatile || !cell.saved) {
                ++changing;
            } else if (same(*cell.saved, cell.computed, cell.formula)) {
                ++equal;
            } else if (savedByAnother(entry.path().filename().string(), *cell.saved, cell.computed)) {
                ++another;
            } else {
                ++different;
                std::cout << place << " =" << cell.formula << ": saved " << show(*cell.saved) << ", computed "
                          << show(cell.computed) << "\n";
            }
        }
    }
    for (const auto& [why, count] : reasons) {
        std::cout << count << " cells: " << why << "\n";
    }
    std::cout << equal << " equal, " << different << " different, " << unsupported << " unsupported, " << another
              << " of another program, " << changing << " volatile or without a saved value\n";
    EXPECT_GT(equal, 17000);
    EXPECT_EQ(different, 0);
}

}  // namespace
}  // namespace quorva::workbook
