// The reference data access: the reader classes that the reports expect, over any database with the schema of
// demo/schema.sql: an SQLite file, or whatever ODBC reaches.
#pragma once

#include "kvtzug/source.h"
#include "module/data_library.h"
#include "values/object.h"
#include "values/text.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace kvtdruck {

/// Years with both ends.
struct Years {
    std::int32_t first = 0;
    std::int32_t last = 9999;
};

/// A connection as a host hands it to the component: an object with the property `ConnectionString`. As a host's
/// own does, it keeps the data source open from its first use on: what is read before a print and the print itself
/// share one connection.
class HostConnection : public Object {
  public:
    explicit HostConnection(String connectionString) : connectionString_(std::move(connectionString)) {}

    /// What readers that are connected from now on show of the employees' months, of which no report asks for a
    /// year.
    void show(const Years& years) { years_ = years; }
    const Years& years() const { return years_; }

    void keep(std::shared_ptr<Connection> connection) { kept_ = std::move(connection); }

    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

  private:
    String connectionString_;
    Years years_;
    std::shared_ptr<Connection> kept_;
};

/// The open connections by their connection strings. A connection is open as long as a reader uses it
/// or a `HostConnection` keeps it.
class Connections {
  public:
    explicit Connections(Cancellation cancelled = nullptr) : cancelled_(cancelled) {}

    /// The connection that `host` names with its property `ConnectionString`: the open one, or a new one.
    std::shared_ptr<Connection> open(Object& host);

    /// Whether the user has asked to stop.
    bool isCancelled() const { return cancelled_ != nullptr && *cancelled_; }

  private:
    Cancellation cancelled_;
    std::map<String, std::weak_ptr<Connection>> open_;
};

/// The library. Its objects may outlive it.
class ReferenceKvtzug : public DataLibrary {
  public:
    /// Is told every SQL statement that is executed.
    using Trace = std::function<void(StringView sql)>;

    /// `cancelled` must outlive the library's objects.
    explicit ReferenceKvtzug(Trace trace = {}, Cancellation cancelled = nullptr)
        : trace_(std::move(trace)), connections_(std::make_shared<Connections>(cancelled)) {}

    ObjectRef create(StringView className) override;

  private:
    Trace trace_;
    std::shared_ptr<Connections> connections_;
};

} // namespace kvtdruck
