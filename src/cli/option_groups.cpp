#include "cli/option_groups.h"

#include "cli/help_text.h"
#include "cli/library_versions.h"
#include "platform/posix/posix_platform.h"
#include "values/runtime_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace kvtdruck::cli {
namespace {

constexpr const char* kAll = "alle";

/// One option with a value; `take` is handed its text, and throws where it means nothing.
CLI::Option* addValue(CLI::App& command, const char* group, const std::string& names, const char* placeholder,
                      const std::string& help, const std::function<void(const std::string&)>& take) {
    return command.add_option_function<std::string>(names, take, help)->type_name(placeholder)->group(group);
}

template <class T>
std::function<void(const std::string&)> into(T& target) {
    return [&target](const std::string& text) { target = text; };
}

void addDatabase(CLI::App& command, Options& options) {
    const char* group = "Daten";
    addValue(command, group, "-d,--datenbank", "DATEI", "SQLite-Datenbank", into(options.database));
    addValue(command, group, "--verbindung", "TEXT", "statt dessen: ODBC-Verbindungszeichenfolge einer Datenbank",
             into(options.connectionString));
    addValue(command, group, "--kennwort-datei", "DATEI",
             "Datei mit dem Kennwort zur Verbindung (sonst aus KVTDRUCK_KENNWORT)", into(options.password.file));
    command.add_flag("--kennwort-fragen", options.password.ask, "fragt nach dem Kennwort zur Verbindung")
        ->group(group);
}

void takeReport(Options& options, const std::string& name) {
    if (name == kAll) {
        options.allReports = true;
        for (const auto& report : catalog::reports())
            options.reports.push_back(&report);
        return;
    }
    const auto* report = catalog::findReportLike(name);
    if (!report) {
        std::vector<std::string> names;
        for (const auto& known : catalog::reports())
            names.insert(names.end(), {std::string(known.listName), std::string(known.title)});
        refuse("Die Liste „" + name + "“ gibt es nicht" + perhaps(name, names) +
               "; alle Listen nennt „kvtdruck listen“.");
    }
    if (std::ranges::find(options.reports, report) == options.reports.end())
        options.reports.push_back(report);
}

void addReports(CLI::App& command, Options& options, const char* help) {
    command
        .add_option_function<std::vector<std::string>>(
            "LISTE",
            [&options](const std::vector<std::string>& names) {
                for (const auto& name : names)
                    takeReport(options, name);
            },
            help)
        ->type_name("");
}

void addSelections(CLI::App& command, Options& options, bool batches) {
    const char* group = "Auswahl (welche Liste was kennt, sagt „kvtdruck listen“)";
    addDatabase(command, options);
    addValue(command, "Daten", "-f,--firma", "NUMMER",
             batches ? "Firmennummer, mehrere wie 1,7,9 oder „alle“" : "Firmennummer",
             [&](const std::string& text) {
                 options.companies = companiesIn(text);
                 options.allCompanies = options.companies.empty();
             });
    for (const auto& option : catalog::selectionOptions()) {
        const auto name = std::string(option.option);
        const auto names = option.selection == catalog::Selection::Year    ? "-j," + name
                           : option.selection == catalog::Selection::Month ? "-m," + name
                                                                           : name;
        addValue(command, group, names, option.placeholder.data(), std::string(option.help),
                 [&options, &option](const std::string& text) {
                     options.selections[option.selection] =
                         wholeNumber(option.option, text, option.lowest, option.highest);
                 });
    }
    addValue(command, group, "-w,--werte", "DATEI",
             "CSV-Datei mit den Werten der Listen, die keine Datenbank lesen, oder ein Ordner mit LISTE.csv",
             [&](const std::string& text) { options.values = text; });
}

void addFolder(CLI::App& command, Options& options) {
    addValue(command, "Allgemein", "--ordner", "ORDNER",
             "Anwendungsordner mit eigenen Layouts (sonst ~/.local/share/kvtdruck)",
             [&](const std::string& text) { options.folder = text; });
}

void addGeneral(CLI::App& command, Options& options) {
    const char* group = "Allgemein";
    addValue(command, group, "--locale", "NAME",
             "Schreibweise von Zahlen und Daten, wie de-DE (Vorgabe), de-CH, en-US", [&](const std::string& name) {
                 try {
                     options.locale = localeByName(name);
                 } catch (const RuntimeError& error) {
                     refuse("--locale " + name + ": " + toUtf8(error.description()));
                 }
             });
    addValue(command, group, "--druckdatum", "DATUM",
             "Druckdatum (sonst jetzt); gleiche Daten und gleiches Datum geben das gleiche PDF",
             [&](const std::string& text) { options.printDate = dateIn(text); });
    addFolder(command, options);
    addValue(command, group, "--logo", "DATEI",
             "Logo im Briefkopf, PNG oder JPEG (sonst logo-FIRMA.png oder logo.png neben der Datenbank)",
             into(options.logo));
    addValue(command, group, "--protokoll", "DATEI", "schreibt jeden Aufruf des Druckwerks in diese Datei",
             [&](const std::string& text) { options.record = text; });
    command
        .add_flag("--ausfuehrlich,--ausführlich", options.verbose, "nennt bei Fehlern auch die Stelle im Programm")
        ->group(group);
}

void addFiles(CLI::App& command, Options& options) {
    using druckwerk::DataFormat;
    const char* group = "Ausgabe (ohne Angabe auf den Standarddrucker)";
    addValue(command, group, "-o,--ausgabe", "DATEI", "Ausgabedatei; ihre Endung sagt, ob Seiten oder Daten",
             [&](const std::string& text) { options.output = text; });
    addValue(command, group, "-n,--nach", "ORDNER", "eine Ausgabedatei für jede Liste und Firma in diesen Ordner",
             [&](const std::string& text) { options.outputFolder = text; });
    addValue(command, group, "--mappe", "DATEI",
             "alles in ein PDF, mit Deckblatt, Inhaltsverzeichnis, Lesezeichen und durchlaufenden Seitenzahlen",
             [&](const std::string& text) { options.binder = text; });
    addValue(command, group, "--name", "MUSTER",
             "Name der Dateien in --nach, mit {liste}, {titel}, {firma}, {jahr}, {mitarbeiter}",
             into(options.namePattern));
    addValue(command, group, "--je", "firma|jahr|mitarbeiter", "eine eigene Datei in --nach für jeden Wert",
             [&](const std::string& text) {
                 options.per = choiceIn<Per>(
                     "--je", text, {{"firma", Per::Company}, {"jahr", Per::Year}, {"mitarbeiter", Per::Employee}});
             });
    addValue(command, group, "--format", "csv|json|pdf|xlsx", "Art der Ausgabedatei, wo keine Endung sie sagt",
             [&](const std::string& text) {
                 options.data = choiceIn<std::optional<DataFormat>>("--format", text,
                                                                    {{"pdf", std::nullopt},
                                                                     {"csv", DataFormat::Csv},
                                                                     {"xlsx", DataFormat::Xlsx},
                                                                     {"json", DataFormat::Json}});
             });
    addValue(command, group, "--pdf", "archiv|einfach",
             "PDF/A-3u für das Archiv (Vorgabe), oder ohne dessen Zusätze", [&](const std::string& text) {
                 using druckwerk::PdfLevel;
                 options.level = choiceIn<PdfLevel>("--pdf", text,
                                                    {{"archiv", PdfLevel::Archive}, {"einfach", PdfLevel::Plain}});
             });
    command
        .add_flag("--barrierefrei", options.accessible,
                  "zeichnet im PDF aus, was Überschrift, Tabelle, Bild ist, zum Vorlesen: PDF/A-3a und PDF/UA-1")
        ->group(group);
    addValue(command, group, "--beilage", "csv|json|xlsx", "legt die Datensätze als Datei in das PDF",
             [&](const std::string& text) {
                 options.attachment = choiceIn<DataFormat>(
                     "--beilage", text,
                     {{"csv", DataFormat::Csv}, {"json", DataFormat::Json}, {"xlsx", DataFormat::Xlsx}});
             });
    command
        .add_flag_callback(
            "--csv-wortgetreu", [&options] { options.formulas = druckwerk::Formulas::Keep; },
            "lässt in CSV Texte, wie sie sind, auch die, die eine Tabellenkalkulation ausführt")
        ->group(group);
    addValue(command, group, "--teil", "K/N", "nur der K-te von N Teilen der Arbeit, für mehrere Rechner",
             [&](const std::string& text) { options.part = partIn(text); });
    addValue(command, group, "--prozesse", "ZAHL",
             "wie viele Dateien zugleich entstehen (sonst so viele wie Kerne)",
             [&](const std::string& text) { options.workers = wholeNumber("--prozesse", text, 1, 1024); });
}

void addPrinter(CLI::App& command, Options& options) {
    using druckwerk::Sides;
    const char* group = "Drucker";
    addValue(command, group, "-p,--drucker", "NAME", "Drucker, ohne weitere Frage", into(options.printing.printer));
    command.add_flag("--druckerauswahl", options.askForPrinter, "fragt vor dem Druck nach Drucker oder Datei")
        ->group(group);
    addValue(command, group, "--exemplare", "ZAHL", "Zahl der Exemplare",
             [&](const std::string& text) { options.printing.copies = wholeNumber("--exemplare", text, 1, 9999); });
    addValue(command, group, "--seiten", "SEITEN", "nur diese Seiten, wie 1-3,7; auch in eine Datei",
             [&](const std::string& text) { options.printing.pages = pagesIn(text); });
    addValue(command, group, "--beidseitig", "nein|lang|kurz",
             "beidseitig, über die lange oder die kurze Kante gewendet", [&](const std::string& text) {
                 options.printing.sides = choiceIn<Sides>(
                     "--beidseitig", text,
                     {{"nein", Sides::One}, {"lang", Sides::TwoLongEdge}, {"kurz", Sides::TwoShortEdge}});
             });
    addValue(command, group, "--fach", "NAME", "Papierfach, wie der Drucker es nennt", into(options.printing.tray));
}

constexpr const char* kDatabaseExamples = R"(Beispiele:
  kvtdruck datenbank vorlage postgresql > sichten.sql
  kvtdruck datenbank pruefen -d musterbau.sqlite)";
