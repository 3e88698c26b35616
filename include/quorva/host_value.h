// The host's value record and the call-back of the Excel 4 C interface, with the layouts of 64-bit Excel.
#pragma once

#include <cstdint>

namespace quorva {

/// Type words of a host value.
namespace hosttype {
constexpr std::uint16_t number = 1;
constexpr std::uint16_t text = 2;
constexpr std::uint16_t boolean = 4;
constexpr std::uint16_t reference = 8;
constexpr std::uint16_t error = 16;
constexpr std::uint16_t array = 64;
constexpr std::uint16_t missing = 128;
constexpr std::uint16_t nil = 256;
constexpr std::uint16_t localReference = 1024;
constexpr std::uint16_t integer = 2048;
}  // namespace hosttype

/// Error values that a host value of type `error` carries.
namespace hosterror {
constexpr std::uint16_t null = 0;
constexpr std::uint16_t div0 = 7;
constexpr std::uint16_t value = 15;
constexpr std::uint16_t ref = 23;
constexpr std::uint16_t name = 29;
constexpr std::uint16_t num = 36;
constexpr std::uint16_t na = 42;
}  // namespace hosterror

/// Numbers of the host functions that the module asks for.
namespace hostfunction {
constexpr int caller = 89;
constexpr int registerFunction = 149;
constexpr int unregisterFunction = 201;
constexpr int internationalFlag = 8192;
constexpr int free = 16384;
constexpr int coerce = 16386;
constexpr int sheetId = 16388;
constexpr int sheetName = 16389;
constexpr int getName = 16393;
}  // namespace hostfunction

/// A block of cells; rows and columns count from 0, both ends included.
struct HostRange {
    std::uint16_t firstRow;
    std::uint16_t lastRow;
    std::uint8_t firstColumn;
    std::uint8_t lastColumn;
};

/// The blocks of a multi-area reference; `ranges` has `count` elements.
struct HostRangeList {
    std::uint16_t count;
    HostRange ranges[1];
};

/// The Excel 4 value record: 16 bytes of value, then the type word.
struct XLOPER {
    union {
        double number;
        char* text;  ///< counted byte string: length byte, then the characters
        std::uint16_t boolean;
        std::uint16_t error;
        std::int16_t integer;
        struct {
            std::uint16_t count;
            HostRange range;
        } localReference;
        struct {
            HostRangeList* list;
            std::uint64_t sheetId;
        } reference;
        struct {
            XLOPER* cells;  ///< row by row
            std::uint16_t rows;
            std::uint16_t columns;
        } array;
    } value;
    std::uint16_t type;
};
static_assert(sizeof(XLOPER) == 24);

}  // namespace quorva

/// The host's entry for every request. `result` may be null. Returns 0 on success.
extern "C" int Excel4v(int function, quorva::XLOPER* result, int count, quorva::XLOPER** arguments);
