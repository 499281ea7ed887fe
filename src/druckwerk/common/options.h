// The surroundings that an engine is given: where its output goes and whom it asks and tells.
#pragma once

#include "druckwerk/common/attachment.h"
#include "druckwerk/common/definition.h"
#include "druckwerk/common/engine_codes.h"
#include "druckwerk/common/layout_text.h"
#include "druckwerk/common/pdf_level.h"
#include "druckwerk/common/print_date.h"
#include "platform/posix/atomic_file.h"
#include "values/locale.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// What a print has shown of its layout, element by element (layout/layout_sample.h).
struct LayoutSample;

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
    std::filesystem::path source;        ///< what is printed with now: the layout, or the one that stands behind it
    std::filesystem::path behind;        ///< the folder of layouts that stand behind those of the layout's own
    const LayoutSample* sample = nullptr; ///< what the layout shows in the place of placeholders
};

/// How a job's pages go into a document that several jobs share: one behind the other, with page numbers and an
/// outline that run through.
struct JobPlace {
    /// The next job goes on in the same document, which stays open. Read when a job ends.
    bool more = false;
    /// The entries of the outline around the job's own, outermost first. Read when the job's first page begins.
    std::vector<std::string> bookmark;
};

/// A field with less room than a text needs that was to be printed into it.
struct TightField {
    std::string_view place; ///< file, line, layer and element
    std::string text;
    bool lines = false; ///< it has too few lines; otherwise the text is too wide
    double needed = 0;  ///< width in points, or lines
    double room = 0;    ///< the same that there is
};
using TightFieldSink = std::function<void(const TightField&)>;

/// Takes what the print of a job has shown of its layout.
using SampleSink = std::function<void(const LayoutSample&)>;

/// Takes a file that is complete and not yet in its place.
using FinishedSink = std::function<void(std::unique_ptr<AtomicFile>)>;

/// Surroundings of the engine. Texts are UTF-8; every hook may be empty and is called on the caller's thread.
struct Options {
    /// The PDF file that a print job writes. Empty: the document goes to `deliver`.
    std::filesystem::path output;
    /// Takes the complete file of a job, which has its place once it is committed. Where this is empty, a job that
    /// has ended well commits it.
    FinishedSink finished;
    /// Hands a finished document to a printer; answers 0 or an engine code, having put its message into `message`.
    std::function<std::int32_t(const Document& document, std::string& message)> deliver;
    /// The file that a finished document carries along; asked for when its last job has ended.
    std::function<Attachment()> attachment;
    /// Lets the user choose printer or file before a job; answers 0, -99 or an engine code.
    std::function<std::int32_t(OptionsRequest& request, std::string& message)> optionsDialog;
    /// Opens the designer and waits for its end; answers 0 or an engine code.
    std::function<std::int32_t(const DesignRequest& request, std::string& message)> design;
    std::function<void(const Progress&)> progress;
    /// Takes German warnings, each one once a job.
    std::function<void(std::string_view)> warn;
    /// Takes every text that is cut, or shrunk beyond what can be read well, for want of room.
    TightFieldSink tight;
    /// Takes what each job that has printed a line has shown of its layout.
    SampleSink sampled;
    /// Takes the error behind every error code that an operation answers.
    std::function<void(const EngineError&)> error;
    /// Set from anywhere (a signal handler) to cancel the job in hand.
    const std::atomic<bool>* cancelled = nullptr;
    /// The place of the job in hand, which the owner may change from job to job. Without it every job makes a
    /// document of its own.
    const JobPlace* place = nullptr;
    /// The folder of the layouts that stand behind those which are not in their own; empty: none does.
    std::filesystem::path layoutsBehind;
    /// The company's picture in the letterhead, PNG or JPEG; empty: none.
    std::filesystem::path logo;
    /// What every job is printed with, whatever lies in those folders; nothing: what lies there.
    std::optional<LayoutText> layout;
    PrintDate printDate;
    /// What a file is to conform to; what goes to a printer is plain.
    PdfLevel level = PdfLevel::Archive;
    /// What tells this document from others of its list, for its title, such as "2024"; may be empty.
    std::string period;
    /// What was selected, for whoever searches an archive, such as "Jahr 2024, Konto von 4100"; may be empty.
    std::string selection;
    /// The notation in which the report hands over numbers and dates, and in which they are printed.
    Locale locale = germanLocale();
    std::string creator = "KVTDruck";
};

} // namespace kvtdruck::druckwerk
