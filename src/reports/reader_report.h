// Reports fed by a reader of the data-access library: one printed line per record, grouped by a key.
#pragma once

#include "reports/report.h"

#include <optional>
#include <vector>

namespace kvtdruck {

/// What happens at the first record of a new group.
enum class GroupChange {
    /// New variables; the layout turns the page at "Seitenwechsel" = 2.
    Lines,
    /// "Seitenwechsel" = 2, new variables, and a new page from the report itself.
    NewSheet,
};

/// How a reader-fed report is made up. The tables are those of every record; `keys` are the getters whose
/// change begins a new group (none: one group).
struct ReaderForm {
    const DataClass& dataClass;
    const Table& variables;
    const Table& fields;
    std::vector<StringView> keys = {};
    GroupChange change = GroupChange::Lines;
};

class ReaderReport : public Report {
  public:
    ReaderReport(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title,
                 const ReaderForm& form);

  protected:
    /// Fills the reader: normalises the parameter array and calls the read operation.
    virtual bool readData() = 0;
    /// The name of the read procedure and its message, for error reports.
    struct ReadFailure {
        StringView procedure;
        StringView text;
    };
    virtual ReadFailure readFailure() const = 0;

    bool read() override;
    void beginDefinitions() override;
    bool defineAll() override;
    bool defineBeforeFirstPage() override;
    bool printRecords() override;
    /// Prints the current record; False stops the report.
    virtual bool printRecord(bool first);

    virtual bool Definiere_Übergebe_Variablen();
    virtual bool Definiere_Übergebe_Felder();

    /// Creates a reader and has it connected and filled, with one message for both failures; the read procedure's
    /// frame.
    bool openReader(std::optional<RecordReader>& reader, const DataClass& dataClass, const ReadFailure& failure,
                    const std::function<bool()>& fill);
    /// Reads everything, with the arguments `all`, or the years of the normalised selection.
    bool readYears(std::initializer_list<Variant> all);

    RecordReader& reader() { return *reader_; }
    BoundTable& variables() { return variables_; }
    BoundTable& fields() { return fields_; }
    Record record() { return {&*reader_, 0}; }

  private:
    bool beginGroup();
    /// Takes the current record's keys; gives whether one differs from the record's before.
    bool takeKeys();

    const DataClass& dataClass_;
    std::optional<RecordReader> reader_;
    BoundTable variables_;
    BoundTable fields_;
    std::vector<Member> keyGetters_;
    std::vector<double> keys_;
    GroupChange groupChange_;
};

} // namespace kvtdruck
