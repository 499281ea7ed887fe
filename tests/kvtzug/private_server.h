// What the tests' own database servers share: a port on loopback, and a folder that belongs to the server's user.
#pragma once

#include "platform/posix/temporary_folder.h"

#include <filesystem>
#include <string>

namespace kvtdruck::test {

class PrivateServer {
  public:
    PrivateServer(const PrivateServer&) = delete;
    PrivateServer& operator=(const PrivateServer&) = delete;

  protected:
    /// Where the test runs as root, the folder is handed to the user nobody: servers refuse to run as root.
    PrivateServer();
    ~PrivateServer() = default;

    int port() const { return port_; }
    std::filesystem::path folder() const { return base_.path() / "server"; }
    /// For what the server writes to the terminal.
    std::filesystem::path log() const { return base_.path() / "log"; }
    std::string logged() const;

  private:
    TemporaryFolder base_;
    int port_;
};

} // namespace kvtdruck::test