constexpr const char* kImportExamples = R"(Beispiele:
  kvtdruck einlesen konten konten.csv -d firma.sqlite --probe
  kvtdruck einlesen umsatz umsatz.csv -d firma.sqlite --anlegen)";

void addWords(CLI::App& command, Options& options, const char* name, const char* help) {
    command
        .add_option_function<std::vector<std::string>>(
            name, [&options](const std::vector<std::string>& words) { options.words = words; }, help)
        ->type_name("");
}

/// The commands about a database of one's own; `add` adds one.
template <class Add>
void addDatabaseCommands(Add&& add, Options& options) {
    auto& database = add("datenbank", "prüft eine eigene Datenbank, oder gibt die Vorlage ihrer Sichten",
                         Command::Database, kDatabaseExamples);
    addWords(database, options, "AUFGABE", "pruefen; vorlage mariadb|postgresql|sqlite|sqlserver; tabellen");
    addDatabase(database, options);
    auto& import = add("einlesen", "liest CSV-Dateien in eine SQLite-Datenbank", Command::Import, kImportExamples);
    addWords(import, options, "TABELLE",
             "Tabelle und CSV-Dateien; die Tabellen nennt „kvtdruck datenbank tabellen“");
    addValue(import, "Daten", "-d,--datenbank", "DATEI", "SQLite-Datenbank", into(options.database));
    import.add_flag("--probe", options.tryOnly, "prüft alles und ändert nichts")->group("Daten");
    import.add_flag("--anlegen", options.creates, "legt die Datenbank und fehlende Tabellen an")->group("Daten");
}

