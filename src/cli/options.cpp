#include "cli/options.h"

#include "catalog/usage_error.h"
#include "platform/posix/posix_platform.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <chrono>
#include <ctime>
#include <iostream>
#include <map>
#include <regex>

namespace kvtdruck::cli {
namespace {

// Values

/// A whole number within bounds, as CLI11 checks it before it converts.
CLI::Validator wholeNumber(std::int32_t lowest, std::int32_t highest) {
    return CLI::Validator(
        [=](const std::string& text) {
            std::int32_t number = 0;
            const auto* end = text.data() + text.size();
            const auto parsed = std::from_chars(text.data(), end, number);
            const bool whole = parsed.ec == std::errc() && parsed.ptr == end;
            return whole && number >= lowest && number <= highest
                       ? std::string()
                       : "„" + text + "“ ist keine ganze Zahl von " + std::to_string(lowest) + " bis " +
                             std::to_string(highest) + ".";
        },
        "");
}

/// One of a few words, which `target` takes the meaning of.
template <class T>
void addChoice(CLI::App& command, const char* option, T& target, const std::map<std::string, T>& choices,
               const char* help) {
    std::string words;
    for (const auto& [word, meaning] : choices)
        words += (words.empty() ? "" : "|") + word;
    command
        .add_option_function<std::string>(
            option, [&target, choices](const std::string& word) { target = choices.at(word); }, help)
        ->type_name(words)
        ->check(CLI::Validator(
            [=](const std::string& word) {
                return choices.contains(word) ? std::string()
                                              : "„" + word + "“ ist nicht möglich; es gibt " + words + ".";
            },
            ""));
}

druckwerk::PrintDate dateOf(const std::tm& time) {
    return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec};
}

druckwerk::PrintDate currentDate() {
    const auto now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return dateOf(local);
}

/// A date in German or ISO form, with or without a time.
std::optional<druckwerk::PrintDate> dateIn(const std::string& text) {
    static const std::regex pattern(
        R"((?:(\d{1,2})\.(\d{1,2})\.(\d{4})|(\d{4})-(\d{2})-(\d{2}))(?:[ T](\d{1,2}):(\d{2})(?::(\d{2}))?)?)");
    std::smatch parts;
    if (!std::regex_match(text, parts, pattern))
        return std::nullopt;
    const auto number = [&](std::size_t group) { return parts[group].matched ? std::stoi(parts[group]) : 0; };
    const bool german = parts[1].matched;
    const druckwerk::PrintDate date{
        number(german ? 3 : 4), number(german ? 2 : 5), number(german ? 1 : 6), number(7), number(8), number(9)};
    const std::chrono::year_month_day day{std::chrono::year(date.year), std::chrono::month(unsigned(date.month)),
                                          std::chrono::day(unsigned(date.day))};
    return day.ok() && date.hour < 24 && date.minute < 60 && date.second < 60 ? std::optional(date) : std::nullopt;
}

// Options that several commands share

void addDatabase(CLI::App& command, Options& options) {
    auto* file = command.add_option("--datenbank", options.database, "SQLite-Datenbank");
    auto* connection = command.add_option("--verbindung", options.connectionString,
                                          "ODBC-Verbindungszeichenfolge einer anderen Datenbank");
    file->type_name("DATEI")->group("Daten")->excludes(connection);
    connection->type_name("TEXT")->group("Daten");
}

void addReport(CLI::App& command, Options& options, bool required) {
    command
        .add_option_function<std::string>(
            "LISTE",
            [&options](const std::string& name) {
                options.report = catalog::findReport(name);
                if (!options.report)
                    throw catalog::UsageError("Die Liste „" + name + "“ gibt es nicht. Gemeint ist vielleicht „" +
                                              std::string(catalog::nearestListName(name)) +
                                              "“; alle Listen nennt „kvtdruck listen“.");
            },
            "Name der Liste, siehe „kvtdruck listen“")
        ->required(required)
        ->type_name("");
}

void addSelections(CLI::App& command, Options& options) {
    addDatabase(command, options);
    command.add_option("--firma", options.company, "Firmennummer")->type_name("NUMMER")->group("Daten")->required();
    for (const auto& option : catalog::selectionOptions())
        command
            .add_option_function<std::int32_t>(
                std::string(option.option),
                [&options, selection = option.selection](std::int32_t value) {
                    options.selections[selection] = value;
                },
                std::string(option.help))
            ->type_name(std::string(option.placeholder))
            ->group("Auswahl (welche Liste was kennt, sagt „kvtdruck listen“)")
            ->check(wholeNumber(option.lowest, option.highest));
    command
        .add_option("--werte", options.valuesFile, "CSV-Datei mit den Werten der Listen, die keine Datenbank lesen")
        ->type_name("DATEI")
        ->group("Auswahl (welche Liste was kennt, sagt „kvtdruck listen“)");
}

void addGeneral(CLI::App& command, Options& options) {
    const char* group = "Allgemein";
    command
        .add_option_function<std::string>(
            "--locale",
            [&options](const std::string& name) {
                try {
                    options.locale = localeByName(name);
                } catch (const RuntimeError& error) {
                    throw catalog::UsageError("--locale " + name + ": " + toUtf8(error.description()));
                }
            },
            "Schreibweise von Zahlen und Daten, wie de-DE (Vorgabe), de-CH, en-US")
        ->type_name("NAME")
        ->group(group);
    command
        .add_option_function<std::string>(
            "--druckdatum",
            [&options](const std::string& text) {
                const auto date = dateIn(text);
                if (!date)
                    throw catalog::UsageError("--druckdatum „" + text +
                                              "“ ist kein Datum wie 31.12.2024 oder 2024-12-31 08:15.");
                options.printDate = *date;
            },
            "Druckdatum (sonst jetzt); gleiche Daten und gleiches Datum geben das gleiche PDF")
        ->type_name("DATUM")
        ->group(group);
    command
        .add_option("--ordner", options.folder, "Anwendungsordner mit den Layouts (sonst ~/.local/share/kvtdruck)")
        ->type_name("ORDNER")
        ->group(group);
    command.add_option("--protokoll", options.record, "schreibt jeden Aufruf des Druckwerks in diese Datei")
        ->type_name("DATEI")
        ->group(group);
}

void addPrinting(CLI::App& command, Options& options) {
    const char* group = "Ausgabe (ohne Angabe auf den Standarddrucker)";
    using druckwerk::DataFormat;
    using druckwerk::Sides;
    auto* output = command.add_option("--ausgabe", options.output, "Ausgabedatei");
    auto* printer = command.add_option("--drucker", options.printing.printer, "Drucker, ohne weitere Frage");
    output->type_name("DATEI")->group(group)->excludes(printer);
    printer->type_name("NAME")->group(group);
    addChoice<std::optional<DataFormat>>(
        command, "--format", options.data,
        {{"pdf", std::nullopt}, {"csv", DataFormat::Csv}, {"xlsx", DataFormat::Xlsx}, {"json", DataFormat::Json}},
        "Art der Ausgabedatei: Seiten oder die Datensätze selbst");
    command.add_flag("--druckerauswahl", options.askForPrinter, "fragt vor dem Druck nach Drucker oder Datei");
    command.add_option("--exemplare", options.printing.copies, "Zahl der Exemplare")
        ->type_name("ZAHL")
        ->check(wholeNumber(1, 9999));
    command.add_option("--seiten", options.printing.pages, "nur diese Seiten, wie 1-3,7")
        ->type_name("SEITEN")
        ->check(CLI::Validator(
            [](const std::string& text) {
                static const std::regex pattern(R"([1-9]\d{0,8}(-[1-9]\d{0,8})?(,[1-9]\d{0,8}(-[1-9]\d{0,8})?)*)");
                return std::regex_match(text, pattern) ? std::string()
                                                       : "„" + text + "“ ist kein Seitenbereich wie 1-3,7.";
            },
            ""));
    addChoice<Sides>(command, "--beidseitig", options.printing.sides,
                     {{"nein", Sides::One}, {"lang", Sides::TwoLongEdge}, {"kurz", Sides::TwoShortEdge}},
                     "beidseitig, über die lange oder die kurze Kante gewendet");
    command.add_option("--fach", options.printing.tray, "Papierfach, wie der Drucker es nennt")->type_name("NAME");
    for (const char* option : {"--format", "--druckerauswahl", "--exemplare", "--seiten", "--beidseitig", "--fach"})
        command.get_option(option)->group(group);
}

// The parser

/// CLI11's words in German.
std::shared_ptr<CLI::Formatter> germanFormatter() {
    auto formatter = std::make_shared<CLI::Formatter>();
    formatter->label("Usage", "Aufruf");
    formatter->label("OPTIONS", "OPTIONEN");
    formatter->label("SUBCOMMAND", "BEFEHL");
    formatter->label("Positionals", "Argumente");
    formatter->label("REQUIRED", "[Pflicht]");
    formatter->label("Excludes", "statt");
    formatter->column_width(34);
    return formatter;
}

std::string after(const std::string& text, const std::string& separator) {
    const auto at = text.find(separator);
    return at == std::string::npos ? text : text.substr(at + separator.size());
}

/// German for what the parser has to say about a command line. Its messages consist of the names and values in
/// question and one English phrase each.
std::string germanFor(const CLI::ParseError& error) {
    std::string text = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error))
        return "Unbekannte Angabe: " + after(text, "not expected: ");
    if (text == "A subcommand is required")
        return "Es fehlt der Befehl: drucken, vorschau, gestalten, pruefen, listen oder firmen.";
    if (dynamic_cast<const CLI::RequiredError*>(&error))
        return "Es fehlt " + text.substr(0, text.find(" is required")) + ".";
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error))
        return text.substr(0, text.find(':')) + " braucht einen Wert (und nur einen).";
    if (dynamic_cast<const CLI::ExcludesError*>(&error))
        return std::regex_replace(text, std::regex(" excludes "), " und ") + " gehen nicht zusammen.";
    if (dynamic_cast<const CLI::ConversionError*>(&error))
        return "Das ist keine Zahl: " + after(text, ": ");
    return text;
}

