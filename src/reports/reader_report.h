// Reports fed by a reader of the data-access library: one printed line per record, grouped by a key.
#pragma once

#include "reports/report.h"

#include <optional>
#include <vector>

namespace kvtdruck {

/// What happens at the first record of a new group.
enum class Gruppenwechsel {
    /// New variables; the layout turns the page at "Seitenwechsel" = 2.
    Zeilenliste,
    /// "Seitenwechsel" = 2, new variables, and a new page from the report itself.
    NeuesBlatt,
};

/// How a reader-fed report is made up. The tables are those of every record; `schluessel` are the getters whose
/// change begins a new group (none: one group).
struct Leserform {
    const Zugklasse& klasse;
    const Tabelle& variablen;
    const Tabelle& felder;
    std::vector<StringView> schluessel = {};
    Gruppenwechsel wechsel = Gruppenwechsel::Zeilenliste;
};

class Leserbericht : public Bericht {
  public:
    Leserbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel,
                 const Leserform& form);

  protected:
    /// Fills the reader: normalises the parameter array and calls the read operation.
    virtual bool LeseDaten() = 0;
    /// The name of the read procedure and its message, for error reports.
    struct Lesemeldung {
        StringView prozedur;
        StringView text;
    };
    virtual Lesemeldung lesemeldung() const = 0;

    bool Lese() override;
    void BeginneDefinitionen() override;
    bool DefiniereAlles() override;
    bool DefiniereVorErsterSeite() override;
    bool DruckeSaetze() override;
    /// Prints the current record; False stops the report.
    virtual bool DruckeSatz(bool erster);

    virtual bool Definiere_Übergebe_Variablen();
    virtual bool Definiere_Übergebe_Felder();

    /// Creates a reader and has it connected and filled, with one message for both failures; the read procedure's
    /// frame.
    bool OeffneLeser(std::optional<Leser>& leser, const Zugklasse& klasse, const Lesemeldung& meldung,
                     const std::function<bool()>& lese);
    /// Reads everything, with the arguments `alle`, or the years of the normalised selection.
    bool LeseJahre(std::initializer_list<Variant> alle);

    Leser& leser() { return *leser_; }
    GebundeneTabelle& variablen() { return variablen_; }
    GebundeneTabelle& felder() { return felder_; }
    Satz satz() { return {&*leser_, 0}; }

  private:
    bool BeginneGruppe();
    std::vector<double> LeseSchluessel();

    const Zugklasse& zugklasse_;
    std::optional<Leser> leser_;
    GebundeneTabelle variablen_;
    GebundeneTabelle felder_;
    std::vector<Mitglied> schluesselGetter_;
    std::vector<double> schluessel_;
    Gruppenwechsel wechsel_;
};

} // namespace kvtdruck
