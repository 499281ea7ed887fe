#include "manager/basLL80.h"

#include <utility>

namespace kvtdruck {
namespace {

constexpr StringView kModule = u"basLL80";
constexpr Procedure kAktivierePreview{kModule, u"fkt_Aktiviere_Preview"};

String previewFile(StringView path, StringView name) {
    return String(path) + u"\\" + String(name) + u".ll";
}

} // namespace

// The table

// The old table goes last: an adapter that it held may call the host.
void basLL80::createTable() {
    const auto old = std::exchange(Akt_ArrAllPrints_, std::nullopt);
    Akt_ArrAllPrints_.emplace();
    appendRow();
}

std::int16_t basLL80::rowCount() {
    return roundToInteger(static_cast<double>(required(Akt_ArrAllPrints_).size()));
}

std::shared_ptr<JobRow> basLL80::rowAt(std::int16_t row) {
    if (row < 0 || row >= rowCount())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return (*Akt_ArrAllPrints_)[row];
}

std::int16_t basLL80::appendRow() {
    const auto added = rowCount();
    Akt_ArrAllPrints_->push_back(std::make_shared<JobRow>());
    return added;
}

// Viewers

void basLL80::Init_FileSystem() {
    skippingErrors([this] {
        if (!files_)
            files_ = state_.platform().createFileSystem();
    });
}

void basLL80::Loesche_Previewdateien(StringView listName, StringView prevPath, const JobRow& job) {
    Init_FileSystem();
    const auto removeFile = [&](StringView name) {
        const auto file = previewFile(prevPath, name);
        if (files().exists(file))
            files().remove(file, false);
    };
    skippingErrors([&] {
        if (!job.previewName.empty())
            removeFile(job.previewName);
    });
    // Without a list name this is the file ".ll".
    skippingErrors([&] { removeFile(listName); });
}

bool basLL80::fkt_Terminiere_Review(StringView listName, StringView prevPath, JobRow& job) {
    return guarded(state_, {kModule, u"fkt_Terminiere_Review"}, [&] {
        Init_FileSystem();
        if (job.process.id != 0 && job.isPreview) {
            state_.platform().processes().terminate(job.process);
            job.process = {};
        }
        Loesche_Previewdateien(listName, prevPath, job);
        state_.platform().processPendingMessages();
        return true;
    });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t row) {
    return guarded(state_, kAktivierePreview, [&] { return showPreview(listName, prevPath, *rowAt(row)); });
}

bool basLL80::fkt_Aktiviere_Preview(StringView listName, StringView prevPath, JobRow& job) {
    return guarded(state_, kAktivierePreview, [&] { return showPreview(listName, prevPath, job); });
}

bool basLL80::showPreview(StringView listName, StringView prevPath, JobRow& job) {
    Init_FileSystem();
    const auto name = job.previewName;
    files().rename(previewFile(prevPath, listName), name + u".ll");
    state_.platform().processPendingMessages();
    // Without a folder: the viewer is found through the search path.
    job.process = state_.platform().processes().start(u"llview12.exe \"" + previewFile(prevPath, name) + u"\"");
    return true;
}

} // namespace kvtdruck
