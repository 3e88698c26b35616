#include "model/calling_cell.h"

#include <algorithm>

namespace quorva {
namespace {

XLOPER emptyValue() {
    XLOPER value;
    value.type = hosttype::nil;
    return value;
}

}  // namespace

CallingCell::CallingCell() : reference_(emptyValue()) {
    sheetName_[0] = 0;
    callHost(hostfunction::caller, &reference_);
    if (known()) {
        askForSheet();
    }
}

CallingCell::~CallingCell() { callHost(hostfunction::free, static_cast<XLOPER*>(nullptr), &reference_); }

void CallingCell::askForSheet() {
    XLOPER name = emptyValue();
    callHost(hostfunction::sheetName, &name, &reference_);
    if (name.type == hosttype::text && name.value.text) {
        // Not memcpy: for a length of up to 256 bytes the compiler writes a string instruction, which takes longer than
        // the rest of this function.
        std::copy_n(name.value.text, static_cast<unsigned char>(*name.value.text) + std::size_t{1}, sheetName_.begin());
    }
    XLOPER sheet = emptyValue();
    callHost(hostfunction::sheetId, &sheet, &name);
    if (sheet.type == hosttype::reference) {
        sheetId_ = static_cast<std::uint32_t>(sheet.value.reference.sheetId);
    }
    callHost(hostfunction::free, static_cast<XLOPER*>(nullptr), &name);
    callHost(hostfunction::free, static_cast<XLOPER*>(nullptr), &sheet);
}

}  // namespace quorva
