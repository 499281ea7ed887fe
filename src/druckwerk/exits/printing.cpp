#include "druckwerk/exits/printing.h"

#include "platform/posix/lazy_function.h"

#include <cups/cups.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace kvtdruck::druckwerk {
namespace {

constexpr const char* kLibrary = "libcups.so.2";
const LazyFunction<decltype(::cupsAddOption)> cupsAddOption(kLibrary, "cupsAddOption");
const LazyFunction<decltype(::cupsCancelJob2)> cupsCancelJob2(kLibrary, "cupsCancelJob2");
const LazyFunction<decltype(::cupsCreateJob)> cupsCreateJob(kLibrary, "cupsCreateJob");
const LazyFunction<decltype(::cupsFinishDocument)> cupsFinishDocument(kLibrary, "cupsFinishDocument");
const LazyFunction<decltype(::cupsFreeDests)> cupsFreeDests(kLibrary, "cupsFreeDests");
const LazyFunction<decltype(::cupsFreeOptions)> cupsFreeOptions(kLibrary, "cupsFreeOptions");
const LazyFunction<decltype(::cupsGetDest)> cupsGetDest(kLibrary, "cupsGetDest");
const LazyFunction<decltype(::cupsGetDests2)> cupsGetDests2(kLibrary, "cupsGetDests2");
const LazyFunction<decltype(::cupsGetOption)> cupsGetOption(kLibrary, "cupsGetOption");
const LazyFunction<decltype(::cupsLastError)> cupsLastError(kLibrary, "cupsLastError");
const LazyFunction<decltype(::cupsLastErrorString)> cupsLastErrorString(kLibrary, "cupsLastErrorString");
const LazyFunction<decltype(::cupsStartDocument)> cupsStartDocument(kLibrary, "cupsStartDocument");
const LazyFunction<decltype(::cupsWriteRequestData)> cupsWriteRequestData(kLibrary, "cupsWriteRequestData");

/// The queues as libcups lists them.
class Destinations {
  public:
    Destinations() : count_(cupsGetDests2(CUPS_HTTP_DEFAULT, &list_)) {}
    Destinations(const Destinations&) = delete;
    Destinations& operator=(const Destinations&) = delete;
    ~Destinations() { cupsFreeDests(count_, list_); }

    /// The queue of that name, the default one where the name is empty, or nullptr.
    cups_dest_t* find(const std::string& name) const {
        return cupsGetDest(name.empty() ? nullptr : name.c_str(), nullptr, count_, list_);
    }
    const cups_dest_t* begin() const { return list_; }
    const cups_dest_t* end() const { return list_ + count_; }

  private:
    cups_dest_t* list_ = nullptr;
    int count_;
};

/// The options of a job: what the queue's owner set for it, then what the user asks for.
class JobOptions {
  public:
    explicit JobOptions(const cups_dest_t& destination) {
        for (int i = 0; i < destination.num_options; ++i)
            add(destination.options[i].name, destination.options[i].value);
    }
    JobOptions(const JobOptions&) = delete;
    JobOptions& operator=(const JobOptions&) = delete;
    ~JobOptions() { cupsFreeOptions(count_, list_); }

    void add(const char* name, const std::string& value) {
        count_ = cupsAddOption(name, value.c_str(), count_, &list_);
    }
    int count() const { return count_; }
    cups_option_t* list() const { return list_; }

