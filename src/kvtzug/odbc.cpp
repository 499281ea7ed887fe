#include "kvtzug/odbc.h"

#include "kvtzug/connection_string.h"
#include "kvtzug/odbc_columns.h"
#include "values/characters.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace kvtdruck {
namespace {

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
               u"“ ist nicht eingerichtet („odbcinst -q -d“ nennt die vorhandenen).";
    if (missing)
        return u"Die ODBC-Datenquelle ist nicht eingerichtet.";
    const auto database = connectionAttribute(connectionString, u"Database");
    return database.empty() ? String(u"Die Datenbank konnte nicht geöffnet werden.")
                            : u"Die Datenbank „" + database + u"“ konnte nicht geöffnet werden.";
}

/// SQLite's driver would answer a misspelled file name with a new empty database. Other drivers let the setting
/// pass.
String withoutCreating(StringView connectionString) {
    auto driver = connectionAttribute(connectionString, u"Driver");
    std::ranges::transform(driver, driver.begin(), [](char16_t letter) { return asciiLower(letter); });
    const bool creates =
        driver.find(u"sqlite") != String::npos && connectionAttribute(connectionString, u"NoCreat").empty();
    return String(connectionString) + (creates ? u";NoCreat=1" : u"");
}

/// What a column of an SQL type is; nothing for a kind of its own, such as a picture.
std::optional<CellType> typeOf(SQLSMALLINT type) {
    switch (type) {
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR:
        return CellType::Text;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
        return CellType::Date;
    case SQL_NUMERIC:
    case SQL_DECIMAL:
    case SQL_INTEGER:
    case SQL_SMALLINT:
    case SQL_TINYINT:
    case SQL_BIGINT:
    case SQL_BIT:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return CellType::Number;
    default:
        return std::nullopt;
    }
}

/// One statement with its parameters and its columns' buffers.
class OdbcQuery : public Query {
  public:
    OdbcQuery(std::shared_ptr<OdbcConnection> connection, String sentence, StringView sql,
              const std::vector<CellType>& columns);
    ~OdbcQuery() override { SQLFreeHandle(SQL_HANDLE_STMT, statement_); }

    void execute(std::span<const Parameter> parameters) override;
    bool step() override;
    std::optional<double> number(std::size_t index) override { return columns_.number(index, row_); }
    std::optional<Date> date(std::size_t index) override { return columns_.date(index, row_); }
    std::optional<StringView> text(std::size_t index) override { return columns_.text(index, row_); }
    /// A text that did not fit into its buffer makes the rows useless; the next execution has room for it.
    bool finish() override;

  private:
    /// A parameter in the form that ODBC takes it.
    struct Bound {
        SQL_DATE_STRUCT date{};
        SQLLEN length = 0;
    };

    void bind(std::size_t index);
    void set(SQLINTEGER attribute, SQLPOINTER value) {
        check(SQLSetStmtAttrW(statement_, attribute, value, SQL_IS_POINTER));
    }
    void check(SQLRETURN result) const {
        if (!SQL_SUCCEEDED(result))
            raise(sentence_, diagnose(SQL_HANDLE_STMT, statement_).text);
    }

    std::shared_ptr<OdbcConnection> connection_;
    String sentence_;
    OdbcColumns columns_;
    std::vector<Parameter> parameters_;
    std::vector<Bound> bound_;
    SQLHSTMT statement_ = nullptr;
    SQLULEN fetched_ = 0;
    std::size_t row_ = 0;
};

OdbcQuery::OdbcQuery(std::shared_ptr<OdbcConnection> connection, String sentence, StringView sql,
                     const std::vector<CellType>& columns)
    : connection_(std::move(connection)), sentence_(std::move(sentence)), columns_(columns) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection_->handle(), &statement_)))
        raise(sentence_, diagnose(SQL_HANDLE_DBC, connection_->handle()).text);
    try {
        check(SQLPrepareW(statement_, wide(sql), SQLINTEGER(sql.size())));
        set(SQL_ATTR_ROW_BIND_TYPE, attributeValue(SQL_BIND_BY_COLUMN));
        set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched_);
    } catch (...) {
        SQLFreeHandle(SQL_HANDLE_STMT, statement_);
        throw;
    }
}

