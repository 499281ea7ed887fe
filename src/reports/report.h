// The frame that every report follows: read, define, then print, preview or design.
#pragma once

#include "dataaccess/record_reader.h"
#include "engine/DruckFormular.h"
#include "module/error_rule.h"
#include "reports/table.h"

#include <functional>

namespace kvtdruck {

/// What starts the viewer on a finished preview.
class Vorschau {
  public:
    virtual ~Vorschau() = default;
    /// Gives the engine's preview file of the list the job's own name and starts the viewer on it; reports its own
    /// errors.
    virtual bool fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t zeile) = 0;
};

/// What a report needs of the component around it; both outlive the report.
struct Berichtsumgebung {
    ComponentState& state;
    Vorschau& vorschau;
};

/// One request, as the shared signature of all report classes passes it. The adapter outlives the request.
struct Druckauftrag {
    std::int16_t pPrintMode = 0;
    double pFnr = 0;
    ObjectRef pADOCon;
    ObjectRef pZuDbFnrAllg;
    DruckFormular* pDrFormDll = nullptr;
    String pListenPath;
    String pListenname;
    bool pDruckmitDruckerauswahl = false;
    ObjectRef parray;
    String pPrevPath;
    std::int16_t pAktind_ArrAllPrints = 0;
};

/// A report object lives for one request.
class Bericht {
  public:
    /// `klasse` is the name in error reports, `titel` the heading of company header and designer.
    Bericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel);
    Bericht(const Bericht&) = delete;
    Bericht& operator=(const Bericht&) = delete;
    virtual ~Bericht() = default;

    /// Handles the request; True when the report was printed or designed, or nothing was to be done.
    bool fkt_Drucken();

  protected:
    // What a report states itself, in the order of the calls.
    /// Chooses the title, where it depends on the request.
    virtual void WaehleTitel() {}
    /// Reads the report's data; False stops the report, its reason reported.
    virtual bool Lese() { return true; }
    /// Tells the engine that definitions begin.
    virtual void BeginneDefinitionen();
    /// Makes every variable and field known, with the values of the first record.
    virtual bool DefiniereAlles() = 0;
    /// Defines the variables once more before the first page starts.
    virtual bool DefiniereVorErsterSeite() = 0;
    /// Prints all records; False stops the report.
    virtual bool DruckeSaetze() = 0;

    // Pieces that reports are made of.
    using Ziel = bool (DruckFormular::*)(StringView name, StringView inhalt, std::int32_t typ);
    static constexpr Ziel kVariable = &DruckFormular::LlDefineVariableExt;
    static constexpr Ziel kFeld = &DruckFormular::LlDefineFieldExt;

    /// Runs the body of the private procedure `name`, which answers a run-time error with False.
    bool Prozedurrumpf(StringView name, const std::function<bool()>& rumpf);
    /// Hands every row of the table to the engine.
    void Definiere(Ziel ziel, GebundeneTabelle& tabelle, const Satz& satz);
    void Definiere(Ziel ziel, StringView name, StringView inhalt, std::int32_t typ);
    /// Shows the progress: a counter from 2 to 101 that then starts again at 1, not a share of the records.
    void ZeigeFortschritt();
    /// Prints the current line, on a new page where the page in hand is full.
    void DruckeZeile();
    void Melde(StringView prozedur, StringView text);

    ComponentState& state() { return umgebung_.state; }
    const Locale& locale() { return umgebung_.state.locale(); }
    const Druckauftrag& auftrag() const { return auftrag_; }
    DruckFormular& adapter() { return required(auftrag_.pDrFormDll); }
    FirmaAllg& firma() { return firma_; }
    Parameterfeld& parray() { return parray_; }
    StringView waehrung() const { return waehrung_; }
    void setzeTitel(StringView titel) { titel_ = titel; }

  private:
    bool Ablauf();
    bool FuehreAus();
    bool Drucke();
    bool BeginneDruck();
    bool BeendeDruck();
    String Inhalt(const Quelle& quelle, Mitglied& getter, const Satz& satz);

    Berichtsumgebung umgebung_;
    Druckauftrag auftrag_;
    StringView klasse_;
    StringView titel_;
    FirmaAllg firma_;
    Parameterfeld parray_;
    String layoutdatei_;
    String waehrung_;
    std::int32_t druckmodus_ = 0;
    std::int32_t fortschritt_ = 1;
};

} // namespace kvtdruck
