#include "com/control_site.h"

#include "com/com_error.h"
#include "com/counted.h"
#include "com/variants.h"

#include <olectl.h>

namespace kvtdruck::com {
namespace {

/// The least that controls ask of their container: a client site, a control site, a place on the window, and the
/// ambient properties "user mode" and "locale".
class ControlSite final : public Counted<IOleClientSite, IOleControlSite, IOleInPlaceSite, IDispatch> {
  public:
    explicit ControlSite(HWND window) : window_(window) {}

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override {
        *container = nullptr;
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleControlSite
    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return E_NOTIMPL; }

    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = window_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                               RECT* position, RECT* clip, OLEINPLACEFRAMEINFO* info) override {
        *frame = nullptr;
        *document = nullptr;
        GetClientRect(window_, position);
        *clip = *position;
        *info = {sizeof *info, FALSE, window_, nullptr, 0};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(const RECT*) override { return S_OK; }

    // IDispatch: the ambient properties
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID property, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override {
        if (!result)
            return E_POINTER;
        VariantInit(result);
        switch (property) {
        case DISPID_AMBIENT_USERMODE:
            V_VT(result) = VT_BOOL;
            V_BOOL(result) = VARIANT_TRUE;
            return S_OK;
        case DISPID_AMBIENT_LOCALEID:
            V_VT(result) = VT_I4;
            V_I4(result) = static_cast<LONG>(GetUserDefaultLCID());
            return S_OK;
        default:
            return DISP_E_MEMBERNOTFOUND;
        }
    }

  private:
    void* interfaceOf(REFIID iid) override {
        return iid == IID_IOleWindow ? static_cast<IOleInPlaceSite*>(this) : Counted::interfaceOf(iid);
    }

    HWND window_;
};

/// An empty storage, for a control that keeps its data in one.
ComPtr<IStorage> storageInMemory() {
    ComPtr<ILockBytes> memory;
    check(CreateILockBytesOnHGlobal(nullptr, TRUE, memory.put()));
    ComPtr<IStorage> storage;
    check(StgCreateDocfileOnILockBytes(memory.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                       storage.put()));
    return storage;
}

} // namespace

HostedControl::HostedControl(ComPtr<IUnknown> control, HWND window)
    : control_(std::move(control)), ole_(control_.as<IOleObject>()) {
    if (ole_)
        place(window);
}

HostedControl::~HostedControl() {
    if (!ole_)
        return;
    ole_->Close(OLECLOSE_NOSAVE);
    ole_->SetClientSite(nullptr);
}

void HostedControl::place(HWND window) {
    *site_.put() = new ControlSite(window);
    DWORD status = 0;
    ole_->GetMiscStatus(DVASPECT_CONTENT, &status);
    const bool siteFirst = (status & OLEMISC_SETCLIENTSITEFIRST) != 0;
    if (siteFirst)
        ole_->SetClientSite(site_.get());
    initialise();
    if (!siteFirst)
        ole_->SetClientSite(site_.get());
    if ((status & OLEMISC_INVISIBLEATRUNTIME) == 0) {
        RECT area;
        GetClientRect(window, &area);
        ole_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.get(), 0, window, &area);
    }
}

void HostedControl::initialise() {
    if (const auto streamed = control_.as<IPersistStreamInit>()) {
        streamed->InitNew();
    } else if (const auto stored = control_.as<IPersistStorage>()) {
        storage_ = storageInMemory();
        stored->InitNew(storage_.get());
    }
}

} // namespace kvtdruck::com
