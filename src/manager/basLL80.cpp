#include "manager/basLL80.h"

#include <utility>

namespace kvtdruck {
namespace {

constexpr StringView kModul = u"basLL80";
constexpr Procedure kAktivierePreview{kModul, u"fkt_Aktiviere_Preview"};

String previewDatei(StringView pfad, StringView name) {
    return String(pfad) + u"\\" + String(name) + u".ll";
}

} // namespace

// The table
// ---------------------------------------------------------------------------------------------------------

// The old table goes last: an adapter that it held may call the host.
void basLL80::ErzeugeTabelle() {
    const auto alte = std::exchange(Akt_ArrAllPrints_, std::nullopt);
    Akt_ArrAllPrints_.emplace();
    HaengeZeileAn();
}

std::int16_t basLL80::Zeilenzahl() {
    return roundToInteger(static_cast<double>(required(Akt_ArrAllPrints_).size()));
}

std::shared_ptr<Druckzeile> basLL80::Zeile(std::int16_t zeile) {
    if (zeile < 0 || zeile >= Zeilenzahl())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return (*Akt_ArrAllPrints_)[zeile];
}

std::int16_t basLL80::HaengeZeileAn() {
    const auto neue = Zeilenzahl();
    Akt_ArrAllPrints_->push_back(std::make_shared<Druckzeile>());
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

void basLL80::Loesche_Previewdateien(StringView listenname, StringView prevPath, const Druckzeile& druck) {
    Init_FileSystem();
    const auto loesche = [&](StringView name) {
        const auto datei = previewDatei(prevPath, name);
        if (dateien().exists(datei))
            dateien().remove(datei, false);
    };
    skippingErrors([&] {
        if (!druck.previewName.empty())
            loesche(druck.previewName);
    });
    // Without a list name this is the file ".ll".
    skippingErrors([&] { loesche(listenname); });
}

bool basLL80::fkt_Terminiere_Review(StringView listenname, StringView prevPath, Druckzeile& druck) {
    return guarded(state_, {kModul, u"fkt_Terminiere_Review"}, [&] {
        Init_FileSystem();
        if (druck.prozess.id != 0 && druck.istPreview) {
            state_.platform().processes().terminate(druck.prozess);
            druck.prozess = {};
        }
        Loesche_Previewdateien(listenname, prevPath, druck);
        state_.platform().processPendingMessages();
        return true;
    });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, std::int16_t zeile) {
    return guarded(state_, kAktivierePreview, [&] { return ZeigePreview(listenname, prevPath, *Zeile(zeile)); });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listenname, StringView prevPath, Druckzeile& druck) {
    return guarded(state_, kAktivierePreview, [&] { return ZeigePreview(listenname, prevPath, druck); });
}

bool basLL80::ZeigePreview(StringView listenname, StringView prevPath, Druckzeile& druck) {
    Init_FileSystem();
    const auto name = druck.previewName;
    dateien().rename(previewDatei(prevPath, listenname), name + u".ll");
    state_.platform().processPendingMessages();
    // Without a folder: the viewer is found through the search path.
    druck.prozess = state_.platform().processes().start(u"llview12.exe \"" + previewDatei(prevPath, name) + u"\"");
    return true;
}

} // namespace kvtdruck
