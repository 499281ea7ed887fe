#include "com/com_error.h"

#include "com/variants.h"

#include <oleauto.h>
#include <olectl.h>

#include <memory>

namespace kvtdruck::com {
namespace {

struct Mapping {
    HRESULT result;
    ErrorNumber number;
};

constexpr Mapping kMappings[] = {
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {E_OUTOFMEMORY, ErrorNumber::OutOfMemory},
    {DISP_E_BADINDEX, ErrorNumber::SubscriptOutOfRange},
    {DISP_E_DIVBYZERO, ErrorNumber::DivisionByZero},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {DISP_E_UNKNOWNNAME, ErrorNumber::MemberNotFound},
    {DISP_E_MEMBERNOTFOUND, ErrorNumber::MemberNotFound},
    {REGDB_E_CLASSNOTREG, ErrorNumber::CannotCreateObject},
    {CO_E_CLASSSTRING, ErrorNumber::CannotCreateObject},
    {CLASS_E_NOTLICENSED, ErrorNumber::CannotCreateObject},
    {CLASS_E_CLASSNOTAVAILABLE, ErrorNumber::CannotCreateObject},
};

// The system's text in the user's language; nothing where it knows none.
String systemText(HRESULT result) {
    wchar_t* text = nullptr;
    const auto length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, LocalFree);
    auto view = StringView(reinterpret_cast<const char16_t*>(text), length);
    while (!view.empty() && (view.back() == u'\r' || view.back() == u'\n'))
        view.remove_suffix(1);
    return String(view);
}

} // namespace

RuntimeError runtimeErrorOf(HRESULT result) {
    for (const auto& mapping : kMappings)
        if (mapping.result == result)
            return RuntimeError(mapping.number);
    // Codes that carry a run-time error's number.
    if (HRESULT_FACILITY(result) == FACILITY_CONTROL)
        return {HRESULT_CODE(result), String(describe(HRESULT_CODE(result)))};
    auto text = systemText(result);
    return {result, text.empty() ? String(describe(result)) : std::move(text)};
}

RuntimeError runtimeErrorOf(EXCEPINFO& exception) {
    if (exception.pfnDeferredFillIn)
        exception.pfnDeferredFillIn(&exception);
    const Bstr source(exception.bstrSource);
    const Bstr description(exception.bstrDescription);
    const Bstr help(exception.bstrHelpFile);
    auto standard = exception.wCode != 0
                        ? RuntimeError(exception.wCode, String(describe(exception.wCode)))
                        : runtimeErrorOf(exception.scode != 0 ? exception.scode : DISP_E_EXCEPTION);
    if (description.text().empty())
        return standard;
    return {standard.number(), String(description.text())};
}

void check(HRESULT result) {
    if (FAILED(result))
        throw runtimeErrorOf(result);
}

} // namespace kvtdruck::com
