// The company's yearly settings, one year a page, with the public holidays of that year in the company's federal
// state.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kFirmaVariables = joined({
    companyNumber(),
    numbers(ValueType::Single, {u"AnzahlFeiertage", u"AnzahlFeiertageSon", u"AnzahlFeiertageSam", u"Jahrestage",
                                u"AnzahlSonntage", u"AnzahlSamstage"}),
    months(ValueType::Single, u"Arbeitstage"),
    numbers(ValueType::Double, {u"GrenzeRentenversicherung"}),
    numbers(ValueType::Single,
            {u"GrenzeAushilfskraft", u"GrenzeGeringverdiener", u"FuerJahr", u"Arbeitslosenversicherung",
             u"Pflegeversicherung", u"Krankenversicherung", u"Rentenversicherung", u"SteuersatzAushilfe",
             u"Tagesarbeitszeit", u"DurchUeberstundenzuschlag", u"Erstattungsumlage", u"Krankheitstage",
             u"VorgabeUrlaubsgeld", u"Urlaubstage", u"VorgabeWeihnachtsgeld", u"VWL"}),
});

/// Of the holiday reader, not of the year reader.
const Table kFirmaFields = joined({dates({u"FDatum"}), texts({u"Feiertag"})});

class clsDruck_Firma final : public ReaderReport {
  public:
    clsDruck_Firma(const ReportEnvironment& environment, PrintRequest request)
        : ReaderReport(environment, std::move(request), u"clsDruck_Firma", u"Allgemeine Firmendaten",
                       {clsZugFirmaJahr, kFirmaVariables, kFirmaFields}) {}

  private:
    ReadFailure readFailure() const override {
        return {u"Lese_Firmendaten", u"Die Firmendaten konnten nicht gelesen werden"};
    }

    // Unlike the other reports, a range of several years is read as given.
    bool readData() override {
        if (parray().is(0, 0, false)) {
            const bool noFirst = parray().is(0, 1, 0.0);
            const bool noLast = parray().is(0, 2, 0.0);
            if (noFirst && noLast)
                parray().Value(0, 0, true);
        }
        const bool done = readSelection();
        if (done && !reader().atEnd())
            reader().MoveFirst();
        return done;
    }

    bool readSelection() {
        if (parray().is(0, 0, true))
            return reader().read(clsZugFirmaJahr.readAll, {request().pFnr});
        const auto first = roundToInteger(parray().single(0, 1));
        const auto last = roundToInteger(parray().single(0, 2));
        return reader().read(clsZugFirmaJahr.readRange, {request().pFnr, first, last});
    }

    bool defineAll() override {
        return Definiere_Übergebe_Variablen() && Lese_Feiertage() && Definiere_Übergebe_Felder();
    }

    bool printRecord(bool first) override {
        if (!first && !beginYear())
            return false;
        showProgress();
        for (; !holidays_->atEnd(); holidays_->MoveNext()) {
            if (!Definiere_Übergebe_Felder())
                return false;
            printLine();
        }
        return true;
    }

    bool beginYear() { return Definiere_Übergebe_Variablen() && adapter().LlPrint() != 0 && Lese_Feiertage(); }

    bool Definiere_Übergebe_Variablen() override {
        return guardedProcedure(u"Definiere_Übergebe_Variablen_Allg", [this] {
            define(kVariable, variables(), record());
            return true;
        });
    }

    bool Definiere_Übergebe_Felder() override {
        return guardedProcedure(u"Definiere_Übergebe_Felder", [this] {
            define(kField, holidayFields_, {&*holidays_, 0});
            return true;
        });
    }

    /// The holidays of the current record's year, in the order that the reader gives them.
    bool Lese_Feiertage() {
        const Variant federalState = company().text(u"Bundesland");
        const Variant year = toInteger(reader().value(year_), locale());
        const ReadFailure failure{u"Lese_Feiertage", u"Die Feiertage konnten nicht gelesen werden"};
        return openReader(holidays_, clsZugFeiertage, failure, [&] {
            if (!holidays_->read(clsZugFeiertage.readRange, {federalState, year}))
                return false;
            holidays_->MoveFirst();
            return true;
        });
    }

    Member year_{clsZugFirmaJahr.getter(u"FuerJahr"), ValueType::Single};
    std::optional<RecordReader> holidays_;
    BoundTable holidayFields_{kFirmaFields, &clsZugFeiertage};
};

} // namespace

std::unique_ptr<Report> new_clsDruck_Firma(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_Firma>(environment, std::move(request));
}

} // namespace kvtdruck
