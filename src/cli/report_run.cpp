#include "cli/report_run.h"

#include "catalog/usage_error.h"
#include "cli/application_folder.h"
#include "cli/call_record.h"
#include "cli/cancellation.h"
#include "cli/company_logo.h"
#include "cli/data_source.h"
#include "cli/field_notes.h"
#include "cli/layout_store.h"
#include "cli/presets.h"
#include "cli/preview.h"
#include "cli/printer_dialog.h"
#include "cli/report_workbooks.h"
#include "cli/selection_text.h"
#include "cli/tight_fields.h"
#include "cli/values_input.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/exits/designer.h"
#include "druckwerk/exits/tee.h"
#include "druckwerk/layout/layout_sample.h"
#include "druckwerk/pdf/page_selection.h"
#include "manager/clsDruckManager.h"
#include "platform/posix/atomic_file.h"
#include "platform/posix/memory_watch.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_folder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <system_error>

namespace kvtdruck::cli {
namespace {

/// The one window that this host has, as the component counts windows.
constexpr std::int32_t kWindow = 1;

bool isUnset(const char* variable) {
    const char* value = std::getenv(variable);
    return !value || !*value;
}

/// The component with this host's surroundings, for the prints of one document.
class ReportRun {
  public:
    ReportRun(const Options& options, const PrintRequest& request, Console& console)
        : options_(options), request_(request), console_(console), printing_(options.printing),
          values_(request.values ? readValues(*request.report, *request.values) : nullptr),
          folder_(prepareApplicationFolder(options.folder)), layouts_(folder_), source_(options, console),
          jobs_(source_.state()), engine_(options.data ? dataExport() : withAttachment(druckwerk())) {}

    int run() {
        refuseOverwriting();
        const auto prints = plan();
        if (options_.record)
            record_.emplace(*options_.record, request_.continuesRecord, console_);
        std::optional<PreviewTurn> turn;
        if (options_.command == Command::Preview)
            turn.emplace(previewFolder());
        clsDruckManager manager(source_.state(), jobs_, record_ ? record_->around(*engine_) : *engine_);
        manager.fkt_Init(source_.connection());
        const bool done = options_.designs() ? design(manager, prints) : print(manager, prints);
        if (record_)
            record_->finish();
        keepOutput(done);
        turn.reset();
        if (!done)
            return cancelled() || dialogCancelled_ ? kCancelled : kFailed;
        if (options_.command == Command::Preview)
            showPreview(manager);
        if (options_.command == Command::Check)
            return judgeLayout();
        return console_.hasFailed() ? kFailed : cancelled() ? kCancelled : kDone;
    }

  private:
    std::vector<SinglePrint> plan() {
        const auto& report = *request_.report;
        source_.show(report, request_.ranges);
        auto prints = planPrints(report.axes, request_.ranges, source_.existing(report, request_.company));
        if (options_.designs())
            for (auto& print : prints)
                print.selections = catalog::selectionsForDesign(report, std::move(print.selections));
        return prints;
    }

    /// The prints of a document, one after the other. The pages of a preview are all printed into its file; the
    /// component shows it with the last of them.
    bool print(clsDruckManager& manager, const std::vector<SinglePrint>& prints) {
        for (std::size_t i = 0; i < prints.size(); ++i) {
            place_ = {i + 1 < prints.size() || request_.document, request_.chapter};
            place_.bookmark.insert(place_.bookmark.end(), prints[i].bookmark.begin(), prints[i].bookmark.end());
            const bool shows = options_.command == Command::Preview && !place_.more;
            if (!ask(manager, shows ? kPreview : kPrint, prints[i], options_.askForPrinter && i == 0))
                return false;
        }
        return true;
    }

    /// A designer is opened once, on the latest data. A check goes on to print all of them into nothing: much
    /// shows on real values only.
    bool design(clsDruckManager& manager, const std::vector<SinglePrint>& prints) {
        if (showsPrint() && (!print(manager, {prints.back()}) || console_.hasFailed() || cancelled()))
            return false;
        if (!ask(manager, kDesign, prints.back(), false))
            return false;
        const bool goesOn = options_.command == Command::Check && !isGenerated_ && !console_.hasFailed();
        return !goesOn || print(manager, prints);
    }

