// Which field lives in which cell: the sheets of a model and one grid of field numbers per sheet. Rows and columns are
// the host's, from 0; a slot is the place of a sheet in the model's list, from 1, and 0 in a model of one sheet.
#pragma once

#include <cstdint>
#include <string>

#include "engine/run_state.h"

namespace quorva {

/// The slot of a sheet; 0 when it is not listed.
int findSheetSlot(std::uint32_t sheetId);

}  // namespace quorva

// Exported. Failures are recorded as errors of the run.
extern "C" {

/// Registration pass: claims the cell for the field counted last. In a workbook model lists the sheet when it is new,
/// and sets *slot; a slot that cannot be had leaves *slot as it is.
void checkfieldentry(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName);

/// Sets *slot to the slot of a sheet that is listed.
void getSheetId(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName);

/// The number of the field in a cell; 0 when there is none. A slot that does not exist counts as the first.
std::uint32_t getFieldInfo(int column, int row, int slot);

/// Sets the number of the field in a cell; nothing for a slot that a workbook model does not have.
void setFieldInfo(int column, int row, int slot, std::uint32_t value);
}
