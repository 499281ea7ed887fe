#include "kvtzug/source.h"

#include "kvtzug/connection_string.h"
#include "kvtzug/odbc.h"
#ifndef _WIN32
#include "kvtzug/sqlite.h"
#endif

namespace kvtdruck {
namespace {

#ifndef _WIN32
/// How long a query waits for a locked database, unless `Timeout` says otherwise (milliseconds, as SQLite's ODBC
/// driver has it). Writers hold their locks for moments.
constexpr std::chrono::milliseconds kPatience{30000};

bool isSqlite(StringView driver) {
    return driver == u"SQLite3" || driver == u"SQLite";
}

std::chrono::milliseconds patienceOf(StringView connectionString) {
    const auto timeout = connectionAttribute(connectionString, u"Timeout");
    const bool given =
        !timeout.empty() && timeout.size() < 9 && timeout.find_first_not_of(u"0123456789") == String::npos;
    return given ? std::chrono::milliseconds(std::stol(toUtf8(timeout))) : kPatience;
}
#endif

} // namespace

std::chrono::year_month_day dayOf(Date date) {
    using namespace std::chrono_literals;
    return std::chrono::sys_days(1899y / 12 / 30) + std::chrono::days(static_cast<int>(date.days));
}

std::shared_ptr<Connection> openConnection(StringView connectionString, [[maybe_unused]] Cancellation cancelled) {
#ifndef _WIN32
    if (isSqlite(connectionAttribute(connectionString, u"Driver")))
        return std::make_shared<SqliteConnection>(connectionAttribute(connectionString, u"Database"),
                                                  patienceOf(connectionString), cancelled);
#endif
    return std::make_shared<OdbcConnection>(connectionString);
}

String sqliteConnection(StringView file) {
    return u"Driver={SQLite3};Database=" + braced(file);
}

} // namespace kvtdruck
