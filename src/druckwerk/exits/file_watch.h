// Whether a file has been written anew, whatever program does it and however: in place, under another name that is
// then changed to the file's, or a piece at a time.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace kvtdruck::druckwerk {

class FileWatch {
  public:
    /// The file's folder must be there, the file need not. Raises std::system_error where nothing can be watched.
    explicit FileWatch(const std::filesystem::path& file);
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
    ~FileWatch();

    /// Waits a tenth of a second at most. Gives whether the file has changed since that was last said, and nobody
    /// has written on it for a moment; one that is written without end counts every second.
    bool hasChanged();
    /// Whether nobody has written on it for `time`.
    bool rests(std::chrono::milliseconds time) const;

  private:
    using Clock = std::chrono::steady_clock;

    void takeEvents();

    std::string name_;
    int events_;
    bool changed_ = false;
    Clock::time_point firstChange_; ///< of those that were not said yet
    Clock::time_point lastChange_;
};

} // namespace kvtdruck::druckwerk