void OdbcQuery::execute(std::span<const Parameter> parameters) {
    SQLFreeStmt(statement_, SQL_CLOSE);
    parameters_.assign(parameters.begin(), parameters.end());
    bound_.resize(parameters_.size());
    for (std::size_t i = 0; i < parameters_.size(); ++i)
        bind(i);
    set(SQL_ATTR_ROW_ARRAY_SIZE, attributeValue(columns_.rows()));
    for (std::size_t i = 0; i < columns_.count(); ++i) {
        auto& column = columns_[i];
        check(SQLBindCol(statement_, SQLUSMALLINT(i + 1), column.type, column.values.data(), SQLLEN(column.width),
                         column.lengths.data()));
    }
    check(SQLExecute(statement_));
    fetched_ = row_ = 0;
}

void OdbcQuery::bind(std::size_t index) {
    auto& date = bound_[index].date;
    auto& length = bound_[index].length;
    const auto bindAs = [&](SQLSMALLINT type, SQLSMALLINT sqlType, SQLULEN size, const void* value) {
        check(SQLBindParameter(statement_, SQLUSMALLINT(index + 1), SQL_PARAM_INPUT, type, sqlType, size, 0,
                               const_cast<void*>(value), length, &length));
    };
    if (const auto* number = std::get_if<double>(&parameters_[index])) {
        length = sizeof *number;
        bindAs(SQL_C_DOUBLE, SQL_DOUBLE, 0, number);
    } else if (const auto* text = std::get_if<String>(&parameters_[index])) {
        length = SQLLEN(text->size() * sizeof(char16_t));
        bindAs(SQL_C_WCHAR, SQL_WVARCHAR, std::max<SQLULEN>(1, text->size()), text->data());
    } else {
        const auto day = dayOf(std::get<Date>(parameters_[index]));
        date = {SQLSMALLINT(int(day.year())), SQLUSMALLINT(unsigned(day.month())),
                SQLUSMALLINT(unsigned(day.day()))};
        length = sizeof date;
        bindAs(SQL_C_TYPE_DATE, SQL_TYPE_DATE, 10, &date); // characters of yyyy-mm-dd
    }
}

bool OdbcQuery::step() {
    if (++row_ < fetched_)
        return true;
    row_ = fetched_ = 0;
    const auto result = SQLFetch(statement_);
    if (result == SQL_NO_DATA)
        return false;
    check(result);
    return columns_.holds(fetched_) && fetched_ > 0;
}

bool OdbcQuery::finish() {
    SQLFreeStmt(statement_, SQL_CLOSE);
    return !columns_.widen();
}

} // namespace

OdbcConnection::OdbcConnection(StringView connectionString) {
    const auto complete = withoutCreating(connectionString);
    if (complete.size() > std::numeric_limits<SQLSMALLINT>::max())
        raise(u"Die Datenbank konnte nicht geöffnet werden.",
              u"Die Verbindungszeichenfolge ist länger als 32767 Zeichen.");
    const bool ready =
        SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment_)) &&
        SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, attributeValue(SQL_OV_ODBC3), 0)) &&
        SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_));
    if (!ready) {
        release();
        raise(u"Die Datenbank konnte nicht geöffnet werden.", u"ODBC steht nicht zur Verfügung.");
    }
    if (open(complete))
        return;
    const auto diagnosis = diagnose(SQL_HANDLE_DBC, connection_);
    release();
    raise(openingFailure(complete, diagnosis), withoutPasswords(diagnosis.text, complete));
}

