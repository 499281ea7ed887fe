#include "druckwerk/exits/xlsx_sheet.h"

#include "druckwerk/common/xml_text.h"

#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace kvtdruck::druckwerk {
namespace {

/// Text of a cell. What looks like the format's own way of writing a character, "_x0041_", is written in it.
std::string cellText(StringView text) {
    String out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool looksWritten = text.substr(i, 2) == u"_x" && i + 6 < text.size() && text[i + 6] == u'_';
        looksWritten ? out += u"_x005F_" : out += text[i];
    }
    return xmlText(out);
}

std::string digits(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

/// What stands before a table's rows: one page wide, the headings frozen, the columns as wide as they are to be.
std::string beginningOf(const SheetLook& look) {
    const auto below = std::to_string(look.headRow + 1);
    std::string text =
        "<sheetPr><pageSetUpPr fitToPage=\"1\"/></sheetPr><sheetViews><sheetView "
        "showGridLines=\"0\" workbookViewId=\"0\"><pane ySplit=\"" +
        std::to_string(look.headRow) + "\" topLeftCell=\"A" + below +
        "\" activePane=\"bottomLeft\" state=\"frozen\"/><selection pane=\"bottomLeft\" activeCell=\"A" + below +
        "\" sqref=\"A" + below + "\"/></sheetView></sheetViews><cols>";
    for (std::size_t i = 0; i < look.widths.size(); ++i) {
        const auto number = std::to_string(i + 1);
        text.append("<col min=\"").append(number).append("\" max=\"").append(number).append("\" width=\"");
        text.append(std::to_string(look.widths[i])).append("\" customWidth=\"1\"/>");
    }
    return text + "</cols>";
}

/// A4, as many pages as the rows take; at the foot the sheet's name, the day and the page. Lengths are inches.
std::string printSetup(const SheetLook& look) {
    return std::string("<pageMargins left=\"0.6\" right=\"0.6\" top=\"0.6\" bottom=\"0.7\" header=\"0.3\" "
                       "footer=\"0.3\"/><pageSetup paperSize=\"9\" orientation=\"") +
           (look.landscape ? "landscape" : "portrait") +
           "\" fitToWidth=\"1\" fitToHeight=\"0\"/><headerFooter><oddFooter>&amp;L&amp;A&amp;C&amp;D&amp;RSeite "
           "&amp;P von "
           "&amp;N</oddFooter></headerFooter>";
}

} // namespace

std::string columnName(std::size_t column) {
    std::string name;
    for (++column; column > 0; column = (column - 1) / 26)
        name.insert(name.begin(), static_cast<char>('A' + (column - 1) % 26));
    return name;
}

Sheet::Sheet(std::string name, std::size_t number, std::optional<SheetLook> look)
    : name_(std::move(name)), number_(number), look_(std::move(look)),
      entry_("xl/worksheets/sheet" + std::to_string(number) + ".xml") {
    entry_.write(std::string(kXmlHead) + "<worksheet xmlns=\"" + std::string(kMainNames) + "\">" +
                 (look_ ? beginningOf(*look_) : "") + "<sheetData>");
}

void Sheet::beginRow(unsigned height) {
    ++rows_;
    columns_ = 0;
    row_ = "<row r=\"" + std::to_string(rows_) + "\"";
    row_ += height > 0 ? " ht=\"" + std::to_string(height) + "\" customHeight=\"1\">" : ">";
}

void Sheet::number(double value, CellStyle style) {
    beginCell(style);
    row_ += "><v>" + digits(value) + "</v></c>";
}

void Sheet::text(StringView value, CellStyle style) {
    if (value.empty())
        return empty(style);
    beginCell(style);
    const bool keepsBlanks = value.find_first_of(u" \t\n") != StringView::npos;
    row_ += keepsBlanks ? " t=\"inlineStr\"><is><t xml:space=\"preserve\">" : " t=\"inlineStr\"><is><t>";
    row_ += cellText(value) + "</t></is></c>";
}

void Sheet::formula(std::string_view formula, std::optional<double> value, CellStyle style) {
    beginCell(style);
    row_ += value ? ">" : " t=\"str\">";
    row_.append("<f>").append(formula).append("</f><v>");
    row_ += (value ? digits(*value) : "") + "</v></c>";
}

void Sheet::empty(CellStyle style) {
    if (style == kPlain) {
        ++columns_; // it is left out
        return;
    }
    beginCell(style);
    row_ += "/>";
}

void Sheet::endRow() {
    row_ += "</row>";
    entry_.write(row_);
}

void Sheet::filterRows() {
    filter_ =
        "A" + std::to_string(look_->headRow) + ":" + columnName(look_->widths.size() - 1) + std::to_string(rows_);
}

const ZipEntry& Sheet::finish() {
    entry_.write("</sheetData>");
    if (!filter_.empty())
        entry_.write("<autoFilter ref=\"" + filter_ + "\"/>");
    if (look_)
        entry_.write(printSetup(*look_));
    entry_.write("</worksheet>");
    entry_.finish();
    return entry_;
}

void Sheet::beginCell(CellStyle style) {
    if (columns_ == kMostColumns)
        throw std::runtime_error("Eine XLSX-Datei fasst höchstens 16.384 Spalten");
    row_ += "<c r=\"" + columnName(columns_++) + std::to_string(rows_) + "\"";
    if (style != kPlain)
        row_ += " s=\"" + std::to_string(style) + "\"";
}

} // namespace kvtdruck::druckwerk
