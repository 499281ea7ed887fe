// All eighteen reports: what they define, in which order, how they print, and how they end.
#include "component/report_table.h"
#include "values/conversion.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kvtdruck::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EveryReport : public ::testing::TestWithParam<ReportDescription> {
  protected:
    EveryReport() { fill(host.world, 1); }

    const ReportDescription& report() const { return GetParam(); }
    bool isArrayFed() const { return report().reader.empty(); }

    bool print(std::int16_t mode, std::size_t records = 1, bool askPrinter = false) {
        fill(host.world, records);
        host.engineWritesPreview(report().list);
        const auto list = fromUtf8(report().list);
        return host.print({.mode = mode,
                           .list = list,
                           .array = arrayFor(host.world, report(), records),
                           .askPrinter = askPrinter});
    }

    /// The definitions among the engine calls, as name and type.
    std::vector<std::pair<std::string, std::int32_t>> defined(const std::string& operation) const {
        std::vector<std::pair<std::string, std::int32_t>> result;
        for (const auto& call : host.world.engineCalls) {
            if (!call.starts_with(operation + "(\""))
                continue;
            const auto start = operation.size() + 2;
            const auto type = call.substr(call.rfind(", ") + 2);
            result.emplace_back(call.substr(start, call.find('"', start) - start), std::stoi(type));
        }
        return result;
    }

    Host host;
};

INSTANTIATE_TEST_SUITE_P(All, EveryReport, ::testing::ValuesIn(allReports()),
                         [](const auto& each) { return each.param.list; });

std::vector<ReportDescription> reportsFedBy(bool array) {
    auto reports = allReports();
    std::erase_if(reports, [&](const auto& each) { return each.reader.empty() != array; });
    return reports;
}

class ReaderFedReport : public EveryReport {};

INSTANTIATE_TEST_SUITE_P(All, ReaderFedReport, ::testing::ValuesIn(reportsFedBy(false)),
                         [](const auto& each) { return each.param.list; });

class ArrayFedReport : public EveryReport {};

INSTANTIATE_TEST_SUITE_P(All, ArrayFedReport, ::testing::ValuesIn(reportsFedBy(true)),
                         [](const auto& each) { return each.param.list; });

TEST_P(EveryReport, DefinesItsVariablesAndFieldsInOrder) {
    EXPECT_TRUE(print(3));
    auto variables = defined("LlDefineVariableExt");
    ASSERT_GT(variables.size(), kLetterhead);
    variables.erase(variables.begin(), variables.begin() + kLetterhead);
    EXPECT_EQ(variables, names(report().variables));
    EXPECT_EQ(defined("LlDefineFieldExt"), names(report().fields));
}

/// Getters that bear another name than the variable or field that they feed.
String getterOf(const std::string& reader, const std::string& name) {
    if (name == "FuerJahr" || name == "Fuerjahr")
        return reader == "clsZugKonten" || reader == "clsZugMitarbeiterMonate" ? u"FJahr" : u"Jahr";
    static const std::map<std::string, String> others{{"IBerSzdTag", u"IBerStdTag"},
                                                      {"SBerSzdTag", u"SBerStdTag"},
                                                      {"ISONST", u"ISonst"},
                                                      {"MonatIst", u"MWIst_03"},
                                                      {"MonatSoll", u"MWSoll_03"}};
    const auto found = others.find(name);
    return found == others.end() ? fromUtf8(name) : found->second;
}

std::string textIn(const Entry& entry, double value) {
    const auto text =
        entry.single ? textOf(static_cast<float>(value), germanLocale()) : textOf(value, germanLocale());
    return toUtf8(text);
}

TEST_P(ReaderFedReport, EachNameCarriesItsGetterInItsPrecision) {
    auto& records = host.world.readers[report().reader];
    records.values = {{u"KtoBetrArt", {0.0}}};
    records.fraction = 1.0 / 3;
    for (const StringView date : {u"ADat", u"EDat", u"GDat", u"Eintrittsdatum", u"Austrittsdatum", u"Geburtsdatum"})
        records.values[String(date)] = {dateOf(2020, 2, 29)};
    const auto list = fromUtf8(report().list);
    ASSERT_TRUE(host.print({.mode = 3, .list = list, .array = arrayFor(host.world, report(), 1)}));

    std::set<std::string> special{"Firmennummer", "Seitenwechsel", "UebMitte", "FWaehr",
                                  "Waehrung",     "MonatText",     "FDatum",   "Feiertag"};
    if (report().list == "Umsatz" || report().list == "MitUeber")
        special.insert("Fuerjahr"); // a whole number
    if (report().list == "MaKost" || report().list == "MaZeit")
        special.insert("Name"); // composed
    std::size_t checked = 0;
    for (const auto& [operation, description] :
         {std::pair{"LlDefineVariableExt", report().variables}, std::pair{"LlDefineFieldExt", report().fields}}) {
        for (const auto& entry : entries(description)) {
            if (special.contains(entry.name))
                continue;
            const auto getter = getterOf(report().reader, entry.name);
            const auto value = records.value(getter, 0);
            const auto* number = value.as<double>();
            const auto text = number ? textIn(entry, *number) : std::string("29.02.2020");
            EXPECT_THAT(host.world.engineCalls,
                        ::testing::Contains(std::string(operation) + "(\"" + entry.name + "\", \"" + text + "\", " +
                                            std::to_string(entry.type) + ") = 0"));
            ++checked;
        }
    }
    EXPECT_GE(checked, std::size_t{8}) << "most names are read from the reader";
}

