// The suite against a MariaDB server, which is started once.
#include "kvtzug/mariadb_server.h"

namespace kvtdruck::test {
namespace {

const MariadbServer& server() {
    static const MariadbServer started;
    return started;
}

class MariadbDatabase : public Database {
  public:
    MariadbDatabase() {
        executeOn(server().connectionString(),
                  "DROP DATABASE IF EXISTS kvt;\nCREATE DATABASE kvt CHARACTER SET utf8mb4;\n");
    }

    String connectionString() const override { return server().connectionString(u"kvt"); }
    bool takesWideSql() const override { return true; }
    std::size_t longestText() const override { return 65535; }
};

} // namespace

std::unique_ptr<Database> createDatabase() {
    return std::make_unique<MariadbDatabase>();
}

} // namespace kvtdruck::test
