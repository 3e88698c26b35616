// Automation strings and arrays as a macro front end hands them over. On Windows these are the system's own functions;
// elsewhere the module provides and exports them with the same layout: a string is a pointer to 16-bit code units with
// its length in bytes in the four bytes before, and ends in a zero that the length does not count.
#pragma once

#include <cstdint>

namespace quorva {
/// A 16-bit host boolean: 0 false, -1 true. A plain 1 does not count as true.
using HostBool = std::int16_t;
constexpr HostBool hostTrue = -1;
constexpr HostBool hostFalse = 0;
constexpr bool isTrue(HostBool flag) { return flag == hostTrue; }
constexpr HostBool toHostBool(bool value) { return value ? hostTrue : hostFalse; }
/// An automation string (BSTR); null is the empty string.
using HostString = char16_t*;
constexpr std::uint16_t hostStringVariant = 8;  ///< element type of an array of strings (VT_BSTR)
}  // namespace quorva

extern "C" {

struct tagSAFEARRAYBOUND {
    std::uint32_t cElements;
    std::int32_t lLbound;
};

struct tagSAFEARRAY {
    std::uint16_t cDims;
    std::uint16_t fFeatures;
    std::uint32_t cbElements;
    std::uint32_t cLocks;
    void* pvData;
    tagSAFEARRAYBOUND rgsabound[1];
};

quorva::HostString SysAllocString(const char16_t* text);
quorva::HostString SysAllocStringLen(const char16_t* text, unsigned length);
void SysFreeString(quorva::HostString text);
unsigned SysStringLen(quorva::HostString text);

tagSAFEARRAY* SafeArrayCreateVector(std::uint16_t variant, std::int32_t lowerBound, std::uint32_t count);
unsigned SafeArrayGetDim(tagSAFEARRAY* array);
std::int32_t SafeArrayGetLBound(tagSAFEARRAY* array, unsigned dimension, std::int32_t* bound);
std::int32_t SafeArrayGetUBound(tagSAFEARRAY* array, unsigned dimension, std::int32_t* bound);
std::int32_t SafeArrayAccessData(tagSAFEARRAY* array, void** data);
std::int32_t SafeArrayUnaccessData(tagSAFEARRAY* array);
std::int32_t SafeArrayDestroy(tagSAFEARRAY* array);
}

namespace quorva {
/// A one-dimensional array of automation strings (labels in, error sheets out).
using HostStringArray = tagSAFEARRAY;
}  // namespace quorva
