// The engine adapter: what each operation passes on, how results are judged, and the letterhead.
#include "component/host.h"
#include "engine/clsDruckFormular.h"
#include "values/conversion.h"

#include <algorithm>

namespace kvtdruck::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class Adapter : public ::testing::Test {
  protected:
    Adapter() { EXPECT_EQ(adapter.fkt_Starte_Form(), Variant(true)); }

    void answer(Operation operation, std::int32_t code) { world().results[{operation, 0}] = code; }
    World& world() { return host.world; }
    std::string lastCall() { return world().engineCalls.back(); }

    Host host;
    clsDruckFormular adapter{host.state, host.world.forms()};
};

class Recording : public ::testing::Test {
  protected:
    World& world() { return host.world; }

    Host host;
    std::vector<std::string> lines;
    RecordingFormFactory forms{host.world.forms(), [this](std::string_view line) { lines.emplace_back(line); }};
    clsDruckFormular adapter{host.state, forms};
};

TEST_F(Recording, WritesWhatTheEngineGetsAndAnswers) {
    world().results[{Operation::LlPrint, 0}] = kEnginePageFull;
    world().formVisible = true;
    adapter.fkt_Starte_Form();
    EXPECT_TRUE(adapter.LlDefineVariableExt(u"Name", u"\"Größe\"\t\\ \U0001F600", kTypeText));
    EXPECT_TRUE(adapter.LlDefineLayout(u"Titel", 2, u"C:\\Liste"));
    EXPECT_EQ(adapter.LlPrint(), kEnginePageFull);
    adapter.LlPrintAbort();
    adapter.fkt_Form_Hide();
    EXPECT_THAT(lines,
                ElementsAre("[3] = -1", R"(LlDefineVariableExt("Name", "\"Größe\"\u0009\\ 😀", 268435456) = 0)",
                            R"(LlDefineLayout(hWnd, "Titel", 2, "C:\\Liste") = 0)", "LlPrint() = -998"));
    EXPECT_EQ(lines, world().engineCalls) << "the engine got the same";
    EXPECT_FALSE(world().formVisible);
}

TEST_F(Recording, HalvesOfPairsAreWrittenAsEscapes) {
    std::string line;
    appendQuoted(line, String{u'a', u'\xDE00', u'\xD83D'});
    EXPECT_EQ(line, R"("a\ude00\ud83d")");
}

TEST_F(Recording, WhatFailsIsWrittenWithItsNumber) {
    world().outside.failAt = 1; // the property, after the form
    EXPECT_EQ(adapter.fkt_Starte_Form(), Variant(false));
    EXPECT_THAT(lines, ElementsAre("[3] ! 4711"));
    world().outside.failAt.reset();
    lines.clear();
    adapter.fkt_Starte_Form();
    world().outside.failAt = world().outside.calls.size();
    adapter.LlPrintFields();
    EXPECT_THAT(lines, ElementsAre("[3] = -1", "LlPrintFields() ! 4711"));
}

ErrorReport engineError(int code, const std::string& operation) {
    return message("clsDruckFormular", "PrFehler",
                   "List & Label\r\nFehler " + std::to_string(code) + " bei " + operation +
                       "\r\nDie Fehlercodes sind im L&L handbuch Seite 238 beschrieben.");
}

TEST_F(Adapter, LoadingTheFormSetsPropertyThree) {
    EXPECT_THAT(world().engineCalls, ElementsAre("[3] = -1"));
}

TEST_F(Adapter, JudgesResults) {
    EXPECT_EQ(adapter.PrFehler(0, u"x"), -1);
    EXPECT_EQ(adapter.PrFehler(-998, u"x"), -998);
    EXPECT_EQ(adapter.PrFehler(-99, u"x"), -99);
    EXPECT_THAT(world().reports, IsEmpty());
    EXPECT_EQ(adapter.PrFehler(-1, u"x"), 0);
    EXPECT_EQ(adapter.PrFehler(17, u"y"), 0);
    EXPECT_THAT(world().reports, ElementsAre(engineError(-1, "x"), engineError(17, "y")));
}

