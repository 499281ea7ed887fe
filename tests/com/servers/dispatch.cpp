#include "servers/dispatch.h"

#include "ado_connection.h"
#include "values/overloaded.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <utility>

namespace kvtdruck::test {

std::atomic<long> liveObjects = 0;

namespace {

String textOf(BSTR text) {
    return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

[[noreturn]] void fail(HRESULT result) {
    throw RuntimeError(result, u"Automationsfehler");
}

HRESULT failureOf(const RuntimeError& error, EXCEPINFO* exception) {
    if (exception == nullptr)
        return DISP_E_EXCEPTION;
    *exception = {};
    if (error.number() > 0 && error.number() <= 0xffff)
        exception->wCode = static_cast<WORD>(error.number());
    else
        exception->scode = static_cast<SCODE>(error.number());
    exception->bstrDescription = toBstr(error.description());
    exception->bstrSource = toBstr(u"KVTDruck-Testserver");
    return DISP_E_EXCEPTION;
}

RuntimeError errorOf(EXCEPINFO& exception) {
    if (exception.pfnDeferredFillIn != nullptr)
        exception.pfnDeferredFillIn(&exception);
    const long number = exception.wCode != 0 ? exception.wCode : exception.scode;
    RuntimeError error(number, textOf(exception.bstrDescription));
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return error;
}

/// An object of someone else's.
class ForeignObject final : public Object {
  public:
    explicit ForeignObject(IDispatch* dispatch) : dispatch_(dispatch) { dispatch_->AddRef(); }
    ~ForeignObject() override { dispatch_->Release(); }

    IDispatch* dispatch() const { return dispatch_; }

    MemberId idOf(StringView name) override {
        std::wstring member(reinterpret_cast<const wchar_t*>(name.data()), name.size());
        LPOLESTR members[] = {member.data()};
        DISPID id = DISPID_UNKNOWN;
        if (SUCCEEDED(dispatch_->GetIDsOfNames(IID_NULL, members, 1, LOCALE_USER_DEFAULT, &id)))
            return id;
        if (name == u"ConnectionString")
            return kAdoConnectionString;
        throw RuntimeError(ErrorNumber::MemberNotFound);
    }

    Variant call(MemberId member, std::span<const Variant> arguments) override {
        return member == kAdoConnectionString ? adoConnectionString()
                                              : invoke(member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
    }

    void put(MemberId, std::span<const Variant>, const Variant&) override {
        throw RuntimeError(ErrorNumber::ActionNotSupported);
    }

  private:
    static constexpr MemberId kAdoConnectionString = -1000;

    Variant adoConnectionString() {
        AdoConnection* connection = nullptr;
        if (FAILED(dispatch_->QueryInterface(kAdoConnection, reinterpret_cast<void**>(&connection))))
            throw RuntimeError(ErrorNumber::MemberNotFound);
        BSTR text = nullptr;
        const auto result = connection->get_ConnectionString(&text);
        connection->Release();
        if (FAILED(result))
            fail(result);
        Variant value{textOf(text)};
        SysFreeString(text);
        return value;
    }

    Variant invoke(MemberId member, WORD flags, std::span<const Variant> arguments) {
        std::vector<VARIANT> values;
        std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(values), toVariant);
        DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
        VARIANT result{};
        EXCEPINFO exception{};
        const auto outcome = dispatch_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &result,
                                               &exception, nullptr);
        for (auto& value : values)
            VariantClear(&value);
        if (outcome == DISP_E_EXCEPTION)
            throw errorOf(exception);
        if (FAILED(outcome))
            fail(outcome);
        Variant value = fromVariant(result);
        VariantClear(&result);
        return value;
    }

    IDispatch* dispatch_;
};

/// Known to this library alone: an object that answers to it is one of its own.
constexpr IID kExposedObject = {0x6b1f8a52, 0x0c8e, 0x4f0b, {0x9c, 0x5c, 0x5f, 0x3e, 0x52, 0xb0, 0xd1, 0x20}};

class Exposed final : public Dispatch {
  public:
    explicit Exposed(ObjectRef object) : object_(std::move(object)) {}

    const ObjectRef& object() const { return object_; }

  protected:
    DISPID idOf(StringView name) override {
        try {
            return object_->idOf(name);
        } catch (const RuntimeError&) {
            return DISPID_UNKNOWN;
        }
    }

    Variant invoke(DISPID member, WORD flags, std::span<VARIANT* const> arguments) override {
        std::vector<Variant> values;
        std::transform(arguments.begin(), arguments.end(), std::back_inserter(values),
                       [](const VARIANT* argument) { return fromVariant(*argument); });
        if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) == 0)
            return object_->call(member, values);
        const Variant value = values.back();
        values.pop_back();
        object_->put(member, values, value);
        return {};
    }

    void* interfaceOf(REFIID iid) override {
        return IsEqualIID(iid, kExposedObject) ? this : Dispatch::interfaceOf(iid);
    }

  private:
    ObjectRef object_;
};

