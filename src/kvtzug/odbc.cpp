#include "kvtzug/odbc.h"

#include "values/runtime_error.h"

#include <algorithm>
#include <utility>

namespace kvtdruck {
namespace {

char16_t lower(char16_t letter) {
    return letter >= u'A' && letter <= u'Z' ? char16_t(letter - u'A' + u'a') : letter;
}

String lower(StringView text) {
    String result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char16_t letter) { return lower(letter); });
    return result;
}

SQLWCHAR* wide(StringView text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<char16_t*>(text.data()));
}

SQLPOINTER attributeValue(std::uintptr_t value) {
    return reinterpret_cast<SQLPOINTER>(value);
}

struct Diagnosis {
    String state;
    String text;
};

/// The first diagnostic record, which is the cause; the records behind it repeat it in other words.
Diagnosis diagnose(SQLSMALLINT type, SQLHANDLE handle) {
    char16_t state[6] = {};
    String text(SQL_MAX_MESSAGE_LENGTH, u'\0');
    SQLSMALLINT length = 0;
    const auto result = SQLGetDiagRecW(type, handle, 1, reinterpret_cast<SQLWCHAR*>(state), nullptr, wide(text),
                                       SQLSMALLINT(text.size()), &length);
    if (!SQL_SUCCEEDED(result))
        return {u"", u"ODBC nennt keine Ursache."};
    text.resize(std::min<std::size_t>(text.size() - 1, std::size_t(length)));
    text.erase(text.find_last_not_of(u" \r\n") + 1);
    return {state, text};
}

[[noreturn]] void raise(StringView sentence, StringView cause) {
    throw RuntimeError(kDataSourceError, String(sentence) + u" " + String(cause));
}

String openingFailure(StringView connectionString, const Diagnosis& diagnosis) {
    const auto driver = connectionAttribute(connectionString, u"Driver");
    const bool missing = diagnosis.state == u"IM002" || diagnosis.state == u"IM003" ||
                         diagnosis.text.find(u"Can't open lib") != String::npos;
    if (missing && !driver.empty())
        return u"Der ODBC-Treiber „" + driver +
               u"“ ist nicht eingerichtet („odbcinst -q -d“ nennt die vorhandenen; SQLite3 bringt das Paket "
               u"libsqliteodbc mit).";
    if (missing)
        return u"Die ODBC-Datenquelle ist nicht eingerichtet.";
    const auto database = connectionAttribute(connectionString, u"Database");
    return database.empty() ? String(u"Die Datenbank konnte nicht geöffnet werden.")
                            : u"Die Datenbank „" + database + u"“ konnte nicht geöffnet werden.";
}

/// SQLite's driver would answer a misspelled file name with a new empty database.
String withoutCreating(StringView connectionString) {
    String result(connectionString);
    const bool sqlite = lower(connectionAttribute(connectionString, u"Driver")).find(u"sqlite") != String::npos;
    if (sqlite && connectionAttribute(connectionString, u"NoCreat").empty())
        result += u";NoCreat=1";
    return result;
}

} // namespace

String connectionAttribute(StringView connectionString, StringView name) {
    for (StringView rest = connectionString; !rest.empty();) {
        const auto braced = rest.find(u"={");
        auto end = rest.find(u';');
        if (braced < end)
            end = rest.find(u';', std::min(rest.size(), rest.find(u'}', braced)));
        const auto part = rest.substr(0, end);
        const auto equals = part.find(u'=');
        if (equals != StringView::npos && lower(trimmed(part.substr(0, equals))) == lower(name)) {
            auto value = trimmed(part.substr(equals + 1));
            if (value.size() >= 2 && value.front() == u'{' && value.back() == u'}')
                value = value.substr(1, value.size() - 2);
            return String(value);
        }
        rest = end == StringView::npos ? StringView() : rest.substr(end + 1);
    }
    return {};
}

Connection::Connection(StringView connectionString) {
    const bool ready =
        SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment_)) &&
        SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, attributeValue(SQL_OV_ODBC3), 0)) &&
        SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_));
    if (!ready) {
        release();
        raise(u"Die Datenbank konnte nicht geöffnet werden.", u"ODBC steht nicht zur Verfügung.");
    }
    const auto complete = withoutCreating(connectionString);
    if (open(complete))
        return;
    auto diagnosis = diagnose(SQL_HANDLE_DBC, connection_);
    release();
    for (const auto& secret : {connectionAttribute(complete, u"PWD"), connectionAttribute(complete, u"Password")})
        if (!secret.empty())
            diagnosis.text = without(diagnosis.text, secret);
    raise(openingFailure(complete, diagnosis), diagnosis.text);
}

