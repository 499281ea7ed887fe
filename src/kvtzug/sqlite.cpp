#include "kvtzug/sqlite.h"

#include "values/conversion.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace kvtdruck {
namespace {

/// Between two tries to read a locked database.
constexpr std::chrono::milliseconds kBusyPause{20};

[[noreturn]] void fail(StringView sentence, StringView reason) {
    throw RuntimeError(kDataSourceError, String(sentence) + u" " + String(reason));
}

/// The file's header (https://www.sqlite.org/fileformat.html, "The Database Header").
class Header {
  public:
    explicit Header(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        readable_ = stream.is_open();
        stream.read(bytes_.data(), std::streamsize(bytes_.size()));
        empty_ = stream.gcount() == 0;
    }

    bool isReadable() const { return readable_; }
    /// An empty file is a database without tables.
    bool isDatabase() const { return empty_ || std::string_view(bytes_.data(), 16) == kMagic; }
    /// Whether the read version is that of write-ahead logging.
    bool hasWriteAheadLog() const { return bytes_[19] == 2; }

  private:
    static constexpr std::string_view kMagic{"SQLite format 3\0", 16};

    bool readable_ = false;
    bool empty_ = false;
    std::array<char, 20> bytes_{};
};

/// A URI whose path means itself, whatever is in it.
std::string unchangeableUri(const std::string& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file:";
    for (const char letter : path) {
        const auto byte = static_cast<unsigned char>(letter);
        const bool plain = letter == '/' || (byte < 0x80 && std::isalnum(byte));
        uri += plain ? std::string(1, letter) : std::string{'%', digits[byte >> 4U], digits[byte & 15U]};
    }
    return uri + "?immutable=1";
}

/// A whole text as a number; nothing where it is none.
std::optional<double> numberIn(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// The day of "yyyy-mm-dd", a time of day behind it left out; nothing where it is no date.
std::optional<Date> dateIn(std::string_view text) {
    int year = 0;
    int month = 0;
    int day = 0;
    const auto part = [&](std::size_t at, std::size_t length, int& value) {
        const auto* end = text.data() + at + length;
        const auto parsed = std::from_chars(text.data() + at, end, value);
        return parsed.ec == std::errc() && parsed.ptr == end && value > 0;
    };
    const bool shaped = (text.size() == 10 || (text.size() > 10 && (text[10] == ' ' || text[10] == 'T'))) &&
                        text[4] == '-' && text[7] == '-' && part(0, 4, year) && part(5, 2, month) &&
                        part(8, 2, day);
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(unsigned(month)),
                                           std::chrono::day(unsigned(day))};
    return shaped && date.ok() ? std::optional(dateOf(year, month, day)) : std::nullopt;
}

std::string isoDate(Date date) {
    const auto day = dayOf(date);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", int(day.year()), unsigned(day.month()),
                  unsigned(day.day()));
    return text.data();
}

class SqliteQuery : public Query {
  public:
    SqliteQuery(std::shared_ptr<SqliteConnection> connection, String sentence, StringView sql)
        : connection_(std::move(connection)), sentence_(std::move(sentence)), sql_(toUtf8(sql)) {}
    ~SqliteQuery() override {
        const std::lock_guard lock(connection_->inUse());
        sqlite3_finalize(statement_);
    }

    void execute(std::span<const Parameter> parameters) override;
    bool step() override;
    std::optional<double> number(std::size_t index) override;
    std::optional<Date> date(std::size_t index) override;
    std::optional<StringView> text(std::size_t index) override;
    bool finish() override;

  private:
    void prepare();
    void check(int result) const {
        if (result != SQLITE_OK)
            connection_->raise(sentence_, result);
    }
    std::string_view bytes(int column) const {
        const bool isNull = sqlite3_column_type(statement_, column) == SQLITE_NULL;
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        if (!text && !isNull) // what can't be turned into text for want of memory
            connection_->raise(sentence_, SQLITE_NOMEM);
        return {text ? text : "", std::size_t(sqlite3_column_bytes(statement_, column))};
    }
    [[noreturn]] void refuse(int column, StringView what) const;

    std::shared_ptr<SqliteConnection> connection_;
    String sentence_;
    std::string sql_;
    unsigned opening_ = 0;
    sqlite3_stmt* statement_ = nullptr;
    String text_;
};