// long: a table, with a line for each operation.
TEST_F(Adapter, EveryOperationPassesItsArgumentsAndReportsUnderItsText) {
    struct Case {
        Operation operation;
        std::function<Variant()> call;
        std::string record;
        std::string text; ///< empty: direct, or not judged
        Variant success;
        Variant failure;
    };
    const auto n = [](std::int32_t number) { return Variant(number); };
    const Case cases[] = {
        {Operation::LlDefineVariableStart,
         [&] {
             adapter.LlDefineVariableStart();
             return Variant();
         },
         "LlDefineVariableStart()",
         "",
         {},
         {}},
        {Operation::LlDefineFieldStart,
         [&] {
             adapter.LlDefineFieldStart();
             return Variant();
         },
         "LlDefineFieldStart()",
         "",
         {},
         {}},
        {Operation::LlDefineVariableExt, [&] { return Variant(adapter.LlDefineVariableExt(u"V", u"w", 5)); },
         "LlDefineVariableExt(\"V\", \"w\", 5)", "LlDefineVariableExt V", true, false},
        {Operation::LlDefineFieldExt, [&] { return Variant(adapter.LlDefineFieldExt(u"F", u"w", 6)); },
         "LlDefineFieldExt(\"F\", \"w\", 6)", "LlDefineLayout F", true, false},
        {Operation::LlDefineLayout, [&] { return Variant(adapter.LlDefineLayout(u"T", 2, u"o")); },
         "LlDefineLayout(hWnd, \"T\", 2, \"o\")", "LlDefineLayout T", true, false},
        {Operation::LlPrintWithBoxStart, [&] { return n(adapter.LlPrintWithBoxStart(2, u"o", 256, 2, u"t")); },
         "LlPrintWithBoxStart(2, \"o\", 256, 2, hWnd, \"t\")", "LlPrintWithBoxStart o", n(-1), n(0)},
        {Operation::LlPrint, [&] { return n(adapter.LlPrint()); }, "LlPrint()", "LlPrint", n(-1), n(0)},
        {Operation::LlPrintFields, [&] { return n(adapter.LlPrintFields()); }, "LlPrintFields()", "LlPrintFields",
         n(-1), n(0)},
        {Operation::LlPrintFieldsEnd, [&] { return n(adapter.LlPrintFieldsEnd()); }, "LlPrintFieldsEnd()",
         "LlPrintFieldsEnd", n(-1), n(0)},
        {Operation::LlPrintEnd, [&] { return n(adapter.LlPrintEnd(3)); }, "LlPrintEnd(3)", "LlPrintFieldsEnd",
         n(-1), n(0)},
        {Operation::LlPreviewDisplay, [&] { return n(adapter.LlPreviewDisplay(u"o", u"C:\\p")); },
         "LlPreviewDisplay(\"o\", \"C:\\\\p\\\\\", hWnd)", "LlPreviewDisplay o", n(-1), n(0)},
        {Operation::LlPreviewDeleteFiles, [&] { return n(adapter.LlPreviewDeleteFiles(u"o", u"C:\\p\\")); },
         "LlPreviewDeleteFiles(\"o\", \"C:\\\\p\\\\\\\\\")", "LlPreviewDeleteFiles o", n(-1), n(0)},
        {Operation::LlPreviewSetTempPath, [&] { return n(adapter.LlPreviewSetTempPath(u"C:\\p")); },
         "LlPreviewSetTempPath(\"C:\\\\p\\\\\")", "LlPreviewSetTempPath", n(-1), n(0)},
        {Operation::LlSetPrinterToDefault, [&] { return n(adapter.LlSetPrinterToDefault(2, u"o")); },
         "LlSetPrinterToDefault(2, \"o\")", "LlSetPrinterToDefault o", n(-1), n(0)},
        {Operation::LlPrintSetBoxText, [&] { return n(adapter.LlPrintSetBoxText(u"t", 50)); },
         "LlPrintSetBoxText(\"t\", 50)", "LlPrintSetBoxText", n(-1), n(0)},
        {Operation::LlPrintOptionsDialog, [&] { return n(adapter.LlPrintOptionsDialog(u"t")); },
         "LlPrintOptionsDialog(hWnd, \"t\")", "LlPrintOptionsDialog", n(-1), n(0)},
        {Operation::LlStgsysDrawPage, [&] { return n(adapter.LlStgsysDrawPage(1, 2, 3, 4, 5, 6, 7, 8, 9)); },
         "LlStgsysDrawPage(1, 2, 3, 0, 4, 5, 6, 7, 8, 9)", "", n(0), n(-10)},
        {Operation::LlStgsysStorageOpen, [&] { return n(adapter.LlStgsysStorageOpen(u"o", u"p", true, false)); },
         "LlStgsysStorageOpen(\"o\", \"p\", -1, 0)", "", n(0), n(-10)},
        {Operation::LlStgsysStorageClose,
         [&] {
             adapter.LlStgsysStorageClose(4);
             return Variant();
         },
         "LlStgsysStorageClose(4)",
         "",
         {},
         {}},
        {Operation::PrintEnd,
         [&] {
             adapter.PrintEnd();
             return Variant();
         },
         "PrintEnd()",
         "",
         {},
         {}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.record);
        world().reports.clear();
        EXPECT_EQ(each.call(), each.success);
        EXPECT_EQ(lastCall(), each.record + " = 0");
        EXPECT_THAT(world().reports, IsEmpty());

        world().outside.codeAt = world().outside.calls.size();
        EXPECT_EQ(each.call(), each.failure);
        world().outside.codeAt.reset();
        if (each.text.empty())
            EXPECT_THAT(world().reports, IsEmpty());
        else
            EXPECT_THAT(world().reports, ElementsAre(engineError(-10, each.text)));

        world().reports.clear();
        world().outside.failAt = world().outside.calls.size();
        EXPECT_EQ(each.call(), each.success) << "a failing call is skipped and counts as success";
        world().outside.failAt.reset();
        EXPECT_THAT(world().reports, IsEmpty());
    }
}

