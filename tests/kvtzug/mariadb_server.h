// A MariaDB server of the test's own, on loopback, with its data in a temporary folder.
#pragma once

#include "kvtzug/database.h"
#include "kvtzug/private_server.h"

#include <sys/types.h>

namespace kvtdruck::test {

class MariadbServer : public PrivateServer {
  public:
    /// Starts the server, which knows no users and takes everybody in. std::runtime_error with the server's own
    /// words where that fails.
    MariadbServer();
    ~MariadbServer();

    /// To the database `database`, or to none.
    String connectionString(StringView database = {}) const;

  private:
    bool isUp() const;
    void stop() const;

    pid_t process_;
};

} // namespace kvtdruck::test
