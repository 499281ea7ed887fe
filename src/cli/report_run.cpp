#include "cli/report_run.h"

#include "catalog/values_file.h"
#include "cli/application_folder.h"
#include "cli/cancellation.h"
#include "cli/error_report.h"
#include "cli/preview.h"
#include "cli/printer_dialog.h"
#include "control/recording_control.h"
#include "dataaccess/zugriff.h"
#include "druckwerk/exits/designer.h"
#include "kvtzug/kvtzug.h"
#include "manager/clsDruckManager.h"
#include "platform/posix/posix_platform.h"

#include <fstream>

namespace kvtdruck::cli {
namespace {

/// The one window that this host has, as the component counts windows.
constexpr std::int32_t kWindow = 1;

std::shared_ptr<OdbcConnection> connectionOf(const Options& options) {
    return std::make_shared<OdbcConnection>(options.connectionString.empty()
                                                ? sqliteConnection(fromUtf8(options.database))
                                                : fromUtf8(options.connectionString));
}

std::shared_ptr<catalog::ParameterArray> arrayOf(const Options& options) {
    const bool designs = options.command == Command::Design || options.command == Command::Check;
    auto array = catalog::parameterArray(*options.report,
                                         designs ? catalog::selectionsForDesign(*options.report, options.selections)
                                                 : options.selections);
    return options.valuesFile ? catalog::readValues(*options.report, *options.valuesFile) : array;
}

std::int16_t printModeOf(Command command) {
    switch (command) {
    case Command::Preview:
        return 1;
    case Command::Design:
    case Command::Check:
        return 2;
    default:
        return 0;
    }
}

/// The component with this host's surroundings, for one request.
class ReportRun {
  public:
    ReportRun(const Options& options, Console& console)
        : options_(options), console_(console), printing_(options.printing), array_(arrayOf(options)),
          folder_(prepareApplicationFolder(options.folder)), platform_(options.locale), errors_(console),
          state_(platform_, kvtzug_, errors_), jobs_(state_), engine_(options.data ? dataExport() : druckwerk()) {
        if (options.record)
            startRecord();
    }

    int run() {
        clsDruckManager manager(state_, jobs_, recorder_ ? *recorder_ : *engine_);
        manager.fkt_Init(connectionOf(options_));
        const bool done = manager.fkt_Drucken(printModeOf(options_.command), options_.company, array_,
                                              fromUtf8(folder_.string()), fromUtf8(options_.report->listName),
                                              options_.askForPrinter, kWindow, options_.report->productMode);
        if (record_.is_open() && !record_.flush())
            console_.error("Das Protokoll " + options_.record->string() + " kann nicht geschrieben werden.");
        if (!done)
            return cancelled() || dialogCancelled_ ? kCancelled : kFailed;
        if (options_.command == Command::Preview)
            showPreview(manager);
        return console_.hasFailed() ? kFailed : cancelled() ? kCancelled : kDone;
    }

  private:
    std::unique_ptr<FormFactory> dataExport() {
        druckwerk::DataExportOptions settings;
        settings.format = *options_.data;
        settings.output = options_.output;
        settings.locale = options_.locale;
        settings.warn = [this](std::string_view text) { console_.warning(text); };
        settings.error = [this](const druckwerk::EngineError& error) { console_.error(error.message); };
        settings.progress = [this](const druckwerk::Progress& progress) { console_.progress(progress); };
        settings.cancelled = &cancelled();
        return std::make_unique<druckwerk::DataExportFormFactory>(std::move(settings));
    }

