// A compiled host: every operation through its slot, as hosts were built against it.
#include "host.h"

#include <algorithm>

namespace kvtdruck::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class VtableHost : public HostTest {};

TEST_F(VtableHost, CreatesAllTwentyClasses) {
    for (const auto& known : kComponentClasses) {
        void* object = nullptr;
        ASSERT_EQ(CoCreateInstance(known.clsid, nullptr, CLSCTX_INPROC_SERVER, known.iid, &object), S_OK)
            << toUtf8(reinterpret_cast<const char16_t*>(known.name));
        const Ref<IDispatch> dispatch(static_cast<IDispatch*>(object));
        void* unknown = nullptr;
        EXPECT_EQ(dispatch->QueryInterface(IID_IUnknown, &unknown), S_OK);
        const Ref<IUnknown> identity(static_cast<IUnknown*>(unknown));
        EXPECT_EQ(dispatch->QueryInterface(IID_IStream, &unknown), E_NOINTERFACE);
        EXPECT_EQ(unknown, nullptr);
    }
}

TEST_F(VtableHost, ClassesRefuseToBeAggregated) {
    const auto outer = newArray(1, 1);
    for (const auto& known : kComponentClasses) {
        void* object = &object;
        EXPECT_EQ(CoCreateInstance(known.clsid, outer.get(), CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
                  CLASS_E_NOAGGREGATION);
        EXPECT_EQ(object, nullptr);
    }
}

TEST_F(VtableHost, NamesOfClassesLeadToThem) {
    for (const auto& known : kComponentClasses) {
        CLSID clsid{};
        EXPECT_EQ(CLSIDFromProgID((std::wstring(L"KVTDruck.") + known.name).c_str(), &clsid), S_OK);
        EXPECT_TRUE(IsEqualCLSID(clsid, known.clsid));
    }
}

TEST_F(VtableHost, PrintsTheTurnover) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz"));
    const auto calls = engineCalls();
    EXPECT_EQ(calls.front(), "[3] = -1");
    EXPECT_THAT(callsOf("LlPrintWithBoxStart", calls), SizeIs(1));
    EXPECT_THAT(callsOf("LlPrintWithBoxStart", calls).front(), HasSubstr("Umsatz\", 256, "));
    EXPECT_THAT(callsOf("LlPrintWithBoxStart", calls).front(), HasSubstr("hWnd"));
    EXPECT_THAT(callsOf("LlDefineVariableExt", calls),
                testing::Contains(StartsWith("LlDefineVariableExt(\"FnrName1\", ")));
    EXPECT_FALSE(callsOf("LlPrintFields", calls).empty());
    EXPECT_THAT(callsOf("LlPrintEnd", calls), SizeIs(1));
    EXPECT_THAT(reportedErrors(), IsEmpty());
    EXPECT_THAT(startedViewers(), IsEmpty());
}

TEST_F(VtableHost, OpensTheDesigner) {
    const auto manager = readyManager();
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 2));
    EXPECT_THAT(callsOf("LlDefineLayout", engineCalls()), SizeIs(1));
    EXPECT_THAT(callsOf("LlPrintWithBoxStart", engineCalls()), IsEmpty());
}

TEST_F(VtableHost, SelectionIsBroughtIntoItsFormInTheHostsOwnArray) {
    const auto manager = readyManager();
    const auto selection = newArray(1, 3);
    setCell(selection.get(), 0, 0, Value(false));
    setCell(selection.get(), 0, 1, Value(2020L));
    setCell(selection.get(), 0, 2, Value(2022L));
    ASSERT_TRUE(print(*manager.get(), L"Umsatz", 0, 1, 100, selection.get()));
    EXPECT_THAT(callsOf("LlPrintFields", engineCalls()), SizeIs(1));
    const auto upper = cell(selection.get(), 0, 2);
    VARIANT number{};
    ASSERT_EQ(VariantChangeType(&number, const_cast<VARIANT*>(static_cast<const VARIANT*>(&upper)), 0, VT_I4),
              S_OK);
    EXPECT_EQ(number.lVal, 2020);
}

