#include "kvtzug/postgres_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kvtdruck::test {
namespace {

int freePort() {
    const int handle = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool bound = bind(handle, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(handle);
    if (!bound)
        throw std::runtime_error("no free port on loopback");
    return ntohs(address.sin_port);
}

std::string quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

} // namespace

PostgresServer::PostgresServer() : port_(freePort()) {
    if (std::string(KVT_POSTGRES).empty())
        throw std::runtime_error("PostgreSQL is missing: install the packages postgresql and odbc-postgresql");
    // The server's user must get into the folder, and own the one beneath it.
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0711));
    const auto data = folder_.path() / "server";
    std::filesystem::create_directory(data);
    if (geteuid() == 0 && std::system(("chown nobody " + quoted(data)).c_str()) != 0)
        throw std::runtime_error("the server's folder can't be handed to its user");
    run("initdb", "-D " + quoted(data / "data") + " -U kvt --auth=trust -E UTF8 --locale=C.UTF-8 --no-sync");
    run("pg_ctl", "-D " + quoted(data / "data") + " -l " + quoted(data / "log") + " -w -o \"-p " +
                      std::to_string(port_) + " -k " + data.string() +
                      " -c listen_addresses=127.0.0.1 -c fsync=off\" start");
}

PostgresServer::~PostgresServer() {
    try {
        run("pg_ctl", "-D " + quoted(folder_.path() / "server" / "data") + " -m immediate -w stop");
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the folder goes anyway
    }
}

void PostgresServer::run(const std::string& program, const std::string& arguments) const {
    const auto log = folder_.path() / "output";
    const std::string user = geteuid() == 0 ? "runuser -u nobody -- " : "";
    const auto command =
        "cd / && " + user + KVT_POSTGRES + "/" + program + " " + arguments + " >" + quoted(log) + " 2>&1";
    if (std::system(command.c_str()) == 0)
        return;
    std::ifstream output(log);
    throw std::runtime_error(program + " failed: " + std::string(std::istreambuf_iterator<char>(output), {}));
}

String PostgresServer::connectionString() const {
    return u"Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=" + decimal(port_) + u";Database=postgres;UID=kvt";
}

} // namespace kvtdruck::test