void SqliteQuery::prepare() {
    sqlite3_finalize(std::exchange(statement_, nullptr));
    check(sqlite3_prepare_v3(connection_->handle(), sql_.c_str(), int(sql_.size()) + 1, SQLITE_PREPARE_PERSISTENT,
                             &statement_, nullptr));
    opening_ = connection_->opening();
}

void SqliteQuery::execute(std::span<const Parameter> parameters) {
    connection_->holds(); // what was written since the last query is to be seen
    if (!statement_ || opening_ != connection_->opening())
        prepare();
    sqlite3_reset(statement_);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const int at = int(i) + 1;
        if (const auto* number = std::get_if<double>(&parameters[i])) {
            check(sqlite3_bind_double(statement_, at, *number));
        } else {
            const auto* date = std::get_if<Date>(&parameters[i]);
            const auto text = date ? isoDate(*date) : toUtf8(std::get<String>(parameters[i]));
            check(sqlite3_bind_text(statement_, at, text.data(), int(text.size()), SQLITE_TRANSIENT));
        }
    }
}

bool SqliteQuery::step() {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW)
        return true;
    if (result != SQLITE_DONE) {
        sqlite3_reset(statement_);
        connection_->raise(sentence_, result);
    }
    return false;
}

bool SqliteQuery::finish() {
    sqlite3_reset(statement_);
    return connection_->holds();
}

std::optional<double> SqliteQuery::number(std::size_t index) {
    const int column = int(index);
    switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_NULL:
        return std::nullopt;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement_, column);
    default:
        break;
    }
    const auto text = bytes(column);
    if (text.empty())
        return std::nullopt;
    const auto number = numberIn(text);
    if (!number)
        refuse(column, u"keine Zahl");
    return number;
}

std::optional<Date> SqliteQuery::date(std::size_t index) {
    const int column = int(index);
    const auto text = bytes(column);
    if (text.empty())
        return std::nullopt;
    const auto date = dateIn(text);
    if (!date)
        refuse(column, u"kein Datum (JJJJ-MM-TT)");
    return date;
}

std::optional<StringView> SqliteQuery::text(std::size_t index) {
    const int column = int(index);
    const auto type = sqlite3_column_type(statement_, column);
    if (type == SQLITE_NULL)
        return std::nullopt;
    auto utf8 = bytes(column);
    // A whole number in a column of floating-point numbers is a number such as a telephone's all the same.
    if (type == SQLITE_FLOAT && utf8.ends_with(".0"))
        utf8.remove_suffix(2);
    text_.clear();
    appendFromUtf8(text_, utf8);
    return text_;
}

void SqliteQuery::refuse(int column, StringView what) const {
    fail(sentence_, u"Die Spalte „" + fromUtf8(sqlite3_column_name(statement_, column)) + u"“ enthält „" +
                        fromUtf8(bytes(column)) + u"“; das ist " + String(what) + u".");
}

std::optional<CellType> typeOf(std::string declared) {
    std::ranges::transform(declared, declared.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    const auto names = [&](std::initializer_list<const char*> words) {
        return std::ranges::any_of(words,
                                   [&](const char* word) { return declared.find(word) != std::string::npos; });
    };
    if (names({"CHAR", "TEXT", "CLOB"}))
        return CellType::Text;
    if (names({"DATE"}))
        return CellType::Date;
    return names({"INT", "REAL", "FLOA", "DOUB", "NUM", "DEC"}) ? std::optional(CellType::Number) : std::nullopt;
}

String openingSentence(StringView name) {
    return u"Die Datenbank „" + String(name) + u"“ konnte nicht geöffnet werden.";
}

} // namespace

SqliteConnection::SqliteConnection(StringView file, std::chrono::milliseconds patience, Cancellation cancelled)
    : name_(file), path_(toUtf8(file)), patience_(patience), cancelled_(cancelled) {
    check();
    // SQLite's own files lie beside the file itself, not beside a link to it. As a whole path the name can't be
    // taken for one of the names to which SQLite gives a meaning of their own.
    path_ = std::filesystem::canonical(path_);
    open();
}

