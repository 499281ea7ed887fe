// Workbooks as ECMA-376 describes them, with the least that every spreadsheet reads: rows of numbers and of texts
// that stand in their cells. They are written here and not by a library, for those that keep memory flat say
// nothing of rows that a full disk has swallowed.
#include "druckwerk/exits/xlsx_writer.h"

#include "druckwerk/exits/sheet_table.h"
#include "druckwerk/exits/xlsx_sheet.h"
#include "druckwerk/exits/xlsx_styles.h"
#include "druckwerk/exits/zip_writer.h"
#include "values/code_points.h"

#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
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

/// "'Gemeinkosten'!$A$6:$K$34" for "A6:K34".
std::string reference(const Sheet& sheet, std::string_view cells) {
    std::string text = "'" + sheet.name() + "'!";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool begins = i == 0 || cells[i - 1] == ':' || (cells[i - 1] > '9' && cells[i] <= '9');
        text += (begins ? "$" : "") + std::string(1, cells[i]);
    }
    return text;
}

/// The names by which a spreadsheet knows a sheet's filter and the rows that each page repeats
/// (ECMA-376-1, 18.2.5).
std::string definedNames(const Sheet& sheet, std::size_t place) {
    if (!sheet.look())
        return {};
    const auto head = std::to_string(sheet.look()->headRow);
    const auto name = [&](std::string_view kind, std::string_view more, const std::string& cells) {
        return joined({"<definedName name=\"_xlnm.", kind, "\" localSheetId=\"", std::to_string(place), "\"", more,
                       ">", cells, "</definedName>"});
    };
    return name("_FilterDatabase", " hidden=\"1\"", reference(sheet, sheet.filter())) +
           name("Print_Titles", "", reference(sheet, head + ":" + head));
}

class XlsxWriter final : public RecordWriter {
  public:
    XlsxWriter(AtomicFile& file, Contents contents, const WorkbookContent& content,
               std::function<void(std::string_view)> warn)
        : file_(file), contents_(std::move(contents)), warn_(std::move(warn)) {
        tables_.reserve(content.plan.size());
        for (std::size_t i = 0; i < content.plan.size(); ++i)
            tables_.emplace_back(content.plan[i],
                                 TableSurroundings{names_, contents_, content.selection,
                                                   [this, i](std::string name, SheetLook look) -> Sheet& {
                                                       return addSheet(i, std::move(name), std::move(look));
                                                   },
                                                   [this](StringView text) { return fitting(text); }});
    }

    void variables(std::span<const NamedValue> values) override {
        ++section_;
        names_.setVariables(values);
        for (auto& table : tables_)
            table.section();
        row(variables_, values);
    }
    void record(std::span<const NamedValue> values) override {
        names_.setFields(values);
        for (auto& table : tables_)
            table.record();
        row(fields_, values);
    }
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
    /// The sheets of the plan's tables stand in its order, before those of the records.
    Sheet& addSheet(std::size_t place, std::string name, std::optional<SheetLook> look);
    StringView fitting(StringView value) const;
    void writeParts(ZipWriter& archive) const;

    AtomicFile& file_;
    Contents contents_;
    std::function<void(std::string_view)> warn_;
    NamedCells names_;
    std::vector<SheetTable> tables_;
    std::multimap<std::size_t, std::unique_ptr<Sheet>> sheets_; ///< by their place in the workbook
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
        sheet.text(u"Abschnitt", kBold);
        for (const auto& name : series.names)
            sheet.text(fitting(name), kBold);
        sheet.endRow();
    }
    sheet.beginRow();
    sheet.number(section_);
    for (const auto& value : values) {
        if (const auto number = numberOf(value, contents_))
            sheet.number(*number);
        else
            sheet.text(fitting(value.text));
    }
    sheet.endRow();
}

void XlsxWriter::addSheet(Series& series) {
    const std::string name = series.title + (++series.sheets > 1 ? " " + std::to_string(series.sheets) : "");
    series.sheet = &addSheet(tables_.size(), name, {});
    series.names.clear();
}

Sheet& XlsxWriter::addSheet(std::size_t place, std::string name, std::optional<SheetLook> look) {
    auto sheet = std::make_unique<Sheet>(std::move(name), sheets_.size() + 1, std::move(look));
    return *sheets_.emplace(place, std::move(sheet))->second;
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
    std::string names;
    std::size_t place = 0;
    for (const auto& [key, sheet] : sheets_) {
        const std::string number = std::to_string(sheet->number());
        types += joined({"<Override PartName=\"/xl/worksheets/sheet", number, ".xml\" ContentType=\"", kType,
                         "worksheet+xml\"/>"});
        sheets +=
            joined({"<sheet name=\"", sheet->name(), "\" sheetId=\"", number, "\" r:id=\"rId", number, "\"/>"});
        relations += joined({"<Relationship Id=\"rId", number, "\" Type=\"", kOffice,
                             "/worksheet\" Target=\"worksheets/sheet", number, ".xml\"/>"});
        names += definedNames(*sheet, place++);
    }
    if (!names.empty())
        names = "<definedNames>" + names + "</definedNames>";
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
                                       "><sheets>" + sheets + "</sheets>" + names +
                                       "<calcPr fullCalcOnLoad=\"1\"/></workbook>");
    archive.add("xl/_rels/workbook.xml.rels",
                head + relationships + relations + "<Relationship Id=\"rId" + std::to_string(sheets_.size() + 1) +
                    "\" Type=\"" + std::string(kOffice) + "/styles\" Target=\"styles.xml\"/></Relationships>");
    archive.add("xl/styles.xml", stylesPart());
}

void XlsxWriter::finish() {
    if (sheets_.empty())
        addSheet(variables_); // a workbook has a sheet at least
    for (auto& table : tables_)
        table.finish();
    ZipWriter archive([&](std::string_view data) { file_.write(data); });
    writeParts(archive);
    for (const auto& [place, sheet] : sheets_)
        archive.add(sheet->finish());
    archive.finish();
}

} // namespace

std::unique_ptr<RecordWriter> openXlsxWriter(AtomicFile& file, Contents contents, const WorkbookContent& content,
                                             std::function<void(std::string_view)> warn) {
    return std::make_unique<XlsxWriter>(file, std::move(contents), content, std::move(warn));
}

} // namespace kvtdruck::druckwerk
