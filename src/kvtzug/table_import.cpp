#include "kvtzug/table_import.h"

#include "kvtzug/database_template.h"
#include "kvtzug/sqlite.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kvtdruck {
namespace {

/// As long as a reader waits for a writer.
constexpr int kPatience = 30000; // milliseconds

int onProgress(void* cancelled) {
    return *static_cast<const std::atomic<bool>*>(cancelled) ? 1 : 0;
}

} // namespace

TableImport::TableImport(const std::filesystem::path& file, const SchemaTable& table,
                         std::vector<std::string> columns, bool creates, bool tries, Cancellation cancelled)
    : table_(table), columns_(std::move(columns)), cancelled_(cancelled), tries_(tries) {
    try {
        open(file, creates, tries);
        execute("PRAGMA foreign_keys = ON");
        execute("BEGIN IMMEDIATE");
        prepareTables(creates);
        prepareStatements();
    } catch (...) {
        close();
        throw;
    }
}

TableImport::~TableImport() {
    close();
}

void TableImport::close() {
    for (auto* statement : {exists_, update_, insert_})
        sqlite3_finalize(statement);
    sqlite3_close(database_); // an open transaction is rolled back
    std::error_code gone;
    if (!created_.empty())
        std::filesystem::remove(created_, gone);
}

/// A new database holds personal data and is its owner's alone. One that is only tried is not made.
void TableImport::open(const std::filesystem::path& file, bool creates, bool tries) {
    const bool isThere = std::filesystem::exists(file);
    if (!isThere && !creates)
        throw std::runtime_error("Die Datenbank „" + file.string() + "“ gibt es nicht; --anlegen legt sie an.");
    if (!isThere && !tries) {
        const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
        if (descriptor < 0)
            throw std::runtime_error("Die Datenbank „" + file.string() + "“ kann nicht angelegt werden.");
        ::close(descriptor);
        created_ = file;
    }
    const auto name = isThere || !tries ? std::filesystem::canonical(file).string() : std::string(":memory:");
    if (const int result = sqlite3_open_v2(name.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr);
        result != SQLITE_OK)
        raise(result);
    sqlite3_busy_timeout(database_, kPatience);
    if (cancelled_ != nullptr)
        sqlite3_progress_handler(database_, kStepsBetweenLooks, onProgress,
                                 const_cast<std::atomic<bool>*>(cancelled_));
}

void TableImport::prepareTables(bool creates) {
    const auto& tables = schema();
    const auto statements = tableStatements();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        auto* kind = prepare("SELECT type FROM sqlite_master WHERE lower(name) = '" + tables[i].name + "'");
        const bool isThere = sqlite3_step(kind) == SQLITE_ROW;
        const auto* type = isThere ? reinterpret_cast<const char*>(sqlite3_column_text(kind, 0)) : nullptr;
        const bool isView = type && std::string(type) == "view";
        sqlite3_finalize(kind);
        if (isView && tables[i].name == table_.name)
            throw std::runtime_error("„" + table_.name +
                                     "“ ist in dieser Datenbank eine Sicht; eingelesen wird nur in Tabellen.");
        if (!isThere && creates)
            execute(statements[i]);
        else if (!isThere && tables[i].name == table_.name)
            throw std::runtime_error("Die Tabelle „" + table_.name +
                                     "“ fehlt in der Datenbank; --anlegen legt sie an.");
    }
}

void TableImport::prepareStatements() {
    std::string names;
    std::string marks;
    std::string changes;
    std::string keys;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const auto& name = columns_[i];
        const auto mark = "?" + std::to_string(i + 1);
        const bool isKey = table_.find(name)->isKey;
        names += (i > 0 ? ", " : "") + name;
        marks += (i > 0 ? ", " : "") + mark;
        auto& part = isKey ? keys : changes;
        part.append(part.empty() ? "" : isKey ? " AND " : ", ").append(name).append(" = ").append(mark);
    }
    exists_ = prepare("SELECT 1 FROM " + table_.name + " WHERE " + keys);
    insert_ = prepare("INSERT INTO " + table_.name + " (" + names + ") VALUES (" + marks + ")");
    if (!changes.empty())
        update_ = prepare("UPDATE " + table_.name + " SET " + changes + " WHERE " + keys);
}

TableImport::Effect TableImport::put(const std::vector<Value>& row) {
    const bool isThere = step(exists_, row);
    if (!isThere)
        step(insert_, row);
    else if (update_)
        step(update_, row);
    return isThere ? Effect::Changed : Effect::Added;
}

/// Executes a statement; gives whether it has a row.
bool TableImport::step(sqlite3_stmt* statement, const std::vector<Value>& row) {
    // A statement takes the values that it names, by their numbers.
    const int count = sqlite3_bind_parameter_count(statement);
    for (int at = 1; at <= std::min(count, int(row.size())); ++at) {
        const auto& value = row[std::size_t(at) - 1];
        if (const auto* number = std::get_if<double>(&value))
            sqlite3_bind_double(statement, at, *number);
        else if (const auto* text = std::get_if<std::string>(&value))
            sqlite3_bind_text(statement, at, text->data(), int(text->size()), SQLITE_TRANSIENT);
        else
            sqlite3_bind_null(statement, at);
    }
    const int result = sqlite3_step(statement);
    sqlite3_reset(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        raise(sqlite3_extended_errcode(database_));
    return result == SQLITE_ROW;
}

void TableImport::commit() {
    if (tries_)
        return;
    execute("COMMIT");
    created_.clear();
}

sqlite3_stmt* TableImport::prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (const int result = sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr); result != SQLITE_OK)
        raise(result);
    return statement;
}

void TableImport::execute(const std::string& sql) {
    if (const int result = sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr); result != SQLITE_OK)
        raise(result);
}

void TableImport::raise(int result) const {
    if (result == SQLITE_CONSTRAINT_FOREIGNKEY)
        throw std::runtime_error("Es gibt keine Zeile in " + parentOf(table_)->name + ", zu der sie gehört.");
    if ((result & 0xFF) == SQLITE_BUSY)
        throw std::runtime_error("Ein anderes Programm hat die Datenbank gesperrt.");
    if ((result & 0xFF) == SQLITE_INTERRUPT)
        throw std::runtime_error("Der Vorgang wurde abgebrochen.");
    if ((result & 0xFF) == SQLITE_NOTADB)
        throw std::runtime_error("Das ist keine SQLite-Datenbank.");
    throw std::runtime_error("Die Datenbank meldet: " +
                             std::string(database_ ? sqlite3_errmsg(database_) : sqlite3_errstr(result)));
}

} // namespace kvtdruck
