// The host's data-access library KVTZUG.
#pragma once

#include "values/object.h"
#include "values/text.h"

namespace kvtdruck {

/// Creates the library's objects. Its classes, operations and getters are those of dataaccess/members.h.
class DataLibrary {
  public:
    virtual ~DataLibrary() = default;
    /// A new object of the class (such as u"clsZugUmsatz"); run-time error 429 where it can't be created.
    virtual ObjectRef create(StringView className) = 0;
};

} // namespace kvtdruck
