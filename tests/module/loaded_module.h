// Loading a module file; it stays loaded for the rest of the process.
#pragma once

#include <string>

namespace quorva::testing {

/// The module's handle; null, and the system's complaint in `error`, when it cannot be loaded.
void* loadModule(const std::string& file, std::string& error);
/// Address of an export, or null.
void* moduleSymbol(void* module, const char* name);

}  // namespace quorva::testing
