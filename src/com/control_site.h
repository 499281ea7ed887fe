// What a control sees of the window that carries it.
#pragma once

#include "com/com_ptr.h"

#include <ocidl.h>

namespace kvtdruck::com {

/// A control on its site, activated where it is a visible one. A plain Automation object without a control's
/// interfaces is carried as well. The end closes it without saving.
class HostedControl {
  public:
    HostedControl(ComPtr<IUnknown> control, HWND window);
    HostedControl(const HostedControl&) = delete;
    HostedControl& operator=(const HostedControl&) = delete;
    ~HostedControl();

    const ComPtr<IUnknown>& control() const { return control_; }

  private:
    void place(HWND window);
    void initialise();

    ComPtr<IStorage> storage_; ///< lives as long as the control, which may use it until then
    ComPtr<IUnknown> control_;
    ComPtr<IOleObject> ole_;
    ComPtr<IOleClientSite> site_;
};

} // namespace kvtdruck::com
