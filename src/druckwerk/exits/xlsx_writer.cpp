// Workbooks as ECMA-376 describes them, with the least that every spreadsheet reads: rows of numbers and of texts
// that stand in their cells. They are written here and not by a library, for those that keep memory flat say
// nothing of rows that a full disk has swallowed.
#include "druckwerk/exits/xlsx_writer.h"

#include "druckwerk/exits/xlsx_sheet.h"
#include "druckwerk/exits/zip_writer.h"
#include "values/code_points.h"

#include <initializer_list>
#include <utility>

namespace kvtdruck::druckwerk {
namespace {

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

constexpr std::string_view kPackage = "http://schemas.openxmlformats.org/package/2006/";
constexpr std::string_view kOffice = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr std::string_view kType = "application/vnd.openxmlformats-officedocument.spreadsheetml.";

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// Two formats of a cell: the plain one, and the bold one of headings, which is number 1.
std::string styles() {
    return std::string(kXmlHead) + "<styleSheet xmlns=" + quoted(kMainNames) +
           "><fonts count=\"2\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font>"
           "<font><b/><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
           "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
           "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
           "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
           "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
           "<cellXfs count=\"2\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
           "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyFont=\"1\"/></cellXfs>"
           "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" "
           "builtinId=\"0\"/></cellStyles></styleSheet>";
}

class XlsxWriter final : public RecordWriter {
  public:
    XlsxWriter(AtomicFile& file, Contents contents, std::function<void(std::string_view)> warn)
        : file_(file), contents_(std::move(contents)), warn_(std::move(warn)) {}

    void variables(std::span<const NamedValue> values) override {
        ++section_;
        row(variables_, values);
    }
    void record(std::span<const NamedValue> values) override { row(fields_, values); }
    void finish() override;

  private:
    /// What is continued from sheet to sheet.
    struct Series {
        explicit Series(std::string name) : title(std::move(name)) {}
        std::string title;
        int sheets = 0;
        Sheet* sheet = nullptr;
        std::vector<String> names;
    };

    void row(Series& series, std::span<const NamedValue> values);
    void addSheet(Series& series);
    StringView fitting(StringView value) const;
    void writeParts(ZipWriter& archive) const;

    AtomicFile& file_;
    Contents contents_;
    std::function<void(std::string_view)> warn_;
    std::vector<std::unique_ptr<Sheet>> sheets_;
    Series variables_{"Variablen"};
    Series fields_{"Felder"};
    int section_ = 0;
};

void XlsxWriter::row(Series& series, std::span<const NamedValue> values) {
    if (series.sheet == nullptr || series.sheet->rows() + 2 > kMostRows) // a line of names and one of values
        addSheet(series);
    Sheet& sheet = *series.sheet;
    if (takeNames(series.names, values)) {
        sheet.beginRow();
        sheet.text(u"Abschnitt", true);
        for (const auto& name : series.names)
            sheet.text(fitting(name), true);
        sheet.endRow();
    }
    sheet.beginRow();
    sheet.number(section_);
    for (const auto& value : values) {
        if (const auto number = numberOf(value, contents_))
            sheet.number(*number);
        else
            sheet.text(fitting(value.text), false);
    }
    sheet.endRow();
}

void XlsxWriter::addSheet(Series& series) {
    const std::string name = series.title + (++series.sheets > 1 ? " " + std::to_string(series.sheets) : "");
    sheets_.push_back(std::make_unique<Sheet>(name, sheets_.size() + 1));
    series.sheet = sheets_.back().get();
    series.names.clear();
}

StringView XlsxWriter::fitting(StringView value) const {
    if (value.size() <= kLongestCell)
        return value;
    if (warn_)
        warn_("Ein Text hat mehr als 32.767 Zeichen; in der XLSX-Datei steht nur sein Anfang.");
    return value.substr(0, wholeCharacters(value, kLongestCell));
}

void XlsxWriter::writeParts(ZipWriter& archive) const {
    std::string types;
    std::string sheets;
    std::string relations;
    for (std::size_t i = 1; i <= sheets_.size(); ++i) {
        const std::string number = std::to_string(i);
        types += joined({"<Override PartName=\"/xl/worksheets/sheet", number, ".xml\" ContentType=\"", kType,
                         "worksheet+xml\"/>"});
        sheets += joined(
            {"<sheet name=\"", sheets_[i - 1]->name(), "\" sheetId=\"", number, "\" r:id=\"rId", number, "\"/>"});
        relations += joined({"<Relationship Id=\"rId", number, "\" Type=\"", kOffice,
                             "/worksheet\" Target=\"worksheets/sheet", number, ".xml\"/>"});
    }
    const std::string head(kXmlHead);
    const std::string relationships = "<Relationships xmlns=\"" + std::string(kPackage) + "relationships\">";
    archive.add("[Content_Types].xml",
                head + "<Types xmlns=\"" + std::string(kPackage) +
                    "content-types\"><Default Extension=\"rels\" "
                    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
                    "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" +
                    std::string(kType) +
                    "sheet.main+xml\"/>"
                    "<Override PartName=\"/xl/styles.xml\" ContentType=\"" +
                    std::string(kType) + "styles+xml\"/>" + types + "</Types>");
    archive.add("_rels/.rels", head + relationships + "<Relationship Id=\"rId1\" Type=\"" + std::string(kOffice) +
                                   "/officeDocument\" Target=\"xl/workbook.xml\"/></Relationships>");
    archive.add("xl/workbook.xml", head + "<workbook xmlns=" + quoted(kMainNames) + " xmlns:r=" + quoted(kOffice) +
                                       "><sheets>" + sheets + "</sheets></workbook>");
    archive.add("xl/_rels/workbook.xml.rels",
                head + relationships + relations + "<Relationship Id=\"rId" + std::to_string(sheets_.size() + 1) +
                    "\" Type=\"" + std::string(kOffice) + "/styles\" Target=\"styles.xml\"/></Relationships>");
    archive.add("xl/styles.xml", styles());
}

void XlsxWriter::finish() {
    if (sheets_.empty())
        addSheet(variables_); // a workbook has a sheet at least
    ZipWriter archive([&](std::string_view data) { file_.write(data); });
    writeParts(archive);
    for (const auto& sheet : sheets_)
        archive.add(sheet->finish());
    archive.finish();
}

} // namespace

std::unique_ptr<RecordWriter> openXlsxWriter(AtomicFile& file, Contents contents,
                                             std::function<void(std::string_view)> warn) {
    return std::make_unique<XlsxWriter>(file, std::move(contents), std::move(warn));
}

} // namespace kvtdruck::druckwerk
