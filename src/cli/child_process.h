// Processes that work for this one.
#pragma once

#include <array>
#include <functional>
#include <string>

#include <sys/types.h>

namespace kvtdruck::cli {

/// An open file or channel, closed with the object.
class Descriptor {
  public:
    /// Raises a system_error of the call that has failed where `number` is negative.
    explicit Descriptor(int number);
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { close(); }

    int number() const { return number_; }
    void close();

  private:
    int number_;
};

/// The ends of a channel over which two processes send each other messages.
std::array<Descriptor, 2> openChannel();

/// Begins a process that does `work` and ends with its exit code; gives its id. It is a copy of this one, asked to
/// cancel when this one ends, and given up `grace` seconds after it was asked. Raises a system_error where no
/// process can be had.
pid_t beginProcess(const std::function<int()>& work, unsigned grace);

/// What the user is told of a print that a signal has ended.
std::string crashText(int signal);

} // namespace kvtdruck::cli
