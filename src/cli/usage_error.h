// A call of the program that makes no sense.
#pragma once

#include <stdexcept>

namespace kvtdruck::cli {

/// The user has asked for something in a wrong way; the text is German, UTF-8.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace kvtdruck::cli
