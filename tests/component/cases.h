// What single reports do with what they are given.
#pragma once

#include "component/report_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace kvtdruck::test {

using Cells = std::vector<Variant>;

inline const ReportDescription& named(const std::string& list) {
    return *std::find_if(allReports().begin(), allReports().end(),
                         [&](const auto& each) { return each.list == list; });
}

/// One report at a time, with what its host and its reader give it.
class Cases : public ::testing::Test {
  protected:
    Cases() { fill(host.world, 1); }

    bool print(const std::string& list, Cells row) { return print(list, std::vector<Cells>{std::move(row)}); }
    bool print(const std::string& list, std::vector<Cells> rows) {
        array = host.world.array(std::move(rows));
        return host.print({.list = fromUtf8(list), .array = array});
    }
    bool printValues(const std::string& list, const std::function<void(Array&)>& change, std::size_t rows = 1) {
        array = arrayFor(host.world, named(list), rows);
        change(*array);
        return host.print({.list = fromUtf8(list), .array = array});
    }
    Cells read(const std::string& list) { return host.world.readers[named(list).reader].reads.back(); }
    std::string variable(const std::string& name, const std::string& value, std::int32_t type = kTypeNumeric) {
        return "LlDefineVariableExt(\"" + name + "\", \"" + value + "\", " + std::to_string(type) + ") = 0";
    }
    std::string field(const std::string& name, const std::string& value, std::int32_t type = kTypeNumeric) {
        return "LlDefineFieldExt(\"" + name + "\", \"" + value + "\", " + std::to_string(type) + ") = 0";
    }
    const std::vector<std::string>& calls() const { return host.world.engineCalls; }
    bool defines(const std::string& name) const {
        return std::any_of(calls().begin(), calls().end(),
                           [&](const auto& call) { return call.find("(\"" + name + "\"") != std::string::npos; });
    }
    void set(const std::string& list, const String& getter, Variant value) {
        host.world.readers[named(list).reader].values[getter] = {std::move(value)};
    }
    std::vector<ErrorReport>& reports() { return host.world.reports; }

    Host host;
    std::shared_ptr<Array> array;
};

} // namespace kvtdruck::test
