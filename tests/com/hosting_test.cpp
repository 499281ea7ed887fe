// The engine's control on its hidden window: the order of steps that each kind of control wants.
#include "host.h"

namespace kvtdruck::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Hosting : public HostTest {
  protected:
    /// Loads and unloads a form with a control of this kind.
    void loadForm(const wchar_t* kind) {
        offerControl(kind);
        const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
        Value loaded;
        ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
        EXPECT_EQ(loaded.vt, VT_BOOL);
        EXPECT_EQ(loaded.boolVal, VARIANT_TRUE);
        EXPECT_EQ(adapter->fkt_Form_Unload(), S_OK);
        EXPECT_THAT(engineCalls(), ElementsAre("[3] = -1"));
        EXPECT_THAT(reportedErrors(), IsEmpty());
    }
};

TEST_F(Hosting, OrdinaryControl) {
    loadForm(L"");
    EXPECT_THAT(hostingSteps(),
                ElementsAre("InitNew", "SetClientSite", "ambient USERMODE Wahr", "ambient LOCALEID 1031",
                            "DoVerb -5 in a window", "Close 1", "SetClientSite NULL"));
}

TEST_F(Hosting, ControlThatWantsItsSiteFirst) {
    loadForm(L"site first");
    EXPECT_THAT(hostingSteps(), ElementsAre("SetClientSite", "ambient USERMODE Wahr", "ambient LOCALEID 1031",
                                            "InitNew", "DoVerb -5 in a window", "Close 1", "SetClientSite NULL"));
}

TEST_F(Hosting, ControlInvisibleAtRunTimeIsNotActivated) {
    loadForm(L"invisible");
    EXPECT_THAT(hostingSteps(), ElementsAre("InitNew", "SetClientSite", "ambient USERMODE Wahr",
                                            "ambient LOCALEID 1031", "Close 1", "SetClientSite NULL"));
}

TEST_F(Hosting, ControlThatKeepsItsDataInAStorage) {
    loadForm(L"stored");
    EXPECT_EQ(hostingSteps().front(), "InitNew in a storage");
}

TEST_F(Hosting, ControlThatAnswersToNoNamesIsNone) {
    offerControl(L"mute");
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    EXPECT_EQ(loaded.boolVal, VARIANT_FALSE);
    EXPECT_THAT(reportedErrors(), ElementsAre(testing::StartsWith("clsDruckFormular|fkt_Starte_Form|429|")));
    EXPECT_THAT(hostingSteps(), IsEmpty());
    long judged = 0;
    EXPECT_EQ(adapter->LlPrint(&judged), S_OK);
    EXPECT_EQ(judged, -1);
}

TEST_F(Hosting, ControlWithoutEmbedding) {
    loadForm(L"bare");
    EXPECT_THAT(hostingSteps(), IsEmpty());
}

TEST_F(Hosting, LicensedControl) {
    loadForm(L"licensed");
    EXPECT_EQ(hostingSteps().front(), "created with a licence");
}

} // namespace
} // namespace kvtdruck::test
