#include "druckwerk/druckwerk.h"

#include "control/print_mode.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/common/message_filter.h"
#include "druckwerk/document_info.h"
#include "druckwerk/expression/definitions.h"
#include "druckwerk/job.h"
#include "druckwerk/layout/layout_generator.h"
#include "druckwerk/open_document.h"
#include "druckwerk/text/installed_fonts.h"
#include "platform/posix/memory_watch.h"
#include "platform/posix/temporary_folder.h"

#include <new>

namespace kvtdruck::druckwerk {
namespace {

/// The layout file that belongs to an object name.
std::filesystem::path layoutFile(const std::filesystem::path& objectName) {
    return std::filesystem::path(objectName).concat(".svg");
}

} // namespace

/// The state behind the control: definitions, and the print job where there is one.
class Druckwerk::Engine {
  public:
    Engine(std::shared_ptr<const Options> options, std::shared_ptr<OpenDocument> document)
        : options_(std::move(options)),
          definitions_(
              Contents(options_->locale,
                       [this](StringView name, const std::string& message) { warnOfContent(name, message); })),
          document_(document ? std::move(document) : std::make_shared<OpenDocument>()) {}
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine() { dropJob(); }

    std::int32_t call(Operation operation, std::span<const Argument> arguments) {
        try {
            return perform(operation, arguments);
        } catch (const Fault& fault) {
            return fail(fault.code(), fault.what());
        } catch (const std::bad_alloc&) {
            return fail(kOutputFailed, "Der Arbeitsspeicher reicht nicht aus");
        } catch (const std::exception& error) {
            return fail(kOutputFailed, error.what());
        }
    }

    const EngineError& lastError() const { return lastError_; }

  private:
    std::int32_t perform(Operation operation, std::span<const Argument> arguments);
    std::int32_t performOutside(Operation operation, std::span<const Argument> arguments);
    std::int32_t performPrinting(Operation operation, std::span<const Argument> arguments);

    [[noreturn]] static void refuseArguments() {
        throw Fault(kWrongArguments, "Falsche Argumente für die Druckoperation");
    }

    template <class T>
    static const T& argument(std::span<const Argument> arguments, std::size_t index) {
        const T* value = index < arguments.size() ? std::get_if<T>(&arguments[index]) : nullptr;
        if (value == nullptr)
            refuseArguments();
        return *value;
    }

    void define(std::span<const Argument> arguments, bool field) {
        definitions_.define(argument<StringView>(arguments, 0), argument<StringView>(arguments, 1),
                            argument<std::int32_t>(arguments, 2) == kTypeNumeric, field);
    }

    std::int32_t fail(std::int32_t code, const std::string& message) {
        lastError_ = {code, message};
        if (options_->error)
            options_->error(lastError_);
        if (job_) { // the rest of the job is answered like a cancelled one, so that it ends without a second
                    // message
            job_->failed = true;
            dropPages();
        }
        return code;
    }

    void warn(const std::string& message) {
        if (const auto text = warned_.pass(message); text && options_->warn)
            options_->warn(*text);
    }

    void warnOfContent(StringView name, const std::string& message) {
        if (job_)
            if (const auto use = job_->names.find(definitions_.slotOf(name)); use != job_->names.end())
                return warn(use->second.place + ": " + message);
        warn(message);
    }

    bool isCancelled() const { return options_->cancelled != nullptr && *options_->cancelled; }

    void startJob(std::span<const Argument> arguments);
    std::filesystem::path layoutInUse(const std::filesystem::path& objectName) const;
    Layout loadLayout(const std::filesystem::path& file, const LayoutFiles& shared);
    std::int32_t askForOptions();
    void showProgress(StringView text, std::int32_t percent);
    void turnPage();
    void openDocument();
    std::vector<String> bookmark() const;
    static void commit(AtomicFile& file);
    std::int32_t endJob();
    std::int32_t finishDocument(bool preview);
    void dropPages();
    void dropJob();
    bool moreFollows() const { return options_->place != nullptr && options_->place->more; }
    std::int32_t design(std::span<const Argument> arguments);
    std::int32_t deletePreview(std::span<const Argument> arguments) const;
    String heading() const;

