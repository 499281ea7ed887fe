// Each call that leaves the component fails once, in each report and mode: who reports it, and that nothing is
// lost.
#include "component/report_table.h"
#include "values/conversion.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace kvtdruck::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

    /// What a print without failures does.
    struct Good {
        std::vector<std::string> calls;  ///< that leave the component
        std::vector<std::string> record; ///< of the engine
        int live;                        ///< fakes that live on behind it
    };

    /// Prints once; gives the result. The record and the outside calls begin anew.
    bool print() {
        host.world.engineCalls.clear();
        host.world.reports.clear();
        host.world.outside.calls.clear();
        const auto list = fromUtf8(report().list);
        const auto array = arrayFor(host.world, report(), 2);
        return host.print({.mode = mode(), .list = list, .array = array, .askPrinter = true});
    }

    Good goodPrint() {
        fill(host.world, 2);
        host.engineWritesPreview(report().list);
        EXPECT_TRUE(print()); // the first print makes what all later ones reuse
        EXPECT_TRUE(print());
        EXPECT_THAT(host.world.reports, IsEmpty());
        return {host.world.outside.calls, host.world.engineCalls, host.world.outside.live};
    }

    void expectGoodPrint(const Good& good) {
        EXPECT_TRUE(print());
        EXPECT_EQ(host.world.outside.calls, good.calls);
        EXPECT_EQ(host.world.engineCalls, good.record);
        EXPECT_THAT(host.world.reports, IsEmpty());
        EXPECT_EQ(host.world.outside.live, good.live);
    }

    /// Whether the last print was as a good one until its call number `position`.
    bool agreesBefore(std::size_t position, const Good& good) const {
        const auto same = [](const auto& a, const auto& b, std::ptrdiff_t count) {
            return std::ssize(a) >= count && std::equal(b.begin(), b.begin() + count, a.begin());
        };
        const auto before = good.calls.begin() + static_cast<std::ptrdiff_t>(position);
        const auto recorded = std::count_if(good.calls.begin(), before,
                                            [](const auto& call) { return call.starts_with("control "); });
        return same(host.world.outside.calls, good.calls, static_cast<std::ptrdiff_t>(position) + 1) &&
               same(host.world.engineCalls, good.record, recorded);
    }

    std::vector<std::string> places() const {
        std::vector<std::string> result;
        result.reserve(host.world.reports.size());
        for (const auto& each : host.world.reports)
            result.push_back(each.className + "/" + each.procedure);
        return result;
    }

    Host host;
};

// Each print fails once, at the next position. Up to there its record is that of a good print, which shows that the
// failure before left nothing behind; a good print ends the row.
TEST_P(EveryFailure, HasItsOneReportAndResultAndLeavesNothingBehind) {
    const auto good = goodPrint();
    const Rules rules(report(), good.calls);
    for (std::size_t position = 0; position < good.calls.size(); ++position) {
        const auto& call = good.calls[position];
        SCOPED_TRACE(std::to_string(position) + ": " + call);
        host.world.outside.failAt = position;
        const auto result = print();
        host.world.outside.failAt.reset();
        ASSERT_TRUE(agreesBefore(position, good));
        const auto expected = rules.of(position, mode());
        EXPECT_EQ(result, expected.result);
        auto reported = places();
        // Without the engine's file the viewer can't be started; that is a report of its own.
        if (mode() == 1 && (call == "create form" || call == "control LlPrintEnd")) {
            ASSERT_FALSE(reported.empty());
            EXPECT_EQ(reported.back(), "basLL80/fkt_Aktiviere_Preview");
            reported.pop_back();
        }
        if (expected.place.empty()) {
            EXPECT_THAT(reported, IsEmpty());
        } else {
            ASSERT_THAT(reported, ElementsAre(expected.place));
            EXPECT_EQ(host.world.reports[0].number, kInjected);
        }
    }
    expectGoodPrint(good);
}

TEST_P(EveryFailure, OfTheEngineByCodeIsReportedOnce) {
    const auto good = goodPrint();
    for (std::size_t position = 0; position < good.calls.size(); ++position) {
        const auto& call = good.calls[position];
        if (!call.starts_with("control Ll"))
            continue;
        SCOPED_TRACE(std::to_string(position) + ": " + call);
        host.world.outside.codeAt = position;
        const auto result = print();
        host.world.outside.codeAt.reset();
        ASSERT_TRUE(agreesBefore(position, good));
        EXPECT_EQ(result, !stops(report(), good.calls, position));
        if (isJudged(call))
            EXPECT_THAT(places(), ElementsAre("clsDruckFormular/PrFehler"));
        else
            EXPECT_THAT(host.world.reports, IsEmpty());
    }
    expectGoodPrint(good);
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
