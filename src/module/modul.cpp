#include "module/modul.h"

#include <new>

namespace kvtdruck {

void Modul::melde(const Prozedur& prozedur, StringView text) noexcept {
    melde(prozedur, 0, text, false);
}

void Modul::meldeLaufzeitfehler(const Prozedur& prozedur) noexcept {
    const auto meldeNummer = [&](ErrorNumber number) {
        const auto code = static_cast<long>(number);
        melde(prozedur, code, describe(code), true);
    };
    try {
        throw;
    } catch (const RuntimeError& error) {
        melde(prozedur, error.number(), error.description(), true);
    } catch (const std::bad_alloc&) {
        meldeNummer(ErrorNumber::OutOfMemory);
    } catch (...) {
        meldeNummer(ErrorNumber::InternalError);
    }
}

// A report that can't be delivered must not become an error of its own: nothing ever leaves the component.
void Modul::melde(const Prozedur& prozedur, long number, StringView text, bool runtime) noexcept {
    weiterBeiFehler([&] {
        if (!fehler_)
            fehler_ = fehlerFactory_.create();
        gesetzt(fehler_).fkt_Fehlermeldung(prozedur.klasse, prozedur.name, number, text, runtime);
    });
}

} // namespace kvtdruck
