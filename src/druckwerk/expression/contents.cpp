#include "druckwerk/expression/contents.h"

#include "values/conversion.h"

namespace kvtdruck::druckwerk {

namespace {

std::string quoted(StringView text) {
    constexpr std::size_t kMost = 60;
    return "„" + toUtf8(text.substr(0, kMost)) + (text.size() > kMost ? "…“" : "“");
}

} // namespace

Number Contents::number(StringView name, StringView text) {
    const Number number = Number::parse(text, locale_);
    if (number.kind == Number::Kind::None)
        report(name, quoted(text) + " ist keine Zahl wie " +
                         toUtf8(u"1" + locale_.thousandsSeparator + u"234" + locale_.decimalSign + u"5"));
    return number;
}

void Contents::reportNoDate(StringView name, StringView text) {
    report(name, quoted(text) + " ist kein Datum wie " + toUtf8(shortDateOf(dateOf(2024, 12, 31), locale_)));
}

void Contents::report(StringView name, const std::string& message) {
    if (warn_ && reported_.find(name) == reported_.end()) {
        reported_.emplace(name);
        warn_(name, "Der Inhalt von " + quoted(name) + ": " + message);
    }
}

} // namespace kvtdruck::druckwerk
