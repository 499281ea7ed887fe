// The frame that every report follows: read, define, then print, preview or design.
#pragma once

#include "dataaccess/company_data.h"
#include "dataaccess/parameter_cells.h"
#include "dataaccess/record_reader.h"
#include "engine/DruckFormular.h"
#include "module/error_rule.h"
#include "reports/print_request.h"
#include "reports/table.h"

#include <functional>
#include <span>

namespace kvtdruck {

/// A report object lives for one request.
class Report {
  public:
    /// `className` is the name in error reports, `title` the heading of company header and designer.
    Report(const ReportEnvironment& environment, PrintRequest request, StringView className, StringView title);
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    /// Handles the request; True when the report was printed or designed, or nothing was to be done.
    bool fkt_Drucken();

  protected:
    // What a report states itself, in the order of the calls.
    /// Chooses the title, where it depends on the request.
    virtual void chooseTitle() {}
    /// Reads the report's data; False stops the report, its reason reported.
    virtual bool read() { return true; }
    /// Tells the engine that definitions begin.
    virtual void beginDefinitions();
    /// Makes every variable and field known, with the values of the first record.
    virtual bool defineAll() = 0;
    /// Defines the variables once more before the first page starts.
    virtual bool defineBeforeFirstPage() = 0;
    /// Prints all records; False stops the report.
    virtual bool printRecords() = 0;

    // Pieces that reports are made of.
    using Target = bool (DruckFormular::*)(StringView name, StringView content, std::int32_t type);
    static constexpr Target kVariable = &DruckFormular::LlDefineVariableExt;
    static constexpr Target kField = &DruckFormular::LlDefineFieldExt;

    /// Runs the body of the private procedure `name`, which answers a run-time error with False.
    bool guardedProcedure(StringView name, const std::function<bool()>& body);
    /// Hands every row of the table to the engine.
    void define(Target target, BoundTable& table, const Record& record);
    void define(Target target, StringView name, StringView content, std::int32_t type);
    void defineNumber(Target target, StringView name, double number);
    /// Shows the progress: a counter from 2 to 101 that then starts again at 1, not a share of the records.
    void showProgress();
    /// Prints the current line, on a new page where the page in hand is full.
    void printLine();
    void reportMessage(StringView procedure, StringView text);

    ComponentState& state() { return environment_.state; }
    const Locale& locale() { return environment_.state.locale(); }
    const PrintRequest& request() const { return request_; }
    DruckFormular& adapter() { return required(request_.pDrFormDll); }
    CompanyData& company() { return company_; }
    ParameterCells& parray() { return parray_; }
    StringView currency() const { return currency_; }
    void setTitle(StringView title) { title_ = title; }

  private:
    bool run();
    bool execute();
    bool print();
    bool beginJob();
    bool endJob();
    /// The value's text, until the next one is asked for.
    StringView contentOf(const Source& source, std::span<Member> getters, const Record& record);
    StringView textOfValue(const Variant& value);

    ReportEnvironment environment_;
    PrintRequest request_;
    StringView className_;
    StringView title_;
    CompanyData company_;
    ParameterCells parray_;
    String layoutFile_;
    String currency_;
    String content_; ///< of the definition in hand; its room is used again and again
    std::int32_t engineMode_ = 0;
    std::int32_t progress_ = 1;
};

} // namespace kvtdruck
