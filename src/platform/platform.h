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

/// A loaded module; the module is released with the object.
class LoadedModule {
public:
    /// Loads the file; `loaded()` tells whether that worked and `error()` why not.
    explicit LoadedModule(const std::string& file);
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule();

    bool loaded() const { return handle_ != nullptr; }
    const std::string& error() const { return error_; }
    /// Address of an export, or null.
    void* symbol(const char* name) const;
    /// Keeps the module loaded for the rest of the process.
    void keep() { keep_ = true; }

private:
    void* handle_ = nullptr;
    bool keep_ = false;
    std::string error_;
};

}  // namespace quorva