constexpr const char* kPrintExamples = R"(Beispiele:
  kvtdruck drucken Umsatz -d musterbau.sqlite -f 1 -j 2024 -o Umsatz.pdf
  kvtdruck drucken MaStKost -d musterbau.sqlite -f 1 --mitarbeiter-von 5 --mitarbeiter-bis 7 -o Blätter.pdf
  kvtdruck drucken alle -d musterbau.sqlite -f alle -j 2024 --nach Auswertungen
  kvtdruck drucken GemeinK -d musterbau.sqlite -f 1 --je jahr --nach Auswertungen --format xlsx
  kvtdruck drucken alle -d musterbau.sqlite -f 1 -j 2024 --mappe Jahr2024.pdf
  kvtdruck drucken --auftrag monatsabschluss.toml)";

void addDesignFlags(CLI::App& design, CLI::App& check, Options& options) {
    design
        .add_flag("--live", options.live,
                  "prüft und druckt das Layout bei jedem Speichern; das Anzeigeprogramm zeigt die Seiten")
        ->group("Gestaltung");
    design
        .add_flag("--beispielwerte", options.samplesOnly,
                  "frischt nur auf, was das Layout in Inkscape zeigt, und öffnet es nicht")
        ->group("Gestaltung");
    check.add_flag("--ungedruckt", options.unused, "nennt auch Variablen und Felder, die das Layout nicht druckt")
        ->group("Prüfung");
    addValue(check, "Prüfung", "--layout", "DATEI", "prüft diese Datei statt des Layouts der Liste",
             [&](const std::string& text) { options.layout = text; });
}

