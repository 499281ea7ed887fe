// Reports on the months of employees.
#pragma once

#include "reports/reader_report.h"

namespace kvtdruck {

/// Month 13 is the year's total.
inline constexpr float kYearTotal = 13;

class EmployeeReport : public ReaderReport {
  public:
    using ReaderReport::ReaderReport;

  protected:
    struct MonthRange {
        float first;
        float last;
    };

    /// The months that the report reads.
    virtual MonthRange monthRange() = 0;

  private:
    ReadFailure readFailure() const override;
    bool readData() override;
};

/// One line per employee and month.
class EmployeeList : public EmployeeReport {
  public:
    EmployeeList(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title,
                 const Table& fields);

  private:
    MonthRange monthRange() override;
};

/// Text: trimmed first name and surname of the current record; the surname alone where the first name is blank.
Table fullName(StringView name);

/// One master sheet per employee and year, with a line per month.
class MasterSheet : public EmployeeReport {
  public:
    MasterSheet(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title,
                const Table& fields);

  private:
    MonthRange monthRange() override { return {1, kYearTotal}; }
};

} // namespace kvtdruck
