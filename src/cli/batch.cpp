#include "cli/batch.h"

#include "cli/application_folder.h"
#include "cli/binder.h"
#include "cli/cancellation.h"
#include "cli/data_source.h"
#include "cli/field_notes.h"
#include "cli/file_names.h"
#include "cli/live_design.h"
#include "cli/workers.h"
#include "druckwerk/exits/palette.h"
#include "druckwerk/layout/layout.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <thread>

namespace kvtdruck::cli {
namespace {

using catalog::ReportEntry;
using catalog::Selection;
using catalog::Selections;

std::string textOf(double number) {
    return std::to_string(std::llround(number));
}

/// A range of selections as a word: "2024", "2023-2025", "ab2023", "" where nothing is selected.
std::string rangeText(const Selections& ranges, Selection from, Selection to) {
    const auto first = ranges.find(from);
    const auto last = ranges.find(to);
    if (first == ranges.end())
        return last == ranges.end() ? "" : "bis" + std::to_string(last->second);
    if (last == ranges.end())
        return "ab" + std::to_string(first->second);
    return std::to_string(first->second) +
           (first->second == last->second ? "" : "-" + std::to_string(last->second));
}

std::string endingOf(const Options& options) {
    return options.data ? druckwerk::endingOf(*options.data) : ".pdf";
}

/// Puts the documents of a call together.
class Planner {
  public:
    Planner(const Options& options, Console& console) : options_(options), console_(console) {}

    std::vector<PrintRequest> requests() {
        checkSelections();
        const auto lists = printable();
        std::int64_t unit = 0;
        for (const double company : companies())
            for (const auto* report : lists)
                if (unit++ % options_.part.of == options_.part.number - 1)
                    addUnit({report, company, rangesOf(*report), valuesOf(*report), {}, false});
        nameFiles();
        if (options_.record)
            for (std::size_t i = 1; i < requests_.size(); ++i)
                requests_[i].continuesRecord = true;
        return std::move(requests_);
    }

  private:
    DataSource& source() {
        if (!source_)
            source_.emplace(options_, console_);
        return *source_;
    }

    std::vector<double> companies() {
        if (!options_.allCompanies)
            return options_.companies;
        std::vector<double> numbers;
        for (const auto& company : source().companies())
            numbers.push_back(std::stod(company.number));
        return numbers;
    }

    bool severalLists() const { return options_.reports.size() > 1; }

    static bool takes(const ReportEntry& report, Selection selection) {
        return std::ranges::any_of(report.selections(),
                                   [&](const auto* option) { return option->selection == selection; });
    }

    /// Of several lists each takes what it knows; what none of them knows is a mistake.
    void checkSelections() const {
        for (const auto& option : catalog::selectionOptions())
            if (severalLists() && options_.selections.contains(option.selection) &&
                std::ranges::none_of(options_.reports,
                                     [&](const auto* report) { return takes(*report, option.selection); }))
                refuse(std::string(option.option) + " gilt für keine dieser Listen.");
    }

    Selections rangesOf(const ReportEntry& report) const {
        auto selections = options_.selections;
        if (severalLists())
            std::erase_if(selections, [&](const auto& given) { return !takes(report, given.first); });
        return catalog::rangesOf(report, selections);
    }

    std::optional<std::filesystem::path> valuesOf(const ReportEntry& report) const {
        if (!report.isFedByValues() || !options_.values)
            return std::nullopt;
        if (!std::filesystem::is_directory(*options_.values))
            return options_.values;
        auto file = *options_.values / (std::string(report.listName) + ".csv");
        const bool canDoWithout = options_.command == Command::Check && options_.allReports;
        return canDoWithout && !std::filesystem::exists(file) ? std::nullopt : std::optional(std::move(file));
    }

