// The company letterhead that all layouts share.
#include "dataaccess/company_data.h"
#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

namespace kvtdruck {
namespace {

constexpr StringView kSeparator = u", ";

/// Number, name lines, street, postal code and town in one line. The number always leads, and a postal code of 0
/// counts as one; other parts that consist of blanks are left out together with their separator.
class Address {
  public:
    Address(CompanyData& company, const Locale& locale) : company_(company), locale_(locale) {}

    String line() {
        line_ = number(u"Fnr");
        line_ += kSeparator;
        append(u"Name1");
        append(u"Name2");
        append(u"Strasse");
        appendPart(number(u"Plz"));
        append(u"Ort");
        if (!trimmed(line_).empty())
            line_.resize(line_.size() - kSeparator.size());
        return line_;
    }

  private:
    String number(StringView getter) { return textOf(company_.number(getter), locale_); }

    // A text is read once for the emptiness test and once more for appending.
    void append(StringView getter) {
        if (!trimmed(company_.text(getter)).empty())
            appendPart(company_.text(getter));
    }

    void appendPart(StringView part) {
        line_ += trimmed(part);
        line_ += kSeparator;
    }

    CompanyData& company_;
    const Locale& locale_;
    String line_;
};

} // namespace

bool clsDruckFormular::FKT_DefiniereVariablen_AllgemeineFirmendaten(const ObjectRef& pZuDbFnrAllg,
                                                                    StringView pListenUeberschrift) {
    const Procedure procedure{u"clsDruckFormular", u"FKT_DefiniereVariablen_AllgemeineFirmendaten"};
    return guarded(state_, procedure, [&] {
        CompanyData company(state_, pZuDbFnrAllg);
        const auto& locale = state_.locale();
        const auto address = Address(company, locale).line();
        const auto define = [&](StringView name, StringView value) { LlDefineVariableExt(name, value, kTypeText); };
        const auto text = [&](StringView name, StringView getter) { define(name, company.text(getter)); };

        text(u"FnrName1", u"Name1");
        text(u"FnrName2", u"Name2");
        text(u"FnrName3", u"Name3");
        text(u"FnrPostfach", u"Postfach");
        text(u"FnrKurzbez", u"Kurzbez");
        text(u"FnrLand", u"Land");
        text(u"FnrFax", u"Fax");
        text(u"FnrOrt", u"Ort");
        define(u"FnzPlz", textOf(company.number(u"Plz"), locale)); // so spelled in all layouts
        text(u"FnrStrasse", u"Strasse");
        text(u"FnrTelefon1", u"Telefon1");
        text(u"FnrTelefon2", u"Telefon2");
        define(u"FnrAnschriftGes", address);
        define(u"Ueberschrift", pListenUeberschrift);
        text(u"FnrWaehrung", u"Waehrung");
        text(u"FnrBundesland", u"Bundesland");
        return true;
    });
}

} // namespace kvtdruck
