#include "cli/report_list.h"

#include "cli/json_text.h"
#include "cli/text_columns.h"

#include <algorithm>

namespace kvtdruck::cli {
namespace {

std::string selectionsOf(const catalog::ReportEntry& report) {
    if (report.isFedByValues())
        return "--werte";
    std::string text;
    for (const auto* option : report.selections())
        text += (text.empty() ? "" : " ") + std::string(option->option);
    return text;
}

std::string_view nameOf(catalog::ValueColumn::Rows rows) {
    switch (rows) {
    case catalog::ValueColumn::Rows::First:
        return "erste Zeile";
    case catalog::ValueColumn::Rows::Second:
        return "zweite Zeile";
    case catalog::ValueColumn::Rows::Each:
        return "jede Zeile";
    }
    return {};
}

} // namespace

namespace {

std::string asJson(const catalog::ReportEntry& report) {
    std::vector<std::string> selections;
    for (const auto* option : report.selections())
        selections.push_back(jsonObject({{"option", jsonText(option->option)},
                                         {"wert", jsonText(option->placeholder)},
                                         {"bedeutung", jsonText(option->help)},
                                         {"von", std::to_string(option->lowest)},
                                         {"bis", std::to_string(option->highest)}}));
    std::vector<std::string> columns;
    for (const auto& column : report.columns)
        columns.push_back(jsonObject({{"nummer", std::to_string(column.column)},
                                      {"name", jsonText(column.name)},
                                      {"zeilen", jsonText(nameOf(column.rows))},
                                      {"bedeutung", jsonText(column.meaning)}}));
    return jsonObject({{"name", jsonText(report.listName)},
                       {"titel", jsonText(report.title)},
                       {"hinweis", jsonText(report.note)},
                       {"auswahl", jsonArray(selections)},
                       {"spalten", jsonArray(columns)}});
}

} // namespace

std::string reportsAsJson(const std::vector<const catalog::ReportEntry*>& reports) {
    std::vector<std::string> texts;
    for (const auto& report : catalog::reports())
        if (reports.empty() || std::ranges::find(reports, &report) != reports.end())
            texts.push_back(asJson(report));
    return jsonArray(texts);
}

std::string describeReports() {
    std::size_t name = 0;
    std::size_t title = 0;
    for (const auto& report : catalog::reports()) {
        name = std::max(name, lettersOf(report.listName));
        title = std::max(title, lettersOf(report.title));
    }
    std::string text;
    for (const auto& report : catalog::reports()) {
        auto line = padded(report.listName, name) + padded(report.title, title) + selectionsOf(report);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string describeReport(const catalog::ReportEntry& report) {
    auto text = std::string(report.listName) + ": " + std::string(report.title) + "\n";
    if (!report.note.empty())
        text += std::string(report.note) + "\n";
    for (const auto* option : report.selections())
        text += "  " + padded(std::string(option->option) + " " + std::string(option->placeholder), 26) +
                std::string(option->help) + "\n";
    if (report.isFedByValues())
        text += "Spalten der Datei für --werte:\n";
    for (const auto& column : report.columns)
        text += "  " + padded(std::to_string(column.column), 2) + padded(column.name, 15) +
                padded(nameOf(column.rows), 12) + std::string(column.meaning) + "\n";
    return text;
}

} // namespace kvtdruck::cli
