// A late-bound host: by name, in any letter case, with values, variables and references.
#include "host.h"

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

TEST_F(DispatchHost, ReportsDescribeThemselves) {
    for (const auto& known : kComponentClasses) {
        const auto object = create<IDispatch>(known.clsid, IID_IDispatch);
        UINT count = 0;
        EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1U);
        ITypeInfo* type = nullptr;
        ASSERT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type), S_OK);
        const Ref<ITypeInfo> owned(type);
        BSTR name = nullptr;
        ASSERT_EQ(type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
        EXPECT_EQ(std::wstring(name), std::wstring(L"_") + known.name);
        SysFreeString(name);
    }
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
