// The built module, loaded once per test program.
#pragma once

#include <stdexcept>
#include <string>

#include "loaded_module.h"
#include "scripted_host.h"

namespace quorva::testing {

class ModuleUnderTest {
public:
    /// The module; loading it happens on first use.
    static const ModuleUnderTest& instance() {
        static ModuleUnderTest module;
        return module;
    }

    bool exports(const std::string& name) const { return moduleSymbol(module_, name.c_str()) != nullptr; }

    /// An export by its name and type, e.g. function<int(int)>("name"). Throws when the module lacks it.
    template <class Function>
    Function* function(const std::string& name) const {
        void* address = moduleSymbol(module_, name.c_str());
        if (!address) {
            throw std::runtime_error("the module does not export " + name);
        }
        return reinterpret_cast<Function*>(address);
    }

private:
    ModuleUnderTest() {
        std::string error;
        module_ = loadModule(QUORVA_MODULE_FILE, error);
        if (!module_) {
            throw std::runtime_error("cannot load " QUORVA_MODULE_FILE ": " + error);
        }
    }

    void* module_ = nullptr;
};

}  // namespace quorva::testing

/// The module's export of a declared function, with its declared type: QUORVA_EXPORT(Cpp_SimBegin)(...).
#define QUORVA_EXPORT(name) (::quorva::testing::ModuleUnderTest::instance().function<decltype(::name)>(#name))