/// What can only be judged once all options are known.
void check(const Options& options) {
    const bool readsDatabase = options.command != Command::ListReports;
    if (readsDatabase && options.database.empty() && options.connectionString.empty())
        throw catalog::UsageError("Es fehlt die Datenbank: --datenbank DATEI oder --verbindung TEXT.");
    if (options.data && options.output.empty())
        throw catalog::UsageError("--format für Daten braucht --ausgabe DATEI.");
    if (options.data && options.askForPrinter)
        throw catalog::UsageError("--druckerauswahl gibt es nur für gedruckte Seiten.");
    const auto& printing = options.printing;
    const bool hasPrinterOptions = printing.copies != 1 || !printing.pages.empty() || !printing.tray.empty() ||
                                   printing.sides != druckwerk::Sides::AsPrinter;
    if (hasPrinterOptions && !options.output.empty() && !options.askForPrinter)
        throw catalog::UsageError(
            "--exemplare, --seiten, --beidseitig und --fach gelten nur für Drucker, nicht mit --ausgabe.");
    if (!options.report || options.command == Command::ListReports)
        return;
    const bool needsValues = options.command == Command::Print || options.command == Command::Preview;
    if (options.report->isFedByValues() && !options.valuesFile && needsValues)
        throw catalog::UsageError("Die Liste " + std::string(options.report->listName) + " braucht --werte DATEI.");
    if (!options.report->isFedByValues() && options.valuesFile)
        throw catalog::UsageError("--werte gilt nicht für die Liste " + std::string(options.report->listName) +
                                  ".");
}

