// The print manager, its job table and the preview viewers, with every habit that hosts know.
#include "component/host.h"
#include "engine/clsDruckFormular.h"
#include "values/conversion.h"

#include <algorithm>

namespace kvtdruck::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Manager : public ::testing::Test {
  protected:
    Manager() { host.world.readers["clsZugUmsatz"].values[u"Jahr"] = {2024.0}; }

    ObjectRef allYears() { return host.world.array({{true, Variant(0.0), Variant(0.0)}}); }
    bool preview(std::int32_t window = kWindow) {
        host.engineWritesPreview();
        return host.print({.mode = 1, .array = allYears(), .window = window});
    }
    const JobRow& row(std::int16_t index) { return *host.jobs.rowAt(index); }

    Host host;
};

TEST_F(Manager, InitAlwaysAnswersFalse) {
    EXPECT_FALSE(host.manager.fkt_Init(nullptr));
    EXPECT_THAT(host.world.reports, IsEmpty());
    EXPECT_EQ(host.jobs.rowCount(), 1) << "row 0 is there from the start";
}

TEST_F(Manager, RowZeroStaysUnused) {
    EXPECT_TRUE(host.print({.array = allYears()}));
    EXPECT_EQ(host.jobs.rowCount(), 2);
    EXPECT_EQ(row(0).adapter, nullptr);
    EXPECT_EQ(row(1).parentHwnd, kWindow);
    EXPECT_EQ(row(1).listName, u"Umsatz");
    EXPECT_EQ(row(1).process.id, 0);
    EXPECT_FALSE(row(1).isPreview);
    EXPECT_EQ(toUtf8(row(1).prevPath), kLayouts) << "a printed job has the layout folder as its preview path";
}

TEST_F(Manager, AWindowWithHandleZeroFindsTheEmptyRow) {
    EXPECT_TRUE(host.print({.array = allYears(), .window = 0}));
    EXPECT_EQ(host.jobs.rowCount(), 1);
    EXPECT_NE(row(0).adapter, nullptr);
}

TEST_F(Manager, AWindowsNextJobReusesItsRow) {
    host.print({.array = allYears()});
    const auto first = row(1).adapter;
    host.print({.array = allYears()});
    EXPECT_EQ(host.jobs.rowCount(), 2);
    EXPECT_NE(row(1).adapter, first) << "each job has an adapter of its own";
    host.print({.array = allYears(), .window = 43});
    EXPECT_EQ(host.jobs.rowCount(), 3);
}

TEST_F(Manager, AmongSeveralRowsOfAWindowTheLastIsTakenAndEachViewerEnded) {
    preview();
    const auto copy = row(1);
    host.jobs.appendRow();
    *host.jobs.rowAt(2) = copy;
    host.jobs.rowAt(2)->process = {4321};
    host.world.ended.clear();
    EXPECT_TRUE(preview());
    EXPECT_THAT(host.world.ended, ElementsAre(1001, 4321));
    EXPECT_EQ(row(2).process.id, 1002);
    EXPECT_EQ(row(1).process.id, 0);
}

TEST_F(Manager, InitForgetsEveryRow) {
    preview();
    host.manager.fkt_Init(nullptr);
    EXPECT_EQ(host.jobs.rowCount(), 1);
    EXPECT_THAT(host.world.ended, IsEmpty()) << "viewers keep running";
}

TEST_F(Manager, ManagersShareTheTable) {
    clsDruckManager other(host.state, host.jobs, host.world.forms());
    preview();
    EXPECT_TRUE(other.Terminate_Preview(kWindow));
    EXPECT_THAT(host.world.ended, ElementsAre(1001));
}

TEST_F(Manager, AnUnknownListRegistersARowAndSaysNothing) {
    for (const StringView list : {u"umsatz", u"Umsatz ", u"", u"Unbekannt"})
        EXPECT_FALSE(host.print({.list = list, .array = allYears()}));
    EXPECT_THAT(host.world.reports, IsEmpty());
    EXPECT_EQ(host.jobs.rowCount(), 2);
    EXPECT_EQ(row(1).listName, u"Unbekannt");
}

