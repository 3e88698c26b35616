#include "common/front_end_arrays.h"

#include <new>

namespace quorva {
namespace {

HostString newHostString(const std::u16string& text) {
    HostString made = SysAllocStringLen(text.data(), static_cast<unsigned>(text.size()));
    if (!made) {
        throw std::bad_alloc();
    }
    return made;
}

}  // namespace

std::u16string_view textOf(HostString text) {
    return text ? std::u16string_view(text, SysStringLen(text)) : std::u16string_view();
}

matrix<std::u16string> readHostStrings(const HostString* strings, int rows, int columns) {
    matrix<std::u16string> read(rows, columns);
    for (std::size_t i = 0; i < read.size(); ++i) {
        read.data()[i] = textOf(strings[i]);
    }
    return read;
}

void writeBackHostStrings(const matrix<std::u16string>& strings, HostString* target) {
    for (std::size_t i = 0; i < strings.size(); ++i) {
        const std::u16string& text = strings.data()[i];
        if (textOf(target[i]) != text) {
            HostString fresh = newHostString(text);
            SysFreeString(target[i]);
            target[i] = fresh;
        }
    }
}

matrix<std::u16string> fromHostStringArray(HostStringArray* strings, int count) {
    matrix<std::u16string> read(count, 1);
    std::int32_t lower = 0;
    std::int32_t upper = -1;
    void* data = nullptr;
    if (!strings || SafeArrayGetDim(strings) != 1 || SafeArrayGetLBound(strings, 1, &lower) < 0 ||
        SafeArrayGetUBound(strings, 1, &upper) < 0 || SafeArrayAccessData(strings, &data) < 0) {
        return read;
    }
    const auto present = std::int64_t{upper} - lower + 1;
    const auto* entries = static_cast<const HostString*>(data);
    for (int i = 0; i < count && i < present; ++i) {
        read(i + 1, 1) = textOf(entries[i]);
    }
    SafeArrayUnaccessData(strings);
    return read;
}

HostStringArray* toHostStringArray(const matrix<std::u16string>& strings) {
    HostStringArray* made = SafeArrayCreateVector(hostStringVariant, 0, static_cast<std::uint32_t>(strings.size()));
    void* data = nullptr;
    if (!made) {
        throw std::bad_alloc();
    }
    if (SafeArrayAccessData(made, &data) >= 0) {
        auto* entries = static_cast<HostString*>(data);
        for (std::size_t i = 0; i < strings.size(); ++i) {
            entries[i] = newHostString(strings.data()[i]);
        }
        SafeArrayUnaccessData(made);
    }
    return made;
}

}  // namespace quorva
