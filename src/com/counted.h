// What every COM object is made of: its references, and the interfaces it answers.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>

namespace kvtdruck::com {

/// An object that is made with one reference and ends with the last. It answers what it is made of, the first of
/// them for IUnknown.
template <class First, class... Others>
class Counted : public First, public Others... {
  public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) final {
        if (!object)
            return E_POINTER;
        *object = interfaceOf(iid);
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() final { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() final {
        const auto left = --references_;
        if (left == 0)
            end();
        return left;
    }

  protected:
    /// This object as `iid`, or nullptr; a class that answers more than its interfaces' own identifiers adds them.
    virtual void* interfaceOf(REFIID iid) {
        void* found = iid == IID_IUnknown || iid == __uuidof(First) ? static_cast<First*>(this) : nullptr;
        ((found = iid == __uuidof(Others) ? static_cast<Others*>(this) : found), ...);
        return found;
    }

    /// What becomes of the object with its last reference.
    virtual void end() { delete this; }

  private:
    std::atomic<ULONG> references_ = 1;
};

} // namespace kvtdruck::com
