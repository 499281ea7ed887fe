// Each call that leaves the component fails once, in each report and mode: who reports it, and that nothing is
// lost.
#include "component/report_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>

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

    Consequence of(std::size_t position) const {
        const auto& call = calls_[position];
        const auto name = call.substr(call.rfind(' ') + 1);
        if (call.starts_with("control put") || call == "create form")
            return {"clsDruckFormular/fkt_Starte_Form", true};
        if (call.starts_with("control "))
            return {"", true}; // skipped, and counts as success
        if (call == "clock")
            return {"clsDruckManager/ ", false};
        if (call == "messages")
            return {happened("files rename", position) ? "basLL80/fkt_Aktiviere_Preview"
                                                       : "basLL80/fkt_Terminiere_Review",
                    true};
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
        return reader(position, call, name);
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

    Consequence reader(std::size_t position, const std::string& call, const std::string& name) const {
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

/// Whether a print stops where the engine answers `code` to the call at `position`.
bool stops(const ReportDescription& report, const std::vector<std::string>& calls, std::size_t position,
           std::int32_t code) {
    const auto& call = calls[position];
    if (code == kEngineCancelled)
        return call == "control LlPrintOptionsDialog" || call == "control LlPrintFieldsEnd";
    if (code == kEnginePageFull)
        return false;
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

/// One kind of fault, injected at each position of a print, or at a sample of them.
struct Kind {
    std::string name;
    Fault fault = Fault::RuntimeError;
    std::int32_t code = 0; ///< of the engine instead of a fault, where it is not 0
    bool forGood = false;
    bool mute = false;
    std::size_t sample = 11; ///< every day one position in so many is enough
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

// The run-time error is the ordinary case, so it is tried everywhere every time.
const Kind kRuntimeError{.name = "RuntimeError", .sample = 1};
const Kind kOutOfMemory{.name = "OutOfMemory", .fault = Fault::OutOfMemory};
const Kind kUnknown{.name = "Unknown", .fault = Fault::Unknown};
const Kind kUnreported{.name = "Unreported", .mute = true};
const Kind kForGood{.name = "ForGood", .forGood = true};
const Kind kMemoryForGood{.name = "MemoryForGood", .fault = Fault::OutOfMemory, .forGood = true};
const Kind kErrorCode{.name = "ErrorCode", .code = -10, .sample = 1};
const Kind kErrorCodeForGood{.name = "ErrorCodeForGood", .code = -10, .forGood = true};
const Kind kCancelled{.name = "Cancelled", .code = kEngineCancelled};
const Kind kCancelledForGood{.name = "CancelledForGood", .code = kEngineCancelled, .forGood = true};
const Kind kPageFull{.name = "PageFull", .code = kEnginePageFull};

/// Says in the end how many faults there were.
class Tally : public ::testing::Environment {
  public:
    static inline std::size_t injected = 0;
    void TearDown() override {
        if (injected > 0)
            std::cout << "faults injected: " << injected << "\n";
    }
};
[[maybe_unused]] const auto* const kTally = ::testing::AddGlobalTestEnvironment(new Tally);

// A host prints again and again, and each print meets one fault, at the next position. Up to there it agrees with a
// good print, which shows that the fault before left nothing behind; a good print ends the row.
class EveryFault : public ::testing::TestWithParam<std::tuple<ReportDescription, int, Kind>> {
  protected:
    EveryFault() {
        fill(host.world, 2);
        host.engineWritesPreview(report().list);
        EXPECT_TRUE(print()); // the first print makes what all later ones reuse
        EXPECT_TRUE(print());
        EXPECT_THAT(host.world.reports, IsEmpty());
        calls = host.world.outside.calls;
        record = host.world.engineCalls;
        files = host.world.files;
        row = *host.jobs.rowAt(1);
        row.adapter.reset();
        live = host.world.outside.live;
    }

    const ReportDescription& report() const { return std::get<0>(GetParam()); }
    std::int16_t mode() const { return static_cast<std::int16_t>(std::get<1>(GetParam())); }
    const Kind& kind() const { return std::get<2>(GetParam()); }

    /// Prints once; gives the result. The record and the outside calls begin anew.
    bool print() {
        host.world.engineCalls.clear();
        host.world.reports.clear();
        host.world.outside.calls.clear();
        const auto list = fromUtf8(report().list);
        const auto array = arrayFor(host.world, report(), 2);
        return host.print({.mode = mode(), .list = list, .array = array, .askPrinter = true});
    }

    /// Prints with the fault at `position`, behind a viewer and a preview file as a good print leaves them.
    bool printWithFault(std::size_t position) {
        host.world.files = files;
        auto& job = *host.jobs.rowAt(1);
        job.process = row.process;
        job.isPreview = row.isPreview;
        job.previewName = row.previewName;
        auto& outside = host.world.outside;
        outside.fault = kind().fault;
        outside.forGood = kind().forGood;
        outside.mute = kind().mute;
        outside.code = kind().code;
        (kind().code == 0 ? outside.failAt : outside.codeAt) = position;
        const bool result = print();
        outside.failAt.reset();
        outside.codeAt.reset();
        outside.mute = false;
        ++Tally::injected;
        return result;
    }

    /// Whether the last print was as a good one until its call number `position`.
    bool agreesBefore(std::size_t position) const {
        const auto same = [](const auto& a, const auto& b, std::ptrdiff_t count) {
            return std::ssize(a) >= count && std::equal(b.begin(), b.begin() + count, a.begin());
        };
        const auto before = calls.begin() + static_cast<std::ptrdiff_t>(position);
        const auto recorded = std::count_if(calls.begin(), before, [](const auto& call) {
            return call.starts_with("control ") && !call.starts_with("control member");
        });
        return same(host.world.outside.calls, calls, static_cast<std::ptrdiff_t>(position) + 1) &&
               same(host.world.engineCalls, record, recorded);
    }

    /// Tries the positions of calls that `concerned` takes, judged by `judge(position, result)`.
    template <class Concerned, class Judge>
    void tryAll(Concerned&& concerned, Judge&& judge) {
        const std::size_t step = std::getenv("KVT_FAULTS") ? 1 : kind().sample;
        for (std::size_t position = 0; position < calls.size(); position += step) {
            if (!concerned(calls[position]))
                continue;
            SCOPED_TRACE(std::to_string(position) + ": " + calls[position]);
            const bool result = printWithFault(position);
            ASSERT_TRUE(agreesBefore(position));
            judge(position, result);
            if (HasFatalFailure())
                return;
        }
        host.world.files = files;
        host.jobs.rowAt(1)->process = row.process;
        host.jobs.rowAt(1)->isPreview = row.isPreview;
        host.jobs.rowAt(1)->previewName = row.previewName;
        EXPECT_TRUE(print());
        EXPECT_EQ(host.world.outside.calls, calls);
        EXPECT_EQ(host.world.engineCalls, record);
        EXPECT_THAT(host.world.reports, IsEmpty());
        EXPECT_EQ(host.world.outside.live, live);
    }

    /// Where the last print's errors were reported.
    std::vector<std::string> places() const {
        std::vector<std::string> result;
        result.reserve(host.world.reports.size());
        for (const auto& each : host.world.reports)
            result.push_back(each.className + "/" + each.procedure);
        return result;
    }

    /// Without the engine's file the viewer can't be started; that is a report of its own.
    bool lacksItsPreview(std::size_t position) const {
        return mode() == 1 && (calls[position] == "create form" || calls[position] == "control LlPrintEnd");
    }

    long number() const {
        return kind().fault == Fault::RuntimeError  ? kInjected
               : kind().fault == Fault::OutOfMemory ? static_cast<long>(ErrorNumber::OutOfMemory)
                                                    : static_cast<long>(ErrorNumber::InternalError);
    }

    Host host;
    // What a print without faults does and leaves.
    std::vector<std::string> calls;
    std::vector<std::string> record;
    std::set<std::string> files;
    JobRow row;
    int live = 0;
};

bool anyCall(const std::string&) {
    return true;
}
bool engineCall(const std::string& call) {
    return call.starts_with("control Ll");
}

class Once : public EveryFault {};

TEST_P(Once, HasItsOneReportAndResult) {
    const Rules rules(report(), calls);
    tryAll(anyCall, [&](std::size_t position, bool result) {
        const auto expected = rules.of(position);
        EXPECT_EQ(result, expected.result);
        if (kind().mute) {
            EXPECT_THAT(host.world.reports, IsEmpty());
            return;
        }
        auto reported = places();
        if (lacksItsPreview(position)) {
            ASSERT_FALSE(reported.empty());
            EXPECT_EQ(reported.back(), "basLL80/fkt_Aktiviere_Preview");
            reported.pop_back();
        }
        if (expected.place.empty()) {
            EXPECT_THAT(reported, IsEmpty());
            return;
        }
        ASSERT_THAT(reported, ElementsAre(expected.place));
        EXPECT_EQ(host.world.reports[0].number, number());
    });
}

class ForGood : public EveryFault {};

TEST_P(ForGood, EndsThePrintAndNoProcedureReportsTwice) {
    const Rules rules(report(), calls);
    tryAll(anyCall, [&](std::size_t position, bool result) {
        bool succeeds = true;
        std::set<std::string> allowed{"basLL80/fkt_Aktiviere_Preview"};
        for (auto later = position; later < calls.size(); ++later) {
            const auto expected = rules.of(later);
            succeeds = succeeds && expected.result;
            allowed.insert(expected.place);
        }
        EXPECT_EQ(result, succeeds);
        auto reported = places();
        EXPECT_THAT(reported,
                    ::testing::Each(::testing::Truly([&](const auto& place) { return allowed.contains(place); })));
        std::sort(reported.begin(), reported.end());
        EXPECT_EQ(std::adjacent_find(reported.begin(), reported.end()), reported.end())
            << ::testing::PrintToString(reported);
    });
}

class EngineCode : public EveryFault {};

TEST_P(EngineCode, IsReportedForEachCallThatIsJudged) {
    tryAll(engineCall, [&](std::size_t position, bool result) {
        bool stopped = false;
        const auto last = kind().forGood ? calls.size() : position + 1;
        for (auto each = position; each < last; ++each)
            stopped = stopped || (engineCall(calls[each]) && stops(report(), calls, each, kind().code));
        EXPECT_EQ(result, !stopped);
        const auto& made = host.world.outside.calls;
        const auto first = made.begin() + static_cast<std::ptrdiff_t>(position);
        const bool isError = kind().code != kEngineCancelled && kind().code != kEnginePageFull;
        const auto judged = std::count_if(first, kind().forGood ? made.end() : first + 1, isJudged);
        EXPECT_EQ(std::ssize(host.world.reports), isError ? judged : 0);
        EXPECT_THAT(places(), ::testing::Each("clsDruckFormular/PrFehler"));
    });
}

std::string nameOfCase(const ::testing::TestParamInfo<EveryFault::ParamType>& each) {
    return std::get<0>(each.param).list + std::to_string(std::get<1>(each.param)) + std::get<2>(each.param).name;
}

auto everyReportAndMode(std::initializer_list<Kind> kinds) {
    return ::testing::Combine(::testing::ValuesIn(allReports()), ::testing::Values(0, 1, 2),
                              ::testing::ValuesIn(std::vector<Kind>(kinds)));
}

INSTANTIATE_TEST_SUITE_P(All, Once, everyReportAndMode({kRuntimeError, kOutOfMemory, kUnknown, kUnreported}),
                         nameOfCase);
INSTANTIATE_TEST_SUITE_P(All, ForGood, everyReportAndMode({kForGood, kMemoryForGood}), nameOfCase);
INSTANTIATE_TEST_SUITE_P(All, EngineCode,
                         everyReportAndMode({kErrorCode, kErrorCodeForGood, kCancelled, kCancelledForGood,
                                             kPageFull}),
                         nameOfCase);

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

} // namespace
} // namespace kvtdruck::test
