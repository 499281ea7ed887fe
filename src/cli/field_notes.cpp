#include "cli/field_notes.h"

#include "cli/json_text.h"
#include "cli/list_tables.h"
#include "cli/text_columns.h"
#include "kvtzug/schema.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace kvtdruck::cli {
namespace {

using druckwerk::Definition;
using druckwerk::FieldNote;

/// Letters of the column of values; a longer one moves the rest of its line.
constexpr std::size_t kWidestValue = 30;

/// Names that the component makes itself, or that are called otherwise than the column that feeds them.
const std::map<std::string_view, const char*>& ownNames() {
    static const std::map<std::string_view, const char*> kNames{
        {"Ueberschrift", "Überschrift der Liste"},
        {"Firmennummer", "Nummer der Firma"},
        {"Fuerjahr", "Jahr, vierstellig; 0 für alle Jahre"},
        {"FuerJahr", "Jahr, vierstellig; 0 für alle Jahre"},
        {"UebMitte", "Zeitraum in Worten, etwa „Für alle Jahre“"},
        {"Seitenwechsel", "Kennzeichen: 2 am Anfang einer neuen Gruppe, sonst 1"},
        {"Waehrung", "Währung der Beträge, etwa EUR"},
        {"FWaehr", "Währung der Beträge, etwa EUR"},
        {"FnrAnschriftGes", "Firma: ganze Anschrift in einer Zeile"},
        {"FnzPlz", "Firma: Postleitzahl"},
        {"MonatIst", "Ist des gewählten Monats, Währung"},
        {"MonatSoll", "Soll des gewählten Monats, Währung"},
        {"MonatText", "Name des gewählten Monats"},
        {"ADat", "Austritt; leer, solange beschäftigt"},
        {"EDat", "Eintritt"},
        {"GDat", "Geburtsdatum"},
        {"SStd", "Berechenbare Stunden, Soll"},
        {"IStd", "Berechenbare Stunden, Ist"},
        {"DStd", "Berechenbare Stunden, Differenz Ist minus Soll"},
        {"DStdPr", "Berechenbare Stunden, Differenz in Prozent des Solls"},
        {"Tel1", "Telefon"},
        {"Tel2", "Telefon, zweite Nummer"},
        {"Tel3", "Telefon, dritte Nummer"},
        {"IBerSzdTag", "Berechenbare Stunden je Tag der Anwesenheit, Ist"},
        {"SBerSzdTag", "Berechenbare Stunden je Tag der Anwesenheit, Soll"},
    };
    return kNames;
}

std::string columnMeaning(const catalog::ReportEntry& report, std::string_view name) {
    const auto tables = std::ranges::find(kListTables, report.listName, &ListTables::listName);
    if (tables == kListTables.end())
        return {};
    for (const auto* table : tables->tables)
        if (const auto* known = table ? findTable(table) : nullptr)
            if (const auto* column = known->find(name))
                return column->meaning;
    return {};
}

std::string meaningOf(const catalog::ReportEntry& report, std::string_view name) {
    const auto column = std::ranges::find(report.columns, name, &catalog::ValueColumn::name);
    if (column != report.columns.end())
        return std::string(column->meaning);
    if (const auto own = ownNames().find(name); own != ownNames().end())
        return own->second;
    constexpr std::string_view kLetterhead = "Fnr";
    if (name.starts_with(kLetterhead))
        if (const auto* known = findTable("firma")->find(name.substr(kLetterhead.size())))
            return "Firma: " + known->meaning;
    return columnMeaning(report, name);
}

/// The digits that the shipped layouts print: amounts and hours two decimals, days and percentages one, what is
/// counted or is a key none.
std::string patternOf(const Definition& definition, const std::string& meaning) {
    const auto tells = [&](std::string_view word) { return meaning.find(word) != std::string::npos; };
    if (!definition.numeric) {
        const bool isDate = meaning.starts_with("Datum") || meaning.starts_with("Geburtsdatum") ||
                            meaning.starts_with("Eintritt") || meaning.starts_with("Austritt");
        return isDate ? "TT.MM.JJJJ" : "";
    }
    if (tells("Postleitzahl"))
        return "00000";
    for (const auto* word : {"ummer", "Konto", "vierstellig", "1 bis 12", "Kennzeichen", "0 Aufwand"})
        if (tells(word))
            return "0";
    if (meaning == "Jahr" || meaning == "Geschäftsjahr")
        return "0";
    for (const auto* word : {"Prozent", "Tage", "tage", "Köpfe"})
        if (tells(word))
            return "0,0";
    return "#.##0,00";
}

const char* typeOf(const Definition& definition, const FieldNote& note) {
    return definition.numeric ? "Zahl" : note.pattern.empty() ? "Text" : "Datum";
}

FieldNote fieldNote(const catalog::ReportEntry& report, const Definition& definition) {
    auto meaning = meaningOf(report, definition.name);
    auto pattern = patternOf(definition, meaning);
    return {std::move(meaning), std::move(pattern)};
}

std::string placeholderOf(const catalog::ReportEntry& report, const Definition& definition) {
    const auto pattern = fieldNote(report, definition).pattern;
    return "{{" + definition.name + (pattern.empty() ? "" : "|" + pattern) + "}}";
}

const char* kindOf(const Definition& definition) {
    return definition.field ? "Feld" : "Variable";
}

} // namespace

druckwerk::FieldNotes fieldNotes(const catalog::ReportEntry& report) {
    return [&report](const Definition& definition) { return fieldNote(report, definition); };
}

std::string describeFields(const catalog::ReportEntry& report, const std::vector<Definition>& definitions,
                           bool blank) {
    std::size_t name = 0;
    std::size_t value = 0;
    for (const auto& definition : definitions) {
        name = std::max(name, lettersOf(placeholderOf(report, definition)));
        value = std::max(value, std::min(lettersOf(definition.value), kWidestValue));
    }
    std::string text = std::string(report.listName) + ": " + std::string(report.title) + "\n";
    for (const bool field : {false, true}) {
        text += field ? "Felder (in jeder Zeile andere)\n" : "Variablen\n";
        for (const auto& definition : definitions) {
            if (definition.field != field)
                continue;
            const auto note = fieldNote(report, definition);
            text += "  " + padded(placeholderOf(report, definition), name) + padded(typeOf(definition, note), 5) +
                    (blank ? "" : padded(definition.value, value)) + note.meaning + "\n";
        }
    }
    return text;
}

std::string fieldsAsJson(const catalog::ReportEntry& report, const std::vector<Definition>& definitions,
                         bool blank) {
    std::vector<std::string> fields;
    for (const auto& definition : definitions) {
        const auto note = fieldNote(report, definition);
        fields.push_back(jsonObject({{"name", jsonText(definition.name)},
                                     {"art", jsonText(kindOf(definition))},
                                     {"typ", jsonText(typeOf(definition, note))},
                                     {"wert", blank ? "null" : jsonText(definition.value)},
                                     {"bedeutung", jsonText(note.meaning)},
                                     {"muster", jsonText(note.pattern)}}));
    }
    return jsonObject(
        {{"liste", jsonText(report.listName)}, {"titel", jsonText(report.title)}, {"felder", jsonArray(fields)}});
}

} // namespace kvtdruck::cli
