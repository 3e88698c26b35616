// The built module, loaded once per test program.
#pragma once

#include <stdexcept>
#include <string>

#include "platform/platform.h"
#include "scripted_host.h"

namespace quorva::testing {

class ModuleUnderTest {
public:
    /// The module; loading it happens on first use.
    static const ModuleUnderTest& instance() {
        static ModuleUnderTest module;
        return module;
    }

    bool exports(const std::string& name) const { return module_.symbol(name.c_str()) != nullptr; }

    /// An export by its name and type, e.g. function<int(int)>("name"). Throws when the module lacks it.
    template <class Function>
    Function* function(const std::string& name) const {
        void* address = module_.symbol(name.c_str());
        if (!address) {
            throw std::runtime_error("the module does not export " + name);
        }
        return reinterpret_cast<Function*>(address);
    }

private:
    ModuleUnderTest() : module_(QUORVA_MODULE_FILE) {
        if (!module_.loaded()) {
            throw std::runtime_error("cannot load " QUORVA_MODULE_FILE ": " + module_.error());
        }
        module_.keep();
    }

    LoadedModule module_;
};

}  // namespace quorva::testing

/// The module's export of a declared function, with its declared type: QUORVA_EXPORT(Cpp_SimBegin)(...).
#define QUORVA_EXPORT(name) (::quorva::testing::ModuleUnderTest::instance().function<decltype(::name)>(#name))
