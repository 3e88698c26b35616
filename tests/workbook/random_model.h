// Small random workbooks that are computed in two ways, as a whole and as compiled live parts, for comparing the
// results bit by bit.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "workbook/recalculation/book.h"

namespace quorva::workbook {

/// A number from 0 to below `limit`, taken from whatever the model is made of.
using Choice = std::function<int(int limit)>;

struct RandomModel {
    std::string lines;                ///< for Book::fromText
    std::vector<CellAddress> inputs;  ///< constants to edit
};

/// Formulas without cycles over numbers, texts, Booleans, errors and blanks, names, dates in either system, argument
/// lists up to the longest, arrays whose sizes are drawn and that may be blocked.
RandomModel randomModel(const Choice& below);

/// Gives both books the same random edit.
void editBoth(const RandomModel& model, const Choice& below, Book& live, Book& whole);

/// Recalculates the live part of one book and the whole of the other from the same random numbers. The first cell in
/// which they differ, in words; empty when there is none.
std::string recalculateBoth(unsigned seed, Book& live, Book& whole);

}  // namespace quorva::workbook
