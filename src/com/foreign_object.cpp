#include "com/foreign_object.h"

#include "com/com_error.h"
#include "com/variants.h"

#include <dispex.h>

#include <vector>

namespace kvtdruck::com {
namespace {

constexpr WORD kRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

/// Arguments in Automation's order (the last one first), cleared at the end; `value` is what a property takes.
class Arguments {
  public:
    explicit Arguments(std::span<const Variant> arguments, const Variant* value = nullptr) {
        variants_.reserve(arguments.size() + (value ? 1 : 0)); // a getter needs no memory
        try {
            if (value)
                variants_.push_back(variantOf(*value));
            for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
                variants_.push_back(variantOf(*argument));
        } catch (...) {
            clear();
            throw;
        }
        parameters_ = {variants_.data(), nullptr, static_cast<UINT>(variants_.size()), 0};
        if (value) {
            parameters_.rgdispidNamedArgs = &propertyValue_;
            parameters_.cNamedArgs = 1;
        }
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() { clear(); }

    DISPPARAMS& parameters() { return parameters_; }

  private:
    void clear() {
        for (auto& variant : variants_)
            kvtdruck::com::clear(variant);
    }

    std::vector<VARIANT> variants_;
    DISPID propertyValue_ = DISPID_PROPERTYPUT;
    DISPPARAMS parameters_{};
};

// Classes written in a script answer the plain question with "not implemented".
HRESULT askDispatchEx(IDispatch* dispatch, BSTR name, DISPID& id) {
    const auto extended = ComPtr<IDispatch>(dispatch).as<IDispatchEx>();
    return extended ? extended->GetDispID(name, fdexNameCaseInsensitive, &id) : E_NOTIMPL;
}

} // namespace

CLSID classIdOf(StringView progId) {
    CLSID id;
    const Bstr text(progId);
    check(CLSIDFromProgID(text.get(), &id));
    return id;
}

ComPtr<IUnknown> createObject(REFCLSID id) {
    ComPtr<IUnknown> object;
    check(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                           reinterpret_cast<void**>(object.put())));
    if (!object)
        throw RuntimeError(ErrorNumber::CannotCreateObject);
    return object;
}

DISPID dispatchIdOf(IDispatch* dispatch, StringView name) {
    if (!dispatch)
        throw RuntimeError(ErrorNumber::MemberNotFound);
    const Bstr text(name);
    LPOLESTR names[] = {text.get()};
    DISPID id = DISPID_UNKNOWN;
    auto result = dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (result == E_NOTIMPL)
        result = askDispatchEx(dispatch, text.get(), id);
    if (FAILED(result))
        throw RuntimeError(ErrorNumber::MemberNotFound);
    return id;
}

void invoke(IDispatch* dispatch, DISPID member, WORD flags, DISPPARAMS& arguments, VARIANT* answer) {
    EXCEPINFO exception{};
    UINT wrongArgument = 0;
    const auto result = dispatch->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &arguments, answer,
                                         &exception, &wrongArgument);
    if (result == DISP_E_EXCEPTION)
        throw runtimeErrorOf(exception);
    check(result);
}

Variant invoke(IDispatch* dispatch, DISPID member, WORD flags, DISPPARAMS& arguments) {
    OwnedVariant answer;
    invoke(dispatch, member, flags, arguments, &answer.get());
    return valueOf(answer.get());
}

Object::MemberId ForeignObject::idOf(StringView name) {
    if (!dispatch_)
        dispatch_ = object_.as<IDispatch>();
    return dispatchIdOf(dispatch_.get(), name);
}

Variant ForeignObject::call(MemberId member, std::span<const Variant> arguments) {
    Arguments list(arguments);
    return invoke(dispatch_.get(), member, kRead, list.parameters());
}

void ForeignObject::put(MemberId member, std::span<const Variant> arguments, const Variant& value) {
    Arguments list(arguments, &value);
    invoke(dispatch_.get(), member, DISPATCH_PROPERTYPUT, list.parameters(), nullptr);
}

ObjectRef foreignObject(IUnknown* object) {
    return object ? std::make_shared<ForeignObject>(object) : nullptr;
}

VARIANT referenceTo(const ObjectRef& object) {
    VARIANT result;
    VariantInit(&result);
    V_VT(&result) = VT_DISPATCH;
    V_DISPATCH(&result) = nullptr;
    const auto* foreign = dynamic_cast<const ForeignObject*>(object.get());
    if (!foreign)
        return result;
    ComPtr<IUnknown> identity(foreign->identity());
    if (auto dispatch = identity.as<IDispatch>()) {
        V_DISPATCH(&result) = dispatch.detach();
    } else {
        V_VT(&result) = VT_UNKNOWN;
        V_UNKNOWN(&result) = identity.detach();
    }
    return result;
}

} // namespace kvtdruck::com
