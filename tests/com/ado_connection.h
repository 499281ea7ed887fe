// The head of ADO's connection interface, as far as its connection string. Late binding to it fails under Wine, so
// tests and test servers take the vtable.
#pragma once

#include <windows.h>

#include <oaidl.h>

namespace kvtdruck::test {

struct AdoConnection : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_Properties(IUnknown** properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ConnectionString(BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ConnectionString(BSTR text) = 0;
};

/// `_Connection` of ADO 2.0; every later version answers to it as well.
inline constexpr IID kAdoConnection = {0x00000550, 0, 0x0010, {0x80, 0, 0, 0xaa, 0, 0x6d, 0x2e, 0xa4}};

} // namespace kvtdruck::test