TEST_F(Manager, ACompanyWithoutDataIsNamedAndRegistersNothing) {
    host.world.readers["clsZugFirmaAllg"].answers[u"LeseFirmaAllg"] = false;
    EXPECT_FALSE(host.print({.array = allYears(), .company = 4.5}));
    EXPECT_THAT(host.world.reports,
                ElementsAre(message("clsDruckManager", "Lese_Allgemeine_Firmendaten",
                                    "Die allgemeinen Firmendaten für die Firma 4,5 sind nicht vorhanden.")));
    EXPECT_EQ(host.jobs.rowCount(), 1);
}

TEST_F(Manager, ACompanyThatCannotBeConnectedIsReported) {
    host.world.readers["clsZugFirmaAllg"].answers[u"Verbinde"] = false;
    EXPECT_FALSE(host.print({.array = allYears()}));
    EXPECT_THAT(host.world.reports,
                ElementsAre(message("clsDruckManager", "Lese_Allgemeine_Firmendaten",
                                    "Die allgemeinen Firmendaten konnten nicht gelesen werden")));
}

TEST_F(Manager, TheProductModeIsKeptBeforeAnythingElse) {
    host.world.readers["clsZugFirmaAllg"].answers[u"Verbinde"] = false;
    host.print({.array = allYears(), .productMode = 9});
    EXPECT_EQ(host.state.pSelmoraFuer, 9);
}

TEST_F(Manager, WithoutInitTheRegistrationFailsUnderABlankName) {
    Host fresh(false);
    EXPECT_FALSE(fresh.print({}));
    EXPECT_THAT(fresh.world.reports, ElementsAre(runtimeError("clsDruckManager", " ", ErrorNumber::ObjectNotSet)));
    EXPECT_TRUE(fresh.manager.Terminate_Preview(kWindow));
    EXPECT_EQ(fresh.world.reports.size(), 1u) << "closing a window reports nothing";
}

TEST_F(Manager, TheErrorReportObjectIsCreatedOnceAndAtTheFirstReport) {
    EXPECT_EQ(host.world.fehlerCreated, 0);
    host.world.readers["clsZugFirmaAllg"].answers[u"Verbinde"] = false;
    host.print({});
    host.print({});
    EXPECT_EQ(host.world.fehlerCreated, 1);
    EXPECT_EQ(host.world.reports.size(), 2u);
}

TEST_F(Manager, TheLaunchersAreComparedInThisOrder) {
    const std::pair<StringView, const char*> launchers[] = {{u"Umsatz", "Dr_Umsatz"},
                                                            {u"MitUeber", "Dr_MitarbeiterUebersicht"},
                                                            {u"Firma", "Dr_Firma_Allg"},
                                                            {u"GemeinK", "Dr_Gemeinkosten"},
                                                            {u"NeutralA", "Dr_NeutraleAufwendungen"},
                                                            {u"MaKost", "Dr_MitarbeiterKosten"},
                                                            {u"MaZeit", "Dr_MitarbeiterZeiten"},
                                                            {u"MaStKost", "Dr_MitarbeiterStammKosten"},
                                                            {u"MaStZeit", "Dr_MitarbeiterStammZeiten"},
                                                            {u"KalkKo", "Dr_KalkulatorischeKosten"},
                                                            {u"MatUeber", "Dr_MaterialUebersicht"},
                                                            {u"Bilanz", "Dr_Bilanz"},
                                                            {u"BsEMa", "Dr_BetriebUbersicht_MA"},
                                                            {u"BsEStd", "Dr_BetriebUbersicht_Std"},
                                                            {u"BsEGes", "Dr_BetriebUbersicht_Ges"},
                                                            {u"KalkW", "Dr_Kalkulationswerte"},
                                                            {u"WasWenn", "Dr_WasWaereWenn"},
                                                            {u"UmsatzHW", "Dr_UmsatzHW"}};
    ASSERT_EQ(allLaunchers().size(), std::size(launchers));
    for (std::size_t i = 0; i < std::size(launchers); ++i) {
        EXPECT_EQ(allLaunchers()[i].listName, launchers[i].first);
        EXPECT_EQ(toUtf8(allLaunchers()[i].procedure), launchers[i].second);
    }
}

// Previews

