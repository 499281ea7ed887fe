// The registry entries of the component: classes, their ProgIDs, the type library.
#pragma once

#include <windows.h>

namespace kvtdruck::com {

/// Writes all entries for the DLL at its present place: for the machine, or for the user alone where the caller may
/// not change the machine's. After a failure, which is the result, all is as it was before.
HRESULT registerComponent();

/// Removes the entries that lead to this DLL, of the user and of the machine; what is gone already is no failure.
/// What leads to another copy stays, and so do the names that the DLL of the other architecture shares.
HRESULT unregisterComponent();

} // namespace kvtdruck::com
