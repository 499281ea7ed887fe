// Data for the check of a layout where there is no database.
#pragma once

#include "module/data_library.h"

namespace kvtdruck::cli {

/// A library whose readers all have one record, in which every number, text and date is 1: every list defines its
/// names from it, and prints a line.
class BlankData final : public DataLibrary {
  public:
    ObjectRef create(StringView className) override;
};

} // namespace kvtdruck::cli
