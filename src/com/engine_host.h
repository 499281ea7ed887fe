// The reporting engine's control, hosted on a hidden window.
#pragma once

#include "control/control.h"

namespace kvtdruck::com {

/// Makes forms: a hidden window that carries a new control (ProgID ListLabel.ListLabel).
class ComFormFactory final : public FormFactory {
  public:
    std::unique_ptr<Form> create() override;
};

} // namespace kvtdruck::com
