#include "cli/binder.h"

#include "cli/application_folder.h"
#include "cli/batch.h"
#include "cli/cancellation.h"
#include "cli/data_source.h"
#include "cli/layout_store.h"
#include "control/print_mode.h"
#include "druckwerk/pdf/binding.h"
#include "platform/posix/temporary_folder.h"

#include <algorithm>
#include <set>

namespace kvtdruck::cli {
namespace {

/// The years as a file name tells them, "ab2023", in words.
std::string inWords(std::string years) {
    for (const std::string_view word : {"ab", "bis"})
        if (years.starts_with(word))
            years.insert(word.size(), " ");
    return years;
}

using druckwerk::Chapter;

/// Companies and lists stand in the table of contents, their years and employees in the outline alone.
constexpr int kDeepestInContents = 1;

/// What the cover says that a binder holds.
constexpr StringView kHeading = u"Auswertungen";

/// The pages before the chapters, printed by layouts as everything else; what their document says of itself is the
/// binder's.
class Front {
  public:
    Front(const Options& options, const std::filesystem::path& file, const std::string& company,
          const std::string& period, Console& console)
        : layouts_(prepareApplicationFolder(options.folder)), document_(druckwerk::newDocument()) {
        druckwerk::Options settings;
        settings.output = file;
        settings.layoutsBehind = LayoutStore::installedFolder();
        settings.place = &place_;
        settings.warn = [&console](std::string_view text) { console.warning(text); };
        settings.error = [this](const druckwerk::EngineError& error) { error_ = error.message; };
        settings.printDate = options.printDate;
        settings.level = options.level;
        settings.period = period;
        settings.locale = options.locale;
        factory_.emplace(std::move(settings), document_);
        form_ = factory_->create();
        define(u"Ueberschrift", kHeading);
        define(u"FnrName1", fromUtf8(company));
        define(u"Firma", fromUtf8(company));
        define(u"Zeitraum", fromUtf8(period));
    }

    void printCover() {
        start("Deckblatt");
        call(Operation::LlPrintFields);
        end();
    }

    void printContents(const std::vector<Chapter>& chapters) {
        defineLine({});
        start("Inhalt");
        for (const auto& chapter : chapters) {
            defineLine(chapter);
            while (call(Operation::LlPrintFields) == kEnginePageFull)
                call(Operation::LlPrint);
        }
        end();
    }

    std::unique_ptr<AtomicFile> finish() { return druckwerk::finish(*document_); }

  private:
    void define(StringView name, StringView text) { call(Operation::LlDefineVariableExt, {name, text, kTypeText}); }

    void defineLine(const Chapter& chapter) {
        call(Operation::LlDefineFieldExt, {u"Kapitel", StringView(fromUtf8(chapter.title)), kTypeText});
        call(Operation::LlDefineFieldExt, {u"Ebene", StringView(decimal(chapter.level)), kTypeNumeric});
        call(Operation::LlDefineFieldExt, {u"AbSeite", StringView(decimal(chapter.page)), kTypeNumeric});
    }

    std::int32_t call(Operation operation, std::initializer_list<Argument> arguments = {}) {
        const auto code = form_->ll60().call(operation, arguments);
        if (code != kEngineSuccess && code != kEnginePageFull)
            throw std::runtime_error(error_);
        return code;
    }

    void start(const char* layout) {
        const auto object = fromUtf8(layouts_.own(layout).replace_extension().string());
        call(Operation::LlPrintWithBoxStart,
             {2, StringView(object), kPrintModeNormal, 2, WindowHandle{}, StringView(u"")});
        call(Operation::LlPrint);
    }

    void end() {
        call(Operation::LlPrintFieldsEnd);
        call(Operation::LlPrintEnd, {0});
    }

