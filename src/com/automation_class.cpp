#include "com/automation_class.h"

#include "com/com_error.h"

#include <vector>

namespace kvtdruck::com {
namespace {

/// Every argument of a vtable call is a pointer.
constexpr VARTYPE kReference = VT_BYREF | VT_I4;

/// What the type library says of one operation; given back at the end.
class OperationDescription {
  public:
    OperationDescription(ITypeInfo* info, DISPID member) : info_(info) {
        TYPEATTR* attributes = nullptr;
        check(info->GetTypeAttr(&attributes));
        const auto count = attributes->cFuncs;
        info->ReleaseTypeAttr(attributes);
        for (UINT i = 0; i < count && !description_; ++i) {
            check(info->GetFuncDesc(i, &description_));
            if (description_->memid != member)
                release();
        }
    }
    OperationDescription(const OperationDescription&) = delete;
    OperationDescription& operator=(const OperationDescription&) = delete;
    ~OperationDescription() { release(); }

    explicit operator bool() const { return description_ != nullptr; }
    const FUNCDESC& operator*() const { return *description_; }
    const FUNCDESC* operator->() const { return description_; }

  private:
    void release() {
        if (description_)
            info_->ReleaseFuncDesc(std::exchange(description_, nullptr));
    }

    ITypeInfo* info_;
    FUNCDESC* description_ = nullptr;
};

/// The interface as compiled hosts see it: every operation gives an HRESULT and takes its result's place as its
/// last parameter.
ComPtr<ITypeInfo> vtableViewOf(ITypeInfo* info) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> view;
    check(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    check(info->GetRefTypeInfo(reference, view.put()));
    return view;
}

/// The type of what a by-reference parameter refers to; an interface counts as VT_DISPATCH.
VARTYPE referredType(const ELEMDESC& parameter) {
    const auto type = parameter.tdesc.lptdesc->vt;
    return type == VT_PTR ? VARTYPE{VT_DISPATCH} : type;
}

/// How callers leave an argument out.
bool isOmitted(const VARIANT& value) {
    return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

/// The temporaries of one call, in the parameters' order; each is referred to by an argument of the vtable call.
class Temporaries {
  public:
    explicit Temporaries(std::size_t count) : values_(count), references_(count), pointers_(count) {
        for (auto& value : values_)
            VariantInit(&value);
    }
    Temporaries(const Temporaries&) = delete;
    Temporaries& operator=(const Temporaries&) = delete;
    ~Temporaries() {
        for (auto& value : values_)
            VariantClear(&value);
    }

    HRESULT set(std::size_t position, VARIANT& argument, VARTYPE type) {
        if (pointers_[position])
            return DISP_E_PARAMNOTFOUND; // given twice, so another one is missing
        auto& value = values_[position];
        if (auto result = VariantCopyInd(&value, &argument); FAILED(result))
            return result;
        if (isOmitted(value))
            return DISP_E_PARAMNOTOPTIONAL;
        if (type != VT_VARIANT)
            if (auto result = coerce(value, type); FAILED(result))
                return result;
        refer(position, type);
        return S_OK;
    }

    /// A parameter that takes the operation's result.
    void setResult(std::size_t position, VARTYPE type) {
        if (type != VT_VARIANT)
            V_VT(&values_[position]) = type;
        refer(position, type);
    }

    VARIANT& operator[](std::size_t position) { return values_[position]; }
    std::vector<VARTYPE> types() const { return std::vector<VARTYPE>(values_.size(), kReference); }
    VARIANTARG** arguments() { return pointers_.data(); }

  private:
    // An object stays as it was handed in, also one that answers by its vtable alone.
    static HRESULT coerce(VARIANT& value, VARTYPE type) {
        if (type != VT_DISPATCH)
            return VariantChangeTypeEx(&value, &value, LOCALE_USER_DEFAULT, 0, type);
        if (V_VT(&value) == VT_EMPTY) {
            V_VT(&value) = VT_DISPATCH;
            V_DISPATCH(&value) = nullptr;
        }
        return V_VT(&value) == VT_DISPATCH || V_VT(&value) == VT_UNKNOWN ? S_OK : DISP_E_TYPEMISMATCH;
    }

    void refer(std::size_t position, VARTYPE type) {
        auto& value = values_[position];
        V_VT(&references_[position]) = kReference;
        V_BYREF(&references_[position]) = type == VT_VARIANT ? static_cast<void*>(&value) : &V_I1(&value);
        pointers_[position] = &references_[position];
    }

    std::vector<VARIANT> values_;
    std::vector<VARIANTARG> references_;
    std::vector<VARIANTARG*> pointers_;
};

/// Whether what is counted is there.
bool isWellFormed(const DISPPARAMS& given) {
    return given.cNamedArgs <= given.cArgs && (given.cArgs == 0 || given.rgvarg) &&
           (given.cNamedArgs == 0 || given.rgdispidNamedArgs);
}

/// The place of an argument among `given`: positional ones stand behind the named ones, the last first.
HRESULT positionOf(const DISPPARAMS& given, UINT index, UINT expected, UINT& position) {
    position =
        index < given.cNamedArgs ? static_cast<UINT>(given.rgdispidNamedArgs[index]) : given.cArgs - 1 - index;
    return position < expected ? S_OK : DISP_E_PARAMNOTFOUND;
}

} // namespace

ComPtr<ITypeInfo> typeInfoOf(REFGUID id) {
    ComPtr<ITypeInfo> info;
    check(ownTypeLibrary()->GetTypeInfoOfGuid(id, info.put()));
    return info;
}

HRESULT invokeOperation(IDispatch* object, ITypeInfo* info, DISPID member, WORD flags, const DISPPARAMS& arguments,
                        VARIANT* result, UINT* wrongArgument) {
    if (!isWellFormed(arguments))
        return E_INVALIDARG;
    // There are no properties: who reads one must not set off an operation.
    if ((flags & DISPATCH_METHOD) == 0)
        return DISP_E_MEMBERNOTFOUND;
    const auto view = vtableViewOf(info);
    const OperationDescription operation(view.get(), member);
    if (!operation)
        return DISP_E_MEMBERNOTFOUND;

    const auto parameters = static_cast<UINT>(operation->cParams);
    const bool hasResult = parameters > 0 && (operation->lprgelemdescParam[parameters - 1].paramdesc.wParamFlags &
                                              PARAMFLAG_FRETVAL) != 0;
    const auto expected = parameters - (hasResult ? 1 : 0);
    if (arguments.cArgs != expected)
        return DISP_E_BADPARAMCOUNT;

    Temporaries temporaries(parameters);
    for (UINT i = 0; i < arguments.cArgs; ++i) {
        UINT position = 0;
        auto outcome = positionOf(arguments, i, expected, position);
        if (SUCCEEDED(outcome))
            outcome = temporaries.set(position, arguments.rgvarg[i],
                                      referredType(operation->lprgelemdescParam[position]));
        if (FAILED(outcome)) {
            if (wrongArgument)
                *wrongArgument = i;
            return outcome;
        }
    }
    if (hasResult)
        temporaries.setResult(expected, referredType(operation->lprgelemdescParam[expected]));

    auto types = temporaries.types();
    VARIANT called;
    VariantInit(&called);
    const auto outcome = DispCallFunc(object, static_cast<ULONG_PTR>(operation->oVft), CC_STDCALL, VT_ERROR,
                                      parameters, types.data(), temporaries.arguments(), &called);
    if (FAILED(outcome))
        return outcome;
    if (result && hasResult)
        return VariantCopy(result, &temporaries[expected]);
    return V_ERROR(&called);
}

} // namespace kvtdruck::com
