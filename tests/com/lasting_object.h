// Objects that are lent to COM and outlive every reference to them.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace kvtdruck::test {

/// What all of them share: they are an `Interface` and nothing else, and their references are not counted.
template <class Interface>
class LastingObject : public Interface {
  public:
    virtual ~LastingObject() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, __uuidof(Interface));
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

} // namespace kvtdruck::test
