// A late-bound host: by name, in any letter case, with values, variables and references.
#include "host.h"

#include <ocidl.h>

namespace kvtdruck::test {
namespace {

using testing::IsEmpty;

class DispatchHost : public HostTest {
  protected:
    HRESULT printBy(const wchar_t* name, const std::vector<VARIANT>& arguments, bool& printed) {
        const auto ready = readyManager();
        Value result;
        const auto outcome = invoke(ready.get(), name, DISPATCH_METHOD, arguments, &result);
        printed = outcome == S_OK && result.vt == VT_BOOL && result.boolVal == VARIANT_TRUE;
        return outcome;
    }

    /// What the engine is asked when a compiled host prints.
    std::vector<std::string> callsOfACompiledHost() {
        EXPECT_TRUE(print(*readyManager().get(), L"Umsatz"));
        auto calls = engineCalls();
        forget(L"record.txt");
        return calls;
    }
};

VARIANT byReference(VARIANT& variable) {
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &variable;
    return reference;
}

VARIANT byTypedReference(VARIANT& variable) {
    VARIANT reference{};
    reference.vt = static_cast<VARTYPE>(VT_BYREF | variable.vt);
    reference.byref = &variable.lVal; // all members of the union begin here
    return reference;
}

TEST_F(DispatchHost, PrintsAsACompiledHostDoes) {
    const auto expected = callsOfACompiledHost();
    const auto all = everything();
    Value mode(0L);
    Value company(1.0);
    Value selection(all.get());
    Value folder(applicationFolder().c_str());
    Value list(L"Umsatz");
    Value chooser(false);
    Value window(100L);
    Value product(1L);
    std::vector<VARIANT*> variables{&mode, &company, &selection, &folder, &list, &chooser, &window, &product};

    std::vector<VARIANT> values;
    std::vector<VARIANT> references;
    for (auto* const variable : variables) {
        values.push_back(*variable);
        references.push_back(byReference(*variable));
    }
    bool printed = false;
    EXPECT_EQ(printBy(L"fkt_Drucken", values, printed), S_OK);
    EXPECT_TRUE(printed);
    EXPECT_EQ(engineCalls(), expected);
    forget(L"record.txt");

    EXPECT_EQ(printBy(L"FKT_DRUCKEN", references, printed), S_OK);
    EXPECT_TRUE(printed);
    EXPECT_EQ(engineCalls(), expected);
    EXPECT_EQ(mode.vt, VT_I4) << "a variable that the operation did not change keeps its type";
    EXPECT_EQ(list.vt, VT_BSTR);
    EXPECT_EQ(std::wstring(list.bstrVal), L"Umsatz");
}

TEST_F(DispatchHost, TakesWhatCanBecomeTheArgumentsType) {
    const auto expected = callsOfACompiledHost();
    const auto all = everything();
    Value mode(L"0");
    Value company(L"1");
    Value selection(all.get());
    Value folder(applicationFolder().c_str());
    Value list(L"Umsatz");
    Value chooser(0L);
    Value window(100.0);
    Value product(true);
    product.vt = VT_I2;
    product.iVal = 1;
    bool printed = false;
    EXPECT_EQ(printBy(L"fkt_Drucken",
                      {mode, company, byTypedReference(selection), byTypedReference(folder), list, chooser, window,
                       byTypedReference(product)},
                      printed),
              S_OK);
    EXPECT_TRUE(printed);
    EXPECT_EQ(engineCalls(), expected);
}

TEST_F(DispatchHost, WrongCallsAreTheCallersErrors) {
    const auto ready = readyManager();
    EXPECT_EQ(invoke(ready.get(), L"fkt_Drucke", DISPATCH_METHOD, {}), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(invoke(ready.get(), L"fkt_Drucken", DISPATCH_METHOD, {Value(1L)}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(invoke(ready.get(), L"Terminate_Preview", DISPATCH_METHOD, {Value(L"kein Fenster")}),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(invoke(ready.get(), L"Terminate_Preview", DISPATCH_METHOD, {Value(1e12)}), DISP_E_OVERFLOW);
    DISPPARAMS none{};
    EXPECT_EQ(ready->Invoke(4711, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(DispatchHost, ReadingAnOperationAsAPropertyDoesNotRunIt) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    Value result;
    for (const auto* const name : {L"LlPrint", L"fkt_Form_Unload"}) {
        EXPECT_EQ(invoke(adapter.get(), name, DISPATCH_PROPERTYGET, {}, &result), DISP_E_MEMBERNOTFOUND);
        EXPECT_EQ(invoke(adapter.get(), name, DISPATCH_PROPERTYPUT, {Value(1L)}, &result), DISP_E_MEMBERNOTFOUND);
    }
    EXPECT_THAT(callsOf("LlPrint", engineCalls()), IsEmpty());
    EXPECT_EQ(invoke(adapter.get(), L"LlPrint", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}, &result), S_OK)
        << "a script that wants the result asks for both";
    EXPECT_THAT(callsOf("LlPrint", engineCalls()), testing::SizeIs(1)) << "and the form is still there";
}

TEST_F(DispatchHost, AnOmittedArgumentIsNotOptional) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value omitted;
    omitted.vt = VT_ERROR;
    omitted.scode = DISP_E_PARAMNOTFOUND;
    for (auto argument : {static_cast<VARIANT>(omitted), byReference(omitted), byTypedReference(omitted)}) {
        EXPECT_EQ(
            invoke(adapter.get(), L"LlDefineLayout", DISPATCH_METHOD, {argument, Value(2L), Value(L"Umsatz")}),
            DISP_E_PARAMNOTOPTIONAL);
        EXPECT_EQ(invoke(adapter.get(), L"PrFehler", DISPATCH_METHOD, {argument, Value(L"LlPrint")}),
                  DISP_E_PARAMNOTOPTIONAL);
        EXPECT_EQ(invoke(adapter.get(), L"PrFehler", DISPATCH_METHOD, {Value(-1L), argument}),
                  DISP_E_PARAMNOTOPTIONAL);
    }
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

/// A result that was never initialised, as some hosts hand it in.
VARIANT garbage() {
    VARIANT variant{};
    variant.vt = VT_BSTR;
    variant.bstrVal = reinterpret_cast<BSTR>(std::intptr_t{-1});
    return variant;
}

TEST_F(DispatchHost, ResultIsInitialisedWhateverTheAnswer) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    const auto resultOf = [&](DISPID member, REFIID reserved, WORD flags, DISPPARAMS* parameters) {
        auto result = garbage();
        adapter->Invoke(member, reserved, LOCALE_USER_DEFAULT, flags, parameters, &result, nullptr, nullptr);
        return result.vt;
    };
    constexpr DISPID kFirst = 0x60030000;
    constexpr DISPID kHide = kFirst + 2;
    constexpr DISPID kLayout = kFirst + 7;
    DISPPARAMS none{};
    EXPECT_EQ(resultOf(kHide, IID_NULL, DISPATCH_METHOD, &none), VT_EMPTY) << "an operation without a result";
    EXPECT_EQ(resultOf(kLayout, IID_NULL, DISPATCH_METHOD, &none), VT_EMPTY) << "a wrong number of arguments";
    EXPECT_EQ(resultOf(kLayout, IID_NULL, DISPATCH_PROPERTYGET, &none), VT_EMPTY) << "no property";
    EXPECT_EQ(resultOf(4711, IID_NULL, DISPATCH_METHOD, &none), VT_EMPTY) << "no member";
    EXPECT_EQ(resultOf(kHide, IID_IDispatch, DISPATCH_METHOD, &none), VT_EMPTY) << "another interface";
    EXPECT_EQ(resultOf(kHide, IID_NULL, DISPATCH_METHOD, nullptr), VT_EMPTY) << "no parameters at all";
}

TEST_F(DispatchHost, CallsThatNoHostMayMakeAreRefused) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    constexpr DISPID kPrFehler = 0x60030000 + 25;
    const auto answerTo = [&](DISPPARAMS parameters, REFIID reserved = IID_NULL) {
        return adapter->Invoke(kPrFehler, reserved, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                               nullptr, nullptr);
    };
    Value code(-998L);
    Value text(L"LlPrint");
    VARIANT arguments[] = {text, code};
    DISPID names[] = {0, 1, 2};
    EXPECT_EQ(answerTo({arguments, nullptr, 2, 0}), S_OK);
    EXPECT_EQ(answerTo({arguments, nullptr, 2, 0}, IID_IDispatch), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(answerTo({nullptr, nullptr, 2, 0}), E_INVALIDARG);
    EXPECT_EQ(answerTo({arguments, nullptr, 2, 1}), E_INVALIDARG);
    EXPECT_EQ(answerTo({arguments, names, 2, 3}), E_INVALIDARG);
    std::wstring name(L"PrFehler");
    LPOLESTR asked[] = {name.data()};
    DISPID id = 0;
    EXPECT_EQ(adapter->GetIDsOfNames(IID_IDispatch, asked, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNINTERFACE);
}

/// What the system's own Invoke makes of a call, by the description of the interface.
HRESULT systemInvoke(DruckFormular* object, DISPID member, WORD flags, DISPPARAMS parameters, VARIANT* result) {
    ITypeInfo* type = nullptr;
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), S_OK);
    const Ref<ITypeInfo> owned(type);
    EXCEPINFO exception{};
    UINT wrong = 0;
    return type->Invoke(object, member, flags, &parameters, result, &exception, &wrong);
}

TEST_F(DispatchHost, AnswersAsTheSystemsOwnInvokeButTakesVariables) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    constexpr DISPID kPrFehler = 0x60030000 + 25;
    Value code(-998L);
    Value digits(L"-998");
    Value word(L"Wort");
    Value large(1e12);
    Value text(L"LlPrint");
    std::vector<std::vector<VARIANT>> calls{{},
                                            {code},
                                            {text, code},
                                            {text, code, code},
                                            {text, digits},
                                            {text, word},
                                            {text, large},
                                            {byTypedReference(text), byTypedReference(code)}};
    constexpr WORD kFlags[] = {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                               DISPATCH_PROPERTYPUT};
    for (const DISPID member : {kPrFehler, DISPID{4711}})
        for (const auto flags : kFlags)
            for (auto& arguments : calls) {
                DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
                Value expected;
                Value result;
                const auto answer = systemInvoke(adapter.get(), member, flags, parameters, &expected);
                EXPECT_EQ(adapter->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &result,
                                          nullptr, nullptr),
                          answer)
                    << member << ", " << flags << ", " << arguments.size();
                EXPECT_EQ(result.vt, expected.vt);
                EXPECT_EQ(result.lVal, expected.lVal);
            }
    VARIANT variables[] = {byReference(text), byReference(code)};
    DISPPARAMS parameters{variables, nullptr, 2, 0};
    EXPECT_EQ(systemInvoke(adapter.get(), kPrFehler, DISPATCH_METHOD, parameters, nullptr), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(adapter->Invoke(kPrFehler, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                              nullptr, nullptr),
              S_OK);
}

TEST_F(DispatchHost, ArgumentsByNameComeInAnyOrderButOnce) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    std::wstring names[] = {L"PrFehler", L"pRC", L"pText"};
    LPOLESTR asked[] = {names[0].data(), names[1].data(), names[2].data()};
    DISPID ids[3] = {};
    ASSERT_EQ(adapter->GetIDsOfNames(IID_NULL, asked, 3, LOCALE_USER_DEFAULT, ids), S_OK);
    Value code(-10L);
    Value text(L"LlPrint");
    VARIANT arguments[] = {code, text};
    DISPPARAMS parameters{arguments, &ids[1], 2, 2};
    Value result;
    EXPECT_EQ(adapter->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result, nullptr,
                              nullptr),
              S_OK);
    EXPECT_EQ(result.lVal, 0);
    EXPECT_THAT(reportedErrors(), testing::SizeIs(1));

    DISPID twice[] = {ids[1], ids[1]};
    VARIANT codes[] = {code, code};
    DISPPARAMS doubled{codes, twice, 2, 2};
    UINT wrong = 99;
    EXPECT_EQ(
        adapter->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &doubled, nullptr, nullptr, &wrong),
        DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(wrong, 1U);
}

TEST_F(DispatchHost, FindsUmlautsInAnyLetterCase) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value path((folder() / L"nichts").c_str());
    for (const auto* const name : {L"FKT_Lösche_Druckerbeschreibung", L"fkt_lösche_druckerbeschreibung"}) {
        Value result;
        EXPECT_EQ(invoke(adapter.get(), name, DISPATCH_METHOD, {path}, &result), S_OK);
        EXPECT_EQ(result.vt, VT_BOOL);
        EXPECT_EQ(result.boolVal, VARIANT_TRUE);
    }
}

std::wstring nameOf(ITypeInfo& type) {
    BSTR name = nullptr;
    EXPECT_EQ(type.GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
    std::wstring text(name);
    SysFreeString(name);
    return text;
}

TEST_F(DispatchHost, InterfacesDescribeThemselves) {
    for (const auto& known : kComponentClasses) {
        const auto object = create<IDispatch>(known.clsid, IID_IDispatch);
        UINT count = 0;
        EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1U);
        ITypeInfo* type = nullptr;
        ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), S_OK);
        const Ref<ITypeInfo> owned(type);
        EXPECT_EQ(nameOf(*type), std::wstring(L"_") + known.name);
    }
}

