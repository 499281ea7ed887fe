// A control that writes what a report prints as data instead of pages. It takes the same calls as an engine that
// draws, so every report goes through it without knowing and needs no layout.
#pragma once

#include "control/control.h"
#include "druckwerk/common/options.h"
#include "druckwerk/exits/workbook_plan.h"
#include "values/locale.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace kvtdruck::druckwerk {

/// The kinds of data files (docs/data-formats.md).
enum class DataFormat { Csv, Xlsx, Json };
/// What a CSV file makes of texts that a spreadsheet would run as formulas.
enum class Formulas { Disarm, Keep };

/// What a workbook shows besides the records.
struct WorkbookContent {
    WorkbookPlan plan;     ///< outlives the export
    std::string selection; ///< what was selected, as a text
};

/// The ending of such a file, with its dot.
std::string endingOf(DataFormat format);
std::string mimeTypeOf(DataFormat format);

struct DataExportOptions {
    DataFormat format = DataFormat::Csv;
    WorkbookContent workbook;
    Formulas formulas = Formulas::Disarm;
    std::filesystem::path output;
    /// Takes the complete file of a job, which has its place once it is committed. Where this is empty, a job that
    /// has ended well commits it.
    FinishedSink finished;
    /// The notation in which numbers arrive as texts.
    Locale locale = germanLocale();
    /// Takes German warnings.
    std::function<void(std::string_view)> warn;
    /// Takes the error behind every error code that an operation answers, once a job.
    std::function<void(const EngineError&)> error;
    std::function<void(const Progress&)> progress;
    /// Set from anywhere to cancel the job in hand.
    const std::atomic<bool>* cancelled = nullptr;
    /// The place of the job in hand: whether another one's records follow in the same file. Without it every job
    /// makes a file of its own.
    const JobPlace* place = nullptr;
};

struct DataFile;

/// Makes forms that carry the data control. They have no window. The output file appears, complete, when a job has
/// ended well; a job that was cancelled or has failed leaves the file that was there before. Jobs of one factory
/// may share the file; when one of them fails, the file is dropped.
class DataExportFormFactory final : public FormFactory {
  public:
    explicit DataExportFormFactory(DataExportOptions options);
    std::unique_ptr<Form> create() override;

  private:
    std::shared_ptr<const DataExportOptions> options_;
    std::shared_ptr<DataFile> file_;
};

} // namespace kvtdruck::druckwerk