SqliteConnection::~SqliteConnection() {
    sqlite3_close_v2(database_);
}

void SqliteConnection::check() const {
    std::error_code error;
    const auto status = std::filesystem::status(path_, error);
    if (status.type() == std::filesystem::file_type::not_found)
        fail(openingSentence(name_), u"Die Datei gibt es nicht.");
    if (!error && !std::filesystem::is_regular_file(status))
        fail(openingSentence(name_), u"Das ist keine Datei.");
    const Header header(path_);
    if (error || !header.isReadable())
        fail(openingSentence(name_), u"Die Datei kann nicht gelesen werden.");
    if (!header.isDatabase())
        fail(openingSentence(name_), u"Das ist keine SQLite-Datenbank.");
}

/// A database with a write-ahead log wants to keep two files beside it as long as it is open, even for reading. As
/// long as there is no log, all is in the database's file; it is opened as unchangeable then, which needs no other
/// file, and `holds` watches whether that stays true.
void SqliteConnection::open() {
    unchangeable_ = Header(path_).hasWriteAheadLog() && !hasLog();
    opened_ = stamp();
    ++opening_;
    const auto name = unchangeable_ ? unchangeableUri(path_.string()) : path_.string();
    const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | (unchangeable_ ? SQLITE_OPEN_URI : 0);
    if (const int result = sqlite3_open_v2(name.c_str(), &database_, flags, nullptr); result != SQLITE_OK)
        raise(openingSentence(name_), result);
    sqlite3_busy_handler(database_, onBusy, this);
    sqlite3_progress_handler(database_, kStepsBetweenLooks, onProgress, this);
    // A view in a foreign file runs nothing but what is harmless.
    sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

std::unique_ptr<Query> SqliteConnection::query(String sentence, StringView sql, std::vector<CellType>) {
    return std::make_unique<SqliteQuery>(shared_from_this(), std::move(sentence), keys_.adapted(sql));
}

/// SQLite's columns hold any type; what they are declared as decides how they are compared
/// (https://www.sqlite.org/datatype3.html, "Determination Of Column Affinity").
std::vector<SourceColumn> SqliteConnection::columnsOf(StringView table) {
    holds();
    const auto sql = "SELECT * FROM " + toUtf8(table);
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> owner(statement, sqlite3_finalize);
    if (result != SQLITE_OK)
        raise(u"„" + String(table) + u"“ kann nicht gelesen werden.", result);
    std::vector<SourceColumn> columns;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const char* declared = sqlite3_column_decltype(statement, i);
        columns.push_back({fromUtf8(sqlite3_column_name(statement, i)), typeOf(declared ? declared : "")});
    }
    return columns;
}

String SqliteConnection::asNumber(StringView column) const {
    return u"CAST(" + String(column) + u" AS REAL)";
}

bool SqliteConnection::hasLog() const {
    return std::filesystem::exists(path_.string() + "-wal");
}

SqliteConnection::Stamp SqliteConnection::stamp() const {
    std::error_code none; // a file that is gone is no longer what it was
    return {std::filesystem::last_write_time(path_, none), std::filesystem::file_size(path_, none)};
}

bool SqliteConnection::holds() {
    if (!unchangeable_ || (!hasLog() && stamp() == opened_))
        return true;
    sqlite3_close_v2(std::exchange(database_, nullptr));
    open();
    return false;
}

void SqliteConnection::raise(const String& sentence, int result) const {
    if (isCancelled())
        fail(sentence, u"Der Vorgang wurde abgebrochen.");
    if ((result & 0xFF) == SQLITE_BUSY)
        fail(sentence, u"Ein anderes Programm hat die Datenbank gesperrt.");
    fail(sentence, fromUtf8(database_ ? sqlite3_errmsg(database_) : sqlite3_errstr(result)));
}

int SqliteConnection::onProgress(void* self) {
    return static_cast<SqliteConnection*>(self)->isCancelled() ? 1 : 0;
}

int SqliteConnection::onBusy(void* self, int attempt) {
    const auto& connection = *static_cast<SqliteConnection*>(self);
    if (connection.isCancelled() || attempt * kBusyPause >= connection.patience_)
        return 0;
    std::this_thread::sleep_for(kBusyPause);
    return 1;
}

} // namespace kvtdruck
