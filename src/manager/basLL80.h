// The job table and the viewer processes of previews.
#pragma once

#include "engine/DruckFormular.h"
#include "module/error_rule.h"
#include "reports/print_request.h"

#include <memory>
#include <optional>
#include <vector>

namespace kvtdruck {

/// One row of the job table, in the order of its columns; fresh cells compare as their types' zero. Each host
/// window that has printed has one row, which its next job reuses.
struct JobRow {
    /// 0: the host window.
    std::int32_t parentHwnd = 0;
    /// 1: the job's adapter.
    std::shared_ptr<DruckFormular> adapter;
    /// 2: the preview file's own name, from list name and time.
    String previewName;
    /// 3
    String listName;
    /// 4: the viewer, held until the row's next job or its window's end.
    Process process;
    /// 5: the job is a preview.
    bool isPreview = false;
    /// 6
    String prevPath;
    /// A request works on the row; another one for the same window takes a row of its own then.
    bool isBusy = false;
};

/// The module-level job table and the procedures on it, shared by all managers of one thread. Whoever works on a
/// row holds it: the host may ask for a new table whenever foreign code runs or messages are processed.
class basLL80 final : public PreviewStarter {
  public:
    explicit basLL80(ComponentState& state) : state_(state) {}

    /// A fresh table with the one row 0, which no job uses; every registered row is forgotten, viewers keep
    /// running.
    void createTable();
    /// The number of rows; run-time error 91 before the table exists.
    std::int16_t rowCount();
    /// Run-time error 9 where there is no such row, 91 before the table exists.
    std::shared_ptr<JobRow> rowAt(std::int16_t row);
    /// Appends a row and gives its index.
    std::int16_t appendRow();

    /// Deletes the row's kept preview file and the engine's preview file of the list; failing steps are skipped.
    void Loesche_Previewdateien(StringView listName, StringView prevPath, const JobRow& job);
    /// Ends the row's viewer and deletes its preview files.
    bool fkt_Terminiere_Review(StringView listName, StringView prevPath, JobRow& job);
    bool fkt_Aktiviere_Preview(StringView listName, StringView prevPath, JobRow& job);
    bool fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t row) override;

  private:
    bool showPreview(StringView listName, StringView prevPath, JobRow& job);
    void Init_FileSystem();
    FileSystem& files() { return required(files_); }

    ComponentState& state_;
    std::optional<std::vector<std::shared_ptr<JobRow>>> Akt_ArrAllPrints_;
    std::unique_ptr<FileSystem> files_;
};

/// A row while a request works on it. No other request takes it then, and the request does not depend on the table:
/// what becomes of that meanwhile, the request goes on with its own row.
class RunningRow final : public PreviewStarter {
  public:
    RunningRow(basLL80& basLL80, std::int16_t row) : basLL80_(basLL80), row_(row), job_(basLL80.rowAt(row)) {
        job_->isBusy = true;
    }
    RunningRow(const RunningRow&) = delete;
    RunningRow& operator=(const RunningRow&) = delete;
    ~RunningRow() override { job_->isBusy = false; }

    std::int16_t index() const { return row_; }
    JobRow& job() { return *job_; }
    bool fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t) override {
        return basLL80_.fkt_Aktiviere_Preview(listName, prevPath, *job_);
    }

  private:
    basLL80& basLL80_;
    std::int16_t row_;
    std::shared_ptr<JobRow> job_;
};

} // namespace kvtdruck
