// Reports on the months of employees.
#pragma once

#include "reports/reader_report.h"

namespace kvtdruck {

/// Month 13 is the year's total.
inline constexpr float kJahressumme = 13;

class Mitarbeiterbericht : public Leserbericht {
  public:
    using Leserbericht::Leserbericht;

  protected:
    struct Monate {
        float erster;
        float letzter;
    };

    /// The months that the report reads.
    virtual Monate LeseMonatsbereich() = 0;

  private:
    Lesemeldung lesemeldung() const override;
    bool LeseDaten() override;
};

/// One line per employee and month.
class Mitarbeiterliste : public Mitarbeiterbericht {
  public:
    Mitarbeiterliste(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel,
                     const Tabelle& felder);

    /// Trimmed first name and surname of the current record; the surname alone where the first name is blank.
    String Name();

  private:
    Monate LeseMonatsbereich() override;

    Mitglied vorname_{u"Vorname", ValueType::Text};
    Mitglied name_{u"Name", ValueType::Text};
};

/// `Mitarbeiterliste::Name` as a table's source.
String vollerName(Bericht& bericht);

/// One master sheet per employee and year, with a line per month.
class Stammblatt : public Mitarbeiterbericht {
  public:
    Stammblatt(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel,
               const Tabelle& felder);

  private:
    Monate LeseMonatsbereich() override { return {1, kJahressumme}; }
};

} // namespace kvtdruck
