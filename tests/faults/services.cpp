// Calls of the databases and of the print service that can be made to fail. The print service is one of the shim's
// own.
#include "faults/shim.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <cups/cups.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>
#include <sqlucode.h>
#include <sys/syscall.h>
#include <unistd.h>

using kvtdruck::faults::fails;
using kvtdruck::faults::Kind;

namespace {

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#define FAULTY(kind, result, type, name, parameters, arguments)                                                    \
    extern "C" type name parameters {                                                                              \
        static const auto call = next<type(*) parameters>(#name);                                                  \
        return fails(Kind::kind) ? static_cast<type>(result) : call arguments;                                     \
    }

// --- SQLite ---

extern "C" int sqlite3_open_v2(const char* name, sqlite3** database, int flags, const char* vfs) {
    static const auto call = next<decltype(&sqlite3_open_v2)>("sqlite3_open_v2");
    if (!fails(Kind::Sqlite))
        return call(name, database, flags, vfs);
    *database = nullptr;
    return SQLITE_NOMEM;
}
FAULTY(Sqlite, SQLITE_IOERR, int, sqlite3_prepare_v3,
       (sqlite3 * database, const char* sql, int size, unsigned flags, sqlite3_stmt** statement, const char** tail),
       (database, sql, size, flags, statement, tail))

/// The statement whose last step has failed: what ends it tells so once more, and that is what the driver of ODBC
/// looks at (https://www.sqlite.org/c3ref/reset.html).
static std::atomic<sqlite3_stmt*> failedStatement = nullptr;

extern "C" int sqlite3_step(sqlite3_stmt* statement) {
    static const auto call = next<decltype(&sqlite3_step)>("sqlite3_step");
    if (!fails(Kind::Sqlite))
        return call(statement);
    failedStatement = statement;
    return SQLITE_IOERR;
}

static int ended(sqlite3_stmt* statement, int result) {
    return failedStatement.compare_exchange_strong(statement, nullptr) ? SQLITE_IOERR : result;
}

extern "C" int sqlite3_reset(sqlite3_stmt* statement) {
    static const auto call = next<decltype(&sqlite3_reset)>("sqlite3_reset");
    return ended(statement, call(statement));
}

extern "C" int sqlite3_finalize(sqlite3_stmt* statement) {
    static const auto call = next<decltype(&sqlite3_finalize)>("sqlite3_finalize");
    return ended(statement, call(statement));
}

/// These fail for want of memory alone (https://www.sqlite.org/c3ref/bind_blob.html and column_blob.html), and the
/// driver of ODBC does not look at it: there an allocation is refused as well, which the process sees.
static bool failsForWantOfMemory(const void* caller) {
    if (!fails(Kind::Sqlite))
        return false;
    Dl_info place{};
    if (::dladdr(caller, &place) != 0 && std::strstr(place.dli_fname, "sqlite3odbc") != nullptr) {
        volatile std::size_t moreThanThereIs = SIZE_MAX / 2;
        void* volatile refused = std::malloc(moreThanThereIs);
        std::free(refused);
    }
    return true;
}

extern "C" int sqlite3_bind_double(sqlite3_stmt* statement, int at, double value) {
    static const auto call = next<decltype(&sqlite3_bind_double)>("sqlite3_bind_double");
    return failsForWantOfMemory(__builtin_return_address(0)) ? SQLITE_NOMEM : call(statement, at, value);
}

extern "C" int sqlite3_bind_text(sqlite3_stmt* statement, int at, const char* text, int size,
                                 void (*destroy)(void*)) {
    static const auto call = next<decltype(&sqlite3_bind_text)>("sqlite3_bind_text");
    return failsForWantOfMemory(__builtin_return_address(0)) ? SQLITE_NOMEM
                                                             : call(statement, at, text, size, destroy);
}

extern "C" const unsigned char* sqlite3_column_text(sqlite3_stmt* statement, int at) {
    static const auto call = next<decltype(&sqlite3_column_text)>("sqlite3_column_text");
    return failsForWantOfMemory(__builtin_return_address(0)) ? nullptr : call(statement, at);
}

// --- ODBC ---

FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLAllocHandle, (SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle),
       (kind, parent, handle))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLSetEnvAttr,
       (SQLHENV environment, SQLINTEGER what, SQLPOINTER value, SQLINTEGER size), (environment, what, value, size))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLDriverConnectW,
       (SQLHDBC connection, SQLHWND window, SQLWCHAR* in, SQLSMALLINT size, SQLWCHAR* out, SQLSMALLINT most,
        SQLSMALLINT* length, SQLUSMALLINT completion),
       (connection, window, in, size, out, most, length, completion))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLSetStmtAttrW,
       (SQLHSTMT statement, SQLINTEGER what, SQLPOINTER value, SQLINTEGER size), (statement, what, value, size))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLPrepareW, (SQLHSTMT statement, SQLWCHAR* sql, SQLINTEGER size),
       (statement, sql, size))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLBindParameter,
       (SQLHSTMT statement, SQLUSMALLINT number, SQLSMALLINT way, SQLSMALLINT from, SQLSMALLINT to, SQLULEN size,
        SQLSMALLINT digits, SQLPOINTER value, SQLLEN most, SQLLEN* length),
       (statement, number, way, from, to, size, digits, value, most, length))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLBindCol,
       (SQLHSTMT statement, SQLUSMALLINT number, SQLSMALLINT kind, SQLPOINTER value, SQLLEN most, SQLLEN* length),
       (statement, number, kind, value, most, length))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLExecute, (SQLHSTMT statement), (statement))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLFetch, (SQLHSTMT statement), (statement))
