#include "kvtzug/mariadb_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <vector>

namespace kvtdruck::test {
namespace {

constexpr std::chrono::milliseconds kPause{50};
constexpr int kPauses = 1200;

} // namespace

MariadbServer::MariadbServer() : process_(-1) {
    if (std::string(KVT_MARIADB).empty())
        throw std::runtime_error("MariaDB is missing: install the packages mariadb-server-core and odbc-mariadb");
    // Without the tables of users and rights there is nothing to install: an empty folder will do.
    std::vector<std::string> words{KVT_MARIADB,
                                   "--no-defaults",
                                   "--skip-grant-tables",
                                   "--datadir=" + folder().string(),
                                   "--socket=" + (folder() / "socket").string(),
                                   "--bind-address=127.0.0.1",
                                   "--port=" + std::to_string(port()),
                                   "--innodb-flush-log-at-trx-commit=0",
                                   "--innodb-log-file-size=8M",
                                   "--innodb-buffer-pool-size=16M"};
    if (geteuid() == 0)
        words.emplace_back("--user=nobody");
    process_ = fork();
    if (process_ == 0) {
        const int output = open(log().c_str(), O_WRONLY | O_CREAT, 0600);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (auto& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    for (int pause = 0; pause < kPauses && waitpid(process_, nullptr, WNOHANG) == 0; ++pause) {
        if (isUp())
            return;
        std::this_thread::sleep_for(kPause);
    }
    stop();
    throw std::runtime_error("mariadbd does not come up: " + logged());
}

MariadbServer::~MariadbServer() {
    stop();
}

void MariadbServer::stop() const {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

bool MariadbServer::isUp() const {
    const int handle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port()));
    const bool up = connect(handle, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(handle);
    return up;
}

String MariadbServer::connectionString(StringView database) const {
    const auto server = u"Driver={MariaDB Unicode};Server=127.0.0.1;Port=" + decimal(port()) + u";UID=kvt";
    return database.empty() ? server : server + u";Database=" + String(database);
}

} // namespace kvtdruck::test
