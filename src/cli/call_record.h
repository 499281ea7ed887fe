// The file that the engine calls of a run are recorded in.
#pragma once

#include "cli/console.h"
#include "control/recording_control.h"
#include "platform/posix/atomic_file.h"

#include <optional>
#include <system_error>

namespace kvtdruck::cli {

/// It tells of a failed run as well, so it is kept in any case. What can't be written of it is told once.
class CallRecord {
  public:
    /// Begins `file`, or goes on in it. Throws a run-time error with its message where it can't be written.
    CallRecord(std::filesystem::path file, bool goesOn, Console& console);

    /// The forms of `inner`, whose calls are recorded. Both outlive them.
    FormFactory& around(FormFactory& inner);
    /// Gives the file its place.
    void finish();

  private:
    std::string failure(const std::system_error& error) const;
    template <class Step>
    void attempt(Step&& step);

    std::filesystem::path name_;
    Console& console_;
    std::optional<AtomicFile> file_; ///< none once it has failed
    std::optional<RecordingFormFactory> forms_;
};

} // namespace kvtdruck::cli
