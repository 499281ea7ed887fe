#include "cli/options.h"

#include "catalog/usage_error.h"
#include "cli/command_words.h"
#include "cli/database_command.h"
#include "cli/option_groups.h"
#include "cli/presets.h"
#include "cli/settings_file.h"
#include "platform/posix/atomic_file.h"
#include "values/letters.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>

namespace kvtdruck::cli {
namespace {

using druckwerk::DataFormat;

bool fillsFiles(const Options& options) {
    return !options.output.empty() || !options.outputFolder.empty() || !options.binder.empty();
}

/// What the ending of a file says about its kind; nothing for an ending that says nothing.
std::optional<std::optional<DataFormat>> formatOf(const std::filesystem::path& file) {
    static const std::map<std::string, std::optional<DataFormat>> kEndings{{".pdf", std::nullopt},
                                                                           {".csv", DataFormat::Csv},
                                                                           {".xlsx", DataFormat::Xlsx},
                                                                           {".json", DataFormat::Json}};
    const auto found = kEndings.find(asciiLower(file.extension().string()));
    if (found == kEndings.end())
        return std::nullopt;
    return std::optional<std::optional<DataFormat>>(std::in_place, found->second);
}

/// The format follows the ending; a --format that says something else is a mistake.
void settleFormat(Options& options, bool formatGiven) {
    const auto name = !options.binder.empty()  ? options.binder
                      : options.output.empty() ? std::filesystem::path(options.namePattern)
                                               : options.output;
    const auto told = formatOf(name);
    if (!told)
        return;
    if (formatGiven && *told != options.data)
        refuse("--format und die Endung von „" + name.string() + "“ widersprechen sich.");
    options.data = *told;
}

void checkReports(const Options& options) {
    if (options.command != Command::Print && options.command != Command::Check && options.reports.size() > 1)
        refuse("Mehrere Listen auf einmal gibt es nur mit „drucken“ und „pruefen“.");
    if (options.reports.size() > 1)
        return; // each list takes what it knows, which is checked where the work is divided
    const auto& report = *options.reports.front();
    const auto name = std::string(report.listName);
    if (report.isFedByValues() && !options.values && !options.designs())
        refuse("Die Liste " + name + " braucht --werte DATEI.");
    if (!report.isFedByValues() && options.values)
        refuse("--werte gilt nicht für die Liste " + name + ".");
    catalog::rangesOf(report, options.selections);
}

void checkCompanies(const Options& options) {
    if (options.companies.empty() && !options.allCompanies)
        refuse("Es fehlt --firma NUMMER; die Firmen nennt „kvtdruck firmen“.");
    if (options.command != Command::Print && options.companies.size() != 1)
        refuse("Mehrere Firmen auf einmal gibt es nur mit „drucken“.");
}

void checkPassword(const Options& options) {
    if (!options.connectionString.empty())
        return;
    for (const auto& [option, given] : {std::pair("--kennwort-datei", !options.password.file.empty()),
                                        std::pair("--kennwort-fragen", options.password.ask)})
        if (given)
            refuse(std::string(option) + " gilt nur mit --verbindung.");
}

/// A binder has everything in it, as pages.
void checkBinder(const Options& options) {
    if (!options.output.empty() || !options.outputFolder.empty() || !options.printing.printer.empty() ||
        options.askForPrinter)
        refuse("--mappe geht nicht mit --ausgabe, --nach, --drucker und --druckerauswahl zusammen.");
    if (options.per == Per::Company && options.binder.filename().string().find("{firma}") == std::string::npos)
        refuse("--je firma braucht {firma} im Namen der Mappe.");
    if (options.data || !options.printing.pages.empty() || options.part.of > 1)
        refuse("--mappe ist ein ganzes PDF: --format, --seiten und --teil gelten nicht dafür.");
    if (options.attachment)
        refuse("--beilage gibt es für einzelne Listen, nicht mit --mappe.");
    if (options.command == Command::Print && isSameFile(options.binder, options.database))
        refuse("--mappe würde die Datei " + options.database + " überschreiben, aus der gelesen wird.");
}

/// What is put together from finished documents has no structure that could be relied on.
void settleLevel(Options& options) {
    if (!options.accessible)
        return;
    if (options.level == druckwerk::PdfLevel::Plain)
        refuse("--barrierefrei geht nicht mit --pdf einfach zusammen.");
    if (!options.binder.empty() || !options.printing.pages.empty())
        refuse("--barrierefrei gibt es nur für ganze Dokumente einer Liste, nicht mit --mappe und --seiten.");
    if (options.command == Command::Print && (options.data || !fillsFiles(options)))
        refuse("--barrierefrei gibt es nur für PDF-Dateien, mit --ausgabe DATEI oder --nach ORDNER.");
    options.level = druckwerk::PdfLevel::Accessible;
}

void checkOutput(const Options& options) {
    if (!options.binder.empty())
        checkBinder(options);
    const bool severalFiles = options.reports.size() > 1 || options.companies.size() > 1 || options.allCompanies;
    if (!options.output.empty() && !options.outputFolder.empty())
        refuse("--ausgabe und --nach gehen nicht zusammen.");
    if (fillsFiles(options) && !options.printing.printer.empty())
        refuse("--ausgabe und --nach gehen nicht mit --drucker zusammen.");
    if (!options.output.empty() && severalFiles)
        refuse("Mehrere Listen oder Firmen kommen nicht in eine Datei; --nach ORDNER legt für jede eine an, "
               "--mappe DATEI bindet alle zusammen.");
    const bool onePerCompany = !options.binder.empty() && options.per == Per::Company;
    if (((options.per && !onePerCompany) || !options.namePattern.empty()) && options.outputFolder.empty())
        refuse("--je und --name gelten nur mit --nach ORDNER.");
    if (options.data && !fillsFiles(options))
        refuse("--format für Daten braucht --ausgabe DATEI oder --nach ORDNER.");
    if (options.attachment && (options.data || !fillsFiles(options)))
        refuse("--beilage gibt es nur für PDF-Dateien, mit --ausgabe DATEI oder --nach ORDNER.");
    if (options.data && !options.printing.pages.empty())
        refuse("--seiten gilt für Seiten, nicht für Daten.");
    if (options.askForPrinter && (options.data || !options.outputFolder.empty()))
        refuse("--druckerauswahl gibt es nur für gedruckte Seiten.");
    const auto& printing = options.printing;
    const bool hasPrinterOptions =
        printing.copies != 1 || !printing.tray.empty() || printing.sides != druckwerk::Sides::AsPrinter;
    if (hasPrinterOptions && fillsFiles(options) && !options.askForPrinter)
        refuse("--exemplare, --beidseitig und --fach gelten nur für Drucker, nicht für Dateien.");
}

void checkLayouts(const Options& options) {
    if (options.reports.size() > 1)
        refuse("„layouts“ nennt eine Liste oder keine.");
    if ((options.returnsToInstalled || options.takesBack) && options.reports.empty())
        refuse("--mitgeliefert und --zurueck brauchen eine Liste.");
    if (options.returnsToInstalled && options.takesBack)
        refuse("--mitgeliefert und --zurueck gehen nicht zusammen.");
}

void checkImport(const Options& options) {
    if (options.words.size() < 2)
        refuse("Der Aufruf ist „kvtdruck einlesen TABELLE DATEI … --datenbank DATEI“; die Tabellen nennt „kvtdruck "
               "datenbank tabellen“.");
    if (options.database.empty())
        refuse("Es fehlt --datenbank DATEI; eingelesen wird in eine SQLite-Datenbank.");
}

/// Without a list a check is of all.
void completeCheck(Options& options) {
    if (options.layout && options.reports.size() != 1)
        refuse("--layout braucht die Liste, zu der die Datei gehört.");
    if (!options.reports.empty())
        return;
    options.allReports = true;
    for (const auto& report : catalog::reports())
        options.reports.push_back(&report);
}

/// Without a word about data blank ones do.
void settleBlank(Options& options) {
    constexpr double kAnyCompany = 1;
    options.blank = !options.hasData() && options.companies.empty() && options.selections.empty();
    if (options.blank)
        options.companies = {kAnyCompany};
}

void checkData(const Options& options) {
    if (!options.hasData() && !options.blank)
        refuse("Es fehlt die Datenbank: --datenbank DATEI oder --verbindung TEXT.");
    if (!options.database.empty() && !options.connectionString.empty())
        refuse("--datenbank und --verbindung gehen nicht zusammen.");
    checkPassword(options);
}

/// What can only be judged once all options are known.
void check(Options& options, bool formatGiven) {
    if (options.command == Command::ListReports) {
        if (options.reports.size() > 1)
            options.reports.clear(); // all of them
        return;
    }
    if (options.command == Command::Layouts)
        return checkLayouts(options);
    if (options.command == Command::Import)
        return checkImport(options);
    if (options.command == Command::Database && !readsDatabase(options.words))
        return;
    if (options.live && options.samplesOnly)
        refuse("--live und --beispielwerte gehen nicht zusammen.");
    const bool needsReport = options.command != Command::ListCompanies && options.command != Command::Database;
    if (options.command == Command::Check)
        completeCheck(options);
    if (options.command == Command::Check || options.command == Command::Fields)
        settleBlank(options);
    if (needsReport && options.reports.empty())
        refuse("Es fehlt die Liste; alle Listen nennt „kvtdruck listen“.");
    checkData(options);
    if (!needsReport)
        return;
    settleFormat(options, formatGiven);
    checkReports(options);
    checkCompanies(options);
    checkOutput(options);
    settleLevel(options);
}

} // namespace

namespace {

/// The commands with their options, and what parsing them gives.
class Parser {
  public:
    Parser() {
        options_.printDate = currentDate();
        addCommands(app_, options_);
    }

