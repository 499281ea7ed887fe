#include "druckwerk/exits/xlsx_styles.h"

#include "druckwerk/exits/xlsx_sheet.h"

#include <array>
#include <string_view>

namespace kvtdruck::druckwerk {
namespace {

/// Patterns of numbers by `CellFormat`, in the notation of the file format (ECMA-376-1, 18.8.31), which knows
/// English signs alone. A zero is a dash, as on the page.
constexpr std::array<std::string_view, 11> kPatterns{
    "General",
    "0",
    "#,##0.00;\\-#,##0.00;\\–",
    "\\+#,##0.00;\\-#,##0.00;\\–",
    "0.0;\\-0.0;\\–",
    "\\+0.0;\\-0.0;\\–",
    "0.00;\\-0.00;\\–",
    "#,##0.0;\\-#,##0.0;\\–",
    "dd\\.mm\\.yyyy",
    "General",
    "00000",
};
constexpr CellStyle kFirstOfFormats = 5;
/// Numbers below belong to the patterns that every spreadsheet has.
constexpr unsigned kFirstOwnPattern = 164;

std::string cell(std::size_t pattern, unsigned font, unsigned fill, unsigned border, std::string_view alignment) {
    const auto number = kPatterns[pattern] == "General" ? 0 : kFirstOwnPattern + unsigned(pattern);
    const auto attribute = [](const char* name, unsigned value) {
        return " " + std::string(name) + "=\"" + std::to_string(value) + "\"";
    };
    return "<xf" + attribute("numFmtId", number) + attribute("fontId", font) + attribute("fillId", fill) +
           attribute("borderId", border) +
           " xfId=\"0\" applyNumberFormat=\"1\" applyFont=\"1\" applyFill=\"1\" applyBorder=\"1\"" +
           (alignment.empty() ? "/>" : " applyAlignment=\"1\"><alignment " + std::string(alignment) + "/></xf>");
}

std::string font(const char* size, bool bold) {
    return std::string("<font>") + (bold ? "<b/>" : "") + "<sz val=\"" + size +
           "\"/><name val=\"Calibri\"/></font>";
}

std::string cells() {
    constexpr std::string_view kLeft = "horizontal=\"left\" indent=\"1\" vertical=\"bottom\" wrapText=\"1\"";
    constexpr std::string_view kRight = "horizontal=\"right\" vertical=\"bottom\" wrapText=\"1\"";
    std::string text = cell(0, 0, 0, 0, {}) + cell(0, 1, 0, 0, {}) + cell(0, 2, 0, 0, {}) +
                       cell(0, 1, 2, 1, kLeft) + cell(0, 1, 2, 1, kRight);
    for (std::size_t pattern = 0; pattern < kPatterns.size(); ++pattern) {
        // Texts keep clear of the numbers to their left.
        const auto alignment = kPatterns[pattern] == "General" ? "horizontal=\"left\" indent=\"1\"" : "";
        text += cell(pattern, 0, 0, 0, alignment) + cell(pattern, 1, 0, 2, alignment);
    }
    return text;
}

std::string patterns() {
    std::string text;
    for (std::size_t i = 0; i < kPatterns.size(); ++i)
        text += "<numFmt numFmtId=\"" + std::to_string(kFirstOwnPattern + i) + "\" formatCode=\"" +
                std::string(kPatterns[i]) + "\"/>";
    return "<numFmts count=\"" + std::to_string(kPatterns.size()) + "\">" + text + "</numFmts>";
}

} // namespace

CellStyle styleOf(CellFormat format, bool total) {
    return kFirstOfFormats + 2 * CellStyle(format) + (total ? 1 : 0);
}

std::string stylesPart() {
    const auto count = std::to_string(kFirstOfFormats + 2 * kPatterns.size());
    return std::string(kXmlHead) + "<styleSheet xmlns=\"" + std::string(kMainNames) + "\">" + patterns() +
           "<fonts count=\"3\">" + font("11", false) + font("11", true) + font("16", true) +
           "</fonts><fills count=\"3\"><fill><patternFill patternType=\"none\"/></fill>"
           "<fill><patternFill patternType=\"gray125\"/></fill><fill><patternFill patternType=\"solid\">"
           "<fgColor rgb=\"FFE8EEF5\"/></patternFill></fill></fills>"
           "<borders count=\"3\"><border><left/><right/><top/><bottom/><diagonal/></border>"
           "<border><left/><right/><top/><bottom style=\"thin\"/><diagonal/></border>"
           "<border><left/><right/><top style=\"thin\"/><bottom/><diagonal/></border></borders>"
           "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
           "<cellXfs count=\"" +
           count + "\">" + cells() +
           "</cellXfs><cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>"
           "</styleSheet>";
}

} // namespace kvtdruck::druckwerk
