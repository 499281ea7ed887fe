// The component's module-level state, and the one rule by which every procedure answers a run-time error.
#pragma once

#include "module/library.h"
#include "platform/services.h"
#include "values/runtime_error.h"

#include <memory>

namespace kvtdruck {

/// The name under which a procedure reports: class or module, and procedure, as the host's error log shows them.
struct Prozedur {
    StringView klasse;
    StringView name;
};

/// What all objects of the component share within one process: the surroundings, the host's libraries, the
/// error-report object and the product-mode value. It outlives every object of the component; all calls come on one
/// thread.
class Modul {
  public:
    Modul(Platform& platform, Kvtzug& kvtzug, FehlerFactory& fehler)
        : platform_(platform), kvtzug_(kvtzug), fehlerFactory_(fehler) {}

    Platform& platform() { return platform_; }
    Kvtzug& kvtzug() { return kvtzug_; }
    const Locale& locale() { return platform_.locale(); }

    /// The host's product-mode value, handed to every data-access object unchanged.
    std::int16_t pSelmoraFuer = 0;

    /// Reports a message that the component composed itself: number 0, no run-time error.
    void melde(const Prozedur& prozedur, StringView text) noexcept;

    /// Reports the exception being handled as the run-time error of `prozedur`. Call only within a catch block.
    void meldeLaufzeitfehler(const Prozedur& prozedur) noexcept;

  private:
    void melde(const Prozedur& prozedur, long number, StringView text, bool runtime) noexcept;

    Platform& platform_;
    Kvtzug& kvtzug_;
    FehlerFactory& fehlerFactory_;
    std::unique_ptr<clsFehler> fehler_;
};

/// Runs a procedure's `rumpf`; a run-time error in it is reported once under the procedure's name, and the result
/// is then False (or whatever its type's zero is).
template <class Rumpf>
auto abgesichert(Modul& modul, const Prozedur& prozedur, Rumpf&& rumpf) noexcept -> decltype(rumpf()) {
    try {
        return rumpf();
    } catch (...) {
        modul.meldeLaufzeitfehler(prozedur);
        return decltype(rumpf())();
    }
}

/// Runs one step of a procedure that suppresses run-time errors: a failing step is skipped without a word.
template <class Schritt>
void weiterBeiFehler(Schritt&& schritt) noexcept {
    try {
        schritt();
    } catch (...) { // NOLINT(bugprone-empty-catch): skipping is what these procedures promise
    }
}

/// The object that `zeiger` names; run-time error 91 where there is none.
template <class Zeiger>
decltype(auto) gesetzt(const Zeiger& zeiger) {
    if (!zeiger)
        throw RuntimeError(ErrorNumber::ObjectNotSet);
    return *zeiger;
}

} // namespace kvtdruck