TEST_F(Manager, APreviewIsRenamedAndShown) {
    EXPECT_TRUE(preview());
    const auto kept = kPreviews + "\\Umsatz04032026050607.ll";
    EXPECT_THAT(host.world.started, ElementsAre("llview12.exe \"" + kept + "\""));
    EXPECT_THAT(host.world.files, ElementsAre(kept));
    EXPECT_EQ(row(1).process.id, 1001);
    EXPECT_TRUE(row(1).isPreview);
    EXPECT_EQ(host.world.pumps, 1);
    EXPECT_THAT(host.world.engineCalls,
                Contains("LlPreviewSetTempPath(\"C:\\\\App\\\\DB\\\\BerichteLLVT\\\\Preview\\\\\") = 0"));
}

TEST_F(Manager, TheNextPreviewEndsTheFirstViewerAndRemovesItsFile) {
    preview();
    const auto first = kPreviews + "\\Umsatz04032026050607.ll";
    host.world.clock = dateOf(2026, 3, 4, 5, 6, 8);
    host.world.files.insert(kPreviews + "\\Umsatz.ll"); // left over
    EXPECT_TRUE(preview());
    EXPECT_THAT(host.world.ended, ElementsAre(1001));
    EXPECT_THAT(host.world.removed, ElementsAre(first, kPreviews + "\\Umsatz.ll"));
    EXPECT_THAT(host.world.files, ElementsAre(kPreviews + "\\Umsatz04032026050608.ll"));
    EXPECT_EQ(row(1).process.id, 1002);
}

TEST_F(Manager, ANewRowRemovesALeftOverPreviewOfItsList) {
    host.world.files.insert(kLayouts + "\\Umsatz.ll");
    host.print({.array = allYears()});
    EXPECT_THAT(host.world.removed, ElementsAre(kLayouts + "\\Umsatz.ll"));
}

TEST_F(Manager, AReadOnlyPreviewIsLeftAloneSilently) {
    host.world.files.insert(kLayouts + "\\Umsatz.ll");
    host.world.readOnly.insert(kLayouts + "\\Umsatz.ll");
    EXPECT_TRUE(host.print({.array = allYears()}));
    EXPECT_THAT(host.world.removed, IsEmpty());
    EXPECT_THAT(host.world.reports, IsEmpty());
}

TEST_F(Manager, ClosingAWindowEndsItsViewerAndLooksForAFileWithoutName) {
    preview();
    host.world.files.insert(kPreviews + "\\.ll");
    EXPECT_TRUE(host.manager.Terminate_Preview(kWindow));
    EXPECT_THAT(host.world.ended, ElementsAre(1001));
    EXPECT_THAT(host.world.removed, ElementsAre(kPreviews + "\\Umsatz04032026050607.ll", kPreviews + "\\.ll"));
    EXPECT_EQ(row(1).process.id, 0);
    EXPECT_EQ(host.jobs.rowCount(), 2) << "the row stays";
    EXPECT_TRUE(host.manager.Terminate_Preview(kWindow));
    EXPECT_EQ(host.world.ended.size(), 1u);
}

TEST_F(Manager, ClosingAWindowWithoutARowDoesNothing) {
    preview();
    EXPECT_TRUE(host.manager.Terminate_Preview(99));
    EXPECT_THAT(host.world.ended, IsEmpty());
}

TEST_F(Manager, APrintedJobNeverEndsAProcess) {
    host.print({.array = allYears()});
    host.jobs.rowAt(1)->process = {555};
    host.manager.Terminate_Preview(kWindow);
    EXPECT_THAT(host.world.ended, IsEmpty());
    EXPECT_EQ(row(1).process.id, 555);
}

TEST_F(Manager, AMissingPreviewFileIsReportedAndTheReportStillCounts) {
    EXPECT_TRUE(host.print({.mode = 1, .array = allYears()}));
    EXPECT_THAT(host.world.reports,
                ElementsAre(runtimeError("basLL80", "fkt_Aktiviere_Preview", ErrorNumber::FileNotFound)));
    EXPECT_THAT(host.world.started, IsEmpty());
    EXPECT_EQ(row(1).process.id, 0);
}

TEST_F(Manager, PreviewNamesLoseDotsColonsAndBlanksAlone) {
    host.world.userLocale.shortDate = u"M/d/yyyy";
    host.world.userLocale.time = u"h:mm:ss tt";
    host.world.userLocale.am = u"AM";
    preview();
    EXPECT_EQ(toUtf8(row(1).previewName), "Umsatz3/4/202650607AM") << "slashes stay";
}

