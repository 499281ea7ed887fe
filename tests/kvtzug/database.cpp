#include "kvtzug/database.h"

#include "kvtzug/odbc.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace kvtdruck::test {

namespace {

void run(const OdbcConnection& connection, std::string sql, bool wide) {
    SQLHSTMT statement = nullptr;
    SQLAllocHandle(SQL_HANDLE_STMT, connection.handle(), &statement);
    auto wideSql = fromUtf8(sql);
    const auto result = wide ? SQLExecDirectW(statement, reinterpret_cast<SQLWCHAR*>(wideSql.data()), SQL_NTS)
                             : SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(sql.data()), SQL_NTS);
    SQLCHAR message[SQL_MAX_MESSAGE_LENGTH] = "";
    const bool failed = !SQL_SUCCEEDED(result) && result != SQL_NO_DATA;
    if (failed)
        SQLGetDiagRec(SQL_HANDLE_STMT, statement, 1, nullptr, nullptr, message, sizeof message, nullptr);
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    if (failed)
        throw std::runtime_error(reinterpret_cast<char*>(message) + (" in " + sql.substr(0, 200)));
}

std::string withoutComments(std::string sql) {
    for (auto start = sql.find("-- "); start != std::string::npos; start = sql.find("-- ", start))
        sql.erase(start, sql.find('\n', start) - start);
    return sql;
}

} // namespace

void Database::execute(std::string_view text) const {
    executeOn(writingConnectionString(), text);
}

void Database::executeOn(StringView connectionString, std::string_view text) const {
    const OdbcConnection connection(connectionString);
    // Drivers stumble over apostrophes in comments.
    const auto bare = withoutComments(std::string(text));
    std::string_view sql = bare;
    while (!sql.empty()) {
        const auto end = sql.find(";\n");
        run(connection, std::string(sql.substr(0, end)), takesWideSql());
        sql.remove_prefix(end == std::string_view::npos ? sql.size() : end + 2);
        if (sql.find_first_not_of(" \n") == std::string_view::npos)
            return;
    }
}

void Database::executeDemoFile(const char* name) const {
    std::ifstream file(std::filesystem::path(KVT_DEMO) / name);
    if (!file)
        throw std::runtime_error(std::string("no file ") + name);
    execute(std::string(std::istreambuf_iterator<char>(file), {}));
}

} // namespace kvtdruck::test
