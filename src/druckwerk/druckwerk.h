// The embedded report engine: the control's operations on SVG layouts, with PDF as its output.
#pragma once

#include "control/control.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// Result codes of this engine, beside success, page full and cancelled (docs/engine-errors.md).
enum EngineCode : std::int32_t {
    kWrongOrder = -1,        ///< an operation without an open print job, or a second job in an open one
    kWrongArguments = -2,    ///< number or types of the arguments
    kLayoutUnreadable = -20, ///< the layout file is there but can't be read
    kLayoutMalformed = -21,  ///< the layout is no well-formed SVG
    kLayoutInvalid = -22,    ///< a band, field, pattern or expression of the layout is wrong
    kLayoutRefused = -23,    ///< the layout asks for something that is never done (external files, too large, …)
    kOutputFailed = -30,     ///< the document can't be written
    kPrintingFailed = -31,   ///< the printer or its queue refuses the document
    kNoFont = -32,           ///< not a single usable font is installed
    kDesignFailed = -40,     ///< the designer can't be opened
    kNotOffered = -50,       ///< this engine has no such operation
};

/// What went wrong, for the user.
struct EngineError {
    std::int32_t code = 0;
    std::string message; ///< German, UTF-8; with file, line and reason where they are known
    bool operator==(const EngineError&) const = default;
};

/// The user's time at which a document is printed; the same input with the same date gives the same bytes.
struct PrintDate {
    int year = 2000;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// One variable or field as the report defined it.
struct Definition {
    std::string name;
    std::string value;
    bool numeric = false;
    bool field = false;
};

/// How far a print job is.
struct Progress {
    std::string_view text;
    int percent = 0;
    int page = 0;
};

/// A finished document on its way to a printer.
struct Document {
    std::filesystem::path file; ///< PDF; deleted after the call
    std::string title;          ///< what the queue shows
    int pages = 0;
};

/// The print job that an options dialog is about.
struct OptionsRequest {
    std::string listName;
    std::filesystem::path output; ///< in and out: the PDF file to write; empty for a printer
};

/// What a designer is opened on.
struct DesignRequest {
    std::string title;
    std::filesystem::path layout;        ///< the layout's file, which may not be there yet
    std::vector<Definition> definitions; ///< in the order in which the report defined them
};

/// How a job's pages go into a document that several jobs share: one behind the other, with page numbers and an
/// outline that run through.
struct JobPlace {
    /// The next job goes on in the same document, which stays open. Read when a job ends.
    bool more = false;
    /// The entries of the outline around the job's own, outermost first. Read when the job's first page begins.
    std::vector<std::string> bookmark;
};

/// Surroundings of the engine. Texts are UTF-8; every hook may be empty and is called on the caller's thread.
struct Options {
    /// The PDF file that a print job writes. Empty: the document goes to `deliver`.
    std::filesystem::path output;
    /// Hands a finished document to a printer; answers 0 or an engine code, having put its message into `message`.
    std::function<std::int32_t(const Document& document, std::string& message)> deliver;
    /// Lets the user choose printer or file before a job; answers 0, -99 or an engine code.
    std::function<std::int32_t(OptionsRequest& request, std::string& message)> optionsDialog;
    /// Opens the designer and waits for its end; answers 0 or an engine code.
    std::function<std::int32_t(const DesignRequest& request, std::string& message)> design;
    std::function<void(const Progress&)> progress;
    /// Takes German warnings, each one once a job.
    std::function<void(std::string_view)> warn;
    /// Takes the error behind every error code that an operation answers.
    std::function<void(const EngineError&)> error;
    /// Set from anywhere (a signal handler) to cancel the job in hand.
    const std::atomic<bool>* cancelled = nullptr;
    /// The place of the job in hand, which the owner may change from job to job. Without it every job makes a
    /// document of its own.
    const JobPlace* place = nullptr;
    PrintDate printDate;
    std::string creator = "KVTDruck";
};

/// A document that stays open between the jobs that share it. It is dropped, and its file with it, when it was not
/// finished.
class OpenDocument;

/// One control of the embedded engine. It holds the variables and fields, and at most one open print job.
class Druckwerk final : public Control {
  public:
    /// Jobs that share a document find it in `document`; without it they can share one within this control only.
    explicit Druckwerk(std::shared_ptr<const Options> options, std::shared_ptr<OpenDocument> document = {});
    ~Druckwerk() override;

    using Control::call;
    std::int32_t call(Operation operation, std::span<const Argument> arguments) override;
    void put(std::int32_t dispatchId, bool value) override;
    ObjectRef member(StringView name) override;

    /// The error behind the last error code; without one, code 0.
    const EngineError& lastError() const;

  private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

/// Makes forms that carry the embedded engine. They have no window. The forms of one factory share the open
/// document.
class DruckwerkFormFactory final : public FormFactory {
  public:
    explicit DruckwerkFormFactory(Options options);
    std::unique_ptr<Form> create() override;

  private:
    std::shared_ptr<const Options> options_;
    std::shared_ptr<OpenDocument> document_;
};

/// The file system's path for a path as the component composes it ("\" between its parts).
std::filesystem::path nativePath(StringView path);

/// The layout file that belongs to an object name.
std::filesystem::path layoutFile(StringView objectName);

/// One thing to say about a layout.
struct Finding {
    bool error = false; ///< prevents printing; otherwise a warning
    std::int32_t code = 0;
    std::string message; ///< German, with file, line, layer and element where they are known
};

/// Everything that can be said about the layout `file`, given what the report defines; nothing is printed.
std::vector<Finding> checkLayout(const std::filesystem::path& file, const std::vector<Definition>& definitions);

/// A sound layout (SVG text) for the variables and fields given: letterhead, heading, table or sheet, page numbers.
std::string generateLayout(const std::vector<Definition>& definitions);

} // namespace kvtdruck::druckwerk
