// Locales by name: a few that are always there, and those of the system.
#include "platform/posix/posix_platform.h"
#include "values/letters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <clocale>
#include <langinfo.h>
#include <memory>
#include <optional>
#include <type_traits>

namespace kvtdruck {

namespace {

/// "de_CH.UTF-8" → "de-ch": the form in which names are compared.
std::string canonicalName(std::string_view name) {
    std::string canonical = asciiLower(name.substr(0, name.find_first_of(".@")));
    std::replace(canonical.begin(), canonical.end(), '_', '-');
    return canonical;
}

std::optional<Locale> builtInLocale(const std::string& name) {
    if (name == "de" || name == "de-de")
        return germanLocale();
    if (name == "de-at")
        return Locale{.thousandsSeparator = u"\u00A0"};
    if (name == "de-ch")
        return Locale{.decimalSign = u".", .thousandsSeparator = u"’", .currencySymbol = u"CHF"};
    if (name == "en" || name == "en-us")
        return Locale{u".", u",", u"$", u"M/d/yyyy", u"h:mm:ss tt", u"AM", u"PM", u"True", u"False"};
    if (name == "en-gb")
        return Locale{u".", u",", u"£", u"dd/MM/yyyy", u"HH:mm:ss", u"AM", u"PM", u"True", u"False"};
    if (name == "fr" || name == "fr-fr")
        return Locale{u",", u"\u202F", u"€", u"dd/MM/yyyy", u"HH:mm:ss", u"", u"", u"Vrai", u"Faux"};
    return std::nullopt;
}

/// The pattern that belongs to a format of `strftime`; `fallback` where it holds parts that patterns don't have.
String patternOf(std::string_view format, StringView fallback) {
    String pattern;
    for (std::size_t position = 0; position < format.size(); ++position) {
        if (format[position] != '%') {
            pattern += static_cast<char16_t>(format[position]);
            continue;
        }
        bool withoutZero = false;
        while (++position < format.size() &&
               std::string_view("-_0EO").find(format[position]) != std::string_view::npos)
            withoutZero = withoutZero || format[position] == '-';
        static constexpr std::array<std::pair<char, StringView>, 14> parts{{{'d', u"dd"},
                                                                            {'e', u"d"},
                                                                            {'m', u"MM"},
                                                                            {'y', u"yy"},
                                                                            {'Y', u"yyyy"},
                                                                            {'F', u"yyyy-MM-dd"},
                                                                            {'D', u"MM/dd/yy"},
                                                                            {'H', u"HH"},
                                                                            {'I', u"hh"},
                                                                            {'M', u"mm"},
                                                                            {'S', u"ss"},
                                                                            {'p', u"tt"},
                                                                            {'T', u"HH:mm:ss"},
                                                                            {'r', u"hh:mm:ss tt"}}};
        const char letter = position < format.size() ? format[position] : '\0';
        const auto part =
            std::find_if(parts.begin(), parts.end(), [&](const auto& it) { return it.first == letter; });
        if (part == parts.end())
            return String(fallback);
        pattern += withoutZero && part->second.size() == 2 ? part->second.substr(1) : part->second; // d for dd
    }
    return pattern;
}

struct LocaleDeleter {
    void operator()(locale_t locale) const { freelocale(locale); }
};
using SystemLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleDeleter>;

/// The installed locale of that name in UTF-8; empty where there is none.
SystemLocale openLocale(std::string_view name) {
    std::string systemName(name.substr(0, name.find('.')));
    std::replace(systemName.begin(), systemName.end(), '-', '_');
    return SystemLocale(newlocale(LC_ALL_MASK, (systemName + ".UTF-8").c_str(), nullptr));
}

Locale installedLocale(std::string_view name) {
    const SystemLocale system = openLocale(name);
    if (!system)
        throw RuntimeError(static_cast<long>(ErrorNumber::InvalidProcedureCall),
                           u"Die Ländereinstellung „" + fromUtf8(name) +
                               u"“ ist auf diesem Rechner nicht installiert.");
    const auto entry = [&](nl_item item) { return nl_langinfo_l(item, system.get()); };
    const auto text = [&](nl_item item) { return fromUtf8(entry(item)); };
    Locale locale;
    locale.decimalSign = text(RADIXCHAR);
    locale.thousandsSeparator = text(THOUSEP);
    locale.currencySymbol = text(CRNCYSTR).substr(1); // its first letter says where the symbol stands
    locale.shortDate = patternOf(entry(D_FMT), u"yyyy-MM-dd");
    locale.time = patternOf(entry(T_FMT), u"HH:mm:ss");
    locale.am = text(AM_STR);
    locale.pm = text(PM_STR);
    setTruthWords(locale, canonicalName(name));
    return locale;
}

} // namespace

Locale localeByName(std::string_view name) {
    const auto known = builtInLocale(canonicalName(name));
    return known ? *known : installedLocale(name);
}

} // namespace kvtdruck
