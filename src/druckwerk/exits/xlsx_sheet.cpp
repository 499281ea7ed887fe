#include "druckwerk/exits/xlsx_sheet.h"

#include "values/code_points.h"

#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace kvtdruck::druckwerk {
namespace {

/// Text of XML (https://www.w3.org/TR/xml/#charsets): U+FFFD stands for what that can't hold. What looks like the
/// format's own way of writing a character, "_x0041_", is written in it.
std::string escaped(StringView text) {
    const String whole = wellFormed(text);
    String out;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const char16_t c = whole[i];
        if (c == u'&')
            out += u"&amp;";
        else if (c == u'<')
            out += u"&lt;";
        else if (c == u'>')
            out += u"&gt;";
        else if (c == u'\r')
            out += u"&#13;"; // a reader would take it for a line end otherwise
        else if ((c < 0x20 && c != u'\t' && c != u'\n') || c >= 0xFFFE)
            out += u'\xFFFD';
        else if (whole.compare(i, 2, u"_x") == 0 && i + 6 < whole.size() && whole[i + 6] == u'_')
            out += u"_x005F_";
        else
            out += c;
    }
    return toUtf8(out);
}

} // namespace

std::string columnName(std::size_t column) {
    std::string name;
    for (++column; column > 0; column = (column - 1) / 26)
        name.insert(name.begin(), static_cast<char>('A' + (column - 1) % 26));
    return name;
}

Sheet::Sheet(std::string name, std::size_t number)
    : name_(std::move(name)), entry_("xl/worksheets/sheet" + std::to_string(number) + ".xml") {
    entry_.write(std::string(kXmlHead) + "<worksheet xmlns=\"" + std::string(kMainNames) + "\"><sheetData>");
}

void Sheet::beginRow() {
    ++rows_;
    columns_ = 0;
    row_ = "<row r=\"" + std::to_string(rows_) + "\">";
}

void Sheet::number(double value) {
    beginCell();
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    row_ += "\"><v>";
    row_.append(digits.data(), end);
    row_ += "</v></c>";
}

void Sheet::text(StringView value, bool heading) {
    if (value.empty()) {
        ++columns_; // an empty cell is left out
        return;
    }
    beginCell();
    row_ += heading ? "\" s=\"1\" t=\"inlineStr\"><is><t" : "\" t=\"inlineStr\"><is><t";
    const bool keepsBlanks = value.find_first_of(u" \t\n") != StringView::npos;
    row_ += keepsBlanks ? " xml:space=\"preserve\">" : ">";
    row_ += escaped(value) + "</t></is></c>";
}

void Sheet::endRow() {
    row_ += "</row>";
    entry_.write(row_);
}

const ZipEntry& Sheet::finish() {
    entry_.write("</sheetData></worksheet>");
    entry_.finish();
    return entry_;
}

void Sheet::beginCell() {
    if (columns_ == kMostColumns)
        throw std::runtime_error("Eine XLSX-Datei fasst höchstens 16.384 Spalten");
    row_ += "<c r=\"" + columnName(columns_++) + std::to_string(rows_);
}

} // namespace kvtdruck::druckwerk