    const CLI::App& app() const { return app_; }

    /// Nothing where help or the version was asked for.
    std::optional<Options> parse(Words words, const Presets& presets) {
        checkWords(app_, words);
        words = withPresets(app_, std::move(words), presets);
        std::ranges::reverse(words); // as the library takes them
        try {
            app_.parse(std::move(words));
        } catch (const CLI::Success& success) {
            app_.exit(success, std::cout, std::cerr);
            return std::nullopt;
        } catch (const CLI::RequiredError&) {
            refuse("Es fehlt der Befehl: " + commandNames(app_) + ".");
        } catch (const CLI::ParseError& error) { // whatever the words before did not show
            refuse("Der Aufruf ist nicht zu verstehen (" + std::string(error.what()) + ").");
        }
        const auto* format = app_.get_subcommands().front()->get_option_no_throw("--format");
        check(options_, format && format->count() > 0);
        return options_;
    }

  private:
    Options options_;
    CLI::App app_;
};

constexpr const char* kLists = "listen";

/// One print of a job file; what stands in its own table goes before what stands above all.
Options jobOf(const Settings& own, const Settings& general, const Presets& presets) {
    Words words{"drucken"};
    const auto& settings = own.contains(kLists) ? own : general;
    if (const auto lists = settings.find(kLists); lists != settings.end())
        words.insert(words.end(), lists->second.begin(), lists->second.end());
    Parser parser;
    words = withPresets(parser.app(), std::move(words), presetsOf(own));
    return parser.parse(std::move(words), either(presetsOf(general), presets)).value();
}

/// The prints of a job file, checked all of them before the first one begins. Paths in it begin at its own folder.
std::vector<Options> jobsIn(const std::filesystem::path& file, const Presets& presets) {
    auto keys = optionKeys(Parser().app(), "drucken");
    keys.emplace_back(kLists);
    const auto content = readSettings(file, keys);
    if (content.prints.empty())
        refuse(file.string() + ": Es fehlt [[druck]]; jeder Druck beginnt damit.");
    std::vector<Options> jobs;
    for (const auto& print : content.prints) {
        try {
            jobs.push_back(jobOf(print.settings, content.general, presets));
        } catch (const catalog::UsageError& error) {
            refuse(file.string() + ", Druck in Zeile " + std::to_string(print.line) + ": " + error.what());
        }
    }
    if (file.has_parent_path())
        std::filesystem::current_path(file.parent_path());
    return jobs;
}

/// The file that "drucken --auftrag DATEI" names.
std::optional<std::string> jobFileIn(const Words& words) {
    constexpr std::string_view kAttached = "--auftrag=";
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool attached = words[i].starts_with(kAttached);
        if (!attached && words[i] != "--auftrag")
            continue;
        if (words.front() != "drucken" || words.size() != (attached ? 2u : 3u) || i != 1)
            refuse("Der Aufruf ist „kvtdruck drucken --auftrag DATEI“; alles Übrige steht in der Datei.");
        return attached ? words[i].substr(kAttached.size()) : words[2];
    }
    return std::nullopt;
}

} // namespace

std::vector<Options> parseCommandLine(int argc, const char* const* argv) {
    const auto presets = userPresets(Parser().app());
    const auto words = withHelpAsOption({argv + 1, argv + argc});
    if (const auto file = jobFileIn(words))
        return jobsIn(*file, presets);
    const auto options = Parser().parse(words, presets);
    return options ? std::vector{*options} : std::vector<Options>{};
}

} // namespace kvtdruck::cli
