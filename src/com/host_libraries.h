// The host's libraries as COM objects: its data access and its error report.
#pragma once

#include "module/clsFehler.h"
#include "module/data_library.h"

namespace kvtdruck::com {

/// Creates the data-access classes: by class id where one is known, else by "KVTZUG." and the class's name.
class ComKvtzug final : public DataLibrary {
  public:
    ObjectRef create(StringView className) override;
};

/// Creates the host's error-report object, or the built-in reporter where the host has none.
class ComFehlerFactory final : public ErrorReportFactory {
  public:
    std::unique_ptr<clsFehler> create() override;
};

} // namespace kvtdruck::com
