// The job table and the viewer processes of previews.
#pragma once

#include "engine/DruckFormular.h"
#include "module/error_rule.h"
#include "reports/report.h"

#include <memory>
#include <optional>
#include <vector>

namespace kvtdruck {

/// One row of the job table, in the order of its columns; fresh cells compare as their types' zero. Each host
/// window that has printed has one row, which its next job reuses.
struct Druckzeile {
    /// 0: the host window.
    std::int32_t parentHwnd = 0;
    /// 1: the job's adapter.
    std::shared_ptr<DruckFormular> formular;
    /// 2: the preview file's own name, from list name and time.
    String previewName;
    /// 3
    String listenname;
    /// 4: the running viewer; 0 when none.
    std::int32_t prozess = 0;
    /// 5: the job is a preview.
    bool istPreview = false;
    /// 6
    String prevPath;
};

/// The module-level job table and the procedures on it, shared by all managers of the process.
class basLL80 final : public Vorschau {
  public:
    explicit basLL80(ComponentState& state) : state_(state) {}

    /// A fresh table with the one row 0, which no job uses; every registered row is forgotten, viewers keep
    /// running.
    void ErzeugeTabelle();
    /// The number of rows; run-time error 91 before the table exists.
    std::int16_t Zeilenzahl();
    /// Run-time error 9 where there is no such row, 91 before the table exists.
    Druckzeile& Zeile(std::int16_t zeile);
    /// Appends a row and gives its index.
    std::int16_t HaengeZeileAn();

    /// Deletes the row's kept preview file and the engine's preview file of the list; failing steps are skipped.
    void Loesche_Previewdateien(StringView listenname, StringView prevPath, std::int16_t zeile);
    /// Ends the row's viewer and deletes its preview files.
    bool fkt_Terminiere_Review(StringView listenname, StringView prevPath, std::int16_t zeile);
    bool fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t zeile) override;

  private:
    void Init_FileSystem();
    FileSystem& dateien() { return required(dateien_); }

    ComponentState& state_;
    std::optional<std::vector<Druckzeile>> Akt_ArrAllPrints_;
    std::unique_ptr<FileSystem> dateien_;
};

} // namespace kvtdruck