    /// The lists without those of "alle" that there are no values for; they are named.
    std::vector<const ReportEntry*> printable() const {
        std::vector<const ReportEntry*> lists;
        std::string missing;
        std::size_t fedByFile = 0;
        for (const auto* report : options_.reports) {
            const auto values = valuesOf(*report);
            const bool lacks = report->isFedByValues() && !options_.designs() &&
                               (!values || (options_.allReports && !std::filesystem::exists(*values)));
            fedByFile += values && values == options_.values ? 1 : 0;
            if (!lacks)
                lists.push_back(report);
            else if (!options_.allReports)
                refuse("Die Liste " + std::string(report->listName) + " braucht --werte ORDNER mit " +
                       std::string(report->listName) + ".csv.");
            else
                missing += (missing.empty() ? "" : ", ") + std::string(report->listName);
        }
        if (fedByFile > 1)
            refuse("Für mehrere Listen nennt --werte einen Ordner mit LISTE.csv für jede.");
        if (!missing.empty())
            console_.warning("Ohne Werte (--werte ORDNER mit LISTE.csv) bleiben weg: " + missing + ".");
        return lists;
    }

    void addUnit(const PrintRequest& unit) {
        const auto bound = options_.per == Per::Year       ? std::optional(Selection::YearFrom)
                           : options_.per == Per::Employee ? std::optional(Selection::EmployeeFrom)
                                                           : std::nullopt;
        const auto& axes = unit.report->axes;
        const auto axis = bound ? std::ranges::find(axes, *bound, &catalog::Axis::from) : axes.end();
        if (axis == axes.end()) {
            requests_.push_back(unit);
            return;
        }
        auto single = *axis;
        single.takes = catalog::Axis::Takes::One;
        source().show(*unit.report, unit.ranges);
        try {
            for (const auto& print :
                 planPrints(std::span(&single, 1), unit.ranges, source().existing(*unit.report, unit.company))) {
                auto request = unit;
                request.ranges = catalog::rangesOf(*unit.report, print.selections);
                requests_.push_back(std::move(request));
            }
        } catch (const NothingSelected&) {
            requests_.push_back(unit); // which says so when it is printed
        }
    }

    void nameFiles() {
        const auto pattern = options_.namePattern.empty() ? kUsualName + endingOf(options_) : options_.namePattern;
        const bool hasEnding = std::filesystem::path(pattern).extension() == endingOf(options_);
        std::set<std::filesystem::path> names;
        for (auto& request : requests_) {
            if (options_.outputFolder.empty()) {
                request.output = options_.output;
                continue;
            }
            request.output = options_.outputFolder /
                             (fileName(pattern, partsOf(request)) + (hasEnding ? "" : endingOf(options_)));
            if (!names.insert(request.output).second)
                refuse("--name: „" + pattern + "“ gibt mehreren Dateien den Namen „" +
                       request.output.filename().string() + "“.");
        }
    }

    const Options& options_;
    Console& console_;
    std::optional<DataSource> source_;
    std::vector<PrintRequest> requests_;
};

/// Prints documents in several processes and tells how far all of them are.
class Batch {
  public:
    Batch(const Options& options, std::vector<PrintRequest> requests, Console& console)
        : options_(options), requests_(std::move(requests)), console_(console) {}

    int run() {
        showProgress();
        shareWork(
            requests_.size(), processes(), [this](std::size_t work) { return print(requests_[work]); },
            [this](const WorkResult& result) { tell(result); });
        if (!failed_.empty()) {
            std::string names;
            for (const auto work : failed_)
                names += "\n  " + nameOf(requests_[work]);
            console_.error((checks() ? "Nicht in Ordnung (" : "Nicht gedruckt (") + std::to_string(failed_.size()) +
                           " von " + std::to_string(requests_.size()) + "):" + names);
        }
        if (cancelled())
            console_.warning("Abgebrochen: " + std::to_string(ended_ - failed_.size()) + " von " +
                             std::to_string(requests_.size()) + (checks() ? " sind geprüft." : " sind gedruckt."));
        return cancelled() ? kCancelled : failed_.empty() ? kDone : kFailed;
    }