TEST_F(DispatchHost, ObjectsNameTheirClass) {
    for (const auto& known : kComponentClasses) {
        const auto object = create<IProvideClassInfo>(known.clsid, IID_IProvideClassInfo);
        EXPECT_EQ(object->GetClassInfo(nullptr), E_POINTER);
        ITypeInfo* type = nullptr;
        ASSERT_EQ(object->GetClassInfo(&type), S_OK);
        const Ref<ITypeInfo> owned(type);
        EXPECT_EQ(nameOf(*type), known.name);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
        EXPECT_TRUE(IsEqualGUID(attributes->guid, known.clsid));
        type->ReleaseTypeAttr(attributes);
    }
}

TEST_F(DispatchHost, ObjectsShareOneTypeLibrary) {
    const auto libraryOf = [](IDispatch& object) {
        ITypeInfo* type = nullptr;
        EXPECT_EQ(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), S_OK);
        const Ref<ITypeInfo> owned(type);
        ITypeLib* library = nullptr;
        UINT index = 0;
        EXPECT_EQ(type->GetContainingTypeLib(&library, &index), S_OK);
        return Ref<ITypeLib>(library);
    };
    ULONG references = 0;
    const auto held = libraryOf(*manager().get());
    for (int i = 0; i < 3; ++i) { // nobody but the module and this test holds it
        held->AddRef();
        references = held->Release();
        EXPECT_EQ(references, 2U);
        EXPECT_EQ(libraryOf(*manager().get()).get(), held.get());
    }
}