TEST_F(Manager, AtMidnightThePreviewNameHasNoTime) {
    host.world.clock = dateOf(2026, 3, 4);
    preview();
    EXPECT_EQ(toUtf8(row(1).previewName), "Umsatz04032026");
}

TEST_F(Manager, AHostThatPrintsWhileMessagesAreProcessedLosesNothing) {
    host.engineWritesPreview();
    host.world.whilePumping = [this] {
        for (std::int32_t window = 100; window < 140; ++window)
            host.print({.list = u"unbekannt", .array = nullptr, .window = window});
    };
    EXPECT_TRUE(host.print({.mode = 1, .array = allYears()}));
    EXPECT_EQ(row(1).process.id, 1001);
}

TEST_F(Manager, AHostThatPrintsWhileItsViewerEndsKeepsBothJobs) {
    preview();
    host.engineWritesPreview();
    host.world.whilePumping = [this] { EXPECT_TRUE(host.print({.mode = 1, .array = allYears(), .window = 100})); };
    EXPECT_TRUE(host.print({.mode = 0, .array = allYears()}));
    EXPECT_EQ(row(1).parentHwnd, kWindow);
    EXPECT_FALSE(row(1).isPreview);
    EXPECT_EQ(toUtf8(row(1).prevPath), kLayouts);
    EXPECT_EQ(row(2).parentHwnd, 100);
    EXPECT_EQ(toUtf8(row(2).prevPath), kPreviews);
    EXPECT_EQ(row(2).process.id, 1002);
    EXPECT_THAT(host.world.reports, IsEmpty());
}

TEST_F(Manager, AHostMayReuseItsListNameWhileMessagesAreProcessed) {
    preview();
    auto list = std::make_unique<String>(u"Umsatz");
    host.world.whilePumping = [&] { list.reset(); };
    EXPECT_TRUE(host.print({.list = *list, .array = allYears()}));
    EXPECT_EQ(row(1).listName, u"Umsatz");
}

TEST_F(Manager, AFailureInTheFirstPrintOfAllLeavesNothingForTheSecond) {
    preview();
    const auto count = host.world.outside.calls.size();
    const auto record = host.world.engineCalls;
    for (std::size_t position = 0; position < count; ++position) {
        SCOPED_TRACE(host.world.outside.calls[position]);
        Host fresh;
        fresh.world.readers["clsZugUmsatz"].values[u"Jahr"] = {2024.0};
        fresh.engineWritesPreview();
        const auto printAgain = [&] {
            const auto array = fresh.world.array({{true, Variant(0.0), Variant(0.0)}});
            return fresh.print({.mode = 1, .array = array});
        };
        fresh.world.outside.failAt = position;
        printAgain();
        fresh.world.outside.failAt.reset();
        const bool noFile = fresh.world.files.empty();
        EXPECT_LE(fresh.world.reports.size(), noFile ? 2u : 1u);
        fresh.world.reports.clear();
        fresh.world.engineCalls.clear();
        EXPECT_TRUE(printAgain());
        EXPECT_THAT(fresh.world.reports, IsEmpty());
        EXPECT_EQ(fresh.world.engineCalls, record);
    }
}

TEST_F(Manager, AHostThatInitialisesWhileItsViewerEndsForgetsTheRowButNotTheJob) {
    preview();
    const auto record = host.world.engineCalls;
    host.world.engineCalls.clear();
    host.engineWritesPreview();
    host.world.whilePumping = [this] { host.manager.fkt_Init(nullptr); };
    EXPECT_TRUE(host.print({.mode = 1, .array = allYears()}));
    EXPECT_EQ(host.world.engineCalls, record);
    EXPECT_EQ(host.world.started.size(), 2u);
    EXPECT_EQ(host.jobs.rowCount(), 1);
    EXPECT_THAT(host.world.reports, IsEmpty());
}

