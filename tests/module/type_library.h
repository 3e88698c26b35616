// What a module's resources say: the functions of its type library, and its version.
#pragma once

#include <string>
#include <vector>

namespace quorva::testing {

struct TypeLibraryParameter {
    std::string name;
    std::string
        type;  ///< as in the C interface: "int", "int*", "double", "HostBool", "HostString*", "HostStringArray**"
    bool in = false;
    bool out = false;
};

struct TypeLibraryFunction {
    std::string name;
    std::string entry;     ///< exported name
    std::string fileName;  ///< file that exports it
    std::string result;
    std::vector<TypeLibraryParameter> parameters;
};

/// The functions of module `module` in the type library that the file carries. Throws when it cannot be read.
std::vector<TypeLibraryFunction> readTypeLibrary(const std::string& file, const std::string& module);

/// A text of the file's version resource, such as "ProductVersion". Throws when there is none.
std::string readVersionText(const std::string& file, const std::string& key);

}  // namespace quorva::testing