bool Connection::open(StringView connectionString) {
    if (SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, wide(connectionString),
                                        SQLSMALLINT(connectionString.size()), nullptr, 0, nullptr,
                                        SQL_DRIVER_NOPROMPT)))
        return true;
#ifndef _WIN32
    // For a driver without wide functions, as SQLite's is, unixODBC cuts every character to its lower byte. Such a
    // driver takes UTF-8 as it is.
    if (std::any_of(connectionString.begin(), connectionString.end(),
                    [](char16_t letter) { return letter > 0x7F; })) {
        auto bytes = toUtf8(connectionString);
        return SQL_SUCCEEDED(SQLDriverConnect(connection_, nullptr, reinterpret_cast<SQLCHAR*>(bytes.data()),
                                              SQLSMALLINT(bytes.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT));
    }
#endif
    return false;
}

Connection::~Connection() {
    SQLDisconnect(connection_);
    release();
}

void Connection::release() noexcept {
    if (connection_)
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    if (environment_)
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

bool Connection::alive() const {
    SQLUINTEGER dead = SQL_CD_FALSE;
    const auto result = SQLGetConnectAttrW(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
    return !SQL_SUCCEEDED(result) || dead == SQL_CD_FALSE;
}

Parameter::Parameter(StringView text)
    : Parameter(SQL_C_WCHAR, std::as_bytes(std::span(text.data(), text.size()))) {}

Parameter::Parameter(double number) : Parameter(SQL_C_DOUBLE, std::as_bytes(std::span(&number, 1))) {}

Parameter::Parameter(SQLSMALLINT cType, std::span<const std::byte> value)
    : type(cType), bytes(value.begin(), value.end()) {}

Statement::Statement(std::shared_ptr<Connection> connection, String sentence, StringView sql,
                     std::vector<Parameter> parameters)
    : connection_(std::move(connection)), sentence_(std::move(sentence)), parameters_(std::move(parameters)),
      lengths_(parameters_.size()) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection_->handle(), &statement_)))
        raise(sentence_, diagnose(SQL_HANDLE_DBC, connection_->handle()).text);
    try {
        check(SQLPrepareW(statement_, wide(sql), SQLINTEGER(sql.size())));
        for (std::size_t i = 0; i < parameters_.size(); ++i)
            bindParameter(SQLUSMALLINT(i + 1), parameters_[i]);
    } catch (...) {
        SQLFreeHandle(SQL_HANDLE_STMT, statement_);
        throw;
    }
}

Statement::~Statement() {
    SQLFreeHandle(SQL_HANDLE_STMT, statement_);
}

void Statement::bindParameter(SQLUSMALLINT number, Parameter& parameter) {
    auto& length = lengths_[number - 1U];
    length = SQLLEN(parameter.bytes.size());
    SQLSMALLINT sqlType = SQL_DOUBLE;
    SQLULEN size = 0;
    if (parameter.type == SQL_C_WCHAR) {
        sqlType = SQL_WVARCHAR;
        size = std::max<SQLULEN>(1, parameter.bytes.size() / sizeof(char16_t));
    } else if (parameter.type == SQL_C_TYPE_DATE) {
        sqlType = SQL_TYPE_DATE;
        size = 10; // characters of yyyy-mm-dd
    }
    // An empty text is no NULL, so it needs an address all the same.
    static std::byte nothing{};
    auto* value = parameter.bytes.empty() ? &nothing : parameter.bytes.data();
    check(SQLBindParameter(statement_, number, SQL_PARAM_INPUT, parameter.type, sqlType, size, 0, value, length,
                           &length));
}

void Statement::bindColumn(SQLUSMALLINT number, SQLSMALLINT type, std::byte* values, std::size_t width,
                           SQLLEN* lengths) {
    check(SQLBindCol(statement_, number, type, values, SQLLEN(width), lengths));
}

std::size_t Statement::fetch(std::size_t rows) {
    SQLULEN fetched = 0;
    set(SQL_ATTR_ROW_BIND_TYPE, attributeValue(SQL_BIND_BY_COLUMN));
    set(SQL_ATTR_ROW_ARRAY_SIZE, attributeValue(rows));
    set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched);
    check(SQLExecute(statement_));
    const auto result = SQLFetch(statement_);
    if (result == SQL_NO_DATA)
        return 0;
    check(result);
    return std::size_t(fetched);
}

void Statement::set(SQLINTEGER attribute, SQLPOINTER value) {
    check(SQLSetStmtAttrW(statement_, attribute, value, SQL_IS_POINTER));
}

void Statement::check(SQLRETURN result) const {
    if (!SQL_SUCCEEDED(result))
        raise(sentence_, diagnose(SQL_HANDLE_STMT, statement_).text);
}

} // namespace kvtdruck
