#include "com/host_libraries.h"

#include "com/com_error.h"
#include "com/fallback_reporter.h"
#include "com/foreign_object.h"
#include "com/variants.h"
#include "dataaccess/members.h"

namespace kvtdruck::com {
namespace {

struct KnownClass {
    StringView name;
    CLSID id;
};

const KnownClass kKnownClasses[] = {
    {u"clsZugFirmaAllg", {0x84879AB3, 0xF326, 0x40A4, {0x85, 0x38, 0xE2, 0x2D, 0xDD, 0xF3, 0xFC, 0x3D}}},
    {u"clsZugKosten", {0x46320A65, 0x1819, 0x47D5, {0xA7, 0xF9, 0xCB, 0x7D, 0x88, 0xD4, 0x5A, 0x0F}}},
    {u"clsZugMaterial", {0x8AE3343B, 0x5336, 0x4A1D, {0x9D, 0xA0, 0x46, 0x98, 0xCF, 0x6A, 0x3D, 0xC3}}},
};

const CLSID kFehlerClass = {0xD26DE823, 0x97C9, 0x11D1, {0x8B, 0x58, 0x00, 0xA0, 0xC9, 0x4C, 0xBE, 0xB3}};

CLSID dataAccessClass(StringView className) {
    for (const auto& known : kKnownClasses)
        if (known.name == className)
            return known.id;
    return classIdOf(u"KVTZUG." + String(className));
}

/// The host's own error-report object.
class HostFehler final : public clsFehler {
  public:
    explicit HostFehler(ComPtr<IDispatch> object)
        : object_(std::move(object)), operation_(dispatchIdOf(object_.get(), u"fkt_Fehlermeldung")) {}

    // Names, number and text travel by reference, the flag by value; in Automation's order, the last one first.
    bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                           bool runtime) override {
        const Bstr texts[] = {Bstr(text), Bstr(procedure), Bstr(className)};
        BSTR lent[] = {texts[0].get(), texts[1].get(), texts[2].get()};
        VARIANT arguments[5] = {};
        V_VT(&arguments[0]) = VT_BOOL;
        V_BOOL(&arguments[0]) = boolOf(runtime);
        V_VT(&arguments[1]) = VT_BYREF | VT_BSTR;
        V_BSTRREF(&arguments[1]) = &lent[0];
        V_VT(&arguments[2]) = VT_BYREF | VT_I4;
        V_I4REF(&arguments[2]) = &number;
        V_VT(&arguments[3]) = VT_BYREF | VT_BSTR;
        V_BSTRREF(&arguments[3]) = &lent[1];
        V_VT(&arguments[4]) = VT_BYREF | VT_BSTR;
        V_BSTRREF(&arguments[4]) = &lent[2];
        DISPPARAMS parameters{arguments, nullptr, 5, 0};
        invoke(object_.get(), operation_, DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters);
        return true;
    }

  private:
    ComPtr<IDispatch> object_;
    DISPID operation_;
};

} // namespace

ObjectRef ComKvtzug::create(StringView className) {
    return foreignObject(createObject(dataAccessClass(className)).get());
}

// A host whose error-report object is missing or unusable still learns of every failure.
std::unique_ptr<clsFehler> ComFehlerFactory::create() {
    try {
        return std::make_unique<HostFehler>(createObject(kFehlerClass).as<IDispatch>());
    } catch (const RuntimeError&) {
        return std::make_unique<FallbackReporter>();
    }
}

} // namespace kvtdruck::com
