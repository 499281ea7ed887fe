#include "reports/account_report.h"

namespace kvtdruck {

using namespace std::string_view_literals; // the length of a text without them is counted for every record

namespace {

const Table kAccountVariables = joined({companyNumber(), numbers(ValueType::Single, {u"FuerJahr"})});
const Table kAccount = joined({numbers(ValueType::Double, {u"VKonto", u"EKonto"}), texts({u"Bezeichnung"})});
const Table kTraits =
    joined({numbers(ValueType::Single, {u"KtoBetrArt", u"FJahr"}), fixedNumber(u"Seitenwechsel", u"1")});
const Table kActualMonths = months(ValueType::Double, u"MWIst_");
const Table kTargetMonths = months(ValueType::Double, u"MWSoll_");
/// The fields are defined in parts, between which the amounts stand.
const Table kNone;

constexpr StringView kMonthNames[] = {u"Januar", u"Februar", u"März",      u"April",   u"Mai",      u"Juni",
                                      u"Juli",   u"August",  u"September", u"Oktober", u"November", u"Dezember"};

} // namespace

AccountReport::AccountReport(const ReportEnvironment& environment, PrintRequest request, StringView className,
                             StringView title)
    : ReaderReport(environment, std::move(request), className, title,
                   {clsZugKonten, kAccountVariables, kNone, {u"FJahr"}}),
      account_(kAccount, &clsZugKonten),
      traits_(kTraits, &clsZugKonten), year_{{u"JWIst", ValueType::Double}, {u"JWSoll", ValueType::Double}} {
    for (std::size_t i = 0; i < kActualMonths.size(); ++i)
        months_.push_back({{kActualMonths[i].name, ValueType::Double}, {kTargetMonths[i].name, ValueType::Double}});
}

ReaderReport::ReadFailure AccountReport::readFailure() const {
    return {u"Lese_Konten", u"Die Konten konnten nicht gelesen werden"};
}

bool AccountReport::readData() {
    parray().normaliseRange();
    const bool all = parray().is(0, 0, true);
    const auto year = parray().single(0, 4);
    const auto lower = all ? 0.0f : parray().single(0, 1);
    const auto upper = all ? 0.0f : parray().single(0, 2);
    return reader().read(clsZugKonten.readRange, {request().pFnr, year, lower, upper});
}

bool AccountReport::Definiere_Übergebe_Felder() {
    return guardedProcedure(u"Definiere_Übergebe_Felder"sv, [this] {
        define(kField, account_, record());
        defineAmounts(u"JWIst"sv, u"JWSoll"sv, year_);
        define(kField, traits_, record());
        const auto month = selectedMonth();
        if (month)
            defineMonth(months_[*month]);
        define(kField, u"MonatText"sv, month ? kMonthNames[*month] : StringView(), kTypeText);
        define(kField, u"Waehrung"sv, currency(), kTypeText);
        return true;
    });
}

void AccountReport::defineMonth(Amounts& amounts) {
    defineAmounts(u"MonatIst"sv, u"MonatSoll"sv, amounts);
}

void AccountReport::defineAmounts(StringView actualName, StringView targetName, Amounts& amounts) {
    const auto factor = signFactor();
    defineAmount(actualName, amountOf(amounts.actual), factor);
    defineAmount(targetName, amountOf(amounts.target), factor);
}

void AccountReport::defineAmount(StringView name, double amount, std::optional<double> factor) {
    defineNumber(kField, name, factor ? amount * *factor : amount);
}

/// The chosen month, counted from 0; nothing where the cell holds no value from 1 to 12.
std::optional<int> AccountReport::selectedMonth() {
    const auto cell = parray().Value(0, 3);
    for (int month = 1; month <= 12; ++month)
        if (equals(cell, static_cast<double>(month), locale()))
            return month - 1;
    return std::nullopt;
}

} // namespace kvtdruck
