// A host whose error-report object can't be made: the reporter of last resort takes its place.
#include "host.h"
#include "lasting_object.h"

#include <fstream>
#include <iterator>
#include <thread>

namespace kvtdruck::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

constexpr CLSID kFehlerClass = {0xD26DE823, 0x97C9, 0x11D1, {0x8B, 0x58, 0x00, 0xA0, 0xC9, 0x4C, 0xBE, 0xB3}};

/// Stands before the registered class within this process, and makes no objects.
class RefusingFactory final : public LastingObject<IClassFactory> {
  public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        ++asked;
        return offered == nullptr ? CLASS_E_CLASSNOTAVAILABLE : offered->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    int asked = 0;
    IUnknown* offered = nullptr; ///< the object that is made all the same
};

/// As long as it lives, the process belongs to a window station that nobody sees, as a service does.
class InvisibleStation {
  public:
    InvisibleStation() : before_(GetProcessWindowStation()) {
        EXPECT_NE(own_, nullptr);
        EXPECT_TRUE(SetProcessWindowStation(own_));
    }
    InvisibleStation(const InvisibleStation&) = delete;
    InvisibleStation& operator=(const InvisibleStation&) = delete;
    ~InvisibleStation() {
        SetProcessWindowStation(before_);
        CloseWindowStation(own_);
    }

  private:
    HWINSTA before_;
    HWINSTA own_ = CreateWindowStationW(L"KVTDruckTest", 0, GENERIC_ALL, nullptr);
};

/// Reads the next message box and answers it.
class BoxReader {
  public:
    ~BoxReader() { thread_.join(); }

    /// What the box said; empty where none came.
    std::wstring text() {
        thread_.join();
        thread_ = std::thread([] {});
        return text_;
    }

  private:
    void readAndAnswer() {
        HWND box = nullptr;
        if (!eventually([&] { return (box = FindWindowW(L"#32770", L"KVTDruck")) != nullptr; }))
            return;
        constexpr int kMessage = 0xffff;
        wchar_t text[1024];
        eventually([&] { return GetDlgItemTextW(box, kMessage, text, static_cast<int>(std::size(text))) != 0; });
        text_ = text;
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    }

    std::wstring text_;
    std::thread thread_{[this] { readAndAnswer(); }};
};

class Fallback : public HostTest {
  protected:
    Fallback() : log_(std::filesystem::path(setting(L"LOCALAPPDATA")) / L"KVTDruck") {
        std::filesystem::remove_all(log_);
        EXPECT_EQ(
            CoRegisterClassObject(kFehlerClass, &factory_, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_),
            S_OK);
    }
    ~Fallback() override {
        EXPECT_EQ(CoRevokeClassObject(cookie_), S_OK);
        EXPECT_GT(factory_.asked, 0);
        EXPECT_THAT(reportedErrors(), IsEmpty()) << "the registered object was used";
        std::filesystem::remove_all(log_);
    }

    std::vector<std::string> log() const {
        std::ifstream stream(log_ / L"Fehler.log", std::ios::binary);
        std::vector<std::string> all;
        for (std::string line; std::getline(stream, line);)
            all.push_back(line);
        return all;
    }

    RefusingFactory factory_;

  private:
    std::filesystem::path log_;
    DWORD cookie_ = 0;
};

/// A line of the log: the local time, and then `text`.
testing::Matcher<const std::string&> logLine(const std::string& text) {
    return AllOf(ContainsRegex("^20\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d clsDruck"),
                 EndsWith(" " + text + "\r"));
}

TEST_F(Fallback, ServiceGetsALineInTheLogAndNoBox) {
    const InvisibleStation station;
    EXPECT_FALSE(print(*readyManager().get(), L"Umsatz", 0, 4711));
    EXPECT_THAT(log(), ElementsAre(logLine("clsDruckManager.Lese_Allgemeine_Firmendaten: Meldung: Die allgemeinen "
                                           "Firmendaten für die Firma 4711 sind nicht vorhanden.")));
}

TEST_F(Fallback, ObjectThatAnswersToNoNamesIsNoReporter) {
    const InvisibleStation station;
    LastingObject<IUnknown> mute;
    factory_.offered = &mute;
    EXPECT_FALSE(print(*readyManager().get(), L"Umsatz", 0, 4711));
    EXPECT_THAT(log(), SizeIs(1));
}

TEST_F(Fallback, UserSeesTheMessageToo) {
    BoxReader box;
    EXPECT_FALSE(print(*readyManager().get(), L"Umsatz", 0, 4711));
    EXPECT_EQ(box.text(), L"Die allgemeinen Firmendaten f\u00fcr die Firma 4711 sind nicht vorhanden.\r\n\r\n"
                          L"(clsDruckManager.Lese_Allgemeine_Firmendaten, Meldung)");
    EXPECT_THAT(log(), SizeIs(1));
}

TEST_F(Fallback, MessageOfSeveralLinesIsOneLineOfTheLog) {
    const InvisibleStation station;
    answer("LlDefineVariableExt 3 -7\n");
    const auto manager = readyManager();
    print(*manager.get(), L"Umsatz");
    print(*manager.get(), L"Umsatz");
    EXPECT_THAT(log(),
                AllOf(SizeIs(2), Each(logLine("clsDruckFormular.PrFehler: Meldung: List & Label  Fehler -7 bei "
                                              "LlDefineVariableExt FnrName3  Die Fehlercodes sind im L&L "
                                              "handbuch Seite 238 beschrieben."))));
}

TEST_F(Fallback, RuntimeErrorComesWithItsNumber) {
    const InvisibleStation station;
    EXPECT_FALSE(print(*manager().get(), L"Umsatz"));
    EXPECT_THAT(log(), ElementsAre(logLine("clsDruckManager.Lese_Allgemeine_Firmendaten: Laufzeitfehler 91: "
                                           "Objektvariable oder With-Blockvariable nicht festgelegt")));
}

} // namespace
} // namespace kvtdruck::test
