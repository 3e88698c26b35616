#include <windows.h>

#include "platform/platform.h"

namespace quorva {

std::uint32_t currentThreadId() { return GetCurrentThreadId(); }

std::u16string wideFromBytes(std::string_view bytes) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    if (bytes.empty()) {
        return {};
    }
    const int length = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(CP_THREAD_ACP, 0, bytes.data(), length, nullptr, 0);
    std::u16string wide(static_cast<std::size_t>(needed), u'\0');
    MultiByteToWideChar(CP_THREAD_ACP, 0, bytes.data(), length, reinterpret_cast<wchar_t*>(wide.data()), needed);
    return wide;
}

void* hostProcessSymbol(const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name));
}

}  // namespace quorva
