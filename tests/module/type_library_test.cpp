// The type library says what the C interface says: functions, parameter names, their order and types. Both sources are
// read as text; on Windows the library in the built module is read as well.
#include "type_library.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>

namespace {

using namespace quorva::testing;

std::string readSource(const std::string& name) {
    std::ifstream file(QUORVA_SOURCE_DIR "/" + name);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(text.empty()) << name;
    return std::regex_replace(text, std::regex("//[^\n]*"), "");
}

std::string squeezed(const std::string& text) {
    return std::regex_replace(std::regex_replace(text, std::regex("\\s+"), " "), std::regex("^ | $"), "");
}

template <class Visit>
void forEachMatch(const std::string& text, const char* pattern, Visit visit) {
    const std::regex expression(pattern);
    for (auto match = std::sregex_iterator(text.begin(), text.end(), expression); match != std::sregex_iterator();
         ++match) {
        visit(*match);
    }
}

/// The functions for a front end as the C header declares them.
std::vector<TypeLibraryFunction> declaredFunctions() {
    std::vector<TypeLibraryFunction> functions;
    forEachMatch(readSource("include/quorva/front_end.h"), R"((\w+) (Cpp_\w+)\(([^)]*)\);)", [&](const auto& match) {
        TypeLibraryFunction function{match[2], match[2], "", match[1], {}};
        const std::string list = squeezed(match[3]);
        forEachMatch(list, R"((?:quorva::)?(\w+\**) (\w+),?)", [&](const auto& parameter) {
            function.parameters.push_back({parameter[2], parameter[1]});
        });
        functions.push_back(function);
    });
    return functions;
}

std::string typeInC(const std::string& type, const std::string& pointer) {
    static const std::map<std::string, std::string> types{
        {"void", "void"},       {"long", "int"},
        {"double", "double"},   {"VARIANT_BOOL", "HostBool"},
        {"BSTR", "HostString"}, {"SAFEARRAY(BSTR)", "HostStringArray*"}};
    return types.at(type) + pointer;
}

/// The functions as the type library's source declares them.
std::vector<TypeLibraryFunction> libraryFunctions() {
    std::vector<TypeLibraryFunction> functions;
    forEachMatch(
        readSource("src/module/QUORVAMC4R.idl"),
        R"re(\[entry\("(\w+)"\)\]\s+(\w+) __stdcall (\w+)\(((?:[^()]|\(BSTR\))*)\);)re", [&](const auto& match) {
            TypeLibraryFunction function{match[3], match[1], "", typeInC(match[2], ""), {}};
            const std::string list = squeezed(match[4]);
            forEachMatch(list, R"(\[([a-z, ]+)\] (\w+(?:\(BSTR\))?) (\**)(\w+),?)", [&](const auto& parameter) {
                const std::string direction = parameter[1];
                function.parameters.push_back({parameter[4], typeInC(parameter[2], parameter[3]),
                                               direction.starts_with("in"), direction.ends_with("out")});
            });
            functions.push_back(function);
        });
    return functions;
}

void expectSame(const std::vector<TypeLibraryFunction>& actual, const std::vector<TypeLibraryFunction>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(actual[i].name, expected[i].name);
        EXPECT_EQ(actual[i].entry, expected[i].name);
        EXPECT_EQ(actual[i].result, expected[i].result);
        ASSERT_EQ(actual[i].parameters.size(), expected[i].parameters.size());
        for (std::size_t k = 0; k < expected[i].parameters.size(); ++k) {
            EXPECT_EQ(actual[i].parameters[k].name, expected[i].parameters[k].name);
            EXPECT_EQ(actual[i].parameters[k].type, expected[i].parameters[k].type) << actual[i].parameters[k].name;
        }
    }
}

TEST(TypeLibrary, SourceDeclaresTheFrontEndsFunctionsAsTheHeaderDoes) {
    const auto declared = declaredFunctions();
    EXPECT_EQ(declared.size(), 21u);
    EXPECT_EQ(declared.at(4).name, "Cpp_SimBegin");
    EXPECT_EQ(declared.at(4).parameters.size(), 14u);
    expectSame(libraryFunctions(), declared);
}

// i input, o output, mio in and out, mo output.
TEST(TypeLibrary, DirectionsFollowTheParametersPrefixes) {
    for (const auto& function : libraryFunctions()) {
        for (const auto& parameter : function.parameters) {
            SCOPED_TRACE(function.name + " " + parameter.name);
            const bool pointer = parameter.type.ends_with('*');
            EXPECT_TRUE(parameter.in || parameter.out);
            EXPECT_TRUE(pointer || !parameter.out);
            if (parameter.name.starts_with("mio")) {
                EXPECT_TRUE(parameter.in && parameter.out);
            } else if (parameter.name.starts_with("mo") || (pointer && parameter.name.starts_with("o"))) {
                EXPECT_TRUE(parameter.out);
            }
        }
    }
}

// The line on entry chooses which cell of an error is told.
TEST(TypeLibrary, TheLineOfAnErrorGoesBothWays) {
    for (const auto& function : libraryFunctions()) {
        for (const auto& parameter : function.parameters) {
            if (parameter.name == "oEline") {
                EXPECT_TRUE(parameter.out);
                EXPECT_EQ(parameter.in, function.name == "Cpp_SimError") << function.name;
            }
        }
    }
}

TEST(TypeLibrary, OfTheBuiltModuleDeclaresThemToo) {
#ifdef _WIN32
    const auto read = readTypeLibrary(QUORVA_MODULE_FILE, "_SI");
    expectSame(read, declaredFunctions());
    const auto source = libraryFunctions();
    ASSERT_EQ(read.size(), source.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].fileName, "QUORVAMC4R.xll");
        for (std::size_t k = 0; k < read[i].parameters.size(); ++k) {
            EXPECT_EQ(read[i].parameters[k].in, source[i].parameters[k].in) << read[i].parameters[k].name;
            EXPECT_EQ(read[i].parameters[k].out, source[i].parameters[k].out) << read[i].parameters[k].name;
        }
    }
#else
    GTEST_SKIP() << "only the Windows module carries a type library";
#endif
}

TEST(VersionResource, OfTheBuiltModuleNamesProductAndVersion) {
#ifdef _WIN32
    EXPECT_EQ(readVersionText(QUORVA_MODULE_FILE, "ProductName"), "QUORVA-Sim");
    EXPECT_EQ(readVersionText(QUORVA_MODULE_FILE, "ProductVersion"), QUORVA_VERSION);
    EXPECT_EQ(readVersionText(QUORVA_MODULE_FILE, "OriginalFilename"), "QUORVAMC4R.xll");
#else
    GTEST_SKIP() << "only the Windows module carries a version resource";
#endif
}

}  // namespace
