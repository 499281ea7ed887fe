// A host that lets go of everything while a call runs: the object whose call it is, the form, its own strings.
#include "stage.h"

#include <cwchar>

namespace kvtdruck::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;

class Lifetime : public HostTest {
  protected:
    ~Lifetime() override {
        EXPECT_EQ(dllCanUnloadNow(), S_OK) << "something was never let go of";
        EXPECT_EQ(stage.living(), 0);
    }

    /// Lets `action` run within the `turn`-th foreign call from now on.
    void atCall(long turn, std::function<void()> action) {
        stage.interrupt = [this, at = stage.calls() + turn, action = std::move(action)](const std::string&) {
            if (stage.calls() == at)
                action();
        };
    }

    /// How many foreign calls `action` makes.
    long callsOf(const std::function<void()>& action) {
        const auto before = stage.calls();
        action();
        return stage.calls() - before;
    }

    Stage stage;
};

/// What a host may do with its string as soon as it pleases.
void overwrite(const Text& text) {
    std::wmemset(text.get(), L'?', SysStringLen(text.get()));
}

/// A window whose handler does something once.
class Window {
  public:
    explicit Window(std::function<void()> action) : action_(std::move(action)) {
        SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(receive));
        PostMessageW(window_, WM_APP, 0, 0);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() {
        EXPECT_TRUE(called_) << "no messages were processed";
        DestroyWindow(window_);
    }

  private:
    static LRESULT CALLBACK receive(HWND window, UINT message, WPARAM first, LPARAM second) {
        if (message != WM_APP)
            return DefWindowProcW(window, message, first, second);
        auto* const self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        self->called_ = true;
        self->action_();
        return 0;
    }

    HWND window_ = CreateWindowW(L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::function<void()> action_;
    bool called_ = false;
};

TEST_F(Lifetime, ManagerIsReleasedByAMessageWhileItPrints) {
    auto manager = stage.readyManager();
    ASSERT_TRUE(stage.print(*manager.get(), L"Umsatz"));
    auto* const running = manager.get();
    const Window window([&] { manager = {}; });
    EXPECT_TRUE(stage.print(*running, L"Umsatz")) << "the window's second job processes messages";
    EXPECT_FALSE(manager);
}

TEST_F(Lifetime, ManagerIsReleasedByAMessageWhileItEndsPreviews) {
    auto manager = stage.readyManager();
    ASSERT_TRUE(stage.print(*manager.get(), L"Umsatz"));
    auto* const running = manager.get();
    const Window window([&] { manager = {}; });
    EXPECT_TRUE(stage.terminate(*running));
}

TEST_F(Lifetime, ManagerIsReleasedByAMessageWhileItIsCalledByName) {
    auto manager = stage.readyManager();
    ASSERT_TRUE(stage.print(*manager.get(), L"Umsatz"));
    auto* const running = manager.get();
    const Window window([&] { manager = {}; });
    EXPECT_EQ(invoke(running, L"Terminate_Preview", DISPATCH_METHOD, {Value(100L)}), S_OK);
}

TEST_F(Lifetime, ManagerIsReleasedWithinEachCallOfAForeignObject) {
    const auto expected = [&] {
        const auto manager = stage.readyManager();
        EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz"));
        return stage.engineCalls().back();
    }();
    const auto calls = callsOf([&] { stage.print(*stage.readyManager().get(), L"Umsatz"); });
    for (long turn = 1; turn <= calls; ++turn) {
        auto manager = stage.readyManager();
        auto* const running = manager.get();
        atCall(turn, [&] { manager = {}; });
        ASSERT_TRUE(stage.print(*running, L"Umsatz")) << turn;
        ASSERT_EQ(stage.engineCalls().back(), expected) << turn;
        ASSERT_FALSE(manager);
    }
}

/// One print by a report class that the host calls itself; the arguments are its own, too.
class DirectPrint {
  public:
    DirectPrint(Stage& stage, const ClassIdentifiers& reportClass)
        : report(create<Report>(reportClass.clsid, reportClass.iid)),
          adapter(create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid)), connection(stage.connection()),
          general(create(L"KVTZUG.clsZugFirmaAllg")), selection(stage.array()) {
        Value loaded;
        EXPECT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    }

    void run() {
        short mode = 0;
        double company = 1;
        auto* connectionArgument = connection.get();
        auto* generalArgument = general.get();
        auto* adapterArgument = adapter.get();
        auto* selectionArgument = selection.get();
        VARIANT_BOOL chooser = VARIANT_FALSE;
        short row = 1;
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(report.get()->fkt_Drucken(&mode, &company, &connectionArgument, &generalArgument,
                                            &adapterArgument, &folder, &list, &chooser, &selectionArgument, &folder,
                                            &row, &result),
                  S_OK);
    }

    void letGoOfAll() {
        report = {};
        adapter = {};
        connection = {};
        general = {};
        selection = {};
        overwrite(folder);
        overwrite(list);
    }

    Ref<Report> report;
    Ref<DruckFormular> adapter;
    Ref<IDispatch> connection;
    Ref<IDispatch> general;
    Ref<IDispatch> selection;
    Text folder = L"C:\\Anwendung\\DB\\BerichteLLVT";
    Text list = L"Liste";
};

TEST_F(Lifetime, EveryReportClassOutlivesItsHostsReferences) {
    for (std::size_t i = 2; i < kComponentClasses.size(); ++i) {
        long calls = 0;
        {
            DirectPrint print(stage, kComponentClasses[i]);
            calls = callsOf([&] { print.run(); });
        }
        const auto expected = stage.engineCalls().back();
        EXPECT_THAT(stage.errors(), IsEmpty()) << i;
        for (long turn = 1; turn <= calls; turn += 1 + turn / 4) {
            DirectPrint print(stage, kComponentClasses[i]);
            atCall(turn, [&] { print.letGoOfAll(); });
            print.run();
            EXPECT_EQ(stage.engineCalls().back(), expected) << i << ", " << turn;
            stage.interrupt = nullptr;
        }
    }
}

TEST_F(Lifetime, FormIsUnloadedWhileItsControlIsCalled) {
    const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
    Value loaded;
    ASSERT_EQ(adapter->fkt_Starte_Form(&loaded), S_OK);
    long controls = 0;
    atCall(1, [&] {
        EXPECT_EQ(adapter->fkt_Form_Unload(), S_OK);
        controls = stage.living();
    });
    long judged = 0;
    EXPECT_EQ(adapter->LlPrint(&judged), S_OK);
    EXPECT_EQ(judged, -1);
    EXPECT_EQ(controls, 1) << "the control was released within its own call";
    EXPECT_EQ(stage.living(), 0);
}

TEST_F(Lifetime, StringsOfTheHostAreReadBeforeAnythingIsCalled) {
    const auto manager = stage.readyManager();
    const auto selection = stage.array();
    auto* lent = selection.get();
    Text folder(applicationFolder());
    Text list(L"Umsatz");
    atCall(1, [&] {
        overwrite(folder);
        overwrite(list);
    });
    short mode = 1;
    double company = 1;
    VARIANT_BOOL chooser = VARIANT_FALSE;
    long window = 100;
    short product = 1;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(manager->fkt_Drucken(&mode, &company, &lent, &folder, &list, &chooser, &window, &product, &result),
              S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_THAT(stage.engineCalls().back(), Each(testing::Not(HasSubstr("?"))));
    EXPECT_THAT(stage.engineCalls().back(), Contains(HasSubstr("\\Preview\\")));
}

} // namespace
} // namespace kvtdruck::test
