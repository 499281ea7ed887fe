// The registry entries of the component: classes, their ProgIDs, the type library.
#pragma once

#include <windows.h>

namespace kvtdruck::com {

/// Writes all entries for the DLL at its present place; a failure takes back what was written and is the result.
HRESULT registerComponent();

/// Removes all entries; what is gone already is no failure.
HRESULT unregisterComponent();

} // namespace kvtdruck::com
