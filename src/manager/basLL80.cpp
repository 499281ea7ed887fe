#include "manager/basLL80.h"

namespace kvtdruck {
namespace {

constexpr StringView kModule = u"basLL80";

String previewFile(StringView path, StringView name) {
    return String(path) + u"\\" + String(name) + u".ll";
}

} // namespace

// The table

void basLL80::createTable() {
    Akt_ArrAllPrints_.emplace(1);
}

std::int16_t basLL80::rowCount() {
    return roundToInteger(static_cast<double>(required(Akt_ArrAllPrints_).size()));
}

JobRow& basLL80::rowAt(std::int16_t row) {
    if (row < 0 || row >= rowCount())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return (*Akt_ArrAllPrints_)[row];
}

std::int16_t basLL80::appendRow() {
    const auto added = rowCount();
    Akt_ArrAllPrints_->emplace_back();
    return added;
}

// Viewers

void basLL80::Init_FileSystem() {
    skippingErrors([this] {
        if (!files_)
            files_ = state_.platform().createFileSystem();
    });
}

void basLL80::Loesche_Previewdateien(StringView listName, StringView prevPath, std::int16_t row) {
    Init_FileSystem();
    const auto removeFile = [&](StringView name) {
        const auto file = previewFile(prevPath, name);
        if (files().exists(file))
            files().remove(file, false);
    };
    skippingErrors([&] {
        if (const auto& kept = rowAt(row).previewName; !kept.empty())
            removeFile(kept);
    });
    // Without a list name this is the file ".ll".
    skippingErrors([&] { removeFile(listName); });
}

bool basLL80::fkt_Terminiere_Review(StringView listName, StringView prevPath, std::int16_t row) {
    return guarded(state_, {kModule, u"fkt_Terminiere_Review"}, [&] {
        Init_FileSystem();
        auto& job = rowAt(row);
        if (job.process != 0 && job.isPreview) {
            state_.platform().processes().terminate(job.process);
            job.process = 0;
        }
        Loesche_Previewdateien(listName, prevPath, row);
        state_.platform().processPendingMessages();
        return true;
    });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t row) {
    return guarded(state_, {kModule, u"fkt_Aktiviere_Preview"}, [&] {
        Init_FileSystem();
        const auto name = rowAt(row).previewName;
        files().rename(previewFile(prevPath, listName), name + u".ll");
        state_.platform().processPendingMessages();
        // Without a folder: the viewer is found through the search path.
        const auto command = u"llview12.exe \"" + previewFile(prevPath, name) + u"\"";
        // The row is sought anew: the host may have printed while its messages were processed.
        rowAt(row).process = state_.platform().processes().start(command);
        return true;
    });
}

} // namespace kvtdruck
