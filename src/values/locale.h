// What a user's locale says about numbers, dates and truth values.
#pragma once

#include "values/text.h"

namespace kvtdruck {

/// The parts of a locale that take part in turning values into text and back. Patterns use the letters d, M, y
/// (dates) and H, h, m, s, t (times), doubled for two digits, as Windows writes them; text between apostrophes
/// stands for itself.
struct Locale {
    String decimalSign = u",";
    String thousandsSeparator = u".";
    String currencySymbol = u"€";
    String shortDate = u"dd.MM.yyyy";
    String time = u"HH:mm:ss";
    String am = {};
    String pm = {};
    String trueText = u"Wahr";
    String falseText = u"Falsch";

    bool operator==(const Locale&) const = default;
};

/// The German locale, the component's default.
const Locale& germanLocale();

/// Gives `locale` the words for True and False in `language` ("de", "fr-CH", "it_IT"): the English ones where no
/// others are known.
void setTruthWords(Locale& locale, std::string_view language);

} // namespace kvtdruck
