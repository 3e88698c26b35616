#include "loaded_module.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace quorva::testing {

#ifdef _WIN32

void* loadModule(const std::string& file, std::string& error) {
    void* module = LoadLibraryA(file.c_str());
    error = module ? "" : "system error " + std::to_string(GetLastError());
    return module;
}

void* moduleSymbol(void* module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

#else

void* loadModule(const std::string& file, std::string& error) {
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    error = module ? "" : dlerror();
    return module;
}

void* moduleSymbol(void* module, const char* name) { return dlsym(module, name); }

#endif

}  // namespace quorva::testing