TEST_F(Manager, AJobForTheWindowOfARunningOneTakesARowOfItsOwn) {
    preview();
    host.engineWritesPreview();
    host.world.whilePumping = [this] { EXPECT_TRUE(host.print({.mode = 0, .array = allYears()})); };
    EXPECT_TRUE(host.print({.mode = 1, .array = allYears()}));
    EXPECT_TRUE(row(1).isPreview);
    EXPECT_EQ(row(1).process.id, 1002);
    EXPECT_FALSE(row(2).isPreview);
    EXPECT_EQ(row(2).parentHwnd, kWindow);
    EXPECT_TRUE(host.manager.Terminate_Preview(kWindow));
    EXPECT_THAT(host.world.ended, ElementsAre(1001, 1002));
}

TEST_F(Manager, RowsThatAreForgottenWhileTheyAreLookedThroughAreNoLongerLookedAt) {
    preview();
    preview(43);
    host.engineWritesPreview();
    host.world.whilePumping = [this] { host.manager.fkt_Init(nullptr); };
    EXPECT_TRUE(host.print({.mode = 1, .array = allYears()}));
    EXPECT_EQ(host.jobs.rowCount(), 1);
    EXPECT_EQ(host.world.started.size(), 3u);
    EXPECT_THAT(host.world.reports, IsEmpty());
}

TEST_F(Manager, AViewerIsStartedForARowThatThereIs) {
    preview();
    host.world.files.insert(kPreviews + "\\Umsatz.ll");
    EXPECT_TRUE(host.jobs.fkt_Aktiviere_Preview(u"Umsatz", fromUtf8(kPreviews), 1));
    EXPECT_EQ(row(1).process.id, 1002);
    for (const std::int16_t missing : {std::int16_t{-1}, std::int16_t{2}}) {
        host.world.reports.clear();
        EXPECT_FALSE(host.jobs.fkt_Aktiviere_Preview(u"Umsatz", fromUtf8(kPreviews), missing));
        EXPECT_THAT(host.world.reports, ElementsAre(runtimeError("basLL80", "fkt_Aktiviere_Preview",
                                                                 ErrorNumber::SubscriptOutOfRange)));
    }
    EXPECT_EQ(host.world.started.size(), 2u);
}

TEST_F(Manager, ClosingAWindowAnswersWithItsLastRow) {
    preview();
    host.jobs.appendRow();
    *host.jobs.rowAt(2) = row(1);
    const auto ends = [this](std::size_t failing) {
        for (std::int16_t index : {std::int16_t{1}, std::int16_t{2}})
            host.jobs.rowAt(index)->process = {600 + index};
        host.world.reports.clear();
        // Four calls for each row: its process, two files, the pending messages.
        host.world.outside.failAt = host.world.outside.calls.size() + failing;
        const bool result = host.manager.Terminate_Preview(kWindow);
        host.world.outside.failAt.reset();
        EXPECT_THAT(host.world.reports, ElementsAre(injected("basLL80", "fkt_Terminiere_Review")));
        return result;
    };
    host.world.files.clear();
    EXPECT_TRUE(ends(0)) << "the first row's failure is forgotten";
    EXPECT_EQ(row(1).process.id, 601);
    EXPECT_EQ(row(2).process.id, 0);
    EXPECT_FALSE(ends(4));
    EXPECT_EQ(row(1).process.id, 0);
    EXPECT_EQ(row(2).process.id, 602);
}

TEST_F(Manager, AViewerThatDoesNotStartLeavesTheRenamedFile) {
    preview();
    const auto calls = host.world.outside.calls;
    const auto start = std::find(calls.begin(), calls.end(), "process start") - calls.begin();
    Host fresh;
    fresh.world.readers["clsZugUmsatz"].values[u"Jahr"] = {2024.0};
    fresh.engineWritesPreview();
    fresh.world.outside.failAt = static_cast<std::size_t>(start);
    EXPECT_TRUE(fresh.print({.mode = 1, .array = fresh.world.array({{true, Variant(0.0), Variant(0.0)}})}))
        << "the viewer's result is ignored";
    EXPECT_THAT(fresh.world.reports, ElementsAre(injected("basLL80", "fkt_Aktiviere_Preview")));
    EXPECT_THAT(fresh.world.files, ElementsAre(kPreviews + "\\Umsatz04032026050607.ll"));
    EXPECT_EQ(fresh.jobs.rowAt(1)->process.id, 0);
}

} // namespace
} // namespace kvtdruck::test