TEST_F(Adapter, PageFullCountsAsADefinedVariable) {
    answer(Operation::LlDefineVariableExt, -998);
    EXPECT_TRUE(adapter.LlDefineVariableExt(u"V", u"", kTypeText));
}

TEST_F(Adapter, PageFullAndCancelComeBack) {
    answer(Operation::LlPrintFields, -998);
    EXPECT_EQ(adapter.LlPrintFields(), -998);
    answer(Operation::LlPrintFieldsEnd, -99);
    EXPECT_EQ(adapter.LlPrintFieldsEnd(), -99);
    EXPECT_THAT(world().reports, IsEmpty());
}

TEST_F(Adapter, AbortingHasNoEffect) {
    const auto calls = world().engineCalls.size();
    adapter.LlPrintAbort();
    EXPECT_EQ(world().engineCalls.size(), calls);
    EXPECT_THAT(world().reports, IsEmpty());
    EXPECT_EQ(world().outside.calls.back(), "control member DrForm");
}

TEST_F(Adapter, HidesAVisibleFormOnly) {
    adapter.fkt_Form_Hide();
    EXPECT_EQ(world().hidden, 0);
    world().formVisible = true;
    adapter.fkt_Form_Hide();
    EXPECT_EQ(world().hidden, 1);
}

TEST_F(Adapter, WithoutAFormEverythingSucceeds) {
    adapter.fkt_Form_Unload();
    EXPECT_EQ(adapter.LlPrint(), -1);
    EXPECT_TRUE(adapter.LlDefineVariableExt(u"V", u"", kTypeText));
    adapter.fkt_Form_Hide();
    EXPECT_THAT(world().reports, IsEmpty());
}

TEST_F(Adapter, AFormThatIsUnloadedWithinItsCallStaysUntilTheCallIsOver) {
    auto& outside = world().outside;
    const auto live = outside.live;
    outside.interruptAt = outside.calls.size();
    outside.interrupt = [&] {
        adapter.fkt_Form_Unload();
        EXPECT_EQ(adapter.fkt_Starte_Form(), Variant(true));
        adapter.fkt_Form_Unload();
        EXPECT_EQ(adapter.LlPrint(), -1) << "without a form";
        EXPECT_EQ(outside.live, live + 1) << "both forms are still there";
    };
    EXPECT_EQ(adapter.LlPrint(), -1);
    EXPECT_EQ(outside.live, live - 1);
}

TEST_F(Adapter, AFormThatCannotBeLoadedIsReported) {
    clsDruckFormular other(host.state, world().forms());
    world().outside.failAt = world().outside.calls.size();
    EXPECT_EQ(other.fkt_Starte_Form(), Variant(false));
    EXPECT_THAT(world().reports, ElementsAre(injected("clsDruckFormular", "fkt_Starte_Form")));
}

TEST_F(Adapter, RemovesPrinterDescriptionsAlsoReadOnlyOnes) {
    EXPECT_TRUE(adapter.FKT_Lösche_Druckerbeschreibung(u"C:\\L\\Umsatz"));
    EXPECT_THAT(world().removed, IsEmpty());
    world().files = {"C:\\L\\Umsatz.lsp", "C:\\L\\Umsatz.lsv", "C:\\L\\Umsatz.lst"};
    world().readOnly = {"C:\\L\\Umsatz.lsp"};
    EXPECT_TRUE(adapter.FKT_Lösche_Druckerbeschreibung(u"C:\\L\\Umsatz"));
    EXPECT_THAT(world().removed, ElementsAre("C:\\L\\Umsatz.lsp", "C:\\L\\Umsatz.lsv"));
}

TEST_F(Adapter, AFailingRemovalIsReportedUnderAnotherName) {
    world().files = {"L.lsp", "L.lsv"};
    for (std::size_t step = 0; step < 3; ++step) { // object, question, deletion
        world().reports.clear();
        world().outside.failAt = world().outside.calls.size() + step;
        EXPECT_FALSE(adapter.FKT_Lösche_Druckerbeschreibung(u"L"));
        EXPECT_THAT(world().reports, ElementsAre(injected("clsDruckFormular", "FKT_Setze_Rand_Formular")));
        EXPECT_TRUE(world().files.contains("L.lsv")) << "the second file is not examined";
    }
}

