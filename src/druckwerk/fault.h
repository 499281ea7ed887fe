// The engine's own failures on their way to the operation that answers their code.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kvtdruck::druckwerk {

/// An engine code with its German message (UTF-8).
class Fault : public std::runtime_error {
  public:
    Fault(std::int32_t code, const std::string& message) : std::runtime_error(message), code_(code) {}
    std::int32_t code() const noexcept { return code_; }

  private:
    std::int32_t code_;
};

} // namespace kvtdruck::druckwerk