Variant scalar(const VARIANT& variant) {
    switch (V_VT(&variant)) {
    case VT_EMPTY:
        return {};
    case VT_NULL:
        return Null{};
    case VT_BOOL:
        return V_BOOL(&variant) != VARIANT_FALSE;
    case VT_UI1:
        return static_cast<std::uint8_t>(V_UI1(&variant));
    case VT_I2:
        return static_cast<std::int16_t>(V_I2(&variant));
    case VT_I4:
        return static_cast<std::int32_t>(V_I4(&variant));
    case VT_R4:
        return V_R4(&variant);
    case VT_R8:
        return V_R8(&variant);
    case VT_CY:
        return Currency{V_CY(&variant).int64};
    case VT_DATE:
        return Date{V_DATE(&variant)};
    case VT_DECIMAL: {
        const auto& number = V_DECIMAL(&variant);
        return Decimal{number.Lo64, static_cast<std::uint32_t>(number.Hi32), number.scale, number.sign != 0};
    }
    case VT_BSTR:
        return textOf(V_BSTR(&variant));
    case VT_ERROR:
        return ErrorValue{V_ERROR(&variant)};
    case VT_DISPATCH:
        return V_DISPATCH(&variant) == nullptr ? ObjectRef() : foreignObject(V_DISPATCH(&variant));
    default:
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
}

IDispatch* dispatchOf(const ObjectRef& object) {
    if (!object)
        return nullptr;
    if (const auto* foreign = dynamic_cast<const ForeignObject*>(object.get())) {
        foreign->dispatch()->AddRef();
        return foreign->dispatch();
    }
    return exposed(object);
}

} // namespace

BSTR toBstr(StringView text) {
    return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

Variant fromVariant(const VARIANT& variant) {
    if (V_VT(&variant) == (VT_BYREF | VT_VARIANT))
        return fromVariant(*V_VARIANTREF(&variant));
    if ((V_VT(&variant) & VT_BYREF) == 0)
        return scalar(variant);
    VARIANT copy{};
    if (const auto result = VariantCopyInd(&copy, const_cast<VARIANT*>(&variant)); FAILED(result))
        fail(result);
    Variant value = scalar(copy);
    VariantClear(&copy);
    return value;
}

VARIANT toVariant(const Variant& value) {
    VARIANT variant{};
    const auto set = [&](VARTYPE type, auto& place, auto content) {
        place = content;
        V_VT(&variant) = type;
    };
    std::visit(
        Overloaded{[](Empty) {}, [&](Null) { V_VT(&variant) = VT_NULL; },
                   [&](bool truth) { set(VT_BOOL, V_BOOL(&variant), truth ? VARIANT_TRUE : VARIANT_FALSE); },
                   [&](std::uint8_t number) { set(VT_UI1, V_UI1(&variant), number); },
                   [&](std::int16_t number) { set(VT_I2, V_I2(&variant), number); },
                   [&](std::int32_t number) { set(VT_I4, V_I4(&variant), number); },
                   [&](float number) { set(VT_R4, V_R4(&variant), number); },
                   [&](double number) { set(VT_R8, V_R8(&variant), number); },
                   [&](Currency amount) { set(VT_CY, V_CY(&variant).int64, amount.tenThousandths); },
                   [&](Date date) { set(VT_DATE, V_DATE(&variant), date.days); },
                   [&](ErrorValue error) { set(VT_ERROR, V_ERROR(&variant), error.code); },
                   [&](const String& text) { set(VT_BSTR, V_BSTR(&variant), toBstr(text)); },
                   [&](const ObjectRef& object) { set(VT_DISPATCH, V_DISPATCH(&variant), dispatchOf(object)); },
                   [&](const Decimal& number) {
                       DECIMAL decimal{};
                       decimal.Lo64 = number.low;
                       decimal.Hi32 = number.high;
                       decimal.scale = number.scale;
                       decimal.sign = number.negative ? DECIMAL_NEG : 0;
                       V_DECIMAL(&variant) = decimal;
                       V_VT(&variant) = VT_DECIMAL;
                   }},
        value.value());
    return variant;
}

ObjectRef foreignObject(IDispatch* dispatch) {
    IDispatch* own = nullptr;
    if (FAILED(dispatch->QueryInterface(kExposedObject, reinterpret_cast<void**>(&own))))
        return std::make_shared<ForeignObject>(dispatch);
    auto object = static_cast<Exposed*>(own)->object();
    own->Release();
    return object;
}

IDispatch* exposed(ObjectRef object) {
    return new Exposed(std::move(object));
}

HRESULT Dispatch::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT Dispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    std::fill_n(ids, count, DISPID_UNKNOWN);
    if (count != 1)
        return DISP_E_UNKNOWNNAME;
    ids[0] = idOf(reinterpret_cast<const char16_t*>(names[0]));
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT Dispatch::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                         EXCEPINFO* exception, UINT*) {
    std::vector<VARIANT*> arguments;
    for (UINT i = parameters->cArgs; i > 0; --i)
        arguments.push_back(&parameters->rgvarg[i - 1]);
    try {
        const Variant value = invoke(member, flags, arguments);
        if (result != nullptr)
            *result = toVariant(value);
        return S_OK;
    } catch (const RuntimeError& error) {
        return failureOf(error, exception);
    }
}

} // namespace kvtdruck::test
