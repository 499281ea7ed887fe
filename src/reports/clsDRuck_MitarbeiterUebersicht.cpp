// The list of the company's employees with their personal data.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// The report has no year of its own; its layouts are written for both texts.
constexpr std::int16_t kAllYears = 0;

const Table kMitarbeiterUebersichtVariables = companyNumber();

const Table kMitarbeiterUebersichtFields = joined({
    texts({u"Anrede"}),
    dates({u"Austrittsdatum"}),
    texts({u"Art"}),
    dates({u"Eintrittsdatum"}),
    texts({u"Fax"}),
    dates({u"Geburtsdatum"}),
    texts({u"Land", u"Vorname", u"Name"}),
    numbers(ValueType::Double, {u"Nummer"}),
    texts({u"Ort"}),
    numbers(ValueType::Double, {u"Plz"}),
    texts({u"Stand", u"Strasse", u"Telefon1", u"Telefon2"}),
});

/// Error reports spell the class unlike its coclass; the host's error log depends on it.
class clsDRuck_MitarbeiterUebersicht final : public ReaderReport {
  public:
    clsDRuck_MitarbeiterUebersicht(const ReportEnvironment& environment, PrintRequest request)
        : ReaderReport(environment, std::move(request), u"clsDruck_MitarbeiterUebersicht", u"Mitarbeiter-Übersicht",
                       {clsZugMitarbeiter, kMitarbeiterUebersichtVariables, kMitarbeiterUebersichtFields}) {}

  private:
    ReadFailure readFailure() const override {
        return {u"Lese_Mitarbeiter", u"Die Mitarbeiter konnten nicht gelesen werden."};
    }

    // Only True in the first cell allows the list to be read.
    bool readData() override {
        return parray().is(0, 0, true) && reader().read(clsZugMitarbeiter.readAll, {request().pFnr, kAllYears});
    }

    // The list shows its progress before it defines the fields, unlike the other lists.
    bool printRecord(bool) override {
        showProgress();
        if (!Definiere_Übergebe_Felder())
            return false;
        printLine();
        return true;
    }

    bool Definiere_Übergebe_Variablen() override { return Definiere_Übergebe_Variablen(kAllYears); }

    bool Definiere_Übergebe_Variablen(std::int16_t pFuerJahr) {
        return guardedProcedure(u"Definiere_Übergebe_Variablen", [&] {
            define(kVariable, variables(), record());
            define(kVariable, u"Fuerjahr", decimal(pFuerJahr), kTypeNumeric);
            define(kVariable, u"UebMitte",
                   pFuerJahr == kAllYears ? u"Für alle Jahre" : u"Für das Jahr " + decimal(pFuerJahr), kTypeText);
            return true;
        });
    }
};

} // namespace

std::unique_ptr<Report> new_clsDRuck_MitarbeiterUebersicht(const ReportEnvironment& environment,
                                                           PrintRequest request) {
    return std::make_unique<clsDRuck_MitarbeiterUebersicht>(environment, std::move(request));
}

} // namespace kvtdruck
