#include "values/locale.h"

#include <array>

namespace kvtdruck {

const Locale& germanLocale() {
    static const Locale locale;
    return locale;
}

void setTruthWords(Locale& locale, std::string_view language) {
    struct Words {
        std::string_view language;
        StringView trueText;
        StringView falseText;
    };
    static constexpr std::array<Words, 6> known{{{"de", u"Wahr", u"Falsch"},
                                                 {"es", u"Verdadero", u"Falso"},
                                                 {"fr", u"Vrai", u"Faux"},
                                                 {"it", u"Vero", u"Falso"},
                                                 {"nl", u"Waar", u"Onwaar"},
                                                 {"pt", u"Verdadeiro", u"Falso"}}};
    locale.trueText = u"True";
    locale.falseText = u"False";
    for (const Words& words : known) {
        if (words.language == language.substr(0, language.find_first_of("-_."))) {
            locale.trueText = words.trueText;
            locale.falseText = words.falseText;
        }
    }
}

} // namespace kvtdruck
