// Readable failures, and the expectation of a run-time error.
#pragma once

#include "values/runtime_error.h"
#include "values/variant.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

namespace kvtdruck {

inline void PrintTo(Comparison comparison, std::ostream* out) {
    *out << (comparison == Comparison::Equal     ? "Equal"
             : comparison == Comparison::Unequal ? "Unequal"
                                                 : "Undecided");
}

/// The number of the run-time error that `action` raises; 0 where it raises none.
inline long errorOf(const std::function<void()>& action) {
    try {
        action();
        return 0;
    } catch (const RuntimeError& error) {
        return error.number();
    }
}

/// English notation, to show that nothing is German by accident.
inline const Locale& englishLocale() {
    static const Locale locale{u".", u",", u"$", u"M/d/yyyy", u"h:mm:ss tt", u"AM", u"PM", u"True", u"False"};
    return locale;
}

} // namespace kvtdruck