    /// Whether the designer shows what its layout prints. What is wrong there is said when it is closed; what can't
    /// be read fails the print.
    bool showsPrint() const {
        const auto layout = layouts_.inUse(request_.report->listName);
        return options_.command == Command::Design && std::filesystem::exists(layout) &&
               !druckwerk::hasMistakes(layout, LayoutStore::installedFolder());
    }

    bool ask(clsDruckManager& manager, std::int16_t mode, const SinglePrint& print, bool dialog) {
        const auto& report = *request_.report;
        const auto array = values_ ? values_ : catalog::parameterArray(report, print.selections);
        return manager.fkt_Drucken(mode, request_.company, array, fromUtf8(folder_.string()),
                                   fromUtf8(report.listName), dialog, kWindow, report.productMode);
    }

    /// What the check of a layout has come to.
    int judgeLayout() {
        for (const auto& message : tight_.messages())
            find(message);
        if (!hasFindings_ && !isGenerated_ && !console_.hasFailed() && !cancelled())
            console_.notice(
                "Das Layout " +
                (request_.layout ? request_.layout->file : layouts_.inUse(request_.report->listName)).string() +
                " ist in Ordnung.");
        return cancelled() ? kCancelled : hasFindings_ || console_.hasFailed() ? kFailed : kDone;
    }

    void find(std::string_view message) {
        hasFindings_ = true;
        console_.warning(message);
    }

    std::filesystem::path previewFolder() const { return layoutFolder(folder_) / "Preview"; }

    druckwerk::DataExportOptions dataExportOptions(druckwerk::DataFormat format, std::filesystem::path output) {
        druckwerk::DataExportOptions settings;
        settings.format = format;
        settings.formulas = options_.formulas;
        settings.workbook = {workbookOf(*request_.report), selectionText(*request_.report, request_.ranges)};
        settings.output = std::move(output);
        settings.place = &place_;
        settings.locale = options_.locale;
        settings.warn = [this](std::string_view text) { console_.warning(text); };
        settings.error = [this](const druckwerk::EngineError& error) { console_.error(error.message); };
        settings.progress = [this](const druckwerk::Progress& progress) { console_.progress(progress); };
        settings.cancelled = &cancelled();
        return settings;
    }

    std::unique_ptr<FormFactory> dataExport() {
        auto settings = dataExportOptions(*options_.data, request_.output);
        settings.finished = [this](std::unique_ptr<AtomicFile> file) { finished_ = std::move(file); };
        return std::make_unique<druckwerk::DataExportFormFactory>(std::move(settings));
    }

    /// The records of the print go into a file of their own, which the document takes up when it is complete.
    std::unique_ptr<FormFactory> withAttachment(std::unique_ptr<FormFactory> pages) {
        if (!options_.attachment)
            return pages;
        data_ = std::make_unique<druckwerk::DataExportFormFactory>(
            dataExportOptions(*options_.attachment, attachmentFile()));
        pages_ = std::move(pages);
        return std::make_unique<druckwerk::TeeFormFactory>(*pages_, *data_);
    }

    std::filesystem::path attachmentFile() {
        if (!attachmentFolder_)
            attachmentFolder_.emplace();
        return attachmentFolder_->path() /
               (std::string(request_.report->listName) + druckwerk::endingOf(*options_.attachment));
    }

    std::unique_ptr<FormFactory> druckwerk() {
        druckwerk::Options settings;
        settings.output = engineOutput();
        settings.layoutsBehind = LayoutStore::installedFolder();
        settings.logo = logoOf(options_, request_.company);
        settings.layout = request_.layout;
        settings.place = &place_;
        settings.finished = [this](std::unique_ptr<AtomicFile> file) { take(std::move(file)); };
        settings.deliver = [this](const druckwerk::Document& document, std::string& message) {
            return deliver(document, message);
        };
        settings.optionsDialog = [this](druckwerk::OptionsRequest& request, std::string&) {
            const auto result = choosePrinter(console_, request, printing_);
            dialogCancelled_ = result == kEngineCancelled;
            refuseInput("Die Ausgabe", request.output);
            return result;
        };
        settings.design = [this](const druckwerk::DesignRequest& request, std::string& message) {
            return design(request, message);
        };
        settings.warn = [this](std::string_view text) {
            if (!request_.saved) // whoever takes the layout checks it
                find(text);
        };
        if (options_.command == Command::Check)
            settings.tight = [this](const druckwerk::TightField& field) { tight_.add(field); };
        if (options_.command == Command::Design)
            settings.sampled = [this](const druckwerk::LayoutSample& sample) { sample_ = sample; };
        settings.error = [this](const druckwerk::EngineError& error) { console_.error(error.message); };
        settings.progress = [this](const druckwerk::Progress& progress) { console_.progress(progress); };
        settings.cancelled = &cancelled();
        settings.printDate = options_.printDate;
        if (options_.attachment)
            settings.attachment = [this] {
                return druckwerk::Attachment{attachmentFile(), druckwerk::mimeTypeOf(*options_.attachment),
                                             "Datensätze der Liste " + std::string(request_.report->title)};
            };
        settings.level = options_.level;
        settings.period = periodText(request_.ranges);
        settings.selection = "Firma " + std::to_string(std::llround(request_.company)) + " · " +
                             selectionText(*request_.report, request_.ranges);
        settings.locale = options_.locale;
        return std::make_unique<druckwerk::DruckwerkFormFactory>(
            std::move(settings), request_.document ? request_.document : druckwerk::newDocument());
    }

