#include "manager/basLL80.h"

namespace kvtdruck {
namespace {

constexpr StringView kModul = u"basLL80";

String previewDatei(StringView pfad, StringView name) {
    return String(pfad) + u"\\" + String(name) + u".ll";
}

} // namespace

// The table
// ---------------------------------------------------------------------------------------------------------

void basLL80::ErzeugeTabelle() {
    Akt_ArrAllPrints_.emplace(1);
}

std::int16_t basLL80::Zeilenzahl() {
    return roundToInteger(static_cast<double>(required(Akt_ArrAllPrints_).size()));
}

Druckzeile& basLL80::Zeile(std::int16_t zeile) {
    if (zeile < 0 || zeile >= Zeilenzahl())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return (*Akt_ArrAllPrints_)[zeile];
}

std::int16_t basLL80::HaengeZeileAn() {
    const auto neue = Zeilenzahl();
    Akt_ArrAllPrints_->emplace_back();
    return neue;
}

// Viewers
// -----------------------------------------------------------------------------------------------------------

void basLL80::Init_FileSystem() {
    skippingErrors([this] {
        if (!dateien_)
            dateien_ = state_.platform().createFileSystem();
    });
}

void basLL80::Loesche_Previewdateien(StringView listenname, StringView prevPath, std::int16_t zeile) {
    Init_FileSystem();
    const auto loesche = [&](StringView name) {
        const auto datei = previewDatei(prevPath, name);
        if (dateien().exists(datei))
            dateien().remove(datei, false);
    };
    skippingErrors([&] {
        if (const auto& behaltene = Zeile(zeile).previewName; !behaltene.empty())
            loesche(behaltene);
    });
    // Without a list name this is the file ".ll".
    skippingErrors([&] { loesche(listenname); });
}

bool basLL80::fkt_Terminiere_Review(StringView listenname, StringView prevPath, std::int16_t zeile) {
    return guarded(state_, {kModul, u"fkt_Terminiere_Review"}, [&] {
        Init_FileSystem();
        auto& druck = Zeile(zeile);
        if (druck.prozess != 0 && druck.istPreview) {
            state_.platform().processes().terminate(druck.prozess);
            druck.prozess = 0;
        }
        Loesche_Previewdateien(listenname, prevPath, zeile);
        state_.platform().processPendingMessages();
        return true;
    });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t zeile) {
    return guarded(state_, {kModul, u"fkt_Aktiviere_Preview"}, [&] {
        Init_FileSystem();
        const auto name = Zeile(zeile).previewName;
        dateien().rename(previewDatei(prevPath, listenname), name + u".ll");
        state_.platform().processPendingMessages();
        // Without a folder: the viewer is found through the search path.
        const auto befehl = u"llview12.exe \"" + previewDatei(prevPath, name) + u"\"";
        // The row is sought anew: the host may have printed while its messages were processed.
        Zeile(zeile).prozess = state_.platform().processes().start(befehl);
        return true;
    });
}

} // namespace kvtdruck
