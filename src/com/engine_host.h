// The reporting engine's control, hosted on a hidden window.
#pragma once

#include "control/control.h"
#include "platform/services.h"

#include <memory>

namespace kvtdruck::com {

class WindowClass;

/// Makes forms: a hidden window that carries a new control (ProgID ListLabel.ListLabel).
class ComFormFactory final : public FormFactory {
  public:
    /// `platform` outlives the forms: its locale reads what the control answers.
    explicit ComFormFactory(Platform& platform) : platform_(platform) {}
    std::unique_ptr<Form> create() override;

  private:
    Platform& platform_;
    /// Registered with the first form, for as long as forms may be made.
    std::shared_ptr<WindowClass> windowClass_;
};

} // namespace kvtdruck::com