    std::shared_ptr<const Options> options_;
    Definitions definitions_;
    EngineError lastError_;
    std::filesystem::path previewFolder_;
    std::shared_ptr<OpenDocument> document_;
    std::optional<Job> job_;
    MessageFilter warned_;
    String progressText_; ///< as it was told last
    std::string progressUtf8_;
};

/// Nearly all calls are definitions: they go by the others.
std::int32_t Druckwerk::Engine::perform(Operation operation, std::span<const Argument> arguments) {
    if (operation != Operation::LlDefineFieldExt && operation != Operation::LlDefineVariableExt)
        return performOutside(operation, arguments);
    define(arguments, operation == Operation::LlDefineFieldExt);
    return kEngineSuccess;
}

/// The operations that need no job.
std::int32_t Druckwerk::Engine::performOutside(Operation operation, std::span<const Argument> arguments) {
    switch (operation) {
    case Operation::LlDefineFieldStart:
        definitions_.forget(true);
        return kEngineSuccess;
    case Operation::LlDefineVariableStart:
        definitions_.forget(false);
        return kEngineSuccess;
    case Operation::LlDefineLayout:
        return design(arguments);
    case Operation::LlPreviewSetTempPath:
        previewFolder_ = posixPath(argument<StringView>(arguments, 0));
        return kEngineSuccess;
    case Operation::LlPreviewDeleteFiles:
        return deletePreview(arguments);
    case Operation::LlSetPrinterToDefault: // the printer is chosen for each job anew, nothing is kept
        return kEngineSuccess;
    case Operation::LlPrintWithBoxStart:
        startJob(arguments);
        return kEngineSuccess;
    case Operation::LlPreviewDisplay:
    case Operation::LlStgsysStorageOpen:
    case Operation::LlStgsysStorageClose:
    case Operation::LlStgsysDrawPage:
        return fail(kNotOffered, "„" + toUtf8(nameOf(operation)) + "“ gibt es in dieser Druckausgabe nicht");
    case Operation::PrintEnd:
        dropJob();
        return kEngineSuccess;
    default:
        return performPrinting(operation, arguments);
    }
}

/// The operations of an open job.
std::int32_t Druckwerk::Engine::performPrinting(Operation operation, std::span<const Argument> arguments) {
    if (!job_)
        return fail(kWrongOrder, "„" + toUtf8(nameOf(operation)) + "“ ohne begonnenen Druck");
    if (job_->failed || isCancelled()) {
        if (operation == Operation::LlPrintEnd)
            dropJob();
        return kEngineCancelled;
    }
    switch (operation) {
    case Operation::LlPrintSetBoxText:
        showProgress(argument<StringView>(arguments, 0), argument<std::int32_t>(arguments, 1));
        return kEngineSuccess;
    case Operation::LlPrintOptionsDialog:
        return askForOptions();
    case Operation::LlPrint:
        turnPage();
        return kEngineSuccess;
    case Operation::LlPrintFields:
        if (!job_->print)
            throw Fault(kWrongOrder, "„LlPrintFields“ ohne begonnene Seite");
        return job_->print->printLine() ? kEngineSuccess : kEnginePageFull;
    case Operation::LlPrintFieldsEnd:
        if (job_->print)
            job_->print->closeTable();
        return kEngineSuccess;
    case Operation::LlPrintEnd:
        return endJob();
    default:
        return fail(kNotOffered, "Unbekannte Druckoperation");
    }
}

/// The layout of an object, or where it is not there the one that stands behind it.
std::filesystem::path Druckwerk::Engine::layoutInUse(const std::filesystem::path& objectName) const {
    if (options_->layout)
        return options_->layout->file;
    std::error_code ignored;
    const auto& behindOwn = options_->layoutsBehind;
    auto own = layoutFile(objectName);
    auto behind = behindOwn.empty() ? own : layoutFile(behindOwn / objectName.filename());
    return !std::filesystem::exists(own, ignored) && std::filesystem::exists(behind, ignored) ? behind : own;
}

Layout Druckwerk::Engine::loadLayout(const std::filesystem::path& file, const LayoutFiles& shared) {
    std::error_code ignored;
    const auto text = options_->layout                         ? options_->layout->text
                      : std::filesystem::exists(file, ignored) ? readLayoutFile(file)
                                                               : generateLayout(definitions_.list());
    std::vector<Finding> findings;
    Layout layout = readLayout(text, file.string(), shared, definitions_, findings);
    for (const auto& finding : findings)
        finding.error ? throw Fault(finding.code, finding.message) : warn(finding.message);
    for (const auto& message : unknownNames(layout, definitions_))
        warn(message);
    return layout;
}

void Druckwerk::Engine::startJob(std::span<const Argument> arguments) {
    dropJob(); // a report that stopped on an error leaves its job behind
    warned_ = {};
    lastError_ = {};
    definitions_.release();
    const std::filesystem::path objectName = posixPath(argument<StringView>(arguments, 1));
    const std::filesystem::path file = layoutInUse(objectName);
    // Layouts that stand behind share the files of the folder before them as well.
    Layout layout = loadLayout(file, {objectName.parent_path(), options_->layoutsBehind, options_->logo});
    Job& job = job_.emplace();
    job.layoutFolder = objectName.parent_path();
    job.listName = objectName.filename().string();
    job.preview = argument<std::int32_t>(arguments, 2) == kPrintModePreview;
    job.names = layout.names;
    job.layout = std::move(layout);
    if (!job.preview) {
        job.output = options_->output;
    } else {
        std::error_code error;
        std::filesystem::create_directories(previewFolder_, error);
        job.output = previewFolder_ / (job.listName + ".ll");
    }
}

std::int32_t Druckwerk::Engine::askForOptions() {
    if (!options_->optionsDialog || job_->preview)
        return kEngineSuccess;
    OptionsRequest request{job_->listName, job_->output};
    std::string message;
    const std::int32_t code = options_->optionsDialog(request, message);
    if (code == kEngineCancelled)
        dropJob();
    else if (code != kEngineSuccess)
        return fail(code, message);
    else
        job_->output = request.output;
    return code;
}

/// The text is the same for most records.
void Druckwerk::Engine::showProgress(StringView text, std::int32_t percent) {
    if (!options_->progress)
        return;
    if (text != progressText_) {
        progressText_ = text;
        progressUtf8_ = toUtf8(text);
    }
    options_->progress({progressUtf8_, percent, job_->print ? job_->print->pages() : 0});
}

void Druckwerk::Engine::turnPage() {
    if (!job_->print) {
        if (!document_->isOpen())
            openDocument();
        job_->print = std::make_unique<PrintJob>(
            std::move(*job_->layout), definitions_, document_->pdf(), job_->layoutFolder, bookmark(),
            options_->printDate, [this](const std::string& message) { warn(message); }, options_->tight,
            options_->sampled);
        job_->layout.reset();
    }
    job_->print->beginPage();
}

/// A document's file and title are those of its first job.
void Druckwerk::Engine::openDocument() {
    auto file = job_->output;
    std::unique_ptr<TemporaryFolder> folder;
    if (file.empty()) {
        if (!options_->deliver)
            throw Fault(kOutputFailed, "Für den Druck ist weder eine Datei noch ein Drucker angegeben");
        folder = newTemporaryFolder();
        file = folder->path() / (job_->listName + ".pdf");
    }
    // The document may outlive this engine.
    const auto warned = std::make_shared<MessageFilter>();
    const PdfLevel level = folder ? PdfLevel::Plain : options_->level;
    document_->open(
        file, std::move(folder), level,
        documentInfo(*options_, heading(), String(definitions_.textOf(u"FnrName1")), fromUtf8(job_->listName)),
        [options = options_, warned](const std::string& message) {
            if (const auto text = warned->pass(message); text && options->warn)
                options->warn(*text);
        });
}

std::vector<String> Druckwerk::Engine::bookmark() const {
    std::vector<String> path;
    if (options_->place != nullptr)
        for (const auto& level : options_->place->bookmark)
            path.push_back(fromUtf8(level));
    return path;
}

/// Takes out what the job has printed. A document that other jobs share keeps their pages.
void Druckwerk::Engine::dropPages() {
    job_->print.reset();
    if (!moreFollows())
        document_->drop();
}

void Druckwerk::Engine::dropJob() {
    if (job_ && job_->print)
        dropPages();
    job_.reset();
}

String Druckwerk::Engine::heading() const {
    const StringView heading = definitions_.textOf(u"Ueberschrift");
    return heading.empty() ? fromUtf8(job_->listName) : String(heading);
}

void Druckwerk::Engine::commit(AtomicFile& file) {
    try {
        file.commit();
    } catch (const std::system_error& error) {
        throw outputFault(file.target(), error);
    }
}

std::int32_t Druckwerk::Engine::endJob() {
    if (!job_->print)
        turnPage();
    job_->print->finish(heading());
    const bool preview = job_->preview;
    job_.reset();
    return moreFollows() ? kEngineSuccess : finishDocument(preview);
}

/// A preview and what goes to a printer are needed at once; any other file is its taker's.
std::int32_t Druckwerk::Engine::finishDocument(bool preview) {
    std::optional<Attachment> attachment;
    if (options_->attachment && !document_->isForPrinter())
        attachment = options_->attachment();
    auto file = document_->pdf().finish(document_->info(), attachment ? &*attachment : nullptr);
    if (memoryWasRefused())
        throw std::bad_alloc();
    if (options_->finished && !preview && !document_->isForPrinter())
        options_->finished(std::move(file));
    else
        commit(*file);
    std::int32_t code = kEngineSuccess;
    std::string message;
    if (document_->isForPrinter())
        code = options_->deliver({document_->file(), toUtf8(document_->info().title), document_->pdf().pages()},
                                 message);
    document_->drop();
    return code == kEngineSuccess ? code : fail(code, message);
}

std::int32_t Druckwerk::Engine::design(std::span<const Argument> arguments) {
    if (!options_->design)
        return fail(kDesignFailed, "Es ist kein Gestaltungsprogramm eingerichtet");
    std::string message;
    const std::filesystem::path objectName = posixPath(argument<StringView>(arguments, 3));
    const std::int32_t code =
        options_->design({toUtf8(argument<StringView>(arguments, 1)), layoutFile(objectName), definitions_.list(),
                          layoutInUse(objectName), options_->layoutsBehind},
                         message);
    return code == kEngineSuccess || code == kEngineCancelled ? code : fail(code, message);
}

std::int32_t Druckwerk::Engine::deletePreview(std::span<const Argument> arguments) const {
    const std::filesystem::path folder = posixPath(argument<StringView>(arguments, 1));
    const std::filesystem::path list = posixPath(argument<StringView>(arguments, 0));
    const auto file = folder / (list.filename().string() + ".ll");
    std::error_code error;
    std::filesystem::remove(file, error);
    if (error)
        throw Fault(kOutputFailed,
                    "Die Vorschaudatei „" + file.string() + "“ kann nicht gelöscht werden: " + error.message());
    return kEngineSuccess;
}

Druckwerk::Druckwerk(std::shared_ptr<const Options> options, std::shared_ptr<OpenDocument> document)
    : engine_(std::make_unique<Engine>(std::move(options), std::move(document))) {}
Druckwerk::~Druckwerk() = default;

std::int32_t Druckwerk::call(Operation operation, std::span<const Argument> arguments) {
    return engine_->call(operation, arguments);
}

void Druckwerk::put(std::int32_t, bool) {} // the properties that the component sets have no meaning here

ObjectRef Druckwerk::member(StringView) {
    throw RuntimeError(ErrorNumber::MemberNotFound);
}

const EngineError& Druckwerk::lastError() const {
    return engine_->lastError();
}

namespace {
class DruckwerkForm final : public Form {
  public:
    DruckwerkForm(std::shared_ptr<const Options> options, std::shared_ptr<OpenDocument> document)
        : control_(std::move(options), std::move(document)) {}
    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return {}; }
    bool visible() override { return false; }
    void hide() override {}

  private:
    Druckwerk control_;
};

} // namespace

DruckwerkFormFactory::DruckwerkFormFactory(Options options, std::shared_ptr<OpenDocument> document)
    : options_(std::make_shared<const Options>(std::move(options))), document_(std::move(document)) {
    InstalledFonts::prepare();
}

std::unique_ptr<Form> DruckwerkFormFactory::create() {
    return std::make_unique<DruckwerkForm>(options_, document_);
}

} // namespace kvtdruck::druckwerk
