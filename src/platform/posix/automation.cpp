// Automation strings and arrays with the layout that macro front ends know from Windows.
#include "quorva/automation.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::int32_t succeeded = 0;
constexpr auto badIndex = static_cast<std::int32_t>(0x8002000B);
constexpr auto badArgument = static_cast<std::int32_t>(0x80070057);
constexpr std::size_t header = 8;  // keeps the characters aligned; the byte length fills its last four bytes
constexpr std::uint16_t stringFeature = 0x0100;

std::size_t lengthOf(const char16_t* text) {
    std::size_t length = 0;
    while (text[length] != 0) {
        ++length;
    }
    return length;
}

bool isDimension(const tagSAFEARRAY* array, unsigned dimension) {
    return array && dimension >= 1 && dimension <= array->cDims;
}

}  // namespace

extern "C" {

quorva::HostString SysAllocStringLen(const char16_t* text, unsigned length) {
    const std::size_t bytes = std::size_t{length} * sizeof(char16_t);
    if (bytes > UINT32_MAX) {
        return nullptr;
    }
    auto* block = static_cast<char*>(std::malloc(header + bytes + sizeof(char16_t)));
    if (!block) {
        return nullptr;
    }
    const auto counted = static_cast<std::uint32_t>(bytes);
    std::memcpy(block + header - sizeof counted, &counted, sizeof counted);
    auto* characters = reinterpret_cast<char16_t*>(block + header);
    if (text) {
        std::memcpy(characters, text, bytes);
    } else {
        std::memset(characters, 0, bytes);
    }
    characters[length] = 0;
    return characters;
}

quorva::HostString SysAllocString(const char16_t* text) {
    return text ? SysAllocStringLen(text, static_cast<unsigned>(lengthOf(text))) : nullptr;
}

void SysFreeString(quorva::HostString text) {
    if (text) {
        std::free(reinterpret_cast<char*>(text) - header);
    }
}

unsigned SysStringLen(quorva::HostString text) {
    std::uint32_t bytes = 0;
    if (text) {
        std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof bytes, sizeof bytes);
    }
    return bytes / static_cast<unsigned>(sizeof(char16_t));
}

tagSAFEARRAY* SafeArrayCreateVector(std::uint16_t variant, std::int32_t lowerBound, std::uint32_t count) {
    if (variant != quorva::hostStringVariant) {
        return nullptr;
    }
    auto* array = static_cast<tagSAFEARRAY*>(std::calloc(1, sizeof(tagSAFEARRAY)));
    if (!array) {
        return nullptr;
    }
    array->pvData = std::calloc(count > 0 ? count : 1, sizeof(quorva::HostString));
    if (!array->pvData) {
        std::free(array);
        return nullptr;
    }
    array->cDims = 1;
    array->fFeatures = stringFeature;
    array->cbElements = sizeof(quorva::HostString);
    array->rgsabound[0] = {count, lowerBound};
    return array;
}

unsigned SafeArrayGetDim(tagSAFEARRAY* array) { return array ? array->cDims : 0; }

std::int32_t SafeArrayGetLBound(tagSAFEARRAY* array, unsigned dimension, std::int32_t* bound) {
    if (!isDimension(array, dimension)) {
        return badIndex;
    }
    *bound = array->rgsabound[array->cDims - dimension].lLbound;
    return succeeded;
}

std::int32_t SafeArrayGetUBound(tagSAFEARRAY* array, unsigned dimension, std::int32_t* bound) {
    if (!isDimension(array, dimension)) {
        return badIndex;
    }
    const tagSAFEARRAYBOUND& extent = array->rgsabound[array->cDims - dimension];
    *bound = extent.lLbound + static_cast<std::int32_t>(extent.cElements) - 1;
    return succeeded;
}

std::int32_t SafeArrayAccessData(tagSAFEARRAY* array, void** data) {
    if (!array) {
        return badArgument;
    }
    ++array->cLocks;
    *data = array->pvData;
    return succeeded;
}

std::int32_t SafeArrayUnaccessData(tagSAFEARRAY* array) {
    if (!array || array->cLocks == 0) {
        return badArgument;
    }
    --array->cLocks;
    return succeeded;
}

std::int32_t SafeArrayDestroy(tagSAFEARRAY* array) {
    if (!array) {
        return succeeded;
    }
    auto* strings = static_cast<quorva::HostString*>(array->pvData);
    for (std::uint32_t i = 0; i < array->rgsabound[0].cElements; ++i) {
        SysFreeString(strings[i]);
    }
    std::free(array->pvData);
    std::free(array);
    return succeeded;
}
}
