// What the module needs from the operating system besides automation strings (quorva/automation.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorva {

/// Identifier of the calling thread.
std::uint32_t currentThreadId();

/// Byte text in the calling thread's code page as 16-bit code units. Windows: the thread's ANSI code page; elsewhere
/// UTF-8, where a text that is not valid UTF-8 is read as Windows-1252.
std::u16string wideFromBytes(std::string_view bytes);

/// Address of an export of the host process's main program, or null.
void* hostProcessSymbol(const char* name);

}  // namespace quorva