void addCommands(CLI::App& app, Options& options) {
    const auto add = [&](const char* name, const char* help, Command command) -> CLI::App& {
        auto* added = app.add_subcommand(name, help)->group("Befehle");
        added->set_help_flag("-h,--hilfe,--help", "zeigt diese Hilfe");
        added->callback([&options, command] { options.command = command; });
        return *added;
    };
    auto& print = add("drucken", "druckt eine Liste auf einen Drucker oder in eine Datei", Command::Print);
    auto& preview = add("vorschau", "zeigt eine Liste im PDF-Anzeigeprogramm", Command::Preview);
    auto& design = add("gestalten", "öffnet das Layout einer Liste in Inkscape", Command::Design);
    auto& check = add("pruefen", "prüft das Layout einer Liste", Command::Check);
    for (auto* command : {&print, &preview, &design, &check}) {
        addReport(*command, options, true);
        addSelections(*command, options);
    }
    addPrinting(print, options);
    check.add_flag("--ungedruckt", options.unused, "nennt auch Variablen und Felder, die das Layout nicht druckt")
        ->group("Prüfung");
    for (auto* command : {&print, &preview, &design, &check})
        addGeneral(*command, options);
    addReport(add("listen", "nennt die Listen und ihre Auswahl", Command::ListReports), options, false);
    addDatabase(add("firmen", "nennt die Firmen der Datenbank", Command::ListCompanies), options);
}

} // namespace

std::optional<Options> parseCommandLine(int argc, const char* const* argv) {
    Options options;
    options.printDate = currentDate();
    CLI::App app("KVTDruck druckt die Auswertungen der Betriebsabrechnung.", "kvtdruck");
    app.formatter(germanFormatter());
    app.option_defaults()->group("Allgemein");
    app.set_help_flag("-h,--hilfe,--help", "zeigt diese Hilfe");
    app.set_version_flag("--version", KVTDRUCK_VERSION, "zeigt die Version");
    app.require_subcommand(1);
    addCommands(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        app.exit(success, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw catalog::UsageError(germanFor(error));
    }
    check(options);
    return options;
}

} // namespace kvtdruck::cli