/// The contents that the engine was given for a name, in the order of the calls.
std::vector<std::string> contentsOf(const std::vector<std::string>& calls, const std::string& operation,
                                    const Entry& entry) {
    const auto head = operation + "(\"" + entry.name + "\", \"";
    const auto tail = "\", " + std::to_string(entry.type) + ") = 0";
    std::vector<std::string> contents;
    for (const auto& call : calls)
        if (call.starts_with(head) && call.ends_with(tail))
            contents.push_back(call.substr(head.size(), call.size() - head.size() - tail.size()));
    return contents;
}

TEST_P(ArrayFedReport, CellsComeFromTheirColumns) {
    constexpr int kRows = 3;
    ASSERT_TRUE(print(0, kRows));
    const auto& calls = host.world.engineCalls;
    const auto cell = [](const Entry& entry, int row) { return textIn(entry, 1000.0 * row + *entry.column + 0.5); };
    for (const auto& entry : entries(report().variables)) {
        if (entry.name == "Firmennummer")
            continue;
        ASSERT_TRUE(entry.column) << entry.name;
        // Defined twice: before the job opens, and before its first page.
        const auto content = cell(entry, report().list == "UmsatzHW" ? 1 : 0);
        EXPECT_THAT(contentsOf(calls, "LlDefineVariableExt", entry), ElementsAre(content, content)) << entry.name;
    }
    for (const auto& entry : entries(report().fields)) {
        const auto contents = contentsOf(calls, "LlDefineFieldExt", entry);
        if (entry.column) // the first row before the job opens, then each row
            EXPECT_THAT(contents, ElementsAre(cell(entry, 0), cell(entry, 0), cell(entry, 1), cell(entry, 2)))
                << entry.name;
        else
            EXPECT_THAT(contents, ElementsAre("EUR", "EUR", "EUR", "EUR")) << entry.name;
    }
}

TEST_P(EveryReport, OtherModesDefineEverythingAndPrintNothing) {
    for (const std::int16_t mode : {std::int16_t{3}, std::int16_t{-1}}) {
        EXPECT_TRUE(print(mode));
        for (const auto& call : host.world.engineCalls)
            EXPECT_TRUE(call.starts_with("LlDefine") || call.starts_with("[3]")) << call;
    }
    EXPECT_THAT(host.world.reports, IsEmpty());
}

TEST_P(EveryReport, DesignOpensTheLayoutWithTheTitle) {
    EXPECT_TRUE(print(2));
    EXPECT_EQ(host.world.engineCalls.back(), "LlDefineLayout(hWnd, \"" + report().title +
                                                 "\", 2, \"C:\\\\App\\\\DB\\\\BerichteLLVT\\\\" + report().list +
                                                 "\") = 0");
    EXPECT_THAT(host.world.started, IsEmpty());
}

TEST_P(EveryReport, APreviewEndsInTheViewer) {
    EXPECT_TRUE(print(1));
    ASSERT_EQ(host.world.started.size(), 1u);
    EXPECT_TRUE(host.world.started[0].starts_with("llview12.exe \"" + kPreviews + "\\" + report().list));
    EXPECT_TRUE(print(0));
    EXPECT_EQ(host.world.started.size(), 1u) << "a print starts none";
}

TEST_P(EveryReport, ACancelledOrFailingDialogStopsSilently) {
    for (const auto& [code, reports] : {std::pair{-99, 0}, std::pair{-10, 1}}) {
        host.world.results[{Operation::LlPrintOptionsDialog, code == -99 ? 0 : 1}] = code;
        EXPECT_FALSE(print(1, 1, true));
        EXPECT_EQ(host.world.engineCalls.back(),
                  "LlPrintOptionsDialog(hWnd, \"" + report().list + "\") = " + std::to_string(code));
        EXPECT_EQ(host.world.reports.size(), static_cast<std::size_t>(reports));
    }
    EXPECT_THAT(host.world.started, IsEmpty()) << "no viewer";
    EXPECT_TRUE(print(0, 1, true));
}

