#include "cli/database_command.h"

#include "cli/cancellation.h"
#include "cli/data_source.h"
#include "cli/list_tables.h"
#include "cli/outcome.h"
#include "kvtzug/database_check.h"
#include "kvtzug/database_template.h"
#include "kvtzug/schema.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

namespace kvtdruck::cli {
namespace {

using State = DatabaseCheck::State;

constexpr const char* kCheck = "pruefen";
constexpr const char* kTemplate = "vorlage";
constexpr const char* kTables = "tabellen";

const std::map<std::string, DatabaseProduct>& products() {
    static const std::map<std::string, DatabaseProduct> known{{"sqlite", DatabaseProduct::Sqlite},
                                                              {"postgresql", DatabaseProduct::PostgreSql},
                                                              {"mariadb", DatabaseProduct::MariaDb},
                                                              {"sqlserver", DatabaseProduct::SqlServer}};
    return known;
}

class DatabaseReport {
  public:
    DatabaseReport(const Options& options, Console& console) : options_(options), console_(console) {}

    int run() {
        const auto connection = openConnection(fromUtf8(options_.connectionString.empty()
                                                            ? toUtf8(sqliteConnection(fromUtf8(options_.database)))
                                                            : options_.connectionString),
                                               &cancelled());
        int done = 0;
        check_ = checkDatabase(
            *connection,
            [&](const std::string& table) {
                console_.progress({"Prüfung: " + table, 100 * done++ / int(schema().size()), 0});
            },
            &cancelled());
        tables();
        lists();
        const bool faulty = std::ranges::any_of(check_.findings, &DatabaseFinding::error);
        return faulty ? kFailed : kDone;
    }

  private:
    static std::string padded(std::string text, std::size_t width) {
        text.resize(std::max(width, text.size()), ' ');
        return text;
    }

    void tables() {
        console_.notice("Tabellen und Sichten");
        for (const auto& table : schema()) {
            const auto state = check_.tables.at(table.name);
            const bool wrong = std::ranges::any_of(check_.findings, [&](const DatabaseFinding& finding) {
                return finding.error && finding.table == table.name;
            });
            const auto* word = state == State::Missing ? "fehlt"
                               : wrong                 ? "fehlerhaft"
                               : state == State::Empty ? "leer"
                                                       : "in Ordnung";
            console_.notice("  " + padded(table.name, 20) + word);
            for (const auto& finding : check_.findings)
                if (finding.table == table.name)
                    console_.notice(std::string("    ") + (finding.error ? "Fehler: " : "Hinweis: ") +
                                    finding.text);
        }
    }

    void lists() {
        console_.notice("Listen");
        for (const auto& report : catalog::reports()) {
            const auto reason = reasonAgainst(report);
            const auto* how = report.isFedByValues() ? "druckbar mit --werte" : "druckbar";
            console_.notice("  " + padded(std::string(report.listName), 20) +
                            (reason.empty() ? how : "nicht druckbar: " + reason));
        }
    }

    /// Why a list can't be printed; empty where it can.
    std::string reasonAgainst(const catalog::ReportEntry& report) {
        if (auto reason = reasonAgainst("firma", true); !reason.empty())
            return reason;
        const auto* own = std::ranges::find(kListTables, report.listName, &ListTables::listName);
        if (own == kListTables.end())
            return {};
        for (const auto* table : own->tables)
            if (table)
                if (auto reason = reasonAgainst(table, table == own->tables.front()); !reason.empty())
                    return reason;
        return hasData(report) ? "" : "keine Firma hat Daten dafür";
    }

    std::string reasonAgainst(const std::string& table, bool needsRows) const {
        switch (check_.tables.at(table)) {
        case State::Missing:
            return table + " fehlt";
        case State::Faulty:
            return table + " ist fehlerhaft";
        case State::Empty:
            return needsRows ? table + " ist leer" : "";
        case State::Usable:
            break;
        }
        return {};
    }

    /// Whether a company has what the list selects from; accounts of the one kind are none of the other.
    bool hasData(const catalog::ReportEntry& report) {
        if (report.axes.empty())
            return true;
        DataSource source(options_, console_);
        return std::ranges::any_of(source.companies(), [&](const Company& company) {
            return !source.existing(report, std::stod(company.number))(report.axes.front(), {}).empty();
        });
    }

    const Options& options_;
    Console& console_;
    DatabaseCheck check_;
};

} // namespace

std::vector<std::string> databaseProducts() {
    std::vector<std::string> names;
    for (const auto& [name, product] : products())
        names.push_back(name);
    return names;
}

bool readsDatabase(const std::vector<std::string>& words) {
    const auto task = words.empty() ? std::string() : words.front();
    if (task.empty())
        refuse("Es fehlt, was zu tun ist: datenbank pruefen, datenbank vorlage oder datenbank tabellen.");
    if (task == kTemplate) {
        if (words.size() != 2)
            refuse("Der Aufruf ist „kvtdruck datenbank vorlage mariadb|postgresql|sqlite|sqlserver“.");
        if (!products().contains(words[1]))
            refuse("Für „" + words[1] + "“ gibt es keine Vorlage" + perhaps(words[1], databaseProducts()) +
                   "; es gibt mariadb, postgresql, sqlite und sqlserver.");
        return false;
    }
    const std::array<std::string, 3> tasks{kCheck, kTables, kTemplate};
    if (task != kCheck && task != kTables)
        refuse("Unbekannte Aufgabe „" + task + "“" + perhaps(task, tasks) + ".");
    if (words.size() > 1)
        refuse("Unbekannte Angabe „" + words[1] + "“.");
    return task == kCheck;
}

int runDatabaseCommand(const Options& options, Console& console) {
    const auto& task = options.words.front();
    if (task == kCheck)
        return DatabaseReport(options, console).run();
    console.notice(task == kTables ? describeSchema() : viewTemplate(products().at(options.words[1])));
    return kDone;
}

} // namespace kvtdruck::cli
