#include <dlfcn.h>

#include <atomic>

#include "common/unicode.h"
#include "platform/platform.h"

namespace quorva {
namespace {

// Windows-1252 in the range where it differs from ISO 8859-1.
constexpr char16_t windows1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                      0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::u16string fromWindows1252(std::string_view bytes) {
    std::u16string wide;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        wide.push_back(code >= 0x80 && code < 0xA0 ? windows1252[code - 0x80] : static_cast<char16_t>(code));
    }
    return wide;
}

}  // namespace

std::uint32_t currentThreadId() {
    static std::atomic<std::uint32_t> last{0};
    thread_local const std::uint32_t own = ++last;
    return own;
}

std::u16string wideFromBytes(std::string_view bytes) {
    bool valid = true;
    std::u16string wide = utf16FromUtf8(bytes, LoneSurrogates::Replace, &valid);
    return valid ? wide : fromWindows1252(bytes);
}

void* hostProcessSymbol(const char* name) {
    void* program = dlopen(nullptr, RTLD_NOW);
    void* address = program ? dlsym(program, name) : nullptr;
    if (program) {
        dlclose(program);
    }
    return address;
}

}  // namespace quorva