TEST_P(EveryReport, AnAbortedBoxEndsThePrint) {
    host.world.results[{Operation::LlPrintFieldsEnd, 0}] = -998;
    host.world.results[{Operation::LlPrintFieldsEnd, 1}] = -99;
    EXPECT_FALSE(print(1));
    const auto& calls = host.world.engineCalls;
    EXPECT_EQ(
        std::vector(calls.end() - 3, calls.end()),
        (std::vector<std::string>{"LlPrintFieldsEnd() = -998", "LlPrintFieldsEnd() = -99", "PrintEnd() = 0"}));
    EXPECT_THAT(host.world.reports, IsEmpty());
    EXPECT_THAT(host.world.started, IsEmpty());
}

TEST_P(EveryReport, AFailingStartStops) {
    for (const auto operation : {Operation::LlSetPrinterToDefault, Operation::LlPrintWithBoxStart}) {
        Host fresh;
        fill(fresh.world, 1);
        fresh.world.results[{operation, 0}] = -7;
        const auto list = fromUtf8(report().list);
        EXPECT_FALSE(fresh.print({.list = list, .array = arrayFor(fresh.world, report(), 1)}));
        EXPECT_TRUE(fresh.world.engineCalls.back().starts_with(toUtf8(nameOf(operation)) + "("));
        EXPECT_EQ(fresh.world.reports.size(), 1u);
    }
}

TEST_P(ReaderFedReport, FailingReadsAreSaidInItsOwnWords) {
    static const std::map<std::string, std::pair<StringView, StringView>> reads{
        {"clsZugUmsatz", {u"LeseUmsatzAlle", u"LeseUmsatzVonBis"}},
        {"clsZugMitarbeiter", {u"LeseMitarbeiter", {}}},
        {"clsZugFirmaJahr", {u"LeseFirmaJahreAlle", u"LeseFirmaJahreVonBis"}},
        {"clsZugKonten", {u"LeseKonten", u"LeseKonten"}},
        {"clsZugMitarbeiterMonate", {u"LeseMitarbeiterMonate", u"LeseMitarbeiterMonate"}},
        {"clsZugKosten", {u"LeseKostenAlle", u"LeseKostenVonBis"}},
        {"clsZugMaterial", {u"LeseMaterialAlle", u"LeseMaterialVonBis"}}};
    const auto [all, range] = reads.at(report().reader);
    const auto fails = [&](StringView operation, bool everything) {
        Host fresh;
        fill(fresh.world, 1);
        fresh.world.readers[report().reader].answers[String(operation)] = false;
        const auto array = arrayFor(fresh.world, report(), 1);
        array->cells[0][0] = everything;
        array->cells[0][1] = 2024.0;
        const auto list = fromUtf8(report().list);
        EXPECT_FALSE(fresh.print({.list = list, .array = array}));
        EXPECT_THAT(fresh.world.reports,
                    ElementsAre(message(report().className, report().read, report().readMessage)));
        EXPECT_THAT(fresh.world.engineCalls, ElementsAre("[3] = -1")) << "no engine job";
    };
    fails(u"Verbinde", true);
    fails(all, true);
    if (!range.empty())
        fails(range, false);
}

TEST_P(EveryReport, WithoutRecordsSaysSoOrPrintsTheHeader) {
    EXPECT_EQ(print(0, 0), isArrayFed());
    if (isArrayFed())
        EXPECT_EQ(host.world.engineCalls.back(), "LlPrintEnd(0) = 0");
    else
        EXPECT_THAT(host.world.reports, ElementsAre(message(report().className, "fkt_Drucken",
                                                            "Es sind keine Daten für den Ausdruck vorhanden.")));
}

TEST_P(EveryReport, WithoutAnAdapterOrAnArrayReportsOnce) {
    Host fresh;
    fill(fresh.world, 1);
    const auto list = fromUtf8(report().list);
    EXPECT_FALSE(fresh.print({.list = list, .array = nullptr}));
    ASSERT_EQ(fresh.world.reports.size(), 1u);
    EXPECT_EQ(fresh.world.reports[0].number, 91);
    EXPECT_EQ(fresh.world.reports[0].className, report().className);
}

} // namespace
} // namespace kvtdruck::test