    LayoutStore layouts_;
    druckwerk::JobPlace place_{true, {}};
    std::shared_ptr<druckwerk::OpenDocument> document_;
    std::optional<druckwerk::DruckwerkFormFactory> factory_;
    std::unique_ptr<Form> form_;
    std::string error_;
};

class Binder {
  public:
    Binder(const Options& options, std::filesystem::path file, std::vector<PrintRequest> requests, Console& console)
        : options_(options), file_(std::move(file)), requests_(std::move(requests)), console_(console) {}

    int run() {
        const auto names = companyNames();
        const auto document = druckwerk::newDocument();
        for (auto& request : requests_) {
            if (cancelled())
                break;
            request.output = scratch_ / "body.pdf";
            request.document = document;
            if (names.size() > 1)
                request.chapter.push_back(names.at(request.company));
            request.chapter.emplace_back(request.report->title);
            print(request);
        }
        if (cancelled()) {
            console_.warning("Abgebrochen: Die Mappe ist nicht entstanden.");
            return kCancelled;
        }
        if (const auto body = druckwerk::finish(*document)) {
            body->commit();
            bind(names);
        }
        if (failed_.empty())
            return kDone;
        std::string text;
        for (const auto& name : failed_)
            text += "\n  " + name;
        console_.error("Nicht in der Mappe (" + std::to_string(failed_.size()) + " von " +
                       std::to_string(requests_.size()) + "):" + text);
        return kFailed;
    }

  private:
    /// The names of the companies that are asked for, by their numbers.
    std::map<double, std::string> companyNames() {
        std::map<double, std::string> names;
        for (const auto& request : requests_)
            names.emplace(request.company, "");
        for (const auto& company : DataSource(options_, console_).companies())
            if (const auto found = names.find(std::stod(company.number)); found != names.end())
                found->second = company.name;
        for (auto& [number, name] : names)
            if (name.empty())
                name = "Firma " + std::to_string(std::int64_t(number));
        return names;
    }

    void print(const PrintRequest& request) {
        const auto done = std::size_t(&request - requests_.data());
        console_.progress({request.chapter.back(), int(done * 100 / requests_.size()), 0});
        Console own;
        if (withErrorsTold(own, [&] { return runReport(options_, request, own); }) != kDone)
            failed_.push_back(nameOf(request));
    }

    void bind(const std::map<double, std::string>& names) {
        const auto chapters =
            druckwerk::chaptersOf(scratch_ / "body.pdf", names.size() > 1 ? kDeepestInContents : 0);
        const auto company = names.size() == 1 ? names.begin()->second : std::to_string(names.size()) + " Firmen";
        Front front(options_, scratch_ / "front.pdf", company, period(), console_);
        front.printCover();
        front.printContents(chapters);
        front.finish()->commit();
        writeAtomically(file_, druckwerk::bound(scratch_ / "front.pdf", scratch_ / "body.pdf", chapters),
                        AtomicFile::Access::Owner);
    }

    /// The selected years, where there are any.
    std::string period() const {
        std::set<std::string> texts;
        for (const auto& request : requests_)
            if (const auto year = partsOf(request).year; !year.empty())
                texts.insert(inWords(year));
        std::string all;
        for (const auto& text : texts)
            all += (all.empty() ? "" : ", ") + text;
        return all;
    }

    const Options& options_;
    std::filesystem::path file_;
    std::vector<PrintRequest> requests_;
    Console& console_;
    TemporaryFolder scratch_;
    std::vector<std::string> failed_;
};

} // namespace

int printBinders(const Options& options, const std::vector<PrintRequest>& requests, Console& console) {
    std::map<std::filesystem::path, std::vector<PrintRequest>> binders;
    for (const auto& request : requests) {
        const auto parts = partsOf(request);
        const auto name = fileName(options.binder.filename(), {"", "", parts.company, "", ""});
        binders[options.binder.parent_path() / name].push_back(request);
    }
    int worst = kDone;
    for (const auto& [file, own] : binders)
        if (!cancelled())
            worst = std::max(worst, Binder(options, file, own, console).run());
    return worst;
}

} // namespace kvtdruck::cli
