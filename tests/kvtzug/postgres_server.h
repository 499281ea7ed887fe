// A PostgreSQL server of the test's own, on loopback, with its data in a temporary folder.
#pragma once

#include "kvtzug/database.h"
#include "kvtzug/private_server.h"

#include <string>

namespace kvtdruck::test {

class PostgresServer : public PrivateServer {
  public:
    /// Starts the server. std::runtime_error with the server's own words where that fails.
    PostgresServer();
    ~PostgresServer();

    String connectionString() const;
    /// How many connections the server has accepted so far.
    std::size_t connectionsMade() const;

  private:
    void run(const std::string& program, const std::string& arguments) const;
};

} // namespace kvtdruck::test
