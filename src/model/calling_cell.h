// The cell whose formula is being calculated.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "host/host_call.h"

namespace quorva {

/// Asks the host for the calling cell and its sheet, and gives the host's values back.
class CallingCell {
public:
    CallingCell();
    ~CallingCell();
    CallingCell(const CallingCell&) = delete;
    CallingCell& operator=(const CallingCell&) = delete;

    /// Whether a cell called at all: a macro that evaluates a model function has none.
    bool known() const { return reference_.type == hosttype::localReference; }
    int row() const { return reference_.value.localReference.range.firstRow; }
    int column() const { return reference_.value.localReference.range.firstColumn; }
    std::uint32_t sheetId() const { return sheetId_; }
    /// The sheet's name as wide text. Only names and errors need it, so it is converted when asked for.
    std::u16string sheetName() const { return wideFromHostText(sheetName_.data(), hostTrue); }

private:
    void askForSheet();

    XLOPER reference_;
    std::uint32_t sheetId_ = 0;
    std::array<char, longestHostText + 1> sheetName_;  ///< counted; set in the constructor
};

}  // namespace quorva