template <class Add>
void addLayouts(Add&& add, Options& options) {
    auto& layouts = add("layouts", "nennt mitgelieferte und eigene Layouts und was sie unterscheidet",
                        Command::Layouts, "Beispiel:\n  kvtdruck layouts Umsatz --zurueck");
    addReports(layouts, options, "Name oder Titel der Liste");
    addFolder(layouts, options);
    layouts.add_flag("--mitgeliefert", options.returnsToInstalled, "legt das eigene Layout zu den früheren")
        ->group("Layouts");
    layouts.add_flag("--zurueck,--zurück", options.takesBack, "nimmt das letzte frühere Layout wieder")
        ->group("Layouts");
}

std::string example(const std::string& text) {
    return "Beispiel:\n  kvtdruck " + text;
}

/// The commands about one list's layout and its pages on the screen; gives the one that lists its fields.
template <class Add>
CLI::App& addDesigning(Add&& add, Options& options) {
    auto& preview = add("vorschau", "zeigt eine Liste im PDF-Anzeigeprogramm", Command::Preview,
                        example("vorschau GemeinK -d musterbau.sqlite -f 1 -j 2024 -m 3"));
    auto& design = add("gestalten", "öffnet das Layout einer Liste in Inkscape", Command::Design,
                       example("gestalten Umsatz -d musterbau.sqlite -f 1") +
                           "\n  kvtdruck gestalten Umsatz -d musterbau.sqlite -f 1 -j 2024 --live");
    auto& check = add("pruefen", "prüft Layouts", Command::Check,
                      example("pruefen") + "\n  kvtdruck pruefen Umsatz -d musterbau.sqlite -f 1");
    auto& fields = add("felder", "nennt die Variablen und Felder einer Liste", Command::Fields,
                       example("felder Umsatz") + "\n  kvtdruck felder Umsatz -d musterbau.sqlite -f 1");
    for (auto* command : {&preview, &design, &check, &fields}) {
        addReports(*command, options,
                   command == &check ? "Namen oder Titel der Listen, ohne Angabe alle"
                                     : "Name oder Titel der Liste");
        addSelections(*command, options, false);
    }
    addDesignFlags(design, check, options);
    for (auto* command : {&preview, &design, &check, &fields})
        addGeneral(*command, options);
    return fields;
}

} // namespace

void addCommands(CLI::App& app, Options& options) {
    app.name("kvtdruck");
    app.description("KVTDruck druckt die Auswertungen der Betriebsabrechnung.");
    app.formatter(germanHelp());
    app.option_defaults()->group("Allgemein");
    app.set_help_flag("-h,--hilfe,--help", "zeigt diese Hilfe");
    app.set_version_flag("-V,--version", versionText, "zeigt die Version und die der Bibliotheken");
    app.footer("Mehr zu einem Befehl sagt „kvtdruck BEFEHL --hilfe“.");
    app.require_subcommand(1);
    const auto add = [&](const char* name, const char* help, Command command,
                         const std::string& examples) -> CLI::App& {
        auto* added = app.add_subcommand(name, help)->group("Befehle");
        added->set_help_flag("-h,--hilfe,--help", "zeigt diese Hilfe");
        added->footer(examples);
        added->callback([&options, command] { options.command = command; });
        return *added;
    };
    auto& print = add("drucken", "druckt Listen auf einen Drucker oder in Dateien", Command::Print, kPrintExamples);
    // Taken out before the rest is parsed; here for the help.
    print.add_option("--auftrag", "statt allem anderen: eine TOML-Datei mit einem oder mehreren Drucken")
        ->type_name("DATEI")
        ->group("Auftragsdatei");
    addReports(print, options, "Namen oder Titel der Listen, oder „alle“");
    addSelections(print, options, true);
    addFiles(print, options);
    addPrinter(print, options);
    addGeneral(print, options);
    auto& fields = addDesigning(add, options);
    auto& lists =
        add("listen", "nennt die Listen und ihre Auswahl", Command::ListReports, example("listen GemeinK"));
    addReports(lists, options, "Name oder Titel der Liste");
    auto& companies = add("firmen", "nennt die Firmen der Datenbank", Command::ListCompanies,
                          example("firmen -d musterbau.sqlite"));
    addDatabase(companies, options);
    addDatabaseCommands(add, options);
    for (auto* command : {&lists, &companies, &fields})
        addValue(*command, "Ausgabe", "--format", "text|json", "Text (Vorgabe), oder JSON für Programme",
                 [&](const std::string& text) {
                     options.asJson = choiceIn<bool>("--format", text, {{"text", false}, {"json", true}});
                 });
    addLayouts(add, options);
}

} // namespace kvtdruck::cli