TEST_F(Adapter, TheFormGoesWithTheAdapter) {
    const auto live = world().outside.live;
    {
        clsDruckFormular other(host.state, world().forms());
        other.fkt_Starte_Form();
        EXPECT_EQ(world().outside.live, live + 1);
    }
    EXPECT_EQ(world().outside.live, live);
}

// The letterhead

class Letterhead : public Adapter {
  protected:
    std::vector<std::string> define(StringView title = u"Umsatz") {
        world().engineCalls.clear();
        EXPECT_TRUE(
            adapter.FKT_DefiniereVariablen_AllgemeineFirmendaten(world().create(u"clsZugFirmaAllg"), title));
        return world().engineCalls;
    }
    std::string addressFor(const std::map<String, std::vector<Variant>>& changed) {
        for (const auto& [name, value] : changed)
            world().readers["clsZugFirmaAllg"].values[name] = value;
        const auto call = define().at(12);
        const std::string head = "LlDefineVariableExt(\"FnrAnschriftGes\", \"";
        EXPECT_THAT(call, StartsWith(head));
        return call.substr(head.size(), call.rfind("\", 2") - head.size());
    }
};

TEST_F(Letterhead, DefinesSixteenVariablesInOrder) {
    const std::pair<const char*, const char*> expected[] = {
        {"FnrName1", "Müller & Söhne"},
        {"FnrName2", ""},
        {"FnrName3", "Meisterbetrieb"},
        {"FnrPostfach", "12 34"},
        {"FnrKurzbez", "Müller"},
        {"FnrLand", "Deutschland"},
        {"FnrFax", "0351 3"},
        {"FnrOrt", "Dresden"},
        {"FnzPlz", "1067"},
        {"FnrStrasse", " Hauptstraße 1 "},
        {"FnrTelefon1", "0351 1"},
        {"FnrTelefon2", "0351 2"},
        {"FnrAnschriftGes", "7, Müller & Söhne, Hauptstraße 1, 1067, Dresden"},
        {"Ueberschrift", "Umsatz"},
        {"FnrWaehrung", "EUR"},
        {"FnrBundesland", "Sachsen"}};
    std::vector<std::string> lines;
    for (const auto& [name, value] : expected)
        lines.push_back("LlDefineVariableExt(\"" + std::string(name) + "\", \"" + value + "\", 268435456) = 0");
    EXPECT_EQ(define(), lines);
    EXPECT_THAT(define(u""), Contains("LlDefineVariableExt(\"Ueberschrift\", \"\", 268435456) = 0"));
}

TEST_F(Letterhead, TheAddressLeavesBlankPartsOut) {
    EXPECT_EQ(addressFor({{u"Strasse", {u"   "}}}), "7, Müller & Söhne, 1067, Dresden");
    EXPECT_EQ(addressFor({{u"Name1", {u""}}, {u"Ort", {u""}}}), "7, 1067");
    EXPECT_EQ(addressFor({{u"Plz", {0.0}}}), "7, 0") << "a postal code of 0 is a postal code";
}

TEST_F(Letterhead, AnEngineErrorIsReportedAndTheOthersFollow) {
    world().outside.codeAt.reset();
    world().results[{Operation::LlDefineVariableExt, 0}] = -10;
    EXPECT_EQ(define().size(), 16u);
    EXPECT_THAT(world().reports, ElementsAre(engineError(-10, "LlDefineVariableExt FnrName1")));
}

TEST_F(Letterhead, AFailingGetterEndsIt) {
    const auto object = world().create(u"clsZugFirmaAllg");
    world().outside.failAt = world().outside.calls.size() + 40;
    world().engineCalls.clear();
    EXPECT_FALSE(adapter.FKT_DefiniereVariablen_AllgemeineFirmendaten(object, u"T"));
    EXPECT_THAT(world().reports,
                ElementsAre(injected("clsDruckFormular", "FKT_DefiniereVariablen_AllgemeineFirmendaten")));
    EXPECT_THAT(world().engineCalls, Not(IsEmpty())) << "what was defined stays defined";
    world().reports.clear();
    EXPECT_FALSE(adapter.FKT_DefiniereVariablen_AllgemeineFirmendaten(nullptr, u"T"));
    EXPECT_THAT(world().reports,
                ElementsAre(runtimeError("clsDruckFormular", "FKT_DefiniereVariablen_AllgemeineFirmendaten",
                                         ErrorNumber::ObjectNotSet)));
}

} // namespace
} // namespace kvtdruck::test
