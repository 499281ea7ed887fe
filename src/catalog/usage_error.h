// A request that makes no sense.
#pragma once

#include <stdexcept>

namespace kvtdruck::catalog {

/// The user has asked for something in a wrong way; the text is German, UTF-8.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace kvtdruck::catalog
