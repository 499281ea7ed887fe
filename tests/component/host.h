// A host of the component: one manager in a world of fakes.
#pragma once

#include "component/fakes.h"

#include <gmock/gmock.h>

namespace kvtdruck::test {

constexpr std::int32_t kWindow = 42;
inline const std::string kLayouts = "C:\\App\\DB\\BerichteLLVT";
inline const std::string kPreviews = kLayouts + "\\Preview";

/// How one request is made; the rest stands as most tests want it.
struct Request {
    std::int16_t mode = 0;
    StringView list = u"Umsatz";
    ObjectRef array;
    bool askPrinter = false;
    std::int32_t window = kWindow;
    double company = 7;
    std::int16_t productMode = 3;
};

class Host {
  public:
    explicit Host(bool initialised = true) {
        auto& company = world.readers["clsZugFirmaAllg"];
        company.values = {{u"Fnr", {7.0}},
                          {u"Name1", {u"Müller & Söhne"}},
                          {u"Name2", {u""}},
                          {u"Name3", {u"Meisterbetrieb"}},
                          {u"Kurzbez", {u"Müller"}},
                          {u"Strasse", {u" Hauptstraße 1 "}},
                          {u"Postfach", {u"12 34"}},
                          {u"Plz", {1067.0}},
                          {u"Ort", {u"Dresden"}},
                          {u"Land", {u"Deutschland"}},
                          {u"Bundesland", {u"Sachsen"}},
                          {u"Telefon1", {u"0351 1"}},
                          {u"Telefon2", {u"0351 2"}},
                          {u"Fax", {u"0351 3"}},
                          {u"Waehrung", {u"EUR"}}};
        if (initialised)
            manager.fkt_Init(nullptr);
    }

    bool print(const Request& request) {
        return manager.fkt_Drucken(request.mode, request.company, request.array, u"C:\\App", request.list,
                                   request.askPrinter, request.window, request.productMode);
    }

    /// From now on the engine writes the list's preview file when it ends a document.
    void engineWritesPreview(const std::string& list = "Umsatz") {
        world.previewFile = kPreviews + "\\" + list + ".ll";
    }

    World world;
    ComponentState state{world, world, world.fehler()};
    basLL80 jobs{state};
    clsDruckManager manager{state, jobs, world.forms()};
};

/// A run-time error as the host's log gets it.
inline ErrorReport runtimeError(const std::string& className, const std::string& procedure, ErrorNumber number) {
    const auto code = static_cast<long>(number);
    return {className, procedure, code, toUtf8(describe(code)), true};
}
inline ErrorReport injected(const std::string& className, const std::string& procedure) {
    return {className, procedure, kInjected, "Testfehler", true};
}
inline ErrorReport message(const std::string& className, const std::string& procedure, const std::string& text) {
    return {className, procedure, 0, text, false};
}

} // namespace kvtdruck::test