    /// Of some pages the whole document is made first, in a place of its own.
    std::filesystem::path engineOutput() {
        if (options_.command == Command::Preview)
            return previewFolder() / (std::string(request_.report->listName) + ".ll");
        if (options_.designs() && request_.output.empty())
            return "/dev/null";
        if (request_.output.empty() || options_.printing.pages.empty())
            return request_.output;
        whole_.emplace();
        return whole_->path() / "whole.pdf";
    }

    /// A complete file waits for its place.
    void take(std::unique_ptr<AtomicFile> file) {
        finished_ = std::move(file);
        if (!whole_)
            return;
        finished_->commit();
        const auto pages = druckwerk::selectedPages(finished_->target(), options_.printing.pages);
        finished_ = std::make_unique<AtomicFile>(request_.output);
        finished_->write(pages);
    }

    /// What is read must not be written over; `option` tells of the output.
    void refuseInput(const std::string& option, const std::filesystem::path& output) const {
        const std::array<std::filesystem::path, 3> inputs{options_.database, request_.values.value_or(""),
                                                          layouts_.inUse(request_.report->listName)};
        for (const auto& input : inputs)
            if (isSameFile(output, input))
                throw catalog::UsageError(option + " würde die Datei " + input.string() +
                                          " überschreiben, aus der gelesen wird.");
    }

    void refuseOverwriting() const {
        refuseInput("--ausgabe", request_.output);
        if (!options_.record)
            return;
        refuseInput("--protokoll", *options_.record);
        const auto place = [](const std::filesystem::path& file) {
            return std::filesystem::weakly_canonical(file);
        };
        if (options_.record->native().rfind("/dev/", 0) != 0 && place(*options_.record) == place(request_.output))
            throw catalog::UsageError("--ausgabe und --protokoll brauchen zwei verschiedene Dateien.");
    }

    /// The one place that decides whether a file has come about: the report is through and nobody has met an error.
    void keepOutput(bool done) {
        if (!finished_ || !done || console_.hasFailed() || cancelled() || memoryWasRefused())
            return;
        try {
            finished_->commit();
        } catch (const std::system_error& error) {
            console_.error(finished_->target().string() +
                           " kann nicht geschrieben werden: " + druckwerk::reasonForReading(error.code().value()));
        }
    }

    std::int32_t deliver(const druckwerk::Document& document, std::string& message) {
        const auto result = druckwerk::print(document, printing_);
        message = result.message;
        if (result.code != 0)
            return result.code;
        console_.notice("Auftrag " + std::to_string(result.job) + " an „" + result.printer + "“ übergeben.");
        if (!result.message.empty())
            console_.warning(result.message);
        return 0;
    }