  private:
    int count_ = 0;
    cups_option_t* list_ = nullptr;
};

std::string optionOf(const cups_dest_t& destination, const char* name) {
    const char* value = cupsGetOption(name, destination.num_options, destination.options);
    return value ? value : "";
}

/// The queue's description; the service gives the name in its place where there is none.
std::string descriptionOf(const cups_dest_t& destination) {
    auto description = optionOf(destination, "printer-info");
    return description == destination.name ? "" : description;
}

/// German for what the print service answers; its own words for anything else.
std::string reasonOfLastError() {
    struct Reason {
        ipp_status_t status;
        std::string_view text;
    };
    static constexpr std::array kReasons{
        Reason{IPP_STATUS_ERROR_NOT_FOUND, "der Drucker ist nicht (mehr) eingerichtet"},
        Reason{IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS, "der Drucker nimmt keine Aufträge an"},
        Reason{IPP_STATUS_ERROR_NOT_AUTHENTICATED, "der Druckdienst verlangt eine Anmeldung"},
        Reason{IPP_STATUS_ERROR_NOT_AUTHORIZED, "keine Berechtigung zum Drucken"},
        Reason{IPP_STATUS_ERROR_FORBIDDEN, "keine Berechtigung zum Drucken"},
        Reason{IPP_STATUS_ERROR_DOCUMENT_FORMAT_NOT_SUPPORTED, "der Drucker nimmt kein PDF an"},
        Reason{IPP_STATUS_ERROR_REQUEST_ENTITY, "das Dokument ist dem Drucker zu groß"},
        Reason{IPP_STATUS_ERROR_SERVICE_UNAVAILABLE, "der Druckdienst (CUPS) ist nicht erreichbar"},
        Reason{IPP_STATUS_ERROR_INTERNAL, "der Druckdienst (CUPS) ist nicht erreichbar"},
        Reason{IPP_STATUS_ERROR_BUSY, "der Drucker ist beschäftigt"},
    };
    const auto* known = std::ranges::find(kReasons, cupsLastError(), &Reason::status);
    if (known != kReasons.end())
        return std::string(known->text);
    const char* own = cupsLastErrorString();
    return own ? own : "Fehler " + std::to_string(cupsLastError());
}

const char* keywordOf(Sides sides) {
    switch (sides) {
    case Sides::One:
        return CUPS_SIDES_ONE_SIDED;
    case Sides::TwoLongEdge:
        return CUPS_SIDES_TWO_SIDED_PORTRAIT;
    case Sides::TwoShortEdge:
        return CUPS_SIDES_TWO_SIDED_LANDSCAPE;
    case Sides::AsPrinter:
        break;
    }
    return nullptr;
}

void addSettings(JobOptions& options, const PrintSettings& settings) {
    if (settings.copies != 1)
        options.add(CUPS_COPIES, std::to_string(settings.copies));
    if (!settings.pages.empty())
        options.add("page-ranges", settings.pages);
    if (const char* sides = keywordOf(settings.sides))
        options.add(CUPS_SIDES, sides);
    if (!settings.tray.empty())
        options.add(CUPS_MEDIA_SOURCE, settings.tray);
}

bool send(const std::string& printer, int job, const Document& document) {
    auto status =
        cupsStartDocument(CUPS_HTTP_DEFAULT, printer.c_str(), job, document.title.c_str(), CUPS_FORMAT_PDF, 1);
    std::ifstream file(document.file, std::ios::binary);
    std::array<char, 65536> block{};
    while (status == HTTP_STATUS_CONTINUE && file) {
        file.read(block.data(), block.size());
        status = cupsWriteRequestData(CUPS_HTTP_DEFAULT, block.data(), static_cast<std::size_t>(file.gcount()));
    }
    return cupsFinishDocument(CUPS_HTTP_DEFAULT, printer.c_str()) <= IPP_STATUS_OK_EVENTS_COMPLETE &&
           status == HTTP_STATUS_CONTINUE && file.eof() && !file.bad();
}

PrintResult failure(std::string message) {
    return {kPrintingFailed, std::move(message), {}, 0};
}

std::string missingPrinter(const std::string& name) {
    if (cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE && cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND)
        return "Drucken nicht möglich: " + reasonOfLastError();
    return name.empty() ? "Es ist kein Standarddrucker eingerichtet; bitte einen Drucker nennen."
                        : "Der Drucker „" + name + "“ ist nicht eingerichtet.";
}

/// A stopped printer takes jobs and keeps them; the user should know why nothing comes out.
std::string noticeOn(const cups_dest_t& destination) {
    if (optionOf(destination, "printer-state") != std::to_string(IPP_PSTATE_STOPPED))
        return {};
    return "Der Drucker „" + std::string(destination.name) + "“ ist angehalten; der Auftrag wartet.";
}

} // namespace

std::vector<Printer> printers() {
    std::vector<Printer> result;
    for (const auto& destination : Destinations())
        if (!destination.instance)
            result.push_back({destination.name, descriptionOf(destination), destination.is_default != 0});
    return result;
}

PrintResult print(const Document& document, const PrintSettings& settings) {
    const Destinations destinations;
    const auto* destination = destinations.find(settings.printer);
    if (!destination)
        return failure(missingPrinter(settings.printer));

    JobOptions options(*destination);
    addSettings(options, settings);
    const std::string name = destination->name;
    const auto refused = [&] {
        return failure("Drucken auf „" + name + "“ nicht möglich: " + reasonOfLastError());
    };
    const int job =
        cupsCreateJob(CUPS_HTTP_DEFAULT, name.c_str(), document.title.c_str(), options.count(), options.list());
    if (job == 0)
        return refused();
    if (!send(name, job, document)) {
        auto result = refused();
        cupsCancelJob2(CUPS_HTTP_DEFAULT, name.c_str(), job, 1);
        return result;
    }
    return {0, noticeOn(*destination), name, job};
}

} // namespace kvtdruck::druckwerk