  private:
    /// A printer's jobs and a record of calls have an order.
    std::size_t processes() const {
        if ((options_.outputFolder.empty() && !checks()) || options_.record)
            return 1;
        return options_.workers > 0 ? std::size_t(options_.workers)
                                    : std::max<std::size_t>(1, std::thread::hardware_concurrency());
    }

    bool checks() const { return options_.command == Command::Check; }
    /// How messages name a document; what is said about a layout holds for all companies.
    std::string nameOf(const PrintRequest& request) const {
        return checks() ? std::string(request.report->listName) : cli::nameOf(request);
    }

    int print(const PrintRequest& request) const {
        Console console;
        return withErrorsTold(console, [&] { return runReport(options_, request, console); });
    }

    void tell(const WorkResult& result) {
        ++ended_;
        if (result.exitCode == kCancelled)
            --ended_;
        else if (result.exitCode != kDone)
            failed_.insert(result.work);
        console_.pass(result.output, result.errors, nameOf(requests_[result.work]));
        showProgress();
    }

    void showProgress() {
        const auto text = std::to_string(ended_) + " von " + std::to_string(requests_.size());
        console_.progress({text, int(ended_ * 100 / requests_.size()), 0});
    }

    const Options& options_;
    std::vector<PrintRequest> requests_;
    Console& console_;
    std::size_t ended_ = 0;
    std::set<std::size_t> failed_; ///< works, in the order in which they were asked for
};

} // namespace

NameParts partsOf(const PrintRequest& request) {
    return {std::string(request.report->listName), std::string(request.report->title), textOf(request.company),
            rangeText(request.ranges, Selection::YearFrom, Selection::YearTo),
            rangeText(request.ranges, Selection::EmployeeFrom, Selection::EmployeeTo)};
}

std::string nameOf(const PrintRequest& request) {
    const auto parts = partsOf(request);
    return parts.list + ", Firma " + parts.company + (parts.year.empty() ? "" : ", " + parts.year) +
           (parts.employee.empty() ? "" : ", Mitarbeiter " + parts.employee);
}

std::vector<PrintRequest> requestsOf(const Options& options, Console& console) {
    return Planner(options, console).requests();
}

namespace {

/// A layout that someone may be drawing at.
druckwerk::LayoutText layoutIn(const std::filesystem::path& file) {
    auto text = druckwerk::readLayoutFile(file);
    bool ignored = false;
    if (auto plain = druckwerk::withoutPalette(text, ignored))
        text = std::move(*plain);
    return {std::move(text), file};
}

int listFields(const Options& options, PrintRequest request, Console& console) {
    request.defined = [&](const std::vector<druckwerk::Definition>& definitions) {
        console.notice(
            (options.asJson ? fieldsAsJson : describeFields)(*request.report, definitions, options.blank));
    };
    return runReport(options, request, console);
}

} // namespace

int printAll(const Options& options, Console& console) {
    auto requests = requestsOf(options, console);
    if (!options.outputFolder.empty())
        std::filesystem::create_directories(options.outputFolder);
    if (requests.empty())
        return kDone; // this part of the work is empty
    if (!options.binder.empty())
        return printBinders(options, requests, console);
    if (options.command == Command::Fields)
        return listFields(options, requests.front(), console);
    if (options.layout)
        requests.front().layout = layoutIn(*options.layout);
    if (options.live)
        return designLive(options, requests.front(), console);
    if (requests.size() == 1)
        return runReport(options, requests.front(), console);
    if (options.askForPrinter)
        refuse("--druckerauswahl gibt es nur für einen einzelnen Druck.");
    prepareApplicationFolder(options.folder); // once, before many need it
    return Batch(options, std::move(requests), console).run();
}

} // namespace kvtdruck::cli
