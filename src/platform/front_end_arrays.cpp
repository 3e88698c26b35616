#include "platform/front_end_arrays.h"

#include <memory>
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

/// The entries of a host string array, which stays locked as long as this lives, whatever is thrown meanwhile.
class LockedEntries {
public:
    explicit LockedEntries(HostStringArray* strings)
        : strings_(strings), locked_(SafeArrayAccessData(strings, &entries_) >= 0) {}
    LockedEntries(const LockedEntries&) = delete;
    LockedEntries& operator=(const LockedEntries&) = delete;
    ~LockedEntries() {
        if (locked_) {
            SafeArrayUnaccessData(strings_);
        }
    }
    /// The first entry; null when the array cannot be locked.
    HostString* get() const { return locked_ ? static_cast<HostString*>(entries_) : nullptr; }

private:
    HostStringArray* strings_;
    void* entries_ = nullptr;
    bool locked_;
};

struct DestroyArray {
    void operator()(HostStringArray* strings) const { SafeArrayDestroy(strings); }
};

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
    if (!strings || SafeArrayGetDim(strings) != 1 || SafeArrayGetLBound(strings, 1, &lower) < 0 ||
        SafeArrayGetUBound(strings, 1, &upper) < 0) {
        return read;
    }
    const LockedEntries entries(strings);
    const auto present = entries.get() ? std::int64_t{upper} - lower + 1 : 0;
    for (int i = 0; i < count && i < present; ++i) {
        read(i + 1, 1) = textOf(entries.get()[i]);
    }
    return read;
}

HostStringArray* toHostStringArray(const matrix<std::u16string>& strings) {
    std::unique_ptr<HostStringArray, DestroyArray> made(
        SafeArrayCreateVector(hostStringVariant, 0, static_cast<std::uint32_t>(strings.size())));
    if (!made) {
        throw std::bad_alloc();
    }
    const LockedEntries entries(made.get());
    for (std::size_t i = 0; entries.get() && i < strings.size(); ++i) {
        entries.get()[i] = newHostString(strings.data()[i]);
    }
    return made.release();
}

}  // namespace quorva