    std::int32_t design(const druckwerk::DesignRequest& request, std::string& message) {
        if (request_.defined) {
            request_.defined(request.definitions);
            return 0;
        }
        const auto show = [this](const druckwerk::Finding& finding) {
            finding.error  ? console_.error(finding.message)
            : finding.note ? console_.warning(finding.message)
                           : find(finding.message);
        };
        if (options_.command == Command::Design) {
            if (options_.samplesOnly) {
                for (const auto& finding :
                     druckwerk::checkLayout(request.source, request.definitions, false, request.behind))
                    show(finding);
                return console_.hasFailed() ? 0
                                            : keepingEarlier(request, [&] { return showSample(request, message); });
            }
            if (isUnset("DISPLAY") && isUnset("WAYLAND_DISPLAY")) {
                message =
                    "Zum Gestalten wird eine grafische Oberfläche gebraucht; weder DISPLAY noch WAYLAND_DISPLAY "
                    "ist gesetzt.";
                return druckwerk::kDesignFailed;
            }
            auto shown = request;
            shown.sample = &sample_;
            handDown(options_.database, request_.values, request_.company, folder_);
            const druckwerk::Designing designing{show, fieldNotes(*request_.report), request_.saved, &cancelled()};
            return keepingEarlier(request, [&] { return druckwerk::design(shown, designing, message); });
        }
        isGenerated_ = !request_.layout && !std::filesystem::exists(request.source);
        if (isGenerated_) {
            console_.notice("Die Liste " + std::string(request_.report->listName) +
                            " hat kein Layout; sie wird mit einem erzeugten gedruckt.");
            return 0;
        }
        for (const auto& finding :
             request_.layout
                 ? druckwerk::checkLayout(*request_.layout, request.definitions, options_.unused, request.behind)
                 : druckwerk::checkLayout(request.source, request.definitions, options_.unused, request.behind))
            show(finding);
        return 0;
    }

    /// Makes the layout show what it prints, without opening it.
    std::int32_t showSample(const druckwerk::DesignRequest& request, std::string& message) const {
        const auto before = contentOf(request.source);
        const auto layout = druckwerk::withSample(before, sample_);
        if (!layout || memoryWasRefused())
            throw std::bad_alloc(); // the layout was checked
        if (*layout == before)
            return 0;
        try {
            writeAtomically(request.layout, *layout, AtomicFile::Access::Mask);
        } catch (const std::system_error& error) {
            message = request.layout.string() +
                      " kann nicht geschrieben werden: " + druckwerk::reasonForReading(error.code().value());
            return druckwerk::kDesignFailed;
        }
        return 0;
    }

    /// A layout that `work` has replaced is kept as an earlier one.
    template <class Work>
    std::int32_t keepingEarlier(const druckwerk::DesignRequest& request, Work&& work) {
        const auto before = contentOf(request.layout);
        const auto code = work();
        if (!before.empty() && contentOf(request.layout) != before)
            layouts_.keep(request_.report->listName, before);
        return code;
    }

    /// Stays until the user has seen enough; the viewer is ended and the preview file removed then.
    void showPreview(clsDruckManager& manager) {
        const auto job = jobs_.rowAt(static_cast<std::int16_t>(jobs_.rowCount() - 1));
        if (job->process.id == 0) {
            const auto made = previewFolder() / (toUtf8(job->previewName) + ".ll");
            const auto file = std::filesystem::path(made).replace_extension(".pdf");
            std::error_code error;
            std::filesystem::rename(made, file, error);
            if (error) { // it has not got its name: the component has said why, and nobody will look for it
                std::filesystem::remove(made, error);
                std::filesystem::remove(previewFolder() / (std::string(request_.report->listName) + ".ll"), error);
                return;
            }
            console_.error("Die Vorschau konnte nicht gezeigt werden; sie liegt in " + file.string() + ".");
            return;
        }
        waitForViewer(source_.platform().processes(), job->process.id, console_);
        manager.Terminate_Preview(kWindow);
    }

    const Options& options_;
    const PrintRequest& request_;
    Console& console_;
    druckwerk::PrintSettings printing_;
    bool dialogCancelled_ = false;
    bool hasFindings_ = false; ///< something was said about the layout
    bool isGenerated_ = false; ///< there is no layout to check
    TightFields tight_;
    druckwerk::LayoutSample sample_;                  ///< what the layout prints of the data, for the designer
    std::shared_ptr<catalog::ParameterArray> values_; ///< where the figures come from a file
    druckwerk::JobPlace place_;
    std::filesystem::path folder_;
    LayoutStore layouts_;
    DataSource source_;
    basLL80 jobs_;
    std::optional<TemporaryFolder> attachmentFolder_;
    std::unique_ptr<FormFactory> data_;
    std::unique_ptr<FormFactory> pages_;
    std::optional<TemporaryFolder> whole_; ///< holds the document of which pages are selected
    std::unique_ptr<FormFactory> engine_;
    std::unique_ptr<AtomicFile> finished_; ///< a complete file that waits for its place
    std::optional<CallRecord> record_;
};

} // namespace

int runReport(const Options& options, const PrintRequest& request, Console& console) {
    return ReportRun(options, request, console).run();
}

} // namespace kvtdruck::cli
