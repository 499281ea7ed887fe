// A print service of the test's own: cupsd on loopback, with queues that write to files.
#pragma once

#include "cli/program.h"

#include <memory>

namespace kvtdruck::testing {

/// Queues: "Buero" (the default one) works, "Lager" is stopped, "Defekt" accepts no jobs.
class CupsServer {
  public:
    CupsServer();

    /// The value of CUPS_SERVER that leads to it.
    const std::string& address() const { return address_; }
    /// What the printer of queue "Buero" has printed.
    std::filesystem::path printed() const { return folder_ / "buero.prn"; }
    /// An attribute of a job as the service tells it, or "".
    std::string jobAttribute(int job, const std::string& name) const;

  private:
    void writeConfiguration(int port) const;

    TemporaryFolder folder_;
    std::string address_;
    std::unique_ptr<Program> server_;
};

} // namespace kvtdruck::testing