TEST_F(DispatchHost, TitleThatIsNoTextIsAFailingCall) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    Value null;
    null.vt = VT_NULL;
    Value array;
    array.vt = VT_ARRAY | VT_VARIANT;
    array.parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    for (auto* const title : {&null, &array}) {
        long type = 2;
        Text object(L"Umsatz");
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(adapter->LlDefineLayout(title, &type, &object, &result), S_OK);
        EXPECT_EQ(result, VARIANT_TRUE) << "what fails before the engine answers is skipped";
        Value late;
        EXPECT_EQ(
            invoke(adapter.get(), L"LlDefineLayout", DISPATCH_METHOD, {*title, Value(2L), Value(L"Umsatz")}, &late),
            S_OK);
        EXPECT_EQ(late.boolVal, VARIANT_TRUE);
    }
    EXPECT_THAT(callsOf("LlDefineLayout", engineCalls()), IsEmpty());
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(DispatchHost, NoOperationRaisesAnErrorObject) {
    const auto ready = readyManager();
    void* found = nullptr;
    ASSERT_EQ(ready->QueryInterface(IID_ISupportErrorInfo, &found), S_OK);
    const Ref<ISupportErrorInfo> support(static_cast<ISupportErrorInfo*>(found));
    EXPECT_FALSE(print(*ready.get(), L"Umsatz", 0, 4711));
    IErrorInfo* error = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &error), S_FALSE);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IStream), S_FALSE);
}

} // namespace
} // namespace kvtdruck::test