bool OdbcConnection::open(StringView connectionString) {
    if (SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, wide(connectionString),
                                        SQLSMALLINT(connectionString.size()), nullptr, 0, nullptr,
                                        SQL_DRIVER_NOPROMPT)))
        return true;
#ifndef _WIN32
    // For a driver without wide functions, as SQLite's is, unixODBC cuts every character to its lower byte. Such a
    // driver takes UTF-8 as it is.
    const auto bytes = toUtf8(connectionString);
    if (bytes.size() > connectionString.size() && bytes.size() <= std::numeric_limits<SQLSMALLINT>::max())
        return SQL_SUCCEEDED(SQLDriverConnect(connection_, nullptr,
                                              reinterpret_cast<SQLCHAR*>(const_cast<char*>(bytes.data())),
                                              SQLSMALLINT(bytes.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT));
#endif
    return false;
}

OdbcConnection::~OdbcConnection() {
    SQLDisconnect(connection_);
    release();
}

void OdbcConnection::release() noexcept {
    if (connection_)
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    if (environment_)
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

std::unique_ptr<Query> OdbcConnection::query(String sentence, StringView sql, std::vector<CellType> columns) {
    return std::make_unique<OdbcQuery>(shared_from_this(), std::move(sentence), keys_.adapted(sql), columns);
}

std::vector<SourceColumn> OdbcConnection::columnsOf(StringView table) {
    const auto sentence = u"„" + String(table) + u"“ kann nicht gelesen werden.";
    auto sql = u"SELECT * FROM " + String(table) + u" WHERE 1 = 0";
    SQLHSTMT statement = nullptr;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement)))
        raise(sentence, diagnose(SQL_HANDLE_DBC, connection_).text);
    const std::unique_ptr<void, void (*)(SQLHSTMT)> owner(
        statement, [](SQLHSTMT handle) { SQLFreeHandle(SQL_HANDLE_STMT, handle); });
    SQLSMALLINT count = 0;
    if (!SQL_SUCCEEDED(SQLExecDirectW(statement, wide(sql), SQLINTEGER(sql.size()))) ||
        !SQL_SUCCEEDED(SQLNumResultCols(statement, &count)))
        raise(sentence, diagnose(SQL_HANDLE_STMT, statement).text);
    std::vector<SourceColumn> columns;
    for (SQLSMALLINT i = 1; i <= count; ++i) {
        String name(256, u'\0');
        SQLSMALLINT length = 0;
        SQLSMALLINT type = 0;
        if (!SQL_SUCCEEDED(SQLDescribeColW(statement, SQLUSMALLINT(i), wide(name), SQLSMALLINT(name.size()),
                                           &length, &type, nullptr, nullptr, nullptr)))
            raise(sentence, diagnose(SQL_HANDLE_STMT, statement).text);
        name.resize(std::min(name.size(), std::size_t(length)));
        columns.push_back({name, typeOf(type)});
    }
    return columns;
}

/// MySQL and MariaDB know no such type to cast to; a sum makes a number of a text there.
String OdbcConnection::asNumber(StringView column) const {
    String name(64, u'\0');
    SQLSMALLINT bytes = 0;
    SQLGetInfoW(connection_, SQL_DBMS_NAME, name.data(), SQLSMALLINT(name.size() * sizeof(char16_t)), &bytes);
    name.resize(std::min(name.size(), std::size_t(bytes) / sizeof(char16_t)));
    if (name == u"MySQL" || name == u"MariaDB")
        return u"(" + String(column) + u" + 0e0)";
    return u"CAST(" + String(column) + u" AS DOUBLE PRECISION)";
}

bool OdbcConnection::alive() const {
    SQLUINTEGER dead = SQL_CD_FALSE;
    const auto result = SQLGetConnectAttrW(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
    return !SQL_SUCCEEDED(result) || dead == SQL_CD_FALSE;
}

} // namespace kvtdruck
