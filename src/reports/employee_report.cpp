#include "reports/employee_report.h"

namespace kvtdruck {
namespace {

constexpr auto kSingle = ValueType::Single;
constexpr auto kDouble = ValueType::Double;

const Table kListVariables = joined({companyNumber(), numbers(kSingle, {u"Fuerjahr"})});

/// Actual figures have "IPStdVerDM", target figures have no counterpart; the layouts are written so.
const Table kSheetVariables = joined({
    kListVariables,
    texts({u"Anrede"}),
    datesOrEmpty({u"ADat"}),
    texts({u"Art"}),
    datesOrEmpty({u"EDat"}),
    texts({u"Fax"}),
    datesOrEmpty({u"GDat"}),
    texts({u"Vorname", u"Name"}),
    numbers(kDouble, {u"Nummer"}),
    texts({u"Ort"}),
    numbers(kDouble, {u"Plz"}),
    texts({u"Stand", u"Strasse", u"Tel1", u"Tel2"}),
    numbers(kSingle, {u"ErhAbMon"}),
    numbers(kDouble, {u"ErhAbMonDM",  u"ErhAbMonPr",  u"Gehalt",    u"IAnwBerStd", u"IAnwStd",     u"IBezStd",
                      u"IBezStdProd", u"IGesProdStd", u"IProdLk",   u"IPStdVerDM", u"IStdVerDM",   u"IUnProdLk",
                      u"IKalkULohn",  u"SAnwBerStd",  u"SAnwStd",   u"SBezStd",    u"SBezStdProd", u"SGesProdStd",
                      u"SProdLk",     u"SStdVerDM",   u"SUnProdLk", u"SKalkULohn"}),
    numbers(kSingle, {u"AnzahlMa", u"PraeAbMon"}),
    numbers(kDouble, {u"PraeAbMonDM", u"PraeAbMonPr", u"ProdZuPr"}),
    numbers(kSingle, {u"TAZeit", u"TAZeitAbMon"}),
    numbers(kDouble, {u"TAZeitAbStd", u"NBerPr", u"NBerStd"}),
    numbers(kSingle, {u"RUebPr", u"RUebStd", u"SAnzahlMaPr", u"IAnzahlMaPr"}),
    numbers(kDouble, {u"StdLohn"}),
    texts({u"Name3"}),
    numbers(kDouble, {u"KostenSatzHW"}),
    texts({u"Tel3", u"EMail", u"Homepage", u"BezEMail", u"BezFax", u"BezHomepage", u"BezTel1", u"BezTel2",
           u"BezTel3"}),
});

} // namespace

// Reading

ReaderReport::ReadFailure EmployeeReport::readFailure() const {
    return {u"Lese_Mitarbeiter", u"Die Mitarbeiter konnten nicht gelesen werden."};
}

bool EmployeeReport::readData() {
    const auto months = monthRange();
    parray().normaliseRange();
    const bool chosen = parray().is(0, 0, false);
    const auto lower = chosen ? parray().single(0, 1) : 0.0f;
    const auto upper = chosen ? parray().single(0, 2) : 0.0f;
    return reader().read(clsZugMitarbeiterMonate.readRange,
                         {request().pFnr, lower, upper, months.first, months.last});
}

// Lists

EmployeeList::EmployeeList(const ReportEnvironment& environment, PrintRequest request, StringView className,
                           StringView title, const Table& fields)
    : EmployeeReport(environment, std::move(request), className, title,
                     {clsZugMitarbeiterMonate, kListVariables, fields, {u"FJahr"}}) {}

EmployeeReport::MonthRange EmployeeList::monthRange() {
    if (!parray().is(0, 3, false))
        return {kYearTotal, kYearTotal};
    return {parray().single(0, 4), parray().single(0, 5)};
}

Table fullName(StringView name) {
    return composed(name, {u"Vorname", u"Name"}, [](std::span<const String> names) {
        const auto firstName = trimmed(names[0]);
        const String surname(trimmed(names[1]));
        return firstName.empty() ? surname : String(firstName) + u" " + surname;
    });
}

// Master sheets

MasterSheet::MasterSheet(const ReportEnvironment& environment, PrintRequest request, StringView className,
                         StringView title, const Table& fields)
    : EmployeeReport(
          environment, std::move(request), className, title,
          {clsZugMitarbeiterMonate, kSheetVariables, fields, {u"FJahr", u"Nummer"}, GroupChange::NewSheet}) {}

} // namespace kvtdruck
