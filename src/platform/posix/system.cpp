#include <dlfcn.h>

#include <atomic>

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

/// Length of a sequence by its first byte, 0 for a byte that starts none.
std::size_t sequenceLength(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

bool isUnicodeScalar(char32_t code, std::size_t length) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= smallest[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// Appends the text's code units; false when it is not valid UTF-8.
bool decodeUtf8(std::string_view bytes, std::u16string& wide) {
    for (std::size_t i = 0; i < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = sequenceLength(first);
        if (length == 0 || i + length > bytes.size()) {
            return false;
        }
        char32_t code = length == 1 ? first : first & (0xFFu >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(bytes[i + k]);
            if ((next & 0xC0) != 0x80) {
                return false;
            }
            code = (code << 6) | (next & 0x3Fu);
        }
        if (!isUnicodeScalar(code, length)) {
            return false;
        }
        if (code < 0x10000) {
            wide.push_back(static_cast<char16_t>(code));
        } else {
            wide.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
            wide.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
        }
        i += length;
    }
    return true;
}

}  // namespace

std::uint32_t currentThreadId() {
    static std::atomic<std::uint32_t> last{0};
    thread_local const std::uint32_t own = ++last;
    return own;
}

std::u16string wideFromBytes(std::string_view bytes) {
    std::u16string wide;
    return decodeUtf8(bytes, wide) ? wide : fromWindows1252(bytes);
}

void* hostProcessSymbol(const char* name) {
    void* program = dlopen(nullptr, RTLD_NOW);
    void* address = program ? dlsym(program, name) : nullptr;
    if (program) {
        dlclose(program);
    }
    return address;
}

LoadedModule::LoadedModule(const std::string& file) : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_) {
        error_ = dlerror();
    }
}

LoadedModule::~LoadedModule() {
    if (handle_ && !keep_) {
        dlclose(handle_);
    }
}

void* LoadedModule::symbol(const char* name) const { return handle_ ? dlsym(handle_, name) : nullptr; }

}  // namespace quorva
