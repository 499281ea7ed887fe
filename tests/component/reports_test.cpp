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

std::vector<ReportDescription> readerFedReports() {
    auto reports = allReports();
    std::erase_if(reports, [](const auto& each) { return each.reader.empty(); });
    return reports;
}

class ReaderFedReport : public EveryReport {};

INSTANTIATE_TEST_SUITE_P(All, ReaderFedReport, ::testing::ValuesIn(readerFedReports()),
                         [](const auto& each) { return each.param.list; });

constexpr std::size_t kLetterhead = 16;

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

TEST_P(EveryReport, CellsComeFromTheirColumns) {
    if (!isArrayFed())
        return;
    ASSERT_TRUE(print(0, 3));
    const auto& calls = host.world.engineCalls;
    const auto check = [&](const char* operation, const Entry& entry, int row) {
        if (!entry.column)
            return;
        const auto text = textIn(entry, 1000.0 * row + *entry.column + 0.5);
        EXPECT_THAT(calls, ::testing::Contains(std::string(operation) + "(\"" + entry.name + "\", \"" + text +
                                               "\", " + std::to_string(entry.type) + ") = 0"));
    };
    for (const auto& entry : entries(report().variables))
        check("LlDefineVariableExt", entry, report().list == "UmsatzHW" ? 1 : 0);
    for (const auto& entry : entries(report().fields))
        for (int row = 0; row < 3; ++row)
            check("LlDefineFieldExt", entry, row);
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

// Golden records

/// The record in short: a run of definitions is one line that counts them.
std::string shortened(const std::vector<std::string>& calls) {
    std::ostringstream text;
    std::size_t variables = 0;
    std::size_t fields = 0;
    const auto flush = [&](std::size_t& count, const char* kind) {
        if (count > 0)
            text << "  … " << count << " " << kind << "\n";
        count = 0;
    };
    for (const auto& call : calls) {
        const bool single = call.find("\"Seitenwechsel\"") != std::string::npos ||
                            call.find("\"Fuerjahr\"") != std::string::npos ||
                            call.find("\"FuerJahr\"") != std::string::npos;
        if (!single && call.starts_with("LlDefineVariableExt(")) {
            flush(fields, "fields");
            ++variables;
        } else if (!single && call.starts_with("LlDefineFieldExt(")) {
            flush(variables, "variables");
            ++fields;
        } else {
            flush(variables, "variables");
            flush(fields, "fields");
            text << "  " << call << "\n";
        }
    }
    flush(variables, "variables");
    flush(fields, "fields");
    return text.str();
}

std::string whole(const std::vector<std::string>& calls) {
    std::string text;
    for (const auto& call : calls)
        text += "  " + call + "\n";
    return text;
}

void compareWithGolden(const std::string& name, const std::string& actual) {
    const auto file = std::string(KVT_GOLDEN) + "/" + name + ".txt";
    if (std::getenv("KVT_WRITE_GOLDEN")) {
        std::ofstream(file, std::ios::binary) << actual;
        return;
    }
    std::ifstream stream(file, std::ios::binary);
    const std::string expected(std::istreambuf_iterator<char>(stream), {});
    std::istringstream left(expected);
    std::istringstream right(actual);
    std::string expectedLine;
    std::string actualLine;
    for (int number = 1; std::getline(left, expectedLine); ++number) {
        std::getline(right, actualLine);
        ASSERT_EQ(actualLine, expectedLine) << file << ":" << number;
    }
    EXPECT_EQ(actual.size(), expected.size()) << file;
}

TEST_P(EveryReport, CallsTheEngineAsRecorded) {
    std::string record;
    const auto section = [&](const char* title, std::int16_t mode, std::size_t records, bool full) {
        Host fresh;
        fill(fresh.world, records);
        fresh.engineWritesPreview(report().list);
        if (std::string(title) == "page full") {
            fresh.world.results[{Operation::LlPrintFields, 0}] = -998;
            fresh.world.results[{Operation::LlPrintFields, 1}] = -998;
            fresh.world.results[{Operation::LlPrintFieldsEnd, 0}] = -998;
        }
        const auto list = fromUtf8(report().list);
        const auto done =
            fresh.print({.mode = mode, .list = list, .array = arrayFor(fresh.world, report(), records)});
        record += std::string(title) + ": " + (done ? "True" : "False") + "\n";
        record += full ? whole(fresh.world.engineCalls) : shortened(fresh.world.engineCalls);
        for (const auto& each : fresh.world.reports)
            record += "  report: " + ::testing::PrintToString(each) + "\n";
    };
    section("three records", 0, 3, true);
    section("one record", 0, 1, false);
    section("page full", 0, 2, false);
    section("preview", 1, 1, false);
    compareWithGolden(report().list, record);
}

// Failures

/// What may come of a failing outside call: which procedure reports it (empty: nobody), and the result.
struct Consequence {
    std::string place; ///< "class/procedure" that reports; empty: no report
    bool result;
};

class Rules {
  public:
    Rules(const ReportDescription& report, const std::vector<std::string>& calls)
        : report_(report), calls_(calls) {}

    Consequence of(std::size_t position, std::int16_t mode) const {
        const auto& call = calls_[position];
        const auto name = call.substr(call.rfind(' ') + 1);
        if (call.starts_with("control put") || call == "create form")
            return {"clsDruckFormular/fkt_Starte_Form", true};
        if (call.starts_with("control "))
            return {"", true}; // skipped, and counts as success
        if (call == "process end")
            return {"basLL80/fkt_Terminiere_Review", true};
        if (call == "process start" || call == "files rename")
            return {"basLL80/fkt_Aktiviere_Preview", true};
        if (call == "create files")
            return {"clsDruckFormular/FKT_Setze_Rand_Formular", false};
        if (call.starts_with("files "))
            return happened("create files", position)
                       ? Consequence{"clsDruckFormular/FKT_Setze_Rand_Formular", false}
                       : Consequence{"", true}; // old previews: skipped
        if (call.find("clsZugFirmaAllg") != std::string::npos)
            return company(position, name);
        if (call.starts_with("array "))
            return array(position, name);
        return reader(position, call, name, mode);
    }

  private:
    bool happened(const std::string& call, std::size_t before) const {
        const auto end = calls_.begin() + static_cast<std::ptrdiff_t>(before);
        return std::find(calls_.begin(), end, call) != end;
    }
    std::string own(const std::string& procedure) const { return report_.className + "/" + procedure; }
    bool printing(std::size_t position) const { return happened("control LlPrintSetBoxText", position); }

    Consequence company(std::size_t position, const std::string& name) const {
        if (name == "clsZugFirmaAllg" || name == "Verbinde" || name == "LeseFirmaAllg")
            return {"clsDruckManager/Lese_Allgemeine_Firmendaten", false};
        if (!happened("control LlDefineVariableStart", position))
            return {own("fkt_Drucken"), false}; // the currency, at the start
        if (!happened("control LlDefineVariableExt", position) || !headerDone(position))
            return {"clsDruckFormular/FKT_DefiniereVariablen_AllgemeineFirmendaten", false};
        return {own("fkt_Drucken"), false}; // the federal state, between procedures
    }

    bool headerDone(std::size_t position) const {
        const auto end = calls_.begin() + static_cast<std::ptrdiff_t>(position);
        return std::count(calls_.begin(), end, "control LlDefineVariableExt") >= static_cast<int>(kLetterhead);
    }

    Consequence array(std::size_t position, const std::string& name) const {
        if (!report_.reader.empty())
            return happened("create files", position) ? Consequence{own("Definiere_Übergebe_Felder"), false}
                                                      : Consequence{own(report_.read), false};
        const bool choosesTitle = !happened("create files", position);
        if (name == "Count" || choosesTitle)
            return {own("fkt_Drucken"), false};
        return {definedNext(position), false};
    }

    /// The procedure whose definition the value at `position` is read for.
    std::string definedNext(std::size_t position) const {
        const auto next = std::find_if(calls_.begin() + static_cast<std::ptrdiff_t>(position), calls_.end(),
                                       [](const auto& call) { return call.starts_with("control "); });
        return own(*next == "control LlDefineVariableExt" ? report_.variableProcedure
                                                          : "Definiere_Übergebe_Felder");
    }

    Consequence reader(std::size_t position, const std::string& call, const std::string& name,
                       std::int16_t /*mode*/) const {
        const bool holidays = call.find("clsZugFeiertage") != std::string::npos;
        if (name == "EOF" || name == "MoveNext" || name == "MoveFirst")
            return cursor(position, name, holidays);
        if (call.starts_with("create ") || name == "Verbinde" || name.starts_with("Lese"))
            return {own(holidays ? "Lese_Feiertage" : report_.read), false};
        if (isKey(position, name))
            return {own("fkt_Drucken"), false};
        // The turnover report's record loop does not look at its definitions' results; reading the year is not one.
        return {definedNext(position), report_.list == "Umsatz" && printing(position)};
    }

    /// The year or the break key, read between procedures: the turnover's year always, the company's for its
    /// holidays, and a group's key behind the move to the first record or a progress step.
    bool isKey(std::size_t position, const std::string& name) const {
        if (report_.list == "Umsatz")
            return name == "Jahr";
        auto before = position;
        const auto ofReader = report_.reader + " ";
        if (report_.list == "Firma") {
            while (before > 0 && calls_[before - 1].starts_with(ofReader))
                --before;
            return name == "Jahr" && calls_[before - 1] == "clsZugFirmaAllg Bundesland";
        }
        if (report_.list == "MitUeber" || (name != "Jahr" && name != "FJahr" && name != "Nummer"))
            return false;
        while (before > 0 && calls_[before - 1].starts_with(ofReader) &&
               calls_[before - 1] != ofReader + "MoveFirst")
            --before;
        return calls_[before - 1] == "control LlPrintSetBoxText" ||
               (calls_[before - 1] == ofReader + "MoveFirst" && happened("control LlPrint", position) &&
                !happened("control LlPrintSetBoxText", position));
    }

    Consequence cursor(std::size_t position, const std::string& name, bool holidays) const {
        if (holidays && name == "MoveFirst")
            return {own("Lese_Feiertage"), false};
        const bool reading = report_.list == "Firma" && !holidays && !happened("create files", position);
        if (reading && name == "EOF" && happened("clsZugFirmaJahr MoveFirst", position))
            return {own("fkt_Drucken"), false};
        return {own(reading ? report_.read : "fkt_Drucken"), false};
    }

    const ReportDescription& report_;
    const std::vector<std::string>& calls_;
};

/// Engine operations whose failure code stops a print.
bool stops(const ReportDescription& report, const std::vector<std::string>& calls, std::size_t position) {
    const auto& call = calls[position];
    if (call == "control LlSetPrinterToDefault" || call == "control LlPrintWithBoxStart" ||
        call == "control LlPrintOptionsDialog" || call == "control LlDefineLayout")
        return true;
    const auto before = calls.begin() + static_cast<std::ptrdiff_t>(position);
    return report.list == "Firma" && call == "control LlPrint" &&
           std::find(calls.begin(), before, "control LlPrintSetBoxText") != before; // a new year's page
}

bool isJudged(const std::string& call) {
    return call.starts_with("control Ll") && call != "control LlDefineVariableStart" &&
           call != "control LlDefineFieldStart";
}

class EveryFailure : public ::testing::TestWithParam<std::tuple<ReportDescription, int>> {
  protected:
    const ReportDescription& report() const { return std::get<0>(GetParam()); }
    std::int16_t mode() const { return static_cast<std::int16_t>(std::get<1>(GetParam())); }

    /// Prints once; gives the result. The record and the outside calls begin anew.
    bool print(Host& host) const {
        host.world.engineCalls.clear();
        host.world.reports.clear();
        host.world.outside.calls.clear();
        const auto list = fromUtf8(report().list);
        const auto array = arrayFor(host.world, report(), 2);
        return host.print({.mode = mode(), .list = list, .array = array, .askPrinter = true});
    }

    std::vector<std::string> places(const std::vector<ErrorReport>& reports) const {
        std::vector<std::string> result;
        result.reserve(reports.size());
        for (const auto& each : reports)
            result.push_back(each.className + "/" + each.procedure);
        return result;
    }
};

TEST_P(EveryFailure, HasItsOneReportAndResultAndTheNextPrintIsRight) {
    Host host;
    fill(host.world, 2);
    host.engineWritesPreview(report().list);
    ASSERT_TRUE(print(host)); // the first print makes what all later ones reuse
    ASSERT_TRUE(print(host));
    const auto calls = host.world.outside.calls;
    const auto record = host.world.engineCalls;
    const auto live = host.world.outside.live;
    const Rules rules(report(), calls);

    for (std::size_t position = 0; position < calls.size(); ++position) {
        SCOPED_TRACE(std::to_string(position) + ": " + calls[position]);
        host.world.outside.failAt = position;
        const auto result = print(host);
        host.world.outside.failAt.reset();
        const auto expected = rules.of(position, mode());
        EXPECT_EQ(result, expected.result);
        auto reported = places(host.world.reports);
        // Without the engine's file the viewer can't be started; that is a report of its own.
        const bool noFile =
            mode() == 1 && (calls[position] == "create form" || calls[position] == "control LlPrintEnd");
        if (noFile) {
            ASSERT_FALSE(reported.empty());
            EXPECT_EQ(reported.back(), "basLL80/fkt_Aktiviere_Preview");
            reported.pop_back();
        }
        if (expected.place.empty()) {
            EXPECT_THAT(reported, IsEmpty());
        } else {
            ASSERT_EQ(reported.size(), 1u) << ::testing::PrintToString(reported);
            EXPECT_EQ(reported[0], expected.place);
            EXPECT_EQ(host.world.reports[0].number, kInjected);
        }

        ASSERT_TRUE(print(host));
        ASSERT_EQ(host.world.engineCalls, record);
        ASSERT_THAT(host.world.reports, IsEmpty());
        ASSERT_EQ(host.world.outside.live, live);
    }
}

TEST_P(EveryFailure, OfTheEngineByCodeIsReportedOnce) {
    Host host;
    fill(host.world, 2);
    host.engineWritesPreview(report().list);
    ASSERT_TRUE(print(host));
    ASSERT_TRUE(print(host));
    const auto calls = host.world.outside.calls;
    const auto record = host.world.engineCalls;

    for (std::size_t position = 0; position < calls.size(); ++position) {
        if (!calls[position].starts_with("control Ll"))
            continue;
        SCOPED_TRACE(std::to_string(position) + ": " + calls[position]);
        host.world.outside.codeAt = position;
        const auto result = print(host);
        host.world.outside.codeAt.reset();
        EXPECT_EQ(result, !stops(report(), calls, position));
        if (isJudged(calls[position]))
            EXPECT_THAT(places(host.world.reports), ElementsAre("clsDruckFormular/PrFehler"));
        else
            EXPECT_THAT(host.world.reports, IsEmpty());
        ASSERT_TRUE(print(host));
        ASSERT_EQ(host.world.engineCalls, record);
    }
}

TEST(Everything, IsReleasedInTheEnd) {
    Outside* outside = nullptr;
    auto world = std::make_unique<Host>();
    outside = &world->world.outside;
    fill(world->world, 2);
    for (const auto& report : allReports()) {
        const auto list = fromUtf8(report.list);
        EXPECT_TRUE(world->print({.list = list, .array = arrayFor(world->world, report, 2)}));
    }
    EXPECT_GT(outside->live, 0);
    world->manager.fkt_Init(nullptr);
    EXPECT_LE(outside->live, 2) << "the company's general data and the file-system object alone";
}

INSTANTIATE_TEST_SUITE_P(All, EveryFailure,
                         ::testing::Combine(::testing::ValuesIn(allReports()), ::testing::Values(0, 1, 2)),
                         [](const auto& each) {
                             return std::get<0>(each.param).list + std::to_string(std::get<1>(each.param));
                         });

} // namespace
} // namespace kvtdruck::test
