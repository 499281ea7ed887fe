#include "kvtzug/postgres_server.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace kvtdruck::test {
namespace {

std::string quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

} // namespace

PostgresServer::PostgresServer() {
    if (std::string(KVT_POSTGRES).empty())
        throw std::runtime_error("PostgreSQL is missing: install the packages postgresql and odbc-postgresql");
    const auto data = quoted(folder() / "data");
    run("initdb", "-D " + data + " -U kvt --auth=trust -E UTF8 --locale=C.UTF-8 --no-sync");
    run("pg_ctl", "-D " + data + " -l " + quoted(folder() / "log") + " -w -o \"-p " + std::to_string(port()) +
                      " -k " + folder().string() +
                      " -c listen_addresses=127.0.0.1 -c fsync=off -c log_connections=on\" start");
}

PostgresServer::~PostgresServer() {
    try {
        run("pg_ctl", "-D " + quoted(folder() / "data") + " -m immediate -w stop");
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the folder goes anyway
    }
}

void PostgresServer::run(const std::string& program, const std::string& arguments) const {
    const std::string user = geteuid() == 0 ? "runuser -u nobody -- " : "";
    const auto command =
        "cd / && " + user + KVT_POSTGRES + "/" + program + " " + arguments + " >" + quoted(log()) + " 2>&1";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(program + " failed: " + logged());
}

std::size_t PostgresServer::connectionsMade() const {
    std::ifstream log(folder() / "log");
    std::size_t count = 0;
    for (std::string line; std::getline(log, line);)
        count += line.find("connection authorized:") != std::string::npos ? 1 : 0;
    return count;
}

String PostgresServer::connectionString() const {
    return u"Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=" + decimal(port()) + u";Database=postgres;UID=kvt";
}

} // namespace kvtdruck::test
