// A PostgreSQL server of the test's own, on loopback, with its data in a temporary folder.
#pragma once

#include "kvtzug/database.h"

#include <string>

namespace kvtdruck::test {

class PostgresServer {
  public:
    /// Starts the server, as an unprivileged user where the test runs as root (PostgreSQL refuses to run as root).
    /// std::runtime_error with the server's own words where that fails.
    PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;
    ~PostgresServer();

    String connectionString() const;

  private:
    void run(const std::string& program, const std::string& arguments) const;

    TemporaryFolder folder_;
    int port_;
};

} // namespace kvtdruck::test
