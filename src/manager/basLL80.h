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
    /// 4: the running viewer; 0 when none.
    std::int32_t process = 0;
    /// 5: the job is a preview.
    bool isPreview = false;
    /// 6
    String prevPath;
};

/// The module-level job table and the procedures on it, shared by all managers of the process.
class basLL80 final : public PreviewStarter {
  public:
    explicit basLL80(ComponentState& state) : state_(state) {}

    /// A fresh table with the one row 0, which no job uses; every registered row is forgotten, viewers keep
    /// running.
    void createTable();
    /// The number of rows; run-time error 91 before the table exists.
    std::int16_t rowCount();
    /// Run-time error 9 where there is no such row, 91 before the table exists.
    JobRow& rowAt(std::int16_t row);
    /// Appends a row and gives its index.
    std::int16_t appendRow();

    /// Deletes the row's kept preview file and the engine's preview file of the list; failing steps are skipped.
    void Loesche_Previewdateien(StringView listName, StringView prevPath, std::int16_t row);
    /// Ends the row's viewer and deletes its preview files.
    bool fkt_Terminiere_Review(StringView listName, StringView prevPath, std::int16_t row);
    bool fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t row) override;

  private:
    void Init_FileSystem();
    FileSystem& files() { return required(files_); }

    ComponentState& state_;
    std::optional<std::vector<JobRow>> Akt_ArrAllPrints_;
    std::unique_ptr<FileSystem> files_;
};

} // namespace kvtdruck
