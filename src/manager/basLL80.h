// The job table and the viewer processes of previews.
#pragma once

#include "engine/DruckFormular.h"
#include "module/error_rule.h"
#include "reports/bericht.h"

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
    /// 4: the viewer, held until the row's next job or its window's end.
    Process prozess;
    /// 5: the job is a preview.
    bool istPreview = false;
    /// 6
    String prevPath;
    /// A request works on the row; another one for the same window takes a row of its own then.
    bool inArbeit = false;
};

/// The module-level job table and the procedures on it, shared by all managers of one thread. Whoever works on a
/// row holds it: the host may ask for a new table whenever foreign code runs or messages are processed.
class basLL80 final : public Vorschau {
  public:
    explicit basLL80(ComponentState& state) : state_(state) {}

    /// A fresh table with the one row 0, which no job uses; every registered row is forgotten, viewers keep
    /// running.
    void ErzeugeTabelle();
    /// The number of rows; run-time error 91 before the table exists.
    std::int16_t Zeilenzahl();
    /// Run-time error 9 where there is no such row, 91 before the table exists.
    std::shared_ptr<Druckzeile> Zeile(std::int16_t zeile);
    /// Appends a row and gives its index.
    std::int16_t HaengeZeileAn();

    /// Deletes the row's kept preview file and the engine's preview file of the list; failing steps are skipped.
    void Loesche_Previewdateien(StringView listenname, StringView prevPath, const Druckzeile& druck);
    /// Ends the row's viewer and deletes its preview files.
    bool fkt_Terminiere_Review(StringView listenname, StringView prevPath, Druckzeile& druck);
    bool fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, Druckzeile& druck);
    bool fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t zeile) override;

  private:
    bool ZeigePreview(StringView listenname, StringView prevPath, Druckzeile& druck);
    void Init_FileSystem();
    FileSystem& dateien() { return required(dateien_); }

    ComponentState& state_;
    std::optional<std::vector<std::shared_ptr<Druckzeile>>> Akt_ArrAllPrints_;
    std::unique_ptr<FileSystem> dateien_;
};

/// A row while a request works on it. No other request takes it then, and the request does not depend on the table:
/// what becomes of that meanwhile, the request goes on with its own row.
class LaufendeZeile final : public Vorschau {
  public:
    LaufendeZeile(basLL80& basLL80, std::int16_t zeile)
        : basLL80_(basLL80), zeile_(zeile), druck_(basLL80.Zeile(zeile)) {
        druck_->inArbeit = true;
    }
    LaufendeZeile(const LaufendeZeile&) = delete;
    LaufendeZeile& operator=(const LaufendeZeile&) = delete;
    ~LaufendeZeile() override { druck_->inArbeit = false; }

    std::int16_t zeile() const { return zeile_; }
    Druckzeile& druck() { return *druck_; }
    bool fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t) override {
        return basLL80_.fkt_Aktiviere_Preview(listenname, prevPath, *druck_);
    }

  private:
    basLL80& basLL80_;
    std::int16_t zeile_;
    std::shared_ptr<Druckzeile> druck_;
};

} // namespace kvtdruck
