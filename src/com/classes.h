// The twenty classes that hosts create.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <span>

namespace kvtdruck::com {

struct CoClass {
    const wchar_t* name;
    CLSID id;
    /// A new object with one reference; may raise std::bad_alloc.
    IUnknown* (*create)();
};

std::span<const CoClass> allClasses();

} // namespace kvtdruck::com
