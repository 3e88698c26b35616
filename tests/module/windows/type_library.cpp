#include "type_library.h"

#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <stdexcept>

namespace quorva::testing {
namespace {

void check(HRESULT code, const char* what) {
    if (FAILED(code)) {
        throw std::runtime_error(std::string(what) + " failed with " + std::to_string(code));
    }
}

/// Releases an interface with its scope.
template <class Interface>
struct Owned {
    Interface* pointer = nullptr;
    Owned() = default;
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() {
        if (pointer) {
            pointer->Release();
        }
    }
    Interface* operator->() const { return pointer; }
};

/// The text of a string of the system's, which is freed. Names are plain ASCII.
std::string take(BSTR text) {
    std::string result;
    for (UINT i = 0; i < SysStringLen(text); ++i) {
        result += static_cast<char>(text[i]);
    }
    SysFreeString(text);
    return result;
}

std::string nameOf(const TYPEDESC& type) {
    switch (type.vt) {
        case VT_VOID:
            return "void";
        case VT_I4:
        case VT_INT:
            return "int";
        case VT_R8:
            return "double";
        case VT_BOOL:
            return "HostBool";
        case VT_BSTR:
            return "HostString";
        case VT_PTR:
            return nameOf(*type.lptdesc) + "*";
        case VT_SAFEARRAY:
            return type.lptdesc->vt == VT_BSTR ? "HostStringArray*" : "array of " + nameOf(*type.lptdesc);
        default:
            return "type " + std::to_string(type.vt);
    }
}

TypeLibraryFunction describe(ITypeInfo& info, const FUNCDESC& function) {
    TypeLibraryFunction result;
    result.result = nameOf(function.elemdescFunc.tdesc);

    std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1);
    UINT count = 0;
    check(info.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count), "GetNames");
    result.name = take(names[0]);
    for (UINT i = 1; i < count; ++i) {
        const ELEMDESC& element = function.lprgelemdescParam[i - 1];
        result.parameters.push_back({take(names[i]), nameOf(element.tdesc),
                                     (element.paramdesc.wParamFlags & PARAMFLAG_FIN) != 0,
                                     (element.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0});
    }

    BSTR file = nullptr;
    BSTR entry = nullptr;
    WORD ordinal = 0;
    check(info.GetDllEntry(function.memid, function.invkind, &file, &entry, &ordinal), "GetDllEntry");
    result.fileName = take(file);
    result.entry = take(entry);
    return result;
}

std::vector<TypeLibraryFunction> functionsOf(ITypeInfo& info) {
    TYPEATTR* attributes = nullptr;
    check(info.GetTypeAttr(&attributes), "GetTypeAttr");
    const UINT count = attributes->cFuncs;
    const TYPEKIND kind = attributes->typekind;
    info.ReleaseTypeAttr(attributes);
    if (kind != TKIND_MODULE) {
        throw std::runtime_error("not a module");
    }
    std::vector<TypeLibraryFunction> functions;
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        check(info.GetFuncDesc(i, &function), "GetFuncDesc");
        functions.push_back(describe(info, *function));
        info.ReleaseFuncDesc(function);
    }
    return functions;
}

}  // namespace

std::vector<TypeLibraryFunction> readTypeLibrary(const std::string& file, const std::string& module) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetFullPathNameW(std::wstring(file.begin(), file.end()).c_str(), MAX_PATH, path.data(), nullptr));
    Owned<ITypeLib> library;
    check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library.pointer), "LoadTypeLibEx");
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        BSTR name = nullptr;
        check(library->GetDocumentation(static_cast<INT>(i), &name, nullptr, nullptr, nullptr), "GetDocumentation");
        if (take(name) == module) {
            Owned<ITypeInfo> info;
            check(library->GetTypeInfo(i, &info.pointer), "GetTypeInfo");
            return functionsOf(*info.pointer);
        }
    }
    throw std::runtime_error("no module " + module);
}

std::string readVersionText(const std::string& file, const std::string& key) {
    DWORD ignored = 0;
    std::string data(GetFileVersionInfoSizeA(file.c_str(), &ignored), '\0');
    void* text = nullptr;
    UINT length = 0;
    // American English in Unicode, as the resource is declared.
    const std::string path = "\\StringFileInfo\\040904B0\\" + key;
    if (data.empty() || !GetFileVersionInfoA(file.c_str(), 0, static_cast<DWORD>(data.size()), data.data()) ||
        !VerQueryValueA(data.data(), path.c_str(), &text, &length)) {
        throw std::runtime_error("no version text " + key);
    }
    return static_cast<const char*>(text);
}

}  // namespace quorva::testing