    std::unique_ptr<FormFactory> druckwerk() {
        druckwerk::Options settings;
        settings.output = options_.output;
        settings.deliver = [this](const druckwerk::Document& document, std::string& message) {
            return deliver(document, message);
        };
        settings.optionsDialog = [this](druckwerk::OptionsRequest& request, std::string&) {
            const auto result = choosePrinter(console_, request, printing_);
            dialogCancelled_ = result == kEngineCancelled;
            return result;
        };
        settings.design = [this](const druckwerk::DesignRequest& request, std::string& message) {
            return design(request, message);
        };
        settings.warn = [this](std::string_view text) { console_.warning(text); };
        settings.error = [this](const druckwerk::EngineError& error) { console_.error(error.message); };
        settings.progress = [this](const druckwerk::Progress& progress) { console_.progress(progress); };
        settings.cancelled = &cancelled();
        settings.printDate = options_.printDate;
        return std::make_unique<druckwerk::DruckwerkFormFactory>(std::move(settings));
    }

    void startRecord() {
        record_.open(*options_.record, std::ios::binary | std::ios::trunc);
        if (!record_)
            throw std::runtime_error("Das Protokoll " + options_.record->string() +
                                     " kann nicht geschrieben werden.");
        recorder_.emplace(*engine_, [this](std::string_view line) { record_ << line << '\n'; });
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
        const auto show = [this](const druckwerk::Finding& finding) {
            finding.error ? console_.error(finding.message) : console_.warning(finding.message);
        };
        if (options_.command == Command::Design)
            return druckwerk::design(request, show, message);
        if (!std::filesystem::exists(request.layout)) {
            console_.notice("Die Liste " + std::string(options_.report->listName) +
                            " hat kein Layout; sie wird mit einem erzeugten gedruckt.");
            return 0;
        }
        const auto findings = druckwerk::checkLayout(request.layout, request.definitions);
        for (const auto& finding : findings)
            show(finding);
        if (findings.empty())
            console_.notice("Das Layout " + request.layout.string() + " ist in Ordnung.");
        return 0;
    }

    /// Stays until the user has seen enough; the viewer is ended and the preview file removed then.
    void showPreview(clsDruckManager& manager) {
        const auto job = jobs_.Zeile(static_cast<std::int16_t>(jobs_.Zeilenzahl() - 1));
        if (job->prozess.id == 0) {
            const auto file = layoutFolder(folder_) / "Preview" / (toUtf8(job->previewName) + ".ll");
            console_.error("Die Vorschau konnte nicht gezeigt werden; sie liegt als PDF in " + file.string() + ".");
            return;
        }
        waitForViewer(platform_.processes(), job->prozess.id, console_);
        manager.Terminate_Preview(kWindow);
    }

    const Options& options_;
    Console& console_;
    druckwerk::PrintSettings printing_;
    bool dialogCancelled_ = false;
    std::shared_ptr<catalog::ParameterArray> array_;
    std::filesystem::path folder_;
    PosixPlatform platform_;
    OdbcKvtzug kvtzug_;
    ErrorReports errors_;
    ComponentState state_;
    basLL80 jobs_;
    std::unique_ptr<FormFactory> engine_;
    std::ofstream record_;
    std::optional<RecordingFormFactory> recorder_;
};

} // namespace

int runReport(const Options& options, Console& console) {
    return ReportRun(options, console).run();
}

int listCompanies(const Options& options, Console& console) {
    constexpr Zugklasse companies{u"clsZugFirmen", u"LeseFirmenAlle", {}};
    OdbcKvtzug kvtzug;
    PosixPlatform platform(options.locale);
    ErrorReports errors(console);
    ComponentState state(platform, kvtzug, errors);
    try {
        Leser reader(state, companies);
        if (!reader.Verbinde(connectionOf(options)) || !reader.Lese(companies.leseAlle, {}))
            throw RuntimeError(ErrorNumber::InternalError);
        Mitglied number(u"Fnr", ValueType::Text), name(u"Name1", ValueType::Text), town(u"Ort", ValueType::Text);
        const auto text = [&](Mitglied& getter) { return toUtf8(toText(reader.wert(getter), state.locale())); };
        for (; !reader.Ende(); reader.MoveNext())
            console.notice(text(number) + "\t" + text(name) + "\t" + text(town));
    } catch (const RuntimeError& error) {
        console.error(toUtf8(error.description()));
        return kFailed;
    }
    return kDone;
}

} // namespace kvtdruck::cli