FAULTY(Odbc, SQL_ERROR, SQLRETURN, SQLGetConnectAttrW,
       (SQLHDBC connection, SQLINTEGER what, SQLPOINTER value, SQLINTEGER size, SQLINTEGER* length),
       (connection, what, value, size, length))

// --- The print service: one queue, whose jobs are files ---

namespace {

constexpr int kJob = 7;
int document = -1;

// The service is no part of the program: its own calls go past those that fail.

std::string printed(const char* more = "") {
    return std::string(std::getenv("KVT_FAULTS_PRINTER")) + more;
}

bool rename(const std::string& from, const std::string& to) {
    return ::syscall(SYS_renameat, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str()) == 0;
}

} // namespace

extern "C" {

int cupsGetDests2(http_t*, cups_dest_t** destinations) {
    return fails(Kind::Printer) ? 0 : cupsAddDest("Buero", nullptr, 0, destinations);
}

int cupsCreateJob(http_t*, const char*, const char*, int, cups_option_t*) {
    return fails(Kind::Printer) ? 0 : kJob;
}

http_status_t cupsStartDocument(http_t*, const char*, int, const char*, const char*, int) {
    if (!fails(Kind::Printer))
        document =
            int(::syscall(SYS_openat, AT_FDCWD, printed(".part").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
    return document < 0 ? HTTP_STATUS_ERROR : HTTP_STATUS_CONTINUE;
}

http_status_t cupsWriteRequestData(http_t*, const char* data, std::size_t size) {
    const bool written = !fails(Kind::Printer) && ::syscall(SYS_write, document, data, size) == long(size);
    return written ? HTTP_STATUS_CONTINUE : HTTP_STATUS_ERROR;
}

ipp_status_t cupsFinishDocument(http_t*, const char*) {
    if (document < 0 || fails(Kind::Printer))
        return IPP_STATUS_ERROR_INTERNAL;
    const bool kept = rename(printed(), printed(".before")) && rename(printed(".part"), printed());
    return kept ? IPP_STATUS_OK : IPP_STATUS_ERROR_INTERNAL;
}

ipp_status_t cupsCancelJob2(http_t*, const char*, int, int) {
    ::syscall(SYS_unlinkat, AT_FDCWD, printed(".part").c_str(), 0);
    rename(printed(".before"), printed());
    return IPP_STATUS_OK;
}

ipp_status_t cupsLastError() {
    return IPP_STATUS_ERROR_INTERNAL;
}

const char* cupsLastErrorString() {
    return "gestört";
}
}
