// Reports fed by the host's parameter array: variables from row 0, one printed line per row.
#pragma once

#include "reports/report.h"

namespace kvtdruck {

class ArrayReport : public Report {
  public:
    ArrayReport(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title,
                const Table& variables, const Table& fields)
        : Report(environment, std::move(request), className, title), variables_(variables), fields_(fields) {}

  protected:
    bool defineAll() override;
    bool defineBeforeFirstPage() override { return Definiere_Übergebe_Variablen(); }
    bool printRecords() override;

    bool Definiere_Übergebe_Variablen();
    bool Definiere_Übergebe_Felder(std::int16_t row);
    /// The fields of one row.
    virtual void defineFields(std::int16_t row);

  private:
    BoundTable variables_;
    BoundTable fields_;
};

} // namespace kvtdruck