TEST_F(VtableHost, UnknownListIsFalseWithoutAWord) {
    const auto manager = readyManager();
    EXPECT_FALSE(print(*manager.get(), L"umsatz"));
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(VtableHost, UnknownCompanyIsReported) {
    const auto manager = readyManager();
    EXPECT_FALSE(print(*manager.get(), L"Umsatz", 0, 4711));
    EXPECT_THAT(reportedErrors(),
                ElementsAre("clsDruckManager|Lese_Allgemeine_Firmendaten|0|Die allgemeinen Firmendaten für "
                            "die Firma 4711 sind nicht vorhanden.|Falsch"));
}

TEST_F(VtableHost, PrintBeforeInitIsReportedNotRaised) {
    const auto fresh = manager();
    EXPECT_FALSE(print(*fresh.get(), L"Umsatz"));
    EXPECT_THAT(reportedErrors(), SizeIs(1));
    EXPECT_THAT(reportedErrors().front(), StartsWith("clsDruckManager|"));
}

TEST_F(VtableHost, EngineErrorIsReportedOnceAndThePrintGoesOn) {
    answer("LlDefineVariableExt 3 -7\n");
    const auto manager = readyManager();
    print(*manager.get(), L"Umsatz");
    EXPECT_THAT(
        reportedErrors(),
        ElementsAre("clsDruckFormular|PrFehler|0|List & Label\\r\\nFehler -7 bei LlDefineVariableExt FnrName3\\r\\n"
                    "Die Fehlercodes sind im L&L handbuch Seite 238 beschrieben.|Falsch"));
    EXPECT_THAT(callsOf("LlPrintEnd", engineCalls()), SizeIs(1));
}

TEST_F(VtableHost, FailingEngineCallIsSkippedInSilence) {
    answer("LlPrintSetBoxText * !2147024891\n");
    const auto manager = readyManager();
    EXPECT_TRUE(print(*manager.get(), L"Umsatz"));
    EXPECT_THAT(reportedErrors(), IsEmpty());
}

TEST_F(VtableHost, PageFullPrintsTheSameRecordAgain) {
    answer("LlPrintFields 1 -998\n");
    const auto manager = readyManager();
    EXPECT_TRUE(print(*manager.get(), L"Umsatz"));
    const auto calls = engineCalls();
    const auto full = std::ranges::find(calls, "LlPrintFields() = -998");
    ASSERT_NE(full, calls.end());
    EXPECT_EQ(*std::next(full), "LlPrint() = 0");
    EXPECT_EQ(*std::next(full, 2), "LlPrintFields() = 0");
}

TEST_F(VtableHost, AdapterAnswersAsItsOperationsSay) {
    auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    EXPECT_EQ(loaded.vt, VT_BOOL);
    EXPECT_EQ(loaded.boolVal, VARIANT_TRUE);

    Text name(L"Größe");
    Text content(L"\u20AC 1,50");
    long type = 0x10000000;
    VARIANT_BOOL defined = VARIANT_FALSE;
    EXPECT_EQ(adapter->LlDefineFieldExt(&name, &content, &type, &defined), S_OK);
    EXPECT_EQ(defined, VARIANT_TRUE);
    EXPECT_EQ(engineCalls().back(), "LlDefineFieldExt(\"Größe\", \"€ 1,50\", 268435456) = 0");

    long judged = 0;
    for (const auto& [code, expected] : {std::pair{0L, -1L}, {-998L, -998L}, {-99L, -99L}, {-1L, 0L}}) {
        long passed = code;
        EXPECT_EQ(adapter->PrFehler(&passed, &name, &judged), S_OK);
        EXPECT_EQ(judged, expected);
    }
    EXPECT_THAT(reportedErrors(), SizeIs(1));

    VARIANT_BOOL readOnly = VARIANT_TRUE;
    VARIANT_BOOL job = VARIANT_FALSE;
    long storage = 0;
    EXPECT_EQ(adapter->LlStgsysStorageOpen(&name, &content, &readOnly, &job, &storage), S_OK);
    EXPECT_EQ(engineCalls().back(), "LlStgsysStorageOpen(\"Größe\", \"€ 1,50\", -1, 0) = 0");

    long numbers[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    long drawn = -1;
    EXPECT_EQ(adapter->LlStgsysDrawPage(&numbers[0], &numbers[1], &numbers[2], &numbers[3], &numbers[4],
                                        &numbers[5], &numbers[6], &numbers[7], &numbers[8], &drawn),
              S_OK);
    EXPECT_EQ(engineCalls().back(), "LlStgsysDrawPage(1, 2, 3, 0, 4, 5, 6, 7, 8, 9) = 0");

    EXPECT_EQ(adapter->PrintEnd(), S_OK);
    EXPECT_EQ(engineCalls().back(), "PrintEnd() = 0");
    const auto before = engineCalls().size();
    EXPECT_EQ(adapter->LlPrintAbort(), S_OK);
    EXPECT_EQ(engineCalls().size(), before);

    EXPECT_EQ(adapter->fkt_Form_Hide(), S_OK);
    EXPECT_EQ(adapter->fkt_Form_Unload(), S_OK);
    EXPECT_EQ(adapter->LlPrint(&judged), S_OK);
    EXPECT_EQ(judged, -1) << "without a form the call is skipped, which counts as success";
    EXPECT_EQ(engineCalls().size(), before);
}

TEST_F(VtableHost, AdapterDeletesThePrinterDescriptions) {
    auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    const auto layout = folder() / L"Übersicht";
    for (const auto* const suffix : {L".lsp", L".lsv", L".lst"}) {
        const auto path = layout.wstring() + suffix;
        CloseHandle(
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_READONLY, nullptr));
        ASSERT_TRUE(std::filesystem::exists(path));
    }
    Text path(layout.wstring());
    VARIANT_BOOL deleted = VARIANT_FALSE;
    EXPECT_EQ(adapter->FKT_Loesche_Druckerbeschreibung(&path, &deleted), S_OK);
    EXPECT_EQ(deleted, VARIANT_TRUE);
    EXPECT_FALSE(std::filesystem::exists(layout.wstring() + L".lsp"));
    EXPECT_FALSE(std::filesystem::exists(layout.wstring() + L".lsv"));
    EXPECT_TRUE(std::filesystem::exists(layout.wstring() + L".lst"));
    SetFileAttributesW((layout.wstring() + L".lst").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(VtableHost, ReportCalledDirectlyPrintsThroughTheAdapterItIsGiven) {
    auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    const auto general = create(L"KVTZUG.clsZugFirmaAllg");
    const auto open = connection();
    ASSERT_EQ(invoke(general.get(), L"Verbinde", DISPATCH_METHOD, {Value(open.get()), Value(1L)}), S_OK);
    ASSERT_EQ(invoke(general.get(), L"LeseFirmaAllg", DISPATCH_METHOD, {Value(1.0)}), S_OK);

    const auto report = create<Report>(kUmsatzClass.clsid, kUmsatzClass.iid);
    const auto all = everything();
    short mode = 0;
    double company = 1;
    IDispatch* connectionArgument = open.get();
    IDispatch* generalArgument = general.get();
    DruckFormular* adapterArgument = adapter.get();
    IDispatch* selection = all.get();
    Text layouts(applicationFolder() + L"\\DB\\BerichteLLVT");
    Text list(L"Umsatz");
    VARIANT_BOOL chooser = VARIANT_TRUE;
    short row = 1;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(report->fkt_Drucken(&mode, &company, &connectionArgument, &generalArgument, &adapterArgument,
                                  &layouts, &list, &chooser, &selection, &layouts, &row, &result),
              S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_THAT(reportedErrors(), IsEmpty());
    EXPECT_THAT(callsOf("LlPrintOptionsDialog", engineCalls()), SizeIs(1));
    EXPECT_THAT(callsOf("LlPrintEnd", engineCalls()), SizeIs(1));
}

TEST_F(VtableHost, MissingObjectsAreReportedNotRaised) {
    const auto ready = readyManager();
    Text folder(applicationFolder());
    Text list(L"Umsatz");
    IDispatch* nothing = nullptr;
    short mode = 0;
    double company = 1;
    VARIANT_BOOL chooser = VARIANT_FALSE;
    long window = 7;
    short product = 1;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(ready->fkt_Drucken(&mode, &company, &nothing, &folder, &list, &chooser, &window, &product, &result),
              S_OK);
    EXPECT_EQ(result, VARIANT_FALSE);
    EXPECT_THAT(reportedErrors(),
                ElementsAre("clsDruck_Umsatz|Lese_Umsatz|91|Objektvariable oder With-Blockvariable nicht "
                            "festgelegt|Wahr"));
}

} // namespace
} // namespace kvtdruck::test
