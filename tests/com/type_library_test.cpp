// The type library as a browser reads it, against the table that hosts were compiled with (type_library.txt).
#include "host.h"

#include <fstream>
#include <sstream>

namespace kvtdruck::test {
namespace {

std::string utf8(const wchar_t* text) {
    return toUtf8(reinterpret_cast<const char16_t*>(text));
}

std::string inBraces(REFGUID guid) {
    wchar_t text[40];
    StringFromGUID2(guid, text, 40);
    return utf8(text);
}

std::string nameOf(ITypeInfo* type, MEMBERID member = MEMBERID_NIL) {
    BSTR name = nullptr;
    EXPECT_EQ(type->GetDocumentation(member, &name, nullptr, nullptr, nullptr), S_OK);
    auto text = utf8(name);
    SysFreeString(name);
    return text;
}

std::string scalarName(VARTYPE type) {
    switch (type) {
    case VT_I2:
        return "Integer";
    case VT_I4:
        return "Long";
    case VT_R8:
        return "Double";
    case VT_BSTR:
        return "String";
    case VT_BOOL:
        return "Boolean";
    case VT_VARIANT:
        return "Variant";
    default:
        return "type " + std::to_string(type);
    }
}

/// A class of the library itself is named; any other object is an object.
std::string pointeeName(ITypeInfo* type, const TYPEDESC& pointee) {
    if (pointee.vt == VT_DISPATCH)
        return "Object";
    if (pointee.vt != VT_PTR)
        return scalarName(pointee.vt);
    ITypeInfo* referenced = nullptr;
    EXPECT_EQ(pointee.lptdesc->vt, VT_USERDEFINED);
    EXPECT_EQ(type->GetRefTypeInfo(pointee.lptdesc->hreftype, &referenced), S_OK);
    const Ref<ITypeInfo> owned(referenced);
    const auto name = nameOf(referenced);
    return name == "IDispatch" ? "Object" : name.substr(1);
}

/// "name: Type"; an argument that does not go by reference in both directions shows it.
std::string argument(ITypeInfo* type, const ELEMDESC& element, const wchar_t* name) {
    const bool byReference = element.tdesc.vt == VT_PTR;
    const bool bothWays = element.paramdesc.wParamFlags == (PARAMFLAG_FIN | PARAMFLAG_FOUT);
    return utf8(name) + ": " +
           (byReference ? pointeeName(type, *element.tdesc.lptdesc) : "by value " + scalarName(element.tdesc.vt)) +
           (bothWays ? "" : " with flags " + std::to_string(element.paramdesc.wParamFlags));
}

std::string resultText(ITypeInfo* type, const FUNCDESC& function) {
    if (function.elemdescFunc.tdesc.vt == VT_VOID)
        return "";
    // Seen as a dispatch interface, the result is the function's own; seen as a vtable, it is the last argument.
    return " -> " + pointeeName(type, function.elemdescFunc.tdesc);
}

void appendOperation(std::string& text, ITypeInfo* type, const FUNCDESC& function) {
    std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1);
    UINT count = 0;
    EXPECT_EQ(type->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count), S_OK);
    const int slot = function.oVft / static_cast<int>(sizeof(void*)) - 7;
    text += "  " + std::to_string(slot) + " " + utf8(names[0]) + "(";
    for (int i = 0; i < function.cParams; ++i)
        text += (i == 0 ? "" : ", ") +
                argument(type, function.lprgelemdescParam[i], names.at(static_cast<std::size_t>(i) + 1));
    text += ")" + resultText(type, function) + "\n";
    for (auto* const name : names)
        SysFreeString(name);
}

void appendInterface(std::string& text, ITypeInfo* type) {
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FDUAL, 0);
    text += ", interface " + nameOf(type) + " " + inBraces(attributes->guid) + "\n";
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        ASSERT_EQ(type->GetFuncDesc(i, &function), S_OK);
        if (function->oVft >= 7 * static_cast<int>(sizeof(void*)))
            appendOperation(text, type, *function);
        type->ReleaseFuncDesc(function);
    }
    type->ReleaseTypeAttr(attributes);
}

void appendClass(std::string& text, ITypeInfo* type) {
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    text += "class " + nameOf(type) + " " + inBraces(attributes->guid);
    EXPECT_EQ(attributes->cImplTypes, 1);
    EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, 0);
    type->ReleaseTypeAttr(attributes);
    HREFTYPE reference = 0;
    ITypeInfo* implemented = nullptr;
    ASSERT_EQ(type->GetRefTypeOfImplType(0, &reference), S_OK);
    ASSERT_EQ(type->GetRefTypeInfo(reference, &implemented), S_OK);
    const Ref<ITypeInfo> owned(implemented);
    appendInterface(text, implemented);
}

/// The library in the words of type_library.txt.
std::string described(const std::wstring& path) {
    ITypeLib* loaded = nullptr;
    EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &loaded), S_OK);
    const Ref<ITypeLib> library(loaded);
    BSTR name = nullptr;
    BSTR help = nullptr;
    EXPECT_EQ(library->GetDocumentation(-1, &name, &help, nullptr, nullptr), S_OK);
    TLIBATTR* attributes = nullptr;
    EXPECT_EQ(library->GetLibAttr(&attributes), S_OK);
    std::ostringstream head;
    head << "library " << utf8(name) << " " << attributes->wMajorVerNum << "." << attributes->wMinorVerNum
         << ", locale 0x" << std::hex << attributes->lcid << ", \"" << utf8(help) << "\"\n";
    library->ReleaseTLibAttr(attributes);
    SysFreeString(name);
    SysFreeString(help);
    std::string text = head.str();
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ITypeInfo* type = nullptr;
        TYPEKIND kind{};
        EXPECT_EQ(library->GetTypeInfo(i, &type), S_OK);
        const Ref<ITypeInfo> owned(type);
        EXPECT_EQ(library->GetTypeInfoType(i, &kind), S_OK);
        if (kind == TKIND_COCLASS)
            appendClass(text, type);
    }
    return text;
}

std::string expected() {
    std::ifstream file(std::filesystem::path(setting(L"KVT_TYPE_LIBRARY_TABLE")), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(TypeLibrary, WithinTheDllIsWhatHostsWereCompiledWith) {
    EXPECT_EQ(described(dllPath()), expected());
}

TEST(TypeLibrary, AsAFileIsTheSame) {
    EXPECT_EQ(described(std::filesystem::path(dllPath()).replace_filename(L"KDVTDruck.tlb").wstring()), expected());
}

} // namespace
} // namespace kvtdruck::test
